#include "app/position_reader.h"

#include "app/text_fields.h"
#include "records/int128.h"
#include "records/json_document.h"

namespace iorder {
namespace {

/// What the fills between two averages cost on average, to six places: the averages themselves are cut.
ScaledValue PriceBetween(int64_t lotsBefore, ScaledValue averageBefore, int64_t lots, ScaledValue average) {
  constexpr Int128 kStep = 10'000;
  const Int128 sum = Int128{average} * lots - Int128{averageBefore} * lotsBefore;
  const Int128 price = sum / (lots - lotsBefore);
  return static_cast<ScaledValue>((price + kStep / 2) / kStep * kStep);
}

/// Of a decimal as the log spells it.
std::string WithoutTrailingZeros(std::string_view digits) {
  std::string text(digits);
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace

void CPositionReader::OnMessage(const std::string& strategy, const std::string& kind,
                                const rapidjson::Value& data) {
  if (kind == "Report") {
    OnReport(strategy, data);
  } else if (kind == "Profit") {
    const auto last = NumberOf(data, "Last");
    const auto profit = NumberOf(data, "PnL");
    if (last && profit)
      m_tell(PositionValued{strategy, LifeOf(strategy), TextOf(data, "Stamp"), TextOf(data, "Symbol"), *last,
                            *profit});
  }
}

void CPositionReader::OnReport(const std::string& strategy, const rapidjson::Value& data) {
  const auto held = IntegerOf(data, "Position");
  if (!held) return;
  const int64_t life = LifeOf(strategy);
  const std::string run = TextOf(data, "Stamp");
  const std::string symbol = TextOf(data, "Symbol");
  PositionChanged& known = m_positions
                               .try_emplace({strategy, life, run, symbol},
                                            PositionChanged{strategy, life, run, symbol, 0, {}, 0, {}, 0})
                               .first->second;
  PositionChanged now = known;
  now.held = *held;
  if (const auto bought = IntegerOf(data, "CumQty")) {
    now.bought = *bought;
    now.boughtAt = NumberOf(data, "AvgPrice");
  }
  if (const auto sold = IntegerOf(data, "CloseQty")) {
    now.sold = *sold;
    now.soldAt = NumberOf(data, "CloseAvgPrice");
  }
  if (now == known) return;
  known = now;
  m_tell(now);
}

void CPositionReader::OnClear(const std::string& strategy, const std::string& tag) {
  if (m_beginning.erase(strategy) == 0) return;
  const auto limit = m_limits.find(tag);
  if (limit != m_limits.end()) limit->second.isTold = false;
}

void CPositionReader::OnTotal(std::string_view json) {
  rapidjson::Document message;
  if (ParseJson(std::string(json), message) || TextOf(message, "MsgType") != "TotalProfit") return;
  const rapidjson::Value* const data = FindMember(message, "Data");
  if (data == nullptr) return;
  const auto cost = IntegerOf(*data, "Cost");
  const auto profit = NumberOf(*data, "PnL");
  if (cost && profit) m_tell(TagTotalChanged{TextOf(message, "StrategyTag"), *cost, *profit});
}

void CPositionReader::OnStrategyLog(const std::string& strategy, std::string_view text) {
  if (text.starts_with("OnReportUpdate. ")) {
    OnOrderReport(strategy, text);
  } else if (text.starts_with("Reset. ")) {
    m_ended.erase(strategy);
    m_beginning.insert(strategy);
  } else if (text == "Wait Reset.") {
    EndRun(strategy, "stop time");
  } else if (text == "Stop.") {
    EndRun(strategy, "stop command");
  }
}

void CPositionReader::OnGone(const std::string& strategy) {
  ++m_gone[strategy];
  m_ended.erase(strategy);
}

int64_t CPositionReader::LifeOf(const std::string& strategy) const {
  const auto gone = m_gone.find(strategy);
  return gone == m_gone.end() ? 1 : gone->second + 1;
}

void CPositionReader::OnOrderReport(const std::string& strategy, std::string_view text) {
  const auto lots = IntegerBetween(text, "lCumQty=", ",");
  const auto average = IntegerBetween(text, "llAvgPrice=", ",");
  const std::string report(Between(text, "strReportID=", ", lExecType=").value_or(""));
  if (!lots || !average || *average == NoValue) return;
  Fills& known = m_fills[{strategy, report}];
  if (*lots <= known.lots) return;
  OrderFilled fill;
  fill.strategy = strategy;
  fill.symbol = Between(text, "strSymbol=", ", strReportID=").value_or("");
  fill.report = report;
  fill.closes = IntegerBetween(text, "lAction=", ",") == 2;
  fill.lots = *lots - known.lots;
  fill.price = PriceBetween(known.lots, known.average, *lots, *average);
  fill.filled = *lots;
  fill.sent = IntegerBetween(text, "lSendQty=", ",").value_or(0);
  known = {*lots, *average};
  m_tell(fill);
}

void CPositionReader::OnLog(std::string_view text) {
  if (text.starts_with("GetStringFromSecurity. ")) {
    const auto symbol = Between(text, "strMapKey=", ":Weight, strResult=");
    const auto weight = IntegerBetween(text, ":Weight, strResult=", ".");
    if (symbol && weight) m_tell(WeightKnown{std::string(*symbol), *weight});
  } else if (text.starts_with("[OpenLottery] CalPositionProfit.ClosPos. ")) {
    const std::string id(Between(text, "strStrategyID=", ", strStrStrategyTag=").value_or(""));
    const std::string tag(Between(text, "strStrStrategyTag=", ", m_strStrStrategySN=").value_or(""));
    const std::string_view serial = Between(text, "m_strStrStrategySN=", "\n").value_or("");
    EndRun("OpenLottery_" + id + '_' + std::string(serial.substr(0, serial.rfind('.'))), LimitName(tag));
  } else if (text.starts_with("[OpenLottery] CalPositionProfit.")) {
    OnLimit(text);
  }
}

void CPositionReader::OnLimit(std::string_view text) {
  const std::string_view kind = Between(text, "CalPositionProfit.", ". ").value_or("");
  if (kind.empty() || (kind[0] != 'P' && kind[0] != 'L')) return;
  LimitReached limit;
  limit.tag = Between(text, "strStrategyTag=", ", dbTotalPnL").value_or("");
  limit.side = kind[0] == 'P' ? "profit" : "loss";
  limit.isPercent = kind.size() == 2;
  Limit& known = m_limits[limit.tag];
  // The engine says it again at each check.
  if (known.isTold && known.side == limit.side) return;
  known = {limit.side, true};
  limit.reached = WithoutTrailingZeros(
      Between(text, limit.isPercent ? "dbTotalPnLP=" : "dbTotalPnL=", ", ").value_or(""));
  const std::string_view value = text.substr(text.rfind('=') + 1);
  // The line ends with a full stop of its own.
  limit.limit = WithoutTrailingZeros(value.substr(0, value.size() - 1));
  m_tell(limit);
}

std::string CPositionReader::LimitName(const std::string& tag) const {
  const auto known = m_limits.find(tag);
  return known == m_limits.end() ? "limit" : known->second.side + " limit";
}

void CPositionReader::EndRun(const std::string& strategy, const std::string& reason) {
  if (m_ended.insert(strategy).second) m_tell(RunEnded{strategy, reason});
}

}  // namespace iorder
