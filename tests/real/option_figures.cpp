// Plays a day, with the options of one chain subscribed all the while, and prints what their records hold at
// the end, one line each: the symbol, "MCODE", and the figures in the order of kOptionFigureFields, empty
// where there is none.
//
//   option_figures DAY CHAIN      DAY says "figures": "market"; CHAIN as in ND.O.TWF.TX.202108

#include "terminal/option_figures.h"

#include <iostream>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/text.h"
#include "platform/virtual/virtual_runtime.h"
#include "records/option_figures_record.h"
#include "terminal/day_file.h"
#include "terminal/embedded_terminal.h"

namespace iorder::testing {
namespace {

/// The options of a chain that the day's symbols name.
std::vector<std::wstring> OptionsOf(const Day& day, const std::wstring& chain) {
  std::vector<std::wstring> options;
  for (const DayLine& line : day.lines) {
    if (const auto* const symbols = std::get_if<SymbolsAction>(&line.action)) {
      for (const SymbolsAction::Row& row : symbols->rows) {
        const std::wstring symbol = ToWide(row.front().value_or(""));
        if (symbol.starts_with(chain + L".")) options.push_back(symbol);
      }
    }
  }
  return options;
}

/// Stands where the engine stands: it only subscribes, and looks when it is stopped.
class CWatcher : public INordoManager {
 public:
  explicit CWatcher(std::vector<std::wstring> options) : m_options(std::move(options)) {}
  void Use(CEmbeddedTerminal& terminal) { m_terminal = &terminal; }

  void SetPhase(int32_t, int32_t phase) override {
    if (phase == kOpen) {
      for (const std::wstring& option : m_options) m_terminal->Events().Subscribe(RecordOf(option));
    } else if (phase == kStop) {
      for (const std::wstring& option : m_options) Print(option);
    }
  }
  void OnTopicMessage(const std::wstring&, int32_t, int32_t, const std::wstring&, const Value&) override {}

 private:
  static constexpr int32_t kOpen = 2;
  static constexpr int32_t kStop = 4;

  static std::wstring RecordOf(const std::wstring& option) {
    return std::wstring(kOptionFiguresRecord) + option;
  }

  void Print(const std::wstring& option) {
    const int32_t handle = m_terminal->Events().OpenRecord(RecordOf(option)).value_or(0);
    const std::shared_ptr<IBusObject> record = m_terminal->GetWorld().bus.Resolve(handle);
    std::cout << ToUtf8(option) << ',' << Int32Or(record->GetValue(read_code::kField, L"MCODE"), 0);
    for (const OptionFigureField& field : kOptionFigureFields) {
      const Value value = record->GetValue(read_code::kField, field.name);
      const int64_t* const figure = std::get_if<int64_t>(&value);
      std::cout << ',';
      if (figure != nullptr) std::cout << FromScaled(*figure);
    }
    std::cout << '\n';
  }

  const std::vector<std::wstring> m_options;
  CEmbeddedTerminal* m_terminal = nullptr;
};

int Run(const std::string& path, const std::wstring& chain) {
  const Day day = ReadDayFile(path);
  CVirtualRuntime runtime({.zone = day.head.timezone, .start = ToDateTime(day.head.start)});
  CEmbeddedTerminal terminal(runtime, day);
  CWatcher watcher(OptionsOf(day, chain));
  watcher.Use(terminal);
  std::cout.precision(12);
  for (const std::string& problem : runtime.Run([&] { terminal.Play(watcher); })) {
    std::cerr << problem << '\n';
    return 1;
  }
  if (terminal.Error()) std::cerr << *terminal.Error() << '\n';
  return terminal.Error() ? 1 : 0;
}

}  // namespace
}  // namespace iorder::testing

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  return iorder::testing::Run(arguments[1], iorder::ToWide(arguments[2]));
}
