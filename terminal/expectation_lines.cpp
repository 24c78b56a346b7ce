#include "terminal/expectation_lines.h"

#include <algorithm>
#include <limits>

#include "terminal/object_reader.h"

namespace iorder {
namespace {

/// The line from `search.next` on that fits most keys of the pattern, if any key fits.
std::vector<size_t> NearestLines(const CTracePattern& pattern, const TraceSearch& search) {
  size_t best = 0;
  std::vector<size_t> nearest;
  for (size_t i = search.next; i < search.lines.size(); ++i) {
    const size_t fitting = pattern.CountFitting(search.lines[i], search.names);
    if (fitting > best) {
      best = fitting;
      nearest = {i};
    }
  }
  return nearest;
}

std::string Behind(const TraceSearch& search) {
  return search.next == 0 ? "in the whole trace" : "behind trace line " + std::to_string(search.next);
}

/// Some line behind the one matched above fits.
class CNextLine : public IExpectation {
 public:
  explicit CNextLine(CTracePattern pattern) : m_pattern(std::move(pattern)) {}

  std::optional<ExpectationFailure> Check(TraceSearch& search) const override {
    for (size_t i = search.next; i < search.lines.size(); ++i) {
      if (m_pattern.Fits(search.lines[i], search.names)) {
        search.next = i + 1;
        return std::nullopt;
      }
    }
    return ExpectationFailure{"no line " + Behind(search) + " fits", search.next,
                              NearestLines(m_pattern, search)};
  }

 private:
  CTracePattern m_pattern;
};

/// All patterns fit different lines behind the one matched above.
class CAnyOrder : public IExpectation {
 public:
  explicit CAnyOrder(std::vector<CTracePattern> patterns) : m_patterns(std::move(patterns)) {}

  std::optional<ExpectationFailure> Check(TraceSearch& search) const override {
    Candidates candidates(m_patterns.size());
    Matching matching;
    for (size_t i = search.next; i < search.lines.size(); ++i) {
      // Tried anew with each candidate, so that the last of the lines is the first that will do.
      if (!AddCandidate(i, search, candidates) || !Match(candidates, matching)) continue;
      std::set<size_t> used;
      PatternNames names = search.names;
      if (Assign(candidates, 0, search, used, names)) {
        search.names = std::move(names);
        search.next = *used.rbegin() + 1;
        return std::nullopt;
      }
    }
    return Failure(candidates, search);
  }

 private:
  using Candidates = std::vector<std::vector<size_t>>;
  /// Which pattern has which line.
  using Matching = std::map<size_t, size_t>;

  /// Whether the line fits a pattern by itself.
  bool AddCandidate(size_t index, const TraceSearch& search, Candidates& candidates) const {
    bool isOne = false;
    for (size_t p = 0; p < m_patterns.size(); ++p) {
      PatternNames names = search.names;
      if (m_patterns[p].Fits(search.lines[index], names)) {
        candidates[p].push_back(index);
        isOne = true;
      }
    }
    return isOne;
  }

  /// Whether each pattern can have a line of its own, names left aside: grown by augmenting paths, so that a
  /// list of many patterns with a line too few is refused in no time.
  static bool Match(const Candidates& candidates, Matching& lineToPattern) {
    std::set<size_t> matched;
    for (const auto& [line, pattern] : lineToPattern) matched.insert(pattern);
    for (size_t p = 0; p < candidates.size(); ++p) {
      std::set<size_t> visited;
      if (!matched.contains(p) && !Augment(candidates, p, lineToPattern, visited)) return false;
    }
    return true;
  }

  static bool Augment(const Candidates& candidates, size_t pattern, Matching& lineToPattern,
                      std::set<size_t>& visited) {
    for (const size_t line : candidates[pattern]) {
      if (!visited.insert(line).second) continue;
      const auto owner = lineToPattern.find(line);
      if (owner == lineToPattern.end() || Augment(candidates, owner->second, lineToPattern, visited)) {
        lineToPattern[line] = pattern;
        return true;
      }
    }
    return false;
  }

  /// Gives each pattern from `pattern` on a line of its own.
  bool Assign(const Candidates& candidates, size_t pattern, const TraceSearch& search, std::set<size_t>& used,
              PatternNames& names) const {
    if (pattern == m_patterns.size()) {
      return true;
    }
    for (const size_t candidate : candidates[pattern]) {
      PatternNames tried = names;
      if (used.contains(candidate) || !m_patterns[pattern].Fits(search.lines[candidate], tried)) {
        continue;
      }
      used.insert(candidate);
      if (Assign(candidates, pattern + 1, search, used, tried)) {
        names = std::move(tried);
        return true;
      }
      used.erase(candidate);
    }
    return false;
  }

  ExpectationFailure Failure(const Candidates& candidates, const TraceSearch& search) const {
    for (size_t p = 0; p < m_patterns.size(); ++p) {
      if (candidates[p].empty()) {
        return {"no line " + Behind(search) + " fits pattern " + std::to_string(p + 1) + " of any_order",
                search.next, NearestLines(m_patterns[p], search)};
      }
    }
    return {"the patterns of any_order don't fit different lines " + Behind(search), search.next, {}};
  }

  std::vector<CTracePattern> m_patterns;
};

/// A stretch of time, both ends included. A time without a date holds for each date; a stretch whose end lies
/// before its beginning goes over midnight.
class CTimeSpan {
 public:
  CTimeSpan(CObjectReader& reader) : m_from(Read(reader, "from")), m_to(Read(reader, "to")) {}

