#include "tests/soak/soak_orders.h"

#include <fmt/format.h>

namespace iorder::testing {
namespace {

std::string TagOf(int strategy) {
  return strategy % 2 == 0 ? "T" : fmt::format("U{}", strategy / 4);
}

std::string Identity(int strategy) {
  return fmt::format(
      R"("StrategyType": "OpenLottery", "StrategyID": "S{}", "StrategySN": "1", "StrategyTag": "{}")",
      strategy, TagOf(strategy));
}

std::string DrawClose(CDraw& draw, const char* name) {
  if (draw.Chance(25)) return "";
  const std::string type = draw.Pick<std::string>({"MWP", "M", "L", "L", ""});
  return fmt::format(R"(, "{}": {{"OrderType": "{}", "LimitTicks": {}}})", name, type, draw.Between(-3, 5));
}

std::string DrawStrikes(CDraw& draw) {
  if (draw.Chance(50)) return R"({"In": -1, "Out": -1})";
  if (draw.Chance(50))
    return fmt::format(R"({{"In": {}, "Out": {}}})", draw.Between(-1, 3), draw.Between(-1, 6));
  return fmt::format(
      R"({{"IsATM": {}, "IsITM": {}, "ITM_D": 1, "ITM_U": {}, "IsOTM": {}, "OTM_D": {}, "OTM_U": 3}})",
      draw.Between(0, 1), draw.Between(0, 1), draw.Between(0, 2), draw.Between(0, 1), draw.Between(0, 2));
}

std::string DrawCalculated(CDraw& draw) {
  std::string price =
      fmt::format(R"("Type": 2, "PriceType": "{}", "Volatility": {}, "RF": {}, "DY": 0, "TDays": 250)",
                  draw.Pick<std::string>({"O", "L", "R", "P", "Y", "L"}),
                  draw.Pick<std::string>({"20", "15.5", "25", "-1"}), draw.Between(0, 3));
  price += draw.Chance(50) ? fmt::format(R"(, "UnderlyingChange": {})", draw.Between(0, 80))
                           : fmt::format(R"(, "UnderlyingChange%": 0.{})", draw.Between(0, 9));
  if (draw.Chance(80)) price += fmt::format(R"(, "PriceDn": {})", draw.Between(0, 10));
  if (draw.Chance(60)) price += fmt::format(R"(, "PriceUp": {})", draw.Between(50, 400));
  return "{" + price + fmt::format(R"(, "EndDate": "{}"}})", draw.Pick<std::string>({"C", "T"}));
}

std::string DrawPrice(CDraw& draw) {
  if (draw.Chance(35)) return DrawCalculated(draw);
  const std::string price = draw.Chance(85)
                                ? fmt::format("{}.{}", draw.Between(1, 120), draw.Between(0, 9))
                                : draw.Pick<std::string>({"0.004", "0", "3", "1000000", "7.25", "-2"});
  return fmt::format(R"({{"Type": 0, "Price": {}}})", price);
}

}  // namespace

int64_t MinuteOfDay(int64_t behindOpen) {
  const int64_t minute = 8 * 60 + 45 + behindOpen;
  return minute / 60 * 100 + minute % 60;
}

std::string DrawStart(CDraw& draw, const SoakPlan& plan, int strategy, bool run, int action) {
  const std::string chain = fmt::format("ND.O.TWF.{}.{}", plan.product, draw.Chance(50) ? plan.month : "HOT");
  const int64_t start = run ? 0 : draw.Between(1, plan.minutes / 2);
  const int64_t stop = draw.Chance(70) ? draw.Between(start + 1, plan.minutes) : 290;
  const std::string days = draw.Chance(90) ? "[1, 2, 3]" : "[1, 3]";
  return fmt::format(
      R"({{{}, "Action": {}, "BrokerID": "B1", "Account": "{}", "UserKey1": "{}", "Symbol": {{"Security": "{}", "CP": "{}"}}, )"
      R"("Start": {{"Time": {}, "Run": {}, "DayOfWeek": {}}}, )"
      R"("Stop": {{"Enable": {}, "Time": {}, "Cancel": {}, "ClosePos": {}{}}}{}, "Cash": {}, )"
      R"("Condition": {{"OpenPrice": {{"Dn": {}, "Up": {}}}, "StrikePrice": {}}}, "OrderPrice": {}}})",
      Identity(strategy), action, draw.Chance(90) ? "A1" : "A2", draw.Chance(20) ? "key" : "", chain,
      draw.Pick<std::string>({"C", "P"}), MinuteOfDay(start), run ? 1 : 0, days, draw.Between(0, 1),
      MinuteOfDay(stop), draw.Chance(60) ? 1 : 0, draw.Chance(65) ? 1 : 0, DrawClose(draw, "CloasPosInfo"),
      DrawClose(draw, "CloasPosInfoByProfit"),
      draw.Pick<std::string>(
          {"0", "400", "1000.75", "5000", "20000", "50000", "100000", "300000", "2000000", "100000000"}),
      draw.Between(0, 20), draw.Between(20, 400), DrawStrikes(draw), DrawPrice(draw));
}

std::string DrawLimits(CDraw& draw, int strategies) {
  const auto side = [&draw](const char* name) {
    std::string members = fmt::format(R"("Enable": {})", draw.Chance(85) ? 1 : 0);
    if (draw.Chance(60)) members += fmt::format(R"(, "Value": {})", draw.Between(1, 4000));
    if (draw.Chance(50))
      members += fmt::format(R"(, "Value%": {}.{})", draw.Between(0, 30), draw.Between(0, 99));
    return fmt::format(R"(, "{}": {{{}}})", name, members);
  };
  std::string limits =
      fmt::format(R"({{"StrategyType": "OpenLottery", "StrategyID": "L", "StrategyTag": "{}", "Action": 3)",
                  TagOf(static_cast<int>(draw.Between(0, strategies))));
  if (draw.Chance(80)) limits += side("Profit");
  if (draw.Chance(80)) limits += side("Loss");
  return limits + "}";
}

std::string DrawStop(CDraw& draw, int strategy) {
  const std::string flags = draw.Chance(10) ? ""
                                            : fmt::format(R"(, "ManuStop": {{"Cancel": {}, "ClosePos": {}}})",
                                                          draw.Chance(60) ? 1 : 0, draw.Chance(65) ? 1 : 0);
  return fmt::format(R"({{{}, "Action": 0{}}})", Identity(strategy), flags);
}

std::string DrawOdd(CDraw& draw, const SoakPlan& plan) {
  const auto strategy = static_cast<int>(draw.Between(0, plan.strategies - 1));
  switch (draw.Between(0, 6)) {
    case 0:
      return DrawStart(draw, plan, strategy, true);
    case 1:
      return fmt::format(R"({{{}, "Action": 2}})", Identity(strategy));
    case 2:
      return DrawStart(draw, plan, strategy, draw.Chance(70), 4);
    case 3:
      return fmt::format(R"({{{}, "Action": {}}})", Identity(99),
                         draw.Pick<std::string>({"0", "2", "\"1\""}));
    case 4:
      return DrawStop(draw, 99);
    case 5:
      return R"("no command")";
    default:
      return DrawStart(draw, plan, plan.strategies + 1, true);
  }
}

std::string DrawOrderRules(CDraw& draw, int64_t mostLate, const std::string& more) {
  std::string rules =
      fmt::format(R"("latency_ms": {}, "fill": "{}", "partial": {})", draw.Pick({0, 1, 10, 20, 150, 2000}),
                  draw.Pick<std::string>({"touch", "touch", "touch", "immediate", "through", "none"}),
                  draw.Pick<std::string>({"1", "1", "0.5", "0.2", "0"}));
  if (draw.Chance(25)) rules += R"(, "reject": 0.)" + std::to_string(draw.Between(1, 4));
  if (draw.Chance(25)) rules += fmt::format(R"(, "late_ms": {})", draw.Between(1, mostLate));
  if (draw.Chance(15)) rules += R"(, "out_of_order": true)";
  if (draw.Chance(25)) rules += R"(, "repeat": 0.)" + std::to_string(draw.Between(1, 6));
  if (draw.Chance(20)) rules += R"(, "lost_ack": 0.)" + std::to_string(draw.Between(1, 5));
  if (draw.Chance(25)) rules += fmt::format(R"(, "rec_fill_lag_ms": {})", draw.Between(1, 500));
  return "{" + rules + more + "}";
}

}  // namespace iorder::testing
