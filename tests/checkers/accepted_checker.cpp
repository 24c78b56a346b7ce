#include "tests/checkers/accepted_checker.h"

#include <fmt/format.h>

namespace iorder::testing {
namespace {

/// A message shows six of a price's ten places.
constexpr Scaled kUnseen = 10'000;

}  // namespace

/// A thread that judges as another one resets may still tell a verdict of the run before.
void CAcceptedChecker::KeepMoment(Verdicts& verdicts, LocalTime at) {
  std::erase_if(verdicts, [at](const auto& verdict) { return verdict.second.at < at; });
}

void CAcceptedChecker::OnStep(const TraceStep& step) {
  if (step.LineStarts("Reset. ")) {
    KeepMoment(m_runs[step.strategy].accepted, step.at);
    KeepMoment(m_runs[step.strategy].rejected, step.at);
  } else if (const JsonNode* const body = BodyOf(step, "Scanner");
             body != nullptr && body->Find("OpenPriceOK") != nullptr) {
    OnVerdict(step, *body);
  } else if (step.LineStarts("NewOrder") && FieldText(step.line, "SIDE") == "B") {
    m_bought.push_back({step.strategy, FieldText(step.line, "SYMBOL").value_or("")});
  }
}

void CAcceptedChecker::OnVerdict(const TraceStep& step, const JsonNode& body) {
  const bool isAccepted = IntegerOf(body, "OpenPriceOK") == 1;
  const std::string symbol = TextOf(body, "Symbol");
  Run& run = m_runs[step.strategy];
  Verdicts& verdicts = isAccepted ? run.accepted : run.rejected;
  const Verdict verdict{step.at, TextOf(body, "Stamp")};
  const auto [earlier, isNew] = verdicts.try_emplace(symbol, verdict);
  if (!isNew && earlier->second.stamp == verdict.stamp && earlier->second.at < step.at)
    Complain(step.at, fmt::format("{} is {} again in one run", symbol, isAccepted ? "accepted" : "rejected"));
  earlier->second = verdict;
  const Scaled open = ScaledOf(DecimalOf(body, "OpenPrice"));
  if (!m_tape.Showed(symbol, CTape::kOpen, open, step.at, step.at, kUnseen))
    Complain(step.at, fmt::format("{} is judged at {}, which the tape doesn't show", symbol, open));
  if (const KnownStrategy* const strategy = m_book.Find(step.strategy)) CheckBounds(step, *strategy, body);
}

void CAcceptedChecker::CheckBounds(const TraceStep& step, const KnownStrategy& strategy,
                                   const JsonNode& body) {
  const Scaled open = ScaledOf(DecimalOf(body, "OpenPrice"));
  const OrderInfo& info = strategy.info;
  // A missing bound is below every price.
  const bool isClearlyIn = (info.openFrom == kNone || open > info.openFrom + kUnseen) &&
                           info.openTo != kNone && open < info.openTo - kUnseen;
  const bool isClearlyOut = (info.openFrom != kNone && open < info.openFrom - kUnseen) ||
                            info.openTo == kNone || open > info.openTo + kUnseen;
  const bool isAccepted = IntegerOf(body, "OpenPriceOK") == 1;
  if (isAccepted ? isClearlyOut : isClearlyIn)
    ComplainByInfo(step.at, strategy.number,
                   fmt::format("the verdict {} on an open of {} isn't that of the bounds {} and {}",
                               isAccepted, open, info.openFrom, info.openTo));
}

void CAcceptedChecker::OnMomentEnd(LocalTime at) {
  for (const Bought& bought : m_bought) {
    if (!m_runs[bought.strategy].accepted.contains(bought.symbol))
      Complain(at, bought.symbol + " is bought and wasn't accepted in this run");
  }
  m_bought.clear();
}

}  // namespace iorder::testing
