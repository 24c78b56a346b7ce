#include "tests/soak/coverage.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace iorder::testing {
namespace {

/// A kind is a log line of a strategy that begins so, or one of the engine that has such words.
struct Kind {
  const char* name;
  std::string_view begin;
  std::string_view has;
  bool isRare = false;  ///< so rare that a soak may be without it
};

constexpr Kind kStrategyKinds[] = {
    {"runs", "TimeStamp=", ""},
    {"options accepted", "UpdateStatus.", "\"OpenPriceOK\":1"},
    {"options rejected", "UpdateStatus.", "\"OpenPriceOK\":0"},
    {"batches", "DoPlaceOrder Done.", ""},
    {"prices worked out", "GetCalOrderPrice(c).", ""},
    {"lots that cost too much", "Check Cash Fail.", ""},
    {"buys of calls", "NewOrder. ", ".C."},
    {"buys of puts", "NewOrder. ", ".P."},
    {"orders refused for the account", "NewOrder Fail.", ""},
    {"sales at the market", "NewOrder. ", "TIMEINFORCE=2"},
    {"sales at the bid", "NewOrder. ", "PRICESTRING=BID"},
    {"cancels", "CancelOrder. ", ""},
    {"cancels refused for the account", "CancelOrder Fail.", ""},
    {"cancels confirmed, told", "OnReportUpdate.", "lExecType=8, "},
    {"fills of buys", "OnReportUpdate.", "lPositionEffect=0"},
    {"fills of sales", "OnReportUpdate.", "lPositionEffect=1"},
    {"partial fills", "OnReportUpdate.", "lExecType=6, "},
    {"whole fills", "OnReportUpdate.", "lExecType=3, "},
    {"rejections", "OnReportUpdate.", "lExecType=10, "},
    {"room made", "DoCancelOrderOpen. m_lStatus=2", ""},
    {"values", "OnPositionProfit Result.", ""},
    {"ends by the stop time", "Wait Reset.", ""},
    {"ends by a stop command", "Stop.", ""},
    {"ends by a limit", "DoClosePos. bByProfit=1, m_bDoClosePosByProfit=0", ""},
    {"limits that repeat", "DoClosePos. bByProfit=1, m_bDoClosePosByProfit=1", ""},
    // Its last report must not be a fill, which would begin the run anew.
    {"strategies that left", "Check DelStrategy.", "", true},
    {"strategies dropped", "DelStrategy.", ""},
};

constexpr Kind kEngineKinds[] = {
    {"profit limits, amount", "", "CalPositionProfit.P. "},
    {"profit limits, percent", "", "CalPositionProfit.PP. "},
    {"loss limits, amount", "", "CalPositionProfit.L. "},
    {"loss limits, percent", "", "CalPositionProfit.LP. "},
    {"commands", "", "New Intelligent Order : "},
    {"totals", "", "\"MsgType\":\"TotalProfit\""},
};

/// What the checkers' book of group orders counts.
constexpr const char* kGroupKinds[] = {
    "group orders",
    "group orders done at once",
    "group orders that another one replaces",
    "group orders without an option",
    "group targets reached",
    "group cycles, first",
    "group cycles, later",
    "group cycles that send nothing",
    "group cycles with a chase",
    "group legs doubled",
    "group looks held by a child",
    "group looks put off",
    "group looks at a replay speed",
    "group strings of a group",
    "group strings that offset",
    "group strings that open",
    "group children announced",
    "group children announced again",
    "group children announced otherwise",
    "group children that fail",
    "group children that end, 3",
    "group children that end, 5",
    "group children that end, 8",
    "group children that end, 10",
};

bool Is(const Kind& kind, std::string_view line) {
  return line.starts_with(kind.begin) && line.find(kind.has) != std::string_view::npos;
}

}  // namespace

CCoverage::CCoverage() {
  for (const Kind& kind : kStrategyKinds) m_counts[kind.name] = 0;
  for (const Kind& kind : kEngineKinds) m_counts[kind.name] = 0;
  for (const char* const kind : kGroupKinds) m_counts[kind] = 0;
}

void CCoverage::OnStep(const TraceStep& step) {
  if (!step.IsLog()) return;
  if (step.strategy != 0) {
    for (const Kind& kind : kStrategyKinds) {
      if (Is(kind, step.line)) ++m_counts[kind.name];
    }
    return;
  }
  for (const Kind& kind : kEngineKinds) {
    if (Is(kind, step.text)) ++m_counts[kind.name];
  }
}

void CCoverage::Add(const CCoverage& other) {
  for (const auto& [kind, count] : other.m_counts) m_counts[kind] += count;
}

std::string CCoverage::Table() const {
  std::string table;
  for (const auto& [kind, count] : m_counts) table += fmt::format("{:40}{:>12}\n", kind, count);
  return table;
}

std::string CCoverage::Missing() const {
  std::string missing;
  for (const auto& happened : m_counts) {
    const std::string& kind = happened.first;
    const bool isRare = std::any_of(std::begin(kStrategyKinds), std::end(kStrategyKinds),
                                    [&](const Kind& known) { return known.isRare && known.name == kind; });
    if (happened.second == 0 && !isRare) missing += " '" + kind + "'";
  }
  return missing;
}

}  // namespace iorder::testing
