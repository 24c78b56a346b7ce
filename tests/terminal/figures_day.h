#pragma once

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/terminal/terminal_fixture.h"

namespace iorder::testing {

inline double NormalShare(double x) {
  return 0.5 * std::erfc(-x / std::sqrt(2.0));
}

/// Black's price of an option on a future, without interest.
inline double BlackPrice(bool isCall, double strike, double future, double percent, double years) {
  const double deviation = percent / 100 * std::sqrt(years);
  const double d1 = std::log(future / strike) / deviation + deviation / 2;
  const double call = future * NormalShare(d1) - strike * NormalShare(d1 - deviation);
  return isCall ? call : call - future + strike;
}

inline std::string QuoteLine(const std::string& at, const std::string& symbol, const std::string& words) {
  return "{\"at\": \"" + at + "\", \"quote\": \"" + symbol + "\", " + words + "}\n";
}

inline std::string TradeLine(const std::string& at, const std::string& symbol, double price) {
  return QuoteLine(at, symbol, "\"price\": \"" + std::to_string(price) + "\"");
}

inline std::string CommandLine(const std::string& at, const std::string& command) {
  return "{\"at\": \"" + at + "\", \"command\": \"" + command + "\"}\n";
}

/// A day with figures from the market, whose engine subscribes one record when it gets the command
/// "subscribe" (and others at "also NAME"), gives it up at "unsubscribe", and notes what it shows at each
/// update and at "look".
class CFiguresDay {
 public:
  using Show = std::function<std::string(IBusObject& record)>;

  CFiguresDay(const std::wstring& name, const std::string& lines, const std::string& head, Show show)
      : day(lines, R"(, "figures": "market")" + head), m_name(name), m_show(std::move(show)) {
    day.engine.onMessage = [this](const std::wstring&, const std::wstring& text, const Value&) { Do(text); };
    day.Play();
    EXPECT_THAT(day.problems, ::testing::IsEmpty());
    EXPECT_EQ(std::nullopt, day.terminal->Error());
  }

  CPlayedDay day;
  std::shared_ptr<IBusObject> record;
  std::vector<std::string> seen;  ///< the time, and what was shown

 private:
  void Do(const std::wstring& command) {
    constexpr std::wstring_view kAlso = L"also ";
    if (command == L"unsubscribe") {
      day.terminal->Events().Unsubscribe(m_name);
    } else if (command.starts_with(kAlso)) {
      day.terminal->Events().Subscribe(command.substr(kAlso.size()));
    } else if (command == L"look") {
      Note();
    } else {
      Open();
      day.terminal->Events().Subscribe(m_name);
    }
  }

  void Open() {
    if (record != nullptr) return;
    record = day.Open(m_name);
    if (record == nullptr) return;
    auto sink = std::make_shared<CRecordingSink>();
    sink->onUpdate = [this] { Note(); };
    record->Advise(sink);
  }

  void Note() {
    Open();
    seen.push_back(day.Clock() + " " + (record != nullptr ? m_show(*record) : "no record"));
  }

  const std::wstring m_name;
  const Show m_show;
};

inline std::optional<int64_t> ScaledField(IBusObject& record, std::wstring_view name) {
  const Value value = record.GetValue(read_code::kField, name);
  const int64_t* const scaled = std::get_if<int64_t>(&value);
  return scaled != nullptr ? std::optional(*scaled) : std::nullopt;
}

inline int32_t Mcode(IBusObject& record) {
  return Int32Or(record.GetValue(read_code::kField, L"MCODE"), 0);
}

}  // namespace iorder::testing