  bool Holds(const CTraceLine& line) const {
    const Milliseconds time = line.Time() - DateOf(line.Time());
    if (m_from.timeOfDay && m_to.timeOfDay && *m_from.timeOfDay > *m_to.timeOfDay) {
      return time >= *m_from.timeOfDay || time <= *m_to.timeOfDay;
    }
    return (!m_from.timeOfDay || time >= *m_from.timeOfDay) &&
           (!m_from.full || line.Time() >= *m_from.full) && (!m_to.timeOfDay || time <= *m_to.timeOfDay) &&
           (!m_to.full || line.Time() <= *m_to.full);
  }

 private:
  struct End {
    std::optional<Milliseconds> timeOfDay;
    std::optional<LocalTime> full;
  };

  static End Read(CObjectReader& reader, std::string_view key) {
    const std::optional<std::string> text = reader.Text(key);
    if (!text) {
      return {};
    }
    const End end{ParseTimeOfDay(*text), ParseLocalTime(*text)};
    if (!end.timeOfDay && !end.full) {
      reader.Fail(key, "expected HH:MM:SS[.mmm] or YYYY-MM-DDTHH:MM:SS[.mmm], found '" + *text + "'");
    }
    return end;
  }

  End m_from;
  End m_to;
};

/// Just so many lines of the whole trace, or of a stretch of time, fit.
class CCountedLines : public IExpectation {
 public:
  CCountedLines(size_t count, CTracePattern pattern, CTimeSpan span)
      : m_count(count), m_pattern(std::move(pattern)), m_span(span) {}

  std::optional<ExpectationFailure> Check(TraceSearch& search) const override {
    std::vector<size_t> fitting;
    for (size_t i = 0; i < search.lines.size(); ++i) {
      PatternNames names = search.names;
      if (m_span.Holds(search.lines[i]) && m_pattern.Fits(search.lines[i], names)) {
        fitting.push_back(i);
      }
    }
    if (fitting.size() == m_count) {
      return std::nullopt;
    }
    const std::string expected = m_count == 0 ? "none" : std::to_string(m_count);
    ExpectationFailure failure;
    failure.what = std::to_string(fitting.size()) + " lines fit, expected " + expected;
    failure.around = fitting.empty() ? search.next : fitting.front();
    failure.nearest = fitting.empty() ? NearestLines(m_pattern, search) : fitting;
    return failure;
  }

 private:
  size_t m_count;
  CTracePattern m_pattern;
  CTimeSpan m_span;
};

/// Reads patterns and keeps watch over their names.
class CPatternReader {
 public:
  CPatternReader(const FilePlace& place, std::set<std::string>& names) : m_place(place), m_names(names) {}

  CTracePattern Read(const JsonNode& node) {
    CTracePattern pattern(node, m_place);
    const std::vector<std::string> own = pattern.Names();
    for (const std::string& other : pattern.OtherNames()) {
      if (!m_names.contains(other) && std::find(own.begin(), own.end(), other) == own.end()) {
        FailAt(m_place, "{!" + other + "} before any line above has {$" + other + "}");
      }
    }
    m_new.insert(m_new.end(), own.begin(), own.end());
    return pattern;
  }

  /// From now on the names of the patterns read stand for something.
  void KeepNames() { m_names.insert(m_new.begin(), m_new.end()); }

 private:
  const FilePlace& m_place;
  std::set<std::string>& m_names;
  std::vector<std::string> m_new;
};

std::unique_ptr<IExpectation> ReadAnyOrder(CObjectReader& reader, CPatternReader& patterns) {
  const JsonNode& list = *reader.List("any_order");
  reader.Finish();
  if (list.children.empty()) {
    reader.Fail("any_order", "needs a pattern");
  }
  std::vector<CTracePattern> all;
  for (const JsonNode& node : list.children) {
    all.push_back(patterns.Read(node));
  }
  patterns.KeepNames();
  return std::make_unique<CAnyOrder>(std::move(all));
}

std::unique_ptr<IExpectation> ReadCounted(CObjectReader& reader, CPatternReader& patterns, size_t count,
                                          std::string_view key) {
  CTracePattern pattern = patterns.Read(reader.Need(key));
  const CTimeSpan span(reader);
  reader.Finish();
  return std::make_unique<CCountedLines>(count, std::move(pattern), span);
}

}  // namespace

std::unique_ptr<IExpectation> ReadExpectation(const std::string& text, const FilePlace& place,
                                              std::set<std::string>& names) {
  const JsonNode node = ParseJson(text, place);
  CObjectReader reader(node, "the expectation", place);
  CPatternReader patterns(place, names);
  if (node.Find("note") != nullptr) {
    reader.NeedText("note");
    reader.Finish();
    return nullptr;
  }
  if (node.Find("any_order") != nullptr) {
    return ReadAnyOrder(reader, patterns);
  }
  if (node.Find("never") != nullptr) {
    return ReadCounted(reader, patterns, 0, "never");
  }
  if (node.Find("count") != nullptr) {
    const size_t count =
        static_cast<size_t>(reader.NeedInteger("count", 0, std::numeric_limits<int32_t>::max()));
    return ReadCounted(reader, patterns, count, "of");
  }
  auto line = std::make_unique<CNextLine>(patterns.Read(node));
  patterns.KeepNames();
  return line;
}

}  // namespace iorder
