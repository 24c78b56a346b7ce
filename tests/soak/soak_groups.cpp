#include "tests/soak/soak_groups.h"

#include <fmt/format.h>

namespace iorder::testing {
namespace {

/// A few ids for all orders and positions; one is that of a strategy.
std::string DrawId(CDraw& draw) {
  return draw.Pick<std::string>({"G0", "G0", "G1", "G2", "G3", "S0"});
}

std::string DrawSign(CDraw& draw) {
  return draw.Chance(50) ? "-" : "";
}

/// The field of a sum, and a target that some lots reach, or none does.
std::string DrawTarget(CDraw& draw) {
  const std::string sign = DrawSign(draw);
  switch (draw.Between(0, 9)) {
    case 0:
      return fmt::format("Delta={}1000000", sign);
    case 1:
      return fmt::format("1%$Vanna={}{}", sign, draw.Between(1, 100000));
    case 2:
      return fmt::format("$Delta={}{}", sign, draw.Between(10000, 20000000));
    case 3:
      return fmt::format("Vega={}{}.5", sign, draw.Between(0, 60));
    case 4:
      return fmt::format("Theta={}{}", sign, draw.Between(1, 40));
    case 5:
      return draw.Pick<std::string>({"Delta=0", "Delta", "Nothing=5", "Gamma=0.05"});
    default:
      return fmt::format("Delta={}{}", sign, draw.Between(10, 900));
  }
}

std::string DrawCheck(CDraw& draw, int number) {
  const std::string condition = draw.Pick<std::string>({
      fmt::format("Vanna={}{}", DrawSign(draw), draw.Between(0, 3)),
      fmt::format("Delta={}{}", DrawSign(draw), draw.Between(0, 300)),
      fmt::format("Vega={}", draw.Between(0, 20)),
      "Gamma=0",
      "Nothing=1",
  });
  return fmt::format(R"(, "CheckCondition{}": "{}", "CheckRange{}": 0.{})", number, condition, number,
                     draw.Between(0, 9));
}

std::string DrawLeg(CDraw& draw) {
  const bool isCall = draw.Chance(50);
  const std::string condition = draw.Pick<std::string>({
      fmt::format("Delta={}0.{:02}", isCall ? "" : "-", draw.Between(5, 95)),
      fmt::format("Delta={}0.{:02}", isCall ? "" : "-", draw.Between(20, 60)),
      fmt::format("Vega={}", draw.Between(0, 12)),
      fmt::format("Gamma=0.000{}", draw.Between(1, 9)),
      fmt::format("1Pct$Vanna={}", draw.Between(-900, 900)),
      draw.Pick<std::string>({"Delta=0", "Nothing=0", "", "Nothing=3"}),
  });
  const std::string right =
      draw.Chance(96) ? (isCall ? "Call" : "Put") : draw.Pick<std::string>({"call", "", "Both"});
  const int64_t lots = draw.Chance(88) ? draw.Between(1, 6) : draw.Pick<int64_t>({0, -2, 40});
  return fmt::format(R"({{"CallPut": "{}", "Condition": "{}", "Qty": {}, "Group": "{}"}})", right, condition,
                     lots, draw.Pick<std::string>({"A", "A", "B", ""}));
}

}  // namespace

std::string DrawGroupOrder(CDraw& draw, const SoakPlan& plan) {
  const std::string month = draw.Chance(80) ? plan.month : draw.Pick<std::string>({"HOT", "HOT", "209912"});
  std::string legs;
  for (int64_t i = draw.Pick<int64_t>({1, 1, 2, 2, 3, 4, 4, 5}); i > 0; --i)
    legs += (legs.empty() ? "" : ", ") + DrawLeg(draw);
  std::string command = fmt::format(
      R"({{"StrategyType": "{}", "StrategyID": "{}", "StrategyName": "N{}", "BrokerID": "B1", "Account": "{}", "Security": "ND.O.TWF.{}.{}", "StopCondition": "{}")",
      draw.Pick<std::string>({"Group", "GroupOrder", ""}), DrawId(draw), draw.Between(0, 9),
      draw.Chance(92) ? "A1" : "A2", plan.product, month, DrawTarget(draw));
  if (draw.Chance(30)) command += draw.Pick<std::string>({R"(, "StopFactor": -1)", R"(, "StopFactor": 0.5)"});
  if (draw.Chance(45)) command += DrawCheck(draw, 1);
  if (draw.Chance(35)) command += DrawCheck(draw, 2);
  if (draw.Chance(30)) command += fmt::format(R"(, "Cash": {})", draw.Between(0, 5000));
  if (draw.Chance(60)) command += fmt::format(R"(, "GroupAType": {})", draw.Between(0, 2));
  if (draw.Chance(40)) command += fmt::format(R"(, "GroupBType": {})", draw.Between(0, 2));
  if (draw.Chance(30)) command += R"(, "UserKey1": "u1", "UserKey2": "u2", "UserKey3": "u3")";
  if (draw.Chance(30)) command += R"(, "ProcessID": "77")";
  return command + fmt::format(R"(, "Order": [{}]}})", legs);
}

std::string DrawGroupPosition(CDraw& draw, const std::vector<std::string>& options) {
  if (draw.Chance(10)) return fmt::format(R"("position": {{"strategy": "{}", "items": null}})", DrawId(draw));
  std::string items;
  const auto last = static_cast<int64_t>(options.size()) - 1;
  // Often of few options, so that one stands in several items.
  const int64_t first = draw.Chance(40) ? draw.Between(0, last - 1) : 0;
  const int64_t end = first == 0 ? last : first + 1;
  for (int64_t i = draw.Between(0, 6); i > 0; --i) {
    const auto option = static_cast<size_t>(draw.Between(first, end));
    items += fmt::format(R"({}{{"Symbol": "{}", "Quantity": {}, "Side": {}}})", items.empty() ? "" : ", ",
                         options[option], draw.Between(0, 9), draw.Between(1, 2));
  }
  return fmt::format(R"("position": {{"strategy": "{}", "items": [{}]}})", DrawId(draw), items);
}

std::string DrawChaseSettings(CDraw& draw, const SoakPlan& plan, const std::vector<std::string>& options) {
  const std::string chain = fmt::format("ND.O.TWF.{}", plan.product);
  const auto option = static_cast<size_t>(draw.Between(0, static_cast<int64_t>(options.size()) - 1));
  const std::string item = draw.Pick<std::string>(
      {"OPTION", "ALL", "ND.O", "ND.O.TWF", chain, chain + "." + plan.month, options[option], "FUTURE"});
  const std::string settings = draw.Pick<std::string>({
      fmt::format(R"({{\"On\":\"1\",\"Times\":\"{}\",\"TimeOut\":\"{}\",\"AddType\":\"1\",\"Ticks\":\"2\"}})",
                  draw.Between(0, 4), draw.Pick({0, 50, 100, 700, 3000})),
      fmt::format(R"({{\"On\":\"1\",\"Times\":\"{}\"}})", draw.Between(1, 3)),
      R"({\"On\":\"1\"})",
      R"({\"On\":\"0\",\"Times\":\"2\"})",
      R"({\"On\":1,\"Times\":\"2\"})",
      R"({\"Times\":\"2\",\"TimeOut\":\"200\"})",
      R"(5)",
      "",
  });
  return fmt::format(
      R"("record": "TRADE.EXTENDORDER.SETUP", "items": [{{"name": "{}", "fields": {{"{}": "{}"}}}}])", item,
      draw.Pick<std::string>({"1-ALL", "1-ALL", "1-B1-A1", "1-B1-A2", "2-ALL"}), settings);
}

std::string DrawFigures(CDraw& draw, const std::string& option) {
  const bool isCall = option.find(".C.") != std::string::npos;
  std::string fields = R"("MCODE": 1)";
  const auto add = [&](const char* name, const std::string& value) {
    if (draw.Chance(94)) fields += fmt::format(R"(, "{}": {{"scaled": {}}})", name, value);
  };
  add("Delta", fmt::format("{}{}.{}", isCall ? "" : "-", draw.Between(0, 99), draw.Between(0, 9)));
  add("Gamma", fmt::format("0.000{}", draw.Between(0, 9)));
  add("Vega", fmt::format("{}.{}", draw.Between(0, 14), draw.Between(0, 9)));
  add("Theta", fmt::format("-{}.{}", draw.Between(0, 9), draw.Between(0, 9)));
  add("Vanna", fmt::format("{}0.{}", DrawSign(draw), draw.Between(0, 9)));
  add("$Delta", fmt::format("{}", draw.Between(-20000, 20000)));
  add("1Pct$Vanna", fmt::format("{}", draw.Between(-900, 900)));
  return fmt::format(R"("record": "OPT.REAL.{}", "fields": {{{}}}, "fire": true)", option, fields);
}

std::string ReplaySpeed(int64_t speed) {
  return fmt::format(R"("record": "NordoSystemTime", "fields": {{"Speed": {}}}, "fire": true)", speed);
}

std::string DrawChildChange(CDraw& draw, size_t order) {
  std::string child =
      fmt::format(R"("order": {}, "ExecType": {})", order, draw.Pick({0, 1, 2, 3, 5, 7, 8, 8, 10}));
  child += draw.Pick<std::string>({"", R"(, "ClientModify": 0)", R"(, "ClientModify": 1)"});
  if (draw.Chance(15)) child += R"(, "announce": true, "topic": "TRADE.HOT.MONTH")";
  return fmt::format(R"("child": {{{}}})", child);
}

std::string DrawChildRules(CDraw& draw) {
  std::string rules;
  const auto share = [&](const char* name, int64_t most) {
    if (draw.Chance(22)) rules += fmt::format(R"(, "{}": 0.{:02})", name, draw.Between(1, most));
  };
  share("failed_child", 30);
  share("lost_child", 40);
  share("late_child", 50);
  share("lost_end", 30);
  if (draw.Chance(15)) rules += R"(, "chase": false)";
  return rules;
}

}  // namespace iorder::testing
