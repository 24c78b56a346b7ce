#include "terminal/day_file.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "fuzz/fuzz_target.h"
#include "terminal/expectation.h"
#include "terminal/input_error.h"
#include "terminal/input_file.h"
#include "terminal/tick_file.h"

namespace iorder::fuzzing {
namespace {

constexpr std::string_view kPath = "input";

class CTextInput : public IInputFile {
 public:
  explicit CTextInput(std::string_view text) : m_text(text) {}

  size_t Read(char* data, size_t size) override {
    const size_t count = std::min(size, m_text.size());
    std::memcpy(data, m_text.data(), count);
    m_text.remove_prefix(count);
    return count;
  }

 private:
  std::string_view m_text;
};

CLineReader ReaderOf(std::string_view text) {
  constexpr size_t kSmallBlock = 512;
  return {std::string(kPath), std::make_unique<CTextInput>(text), kSmallBlock};
}

/// Reads; a mistake that is found must be told in one line that says where.
template <class Function>
void Read(std::string_view text, const Function& read) {
  try {
    read();
  } catch (const InputError& error) {
    const std::string what = error.what();
    Require(what.starts_with(std::string(kPath) + ":"), "a mistake says where it is: " + what);
    Require(what.find_first_of("\r\n") == std::string::npos, "a mistake is told in one line: " + what);
    const std::string line = what.substr(kPath.size() + 1);
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    if (line.front() != ' ') Require(std::stoll(line) <= lines, "a mistake lies in the file: " + what);
  }
}

void CheckDay(Day day) {
  const auto isEarlier = [](const DayLine& left, const DayLine& right) { return left.at < right.at; };
  Require(std::is_sorted(day.lines.begin(), day.lines.end(), isEarlier), "times never go back");
  Require(day.lines.empty() || day.lines.front().at >= day.head.start, "nothing comes before the start");
  Require(!day.head.end || *day.head.end >= day.head.start, "a day ends behind its start");
  Require(day.setupCount <= day.lines.size(), "the setup is part of the day");
  const size_t count = day.lines.size();
  InsertCommand(day, "{}", std::nullopt);
  InsertCommand(day, "{}", day.head.start);
  Require(day.lines.size() == count + 2, "commands are put in");
  Require(std::is_sorted(day.lines.begin(), day.lines.end(), isEarlier),
          "commands are put in at their times");
}

void ReadTicks(std::string_view text) {
  CTickFile ticks(ReaderOf(text), LocalTime(std::chrono::days(20000)));
  CTickFile::Row row;
  for (LocalTime last = LocalTime(std::chrono::days(20000)); ticks.Next(row); last = row.at) {
    Require(row.at >= last, "rows never go back");
    Require(row.symbol < ticks.Symbols().size(), "a row's symbol is known");
  }
}

}  // namespace
}  // namespace iorder::fuzzing

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace iorder;
  using namespace iorder::fuzzing;
  const std::string_view text = TextOf(data, size);
  Read(text, [text] { CheckDay(ReadDayText(ReaderOf(text))); });
  Read(text, [text] { ReadTicks(text); });
  Read(text, [text] { CExpectations expectations(ReaderOf(text)); });
  return 0;
}
