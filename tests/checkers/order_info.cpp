#include "tests/checkers/order_info.h"

#include <charconv>
#include <cmath>

#include "tests/checkers/trace_step.h"

namespace iorder::testing {
namespace {

constexpr double kNoDouble = 9.223372036854776e18;

bool IsSpelledWhole(const JsonNode& node) {
  return node.kind == JsonNode::Kind::kNumber && node.text.find_first_of(".eE") == std::string::npos;
}

int64_t Cut(double number) {
  if (!(std::abs(number) < 9.2e18)) return kNone;
  return static_cast<int64_t>(number);
}

/// A number as the order's reader takes it: a double goes through ten places first.
double NumberOf(const JsonNode& object, std::string_view name, double missing) {
  const JsonNode* const node = object.Find(name);
  if (node == nullptr || node->kind != JsonNode::Kind::kNumber) return missing;
  double number = 0;
  std::from_chars(node->text.data(), node->text.data() + node->text.size(), number);
  if (IsSpelledWhole(*node)) return number;
  return static_cast<double>(ScaledOf(number)) / 1e10;
}

int32_t IntOf(const JsonNode& object, std::string_view name, int32_t missing) {
  return static_cast<int32_t>(WholeOf(object, name, INT32_MIN, INT32_MAX).value_or(missing));
}

const JsonNode* BlockOf(const JsonNode& object, std::string_view name) {
  const JsonNode* const node = object.Find(name);
  return node != nullptr && node->IsObject() ? node : nullptr;
}

void ReadClose(const JsonNode& object, std::string_view name, std::string& type, int64_t& ticks) {
  const JsonNode* const block = BlockOf(object, name);
  if (block == nullptr) return;
  type = TextOf(*block, "OrderType");
  ticks = IntOf(*block, "LimitTicks", 0);
}

}  // namespace

Scaled ScaledOf(double number) {
  return Cut(number * 10000000000.0 + (number > 0 ? 0.05 : -0.05));
}

std::optional<int64_t> WholeOf(const JsonNode& object, std::string_view name, int64_t least, int64_t most) {
  const JsonNode* const node = object.Find(name);
  if (node == nullptr || !IsSpelledWhole(*node)) return std::nullopt;
  int64_t number = 0;
  const char* const end = node->text.data() + node->text.size();
  const auto [stop, error] = std::from_chars(node->text.data(), end, number);
  if (error != std::errc() || stop != end || number < least || number > most) return std::nullopt;
  return number;
}

int32_t ActionOf(const JsonNode& command) {
  return IntOf(command, "Action", 0);
}

std::string KeyOf(const JsonNode& command) {
  return TextOf(command, "StrategyType") + "_" + TextOf(command, "StrategyID") + "_" +
         TextOf(command, "StrategySN");
}

std::string TagOf(const JsonNode& command) {
  const std::string tag = TextOf(command, "StrategyTag");
  const std::string id = TextOf(command, "StrategyID");
  return tag.empty() ? id.substr(0, id.find('#')) : tag;
}

void ReadOrderInfo(const JsonNode& command, OrderInfo& info) {
  info.key = KeyOf(command);
  info.tag = TagOf(command);
  info.broker = TextOf(command, "BrokerID");
  info.account = TextOf(command, "Account");
  info.userKey1 = TextOf(command, "UserKey1");
  info.userKey3 = TextOf(command, "UserKey3");
  info.cash = Cut(NumberOf(command, "Cash", kNoDouble));
  if (const JsonNode* const symbol = BlockOf(command, "Symbol")) info.chain = TextOf(*symbol, "Security");
  if (const JsonNode* const stop = BlockOf(command, "Stop")) {
    info.stopTime = WholeOf(*stop, "Time", INT64_MIN, INT64_MAX).value_or(kNone);
    info.stopCancels = IntOf(*stop, "Cancel", 0) == 1;
    info.stopCloses = IntOf(*stop, "ClosePos", 0) == 1;
    ReadClose(*stop, "CloasPosInfo", info.closeType, info.closeTicks);
  }
  ReadClose(command, "CloasPosInfoByProfit", info.profitCloseType, info.profitCloseTicks);
  if (const JsonNode* const condition = BlockOf(command, "Condition")) {
    if (const JsonNode* const open = BlockOf(*condition, "OpenPrice")) {
      info.openFrom = ScaledOf(NumberOf(*open, "Dn", 0.0));
      info.openTo = ScaledOf(NumberOf(*open, "Up", 0.0));
    }
  }
  if (const JsonNode* const price = BlockOf(command, "OrderPrice")) {
    info.calculates = IntOf(*price, "Type", 0) == 2;
    info.priceValue = NumberOf(*price, "Price", kNoDouble);
    info.price = ScaledOf(info.priceValue);
  }
}

}  // namespace iorder::testing
