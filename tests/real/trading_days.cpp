// Answers questions about trading days with the engine's calendar, line by line from the standard input:
//
//   special 20190125 -,GLC.TWF            the record "Holiday" has this field; no answer
//   holiday 20190125 ND.F.TWF.TX.202003   1 if that market doesn't trade on the date, else 0
//   days 20190101 20200330 ND.F.TWF.TX.202003   the trading days from the first date to the second

#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "platform/text.h"
#include "reference/trading_calendar.h"
#include "tests/reference/reference_fixture.h"

namespace iorder::testing {
namespace {

constexpr const wchar_t* kHoliday = L"Holiday";

class CAnswers {
 public:
  void Run() {
    for (const std::string& error : m_runtime.Run([this] { AnswerAll(); })) std::cerr << error << '\n';
  }

 private:
  void AnswerAll() {
    Set(L"", L"");  // so that the record is there
    const std::unique_ptr<CBaseData> record = m_host.OpenRecord(kHoliday, nullptr);
    for (std::string line; std::getline(std::cin, line);) {
      std::istringstream words(line);
      std::string what, first, second, symbol;
      words >> what >> first >> second >> symbol;
      if (what == "special") {
        Set(ToWide(first), ToWide(second));
      } else if (what == "holiday") {
        std::cout << m_calendar.IsHoliday(ToWide(first), ToWide(second), record.get()) << '\n';
      } else {
        std::cout << m_calendar.GetTradingDays(ToWide(symbol), std::stoi(second), std::stoi(first)) << '\n';
      }
    }
  }
  void Set(const std::wstring& date, const std::wstring& text) {
    RecordChange change;
    change.name = kHoliday;
    change.fields = {Field(date, text)};
    m_bus.Apply(change);
  }

  CVirtualRuntime m_runtime{{.start = {2020, 4, 0, 1, 9, 0, 0, 0}}};
  CEmbeddedBus m_bus{m_runtime, false};
  CRecordingHost m_host{m_runtime, m_bus};
  CTradingCalendar m_calendar{m_host};
};

}  // namespace
}  // namespace iorder::testing

int main() {
  iorder::testing::CAnswers().Run();
}
