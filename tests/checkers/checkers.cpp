#include "tests/checkers/checkers.h"

#include <algorithm>

#include "terminal/input_file.h"
#include "tests/checkers/accepted_checker.h"
#include "tests/checkers/account_checker.h"
#include "tests/checkers/batch_checker.h"
#include "tests/checkers/cancel_checker.h"
#include "tests/checkers/cycle_checker.h"
#include "tests/checkers/end_checker.h"
#include "tests/checkers/group_string_checker.h"
#include "tests/checkers/leg_checker.h"
#include "tests/checkers/limit_checker.h"
#include "tests/checkers/message_checker.h"
#include "tests/checkers/order_checker.h"
#include "tests/checkers/position_checker.h"
#include "tests/checkers/profit_checker.h"
#include "tests/checkers/report_checker.h"
#include "tests/checkers/state_checker.h"

namespace iorder::testing {
namespace {

constexpr std::string_view kLeaveOut = "checkers: leave out ";

/// Reports that answer by hand may tell a fill before its detail is there, and so may a service that is told
/// to.
bool FillsAreComplete(const Day& day) {
  return day.head.orders && day.head.orders->recFillLag == Milliseconds(0);
}

}  // namespace

std::set<std::string> RulesLeftOut(const std::string& dayPath) {
  std::set<std::string> rules;
  CLineReader reader(dayPath);
  std::string_view text;
  while (reader.Next(text)) {
    const size_t begin = text.find(kLeaveOut);
    if (begin == std::string_view::npos) continue;
    const std::string_view words = text.substr(begin + kLeaveOut.size());
    const std::string rule(words.substr(0, words.find(':')));
    const std::vector<std::string> known = CCheckers::Rules();
    if (std::find(known.begin(), known.end(), rule) == known.end())
      FailAt(reader.Place(), "'" + rule + "' is no rule of the checkers");
    rules.insert(rule);
  }
  return rules;
}

CCheckers::CCheckers(const Day& day, const std::set<std::string>& leftOut) : m_tape(day), m_groups(day) {
  m_checkers.push_back(std::make_unique<CMessageChecker>(m_violations));
  m_checkers.push_back(std::make_unique<COrderChecker>(m_book, m_violations));
  m_checkers.push_back(std::make_unique<CAccountChecker>(m_book, m_tape, m_violations));
  m_checkers.push_back(std::make_unique<CBatchChecker>(m_book, m_violations));
  m_checkers.push_back(std::make_unique<CAcceptedChecker>(m_book, m_tape, m_violations));
  m_checkers.push_back(std::make_unique<CCancelChecker>(m_violations));
  m_checkers.push_back(std::make_unique<CReportChecker>(m_violations));
  m_checkers.push_back(std::make_unique<CPositionChecker>(m_positions, FillsAreComplete(day), m_violations));
  m_checkers.push_back(
      std::make_unique<CProfitChecker>(m_book, m_positions, m_profits, m_tape, m_violations));
  m_checkers.push_back(std::make_unique<CLimitChecker>(m_book, m_positions, m_profits, m_violations));
  m_checkers.push_back(std::make_unique<CEndChecker>(m_book, m_violations));
  m_checkers.push_back(std::make_unique<CStateChecker>(m_book, m_violations));
  m_checkers.push_back(std::make_unique<CCycleChecker>(m_groups, m_violations));
  m_checkers.push_back(std::make_unique<CLegChecker>(m_groups, day, m_violations));
  m_checkers.push_back(std::make_unique<CGroupStringChecker>(m_groups, m_violations));
  std::erase_if(m_checkers, [&](const auto& checker) { return leftOut.contains(checker->Rule()); });
}

std::vector<std::string> CCheckers::Rules() {
  return {"messages", "orders", "accounts", "cash",   "accepted", "cancels", "reports", "positions",
          "profit",   "limits", "ends",     "states", "cycles",   "legs",    "strings"};
}

void CCheckers::OnStep(const TraceStep& step) {
  Reach(step.at);
  m_book.OnStep(step);
  m_groups.OnStep(step);
  for (const auto& checker : m_checkers) checker->OnStep(step);
  m_profits.OnStep(step);
  m_positions.OnStep(step);
}

void CCheckers::OnRead(const BusRead& read) {
  Reach(read.at);
  m_groups.OnRead(read);
}

void CCheckers::Reach(LocalTime at) {
  if (at == m_now) return;
  Finish();
  m_groups.OnMomentBegin(at);
  m_now = at;
}

const Violations& CCheckers::Finish() {
  m_groups.OnMomentEnd(m_now);
  for (const auto& checker : m_checkers) checker->OnMomentEnd(m_now);
  m_profits.OnMomentEnd();
  m_groups.Forget();
  std::erase_if(m_violations, [this](const Violation& violation) {
    const KnownStrategy* const strategy = m_book.Find(violation.byInfoOf);
    return strategy != nullptr && violation.at == m_now && strategy->changedAt == m_now;
  });
  return m_violations;
}

}  // namespace iorder::testing
