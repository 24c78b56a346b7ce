#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "terminal/json_line.h"

namespace iorder::testing {

/// 10 decimal places in an integer.
using Scaled = int64_t;
inline constexpr Scaled kNone = INT64_MIN;
inline constexpr long double kUnit = 1e10L;

/// What an order command says, as far as the rules of the checkers go by it.
struct OrderInfo {
  std::string key;  ///< TYPE_ID_SN
  std::string tag;
  std::string broker;
  std::string account;
  std::string userKey1;
  std::string userKey3;
  std::string chain;
  Scaled openFrom = kNone;  ///< bounds of an accepted opening price
  Scaled openTo = kNone;
  int64_t cash = kNone;
  bool calculates = false;  ///< prices are worked out, and `price` doesn't count
  Scaled price = kNone;
  double priceValue = 0;  ///< the same as the double that it is read as
  int64_t stopTime = kNone;
  bool stopCancels = false;
  bool stopCloses = false;
  std::string closeType = "MWP";
  int64_t closeTicks = 0;
  std::string profitCloseType = "MWP";
  int64_t profitCloseTicks = 0;
};

/// Takes a command in: what stands in a block that it doesn't have stays as it was.
void ReadOrderInfo(const JsonNode& command, OrderInfo& info);

/// "Action" of a command: 0 if it isn't a 32-bit integer.
int32_t ActionOf(const JsonNode& command);
/// The key that a command names.
std::string KeyOf(const JsonNode& command);
std::string TagOf(const JsonNode& command);

/// The integer that a number is read as; none for another kind and for a number with a point.
std::optional<int64_t> WholeOf(const JsonNode& object, std::string_view name, int64_t least, int64_t most);

/// A decimal as 10 places, with the term that takes up what the multiplication lost.
Scaled ScaledOf(double number);

}  // namespace iorder::testing
