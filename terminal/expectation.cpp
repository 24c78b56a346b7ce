#include "terminal/expectation.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "terminal/expectation_lines.h"

namespace iorder {
namespace {

constexpr size_t kLinesAround = 3;
constexpr size_t kMostNearest = 5;

std::vector<CTraceLine> ReadTrace(std::string_view trace) {
  std::vector<CTraceLine> lines;
  while (!trace.empty()) {
    const size_t end = std::min(trace.find('\n'), trace.size());
    if (end > 0) {
      lines.emplace_back(std::string(trace.substr(0, end)), FilePlace{"trace", lines.size() + 1});
    }
    trace.remove_prefix(std::min(end + 1, trace.size()));
  }
  return lines;
}

void AppendLine(const std::vector<CTraceLine>& lines, size_t index, std::string& report) {
  report += "    " + std::to_string(index + 1) + ": " + lines[index].Text() + "\n";
}

std::string ReportOf(const std::string& path, const IExpectation& expectation,
                     const ExpectationFailure& failure, const std::vector<CTraceLine>& lines) {
  std::string report =
      path + ":" + std::to_string(expectation.line) + ": " + failure.what + "\n  " + expectation.text;
  report += lines.empty() ? "\n  the trace is empty\n" : "\n  the trace there:\n";
  const size_t begin = failure.around - std::min(failure.around, kLinesAround);
  const size_t end = std::min(lines.size(), failure.around + kLinesAround);
  for (size_t i = begin; i < end; ++i) {
    AppendLine(lines, i, report);
  }
  std::vector<size_t> nearest = failure.nearest;
  std::erase_if(nearest, [&](size_t index) { return index >= begin && index < end; });
  if (!nearest.empty()) {
    report += "  the nearest elsewhere:\n";
    nearest.resize(std::min(nearest.size(), kMostNearest));
    for (const size_t index : nearest) {
      AppendLine(lines, index, report);
    }
  }
  return report;
}

}  // namespace

CExpectations::CExpectations(CLineReader reader) : m_path(reader.Path()) {
  std::set<std::string> names;
  std::string_view line;
  bool isEmpty = true;
  while (reader.Next(line)) {
    if (line.find_first_not_of(" \t") == std::string_view::npos) {
      continue;
    }
    isEmpty = false;
    std::string text(line);
    if (std::unique_ptr<IExpectation> expectation = ReadExpectation(text, reader.Place(), names)) {
      expectation->text = std::move(text);
      expectation->line = reader.Place().line;
      m_lines.push_back(std::move(expectation));
    }
  }
  if (isEmpty) {
    FailAt({m_path}, "is empty; an expectation file says in each line what the trace must show");
  }
}

CExpectations::~CExpectations() = default;

std::optional<std::string> CExpectations::Check(std::string_view trace) const {
  const std::vector<CTraceLine> lines = ReadTrace(trace);
  TraceSearch search{lines, 0, {}};
  for (const std::unique_ptr<IExpectation>& expectation : m_lines) {
    if (const std::optional<ExpectationFailure> failure = expectation->Check(search)) {
      return ReportOf(m_path, *expectation, *failure, lines);
    }
  }
  return std::nullopt;
}

std::optional<std::string> CExpectations::PathFor(const std::string& dayPath) {
  static constexpr std::string_view kDayEnd = ".day.jsonl";
  static constexpr std::string_view kPacked[] = {"", ".gz", ".zst"};
  for (const std::string_view packed : kPacked) {
    const std::string end = std::string(kDayEnd) + std::string(packed);
    if (!dayPath.ends_with(end)) continue;
    const std::string plain = dayPath.substr(0, dayPath.size() - end.size()) + ".expect.jsonl";
    const auto isThere = [&plain](std::string_view how) {
      return std::filesystem::exists(plain + std::string(how));
    };
    const auto found = std::find_if(std::begin(kPacked), std::end(kPacked), isThere);
    return found == std::end(kPacked) ? plain : plain + std::string(*found);
  }
  return std::nullopt;
}

}  // namespace iorder
