#include "tests/soak/soak_run.h"

#include <fmt/format.h>

#include <algorithm>

#include "terminal/day_file.h"
#include "terminal/input_error.h"
#include "tests/checkers/checkers.h"
#include "tests/soak/soak_groups.h"

namespace iorder::testing {
namespace {

constexpr int kMostTrials = 400;

class CSoakListener : public IRunListener {
 public:
  CSoakListener(CCheckers& checkers, SoakOutcome& outcome) : m_checkers(checkers), m_outcome(outcome) {}

  void OnStep(const TraceStep& step) override {
    m_checkers.OnStep(step);
    m_outcome.coverage.OnStep(step);
    if (step.kind != TraceKind::kFault) return;
    // A distance that leads out of the chain ends the selection so: that is its rule.
    if (step.text.starts_with("strike index ")) {
      m_outcome.coverage.Count("selections outside the chain");
    } else if (!m_outcome.violation) {
      m_outcome.violation = {"faults", step.at, fmt::format("{} on {}", step.text, step.thread)};
    }
  }
  void OnRead(const BusRead& read) override { m_checkers.OnRead(read); }

 private:
  CCheckers& m_checkers;
  SoakOutcome& m_outcome;
};

/// Notes which group orders are sent, and when.
class COrderNotes : public IRunListener {
 public:
  struct Sent {
    size_t number = 0;
    LocalTime at;
  };

  void OnStep(const TraceStep& step) override {
    if (!step.IsCommand(kNewOrder)) return;
    ++m_count;
    if (FieldText(step.text, "SYNTHETIC") == "1") m_sent.push_back({m_count, step.at});
  }
  void OnRead(const BusRead& /*read*/) override {}

  const std::vector<Sent>& All() const { return m_sent; }

 private:
  size_t m_count = 0;
  std::vector<Sent> m_sent;
};

/// Lines about the last few orders before some moment. What is sent before the first of them is sent all the
/// same with them.
void PutInChildChanges(SoakDay& day, const std::vector<COrderNotes::Sent>& sent) {
  CDraw draw(day.seed + 1);
  const auto last = static_cast<size_t>(draw.Between(0, static_cast<int64_t>(sent.size()) - 1));
  const LocalTime from = sent[last].at + Milliseconds(draw.Pick({1, 20, 150, 1000, 2000, 2500}));
  for (int64_t i = draw.Between(1, 8); i > 0; --i) {
    const size_t back = static_cast<size_t>(draw.Between(0, 5));
    const COrderNotes::Sent& order = sent[last - std::min(last, back)];
    day.events.push_back(
        {from + Milliseconds(draw.Between(0, 4000)), false, DrawChildChange(draw, order.number)});
  }
  std::stable_sort(day.events.begin(), day.events.end(),
                   [](const auto& left, const auto& right) { return left.at < right.at; });
}

/// Tries smaller days, as long as there are trials left.
class CShrinker {
 public:
  CShrinker(const Violation& violation, const std::filesystem::path& path)
      : m_rule(violation.rule), m_path(path) {}

  bool Shows(const SoakDay& day) {
    ++m_trials;
    const SoakOutcome outcome = PlaySoakDay(day, m_path);
    return outcome.violation && outcome.violation->rule == m_rule;
  }
  bool HasTrials() const { return m_trials < kMostTrials; }

  /// Takes pieces of `size` events out where the day still shows it without them.
  void CutPieces(SoakDay& day, size_t size) {
    for (size_t begin = 0; begin < day.events.size() && HasTrials();) {
      SoakDay smaller = day;
      const auto first = smaller.events.begin() + static_cast<std::ptrdiff_t>(begin);
      const auto count = std::min(size, smaller.events.size() - begin);
      smaller.events.erase(first, first + static_cast<std::ptrdiff_t>(count));
      if (Shows(smaller)) {
        day = std::move(smaller);
      } else {
        begin += size;
      }
    }
  }

 private:
  const std::string m_rule;
  const std::filesystem::path m_path;
  int m_trials = 0;
};

}  // namespace

SoakDay MakeSoakDay(uint64_t seed, const std::filesystem::path& path) {
  SoakDay made = DrawSoakDay(seed);
  if (!made.changesChildren) return made;
  COrderNotes notes;
  try {
    made.Write(path);
    const Day day = ReadDayFile(path.string());
    CCheckedRun(day, std::nullopt, notes).Run();
  } catch (const InputError&) {
    return made;  // which shows again as it is played
  }
  if (!notes.All().empty()) PutInChildChanges(made, notes.All());
  return made;
}

SoakOutcome PlaySoakDay(const SoakDay& made, const std::filesystem::path& path) {
  SoakOutcome outcome;
  made.Write(path);
  try {
    const Day day = ReadDayFile(path.string());
    CCheckers checkers(day);
    CSoakListener listener(checkers, outcome);
    CCheckedRun run(day, std::nullopt, listener);
    const std::vector<std::string> errors = run.Run();
    const Violations& violations = checkers.Finish();
    for (const auto& [kind, count] : checkers.Groups().Counts()) outcome.coverage.Count(kind, count);
    if (!violations.empty() && !outcome.violation) outcome.violation = violations.front();
    if (!errors.empty()) outcome.violation = {"run", made.end, errors.front()};
  } catch (const InputError& error) {
    outcome.violation = {"day", made.start, error.what()};
  }
  outcome.coverage.Count("days");
  return outcome;
}

SoakDay Shrink(const SoakDay& day, const Violation& violation, const std::filesystem::path& path) {
  CShrinker shrinker(violation, path);
  SoakDay smallest = day;
  SoakDay cut = day;
  cut.end = std::min(day.end, violation.at + std::chrono::seconds(1));
  std::erase_if(cut.events, [&cut](const SoakDay::Event& event) { return event.at > cut.end; });
  if (shrinker.Shows(cut)) smallest = std::move(cut);
  for (size_t size = std::max<size_t>(1, smallest.events.size() / 2); size > 0 && shrinker.HasTrials();
       size /= 2)
    shrinker.CutPieces(smallest, size);
  smallest.Write(path);
  return smallest;
}

}  // namespace iorder::testing
