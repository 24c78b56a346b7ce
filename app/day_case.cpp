#include "app/day_case.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <system_error>

#include "platform/text.h"
#include "terminal/day_file.h"
#include "terminal/input_error.h"
#include "terminal/input_file.h"
#include "terminal/json_line.h"
#include "terminal/trace_writer.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

/// Keeps the first fault of a run.
class CFaultListener : public ITerminalListener {
 public:
  void OnEvent(const TraceEvent& event) override {
    if (event.kind != TraceKind::kFault || !m_line.empty()) return;
    AppendTraceLine(event, m_line);
  }
  /// Its trace line; empty if there was none.
  const std::string& Line() const { return m_line; }

 private:
  std::string m_line;
};

bool NamesFault(const JsonNode& pattern) {
  const JsonNode* const event = pattern.Find("event");
  return event != nullptr && event->text == "fault";
}

/// Whether a line asks for a fault, and doesn't only forbid one.
bool LineNamesFault(const JsonNode& line) {
  if (const JsonNode* const patterns = line.Find("any_order")) {
    return std::any_of(patterns->children.begin(), patterns->children.end(), NamesFault);
  }
  if (const JsonNode* const count = line.Find("count")) {
    const JsonNode* const pattern = line.Find("of");
    return count->text != "0" && pattern != nullptr && NamesFault(*pattern);
  }
  return NamesFault(line);
}

bool IsVirtualOnlyNote(const JsonNode& line) {
  const JsonNode* const note = line.Find("note");
  return note != nullptr && note->text.starts_with("virtual only: ");
}

/// Whether some line of a file of JSON lines, read without mistake before, is such.
bool AnyLine(const std::string& path, bool (*isSuch)(const JsonNode&)) {
  CLineReader reader(path);
  std::string_view line;
  while (reader.Next(line)) {
    if (line.find_first_not_of(" \t") == std::string_view::npos) continue;
    if (isSuch(ParseJson(line, reader.Place()))) return true;
  }
  return false;
}

std::string ExpectationPath(const std::string& dayPath) {
  const std::optional<std::string> path = CExpectations::PathFor(dayPath);
  if (!path) throw InputError(dayPath + ": isn't named as a day, expected NAME.day.jsonl");
  if (!fs::exists(*path)) {
    throw InputError(dayPath + ": has no expectation file, expected " + *path + " beside it");
  }
  return *path;
}

/// An expectation file without its day is a case that would go unseen.
void RefuseOrphan(const std::string& path) {
  static constexpr std::string_view kPacked[] = {"", ".gz", ".zst"};
  for (const std::string_view packed : kPacked) {
    const std::string end = ".expect.jsonl" + std::string(packed);
    if (!path.ends_with(end)) continue;
    const std::string day = path.substr(0, path.size() - end.size()) + ".day.jsonl";
    const bool isThere = std::any_of(std::begin(kPacked), std::end(kPacked), [&day](std::string_view how) {
      return fs::exists(day + std::string(how));
    });
    if (!isThere) throw InputError(path + ": has no day beside it, expected " + day);
  }
}

bool HasExpectation(const fs::path& path) {
  const std::optional<std::string> expectation = CExpectations::PathFor(path.string());
  return expectation && fs::exists(*expectation);
}

}  // namespace

CDayCase::CDayCase(const std::string& dayPath)
    : m_day(ReadDayFile(dayPath)),
      m_expectations(ExpectationPath(dayPath)),
      m_virtualOnly(AnyLine(dayPath, IsVirtualOnlyNote)),
      m_namesFaults(AnyLine(ExpectationPath(dayPath), LineNamesFault)) {}

std::optional<std::string> CDayCase::Run(const RunOptions& options) const {
  CTraceText trace;
  CFaultListener fault;
  std::vector<std::string> errors;
  std::string report;
  try {
    errors = CDayRun(m_day, options, {&trace, &fault}).Run();
  } catch (const InputError& error) {
    // What shows only as the day is played (a report of an order that was never sent, say) fails this case
    // alone.
    report += std::string("the day: ") + error.what() + '\n';
  }
  for (const std::string& error : errors) report += "the run: " + error + '\n';
  if (!m_namesFaults && !fault.Line().empty()) {
    report += "a fault that no line of the expectation file names:\n    " + fault.Line();
  }
  report += m_expectations.Check(trace.Text()).value_or("");
  if (report.empty()) return std::nullopt;
  return report;
}

std::vector<std::string> FindDays(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) throw InputError(path.string() + ": isn't there, expected a day file or a folder");
  if (!fs::is_directory(status)) return {path.string()};
  std::vector<std::string> days;
  const fs::recursive_directory_iterator end;
  for (fs::recursive_directory_iterator entry(path, error); !error && entry != end; entry.increment(error)) {
    if (!entry->is_regular_file()) continue;
    RefuseOrphan(entry->path().string());
    if (HasExpectation(entry->path())) days.push_back(entry->path().string());
  }
  if (error) throw InputError(path.string() + ": can't be read: " + error.message());
  if (days.empty()) {
    throw InputError(path.string() +
                     ": holds no day with an expectation file, expected NAME.day.jsonl with " +
                     "NAME.expect.jsonl beside it");
  }
  std::sort(days.begin(), days.end());
  return days;
}

}  // namespace iorder
