#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace iorder::testing {

inline constexpr size_t kLegCount = 4;
inline constexpr int32_t kRise = 1;
inline constexpr int32_t kFall = 2;
inline constexpr int32_t kBuy = 1;
inline constexpr int32_t kSell = 2;

/// What the command of a group order says, as far as the checkers go by it.
struct GroupCommand {
  struct Check {
    std::string field;  ///< empty: no check
    int64_t target = 0;
    double range = 0;
  };
  struct Leg {
    std::string right;  ///< "Call" or "Put"; anything else is never looked for
    std::string field;
    int64_t target = 0;  ///< as the bus spells the field
    int32_t lots = 0;
    std::string group;
  };

  std::string id;
  std::string name;
  std::string broker;
  std::string account;
  std::string chain;
  std::string userKeys[3];
  std::string stopField;
  double stopValue = 0;
  double stopFactor = 1;
  Check checks[2];
  double cash = 0;
  int32_t groupTypes[2] = {0, 0};  ///< of "A" and "B"
  std::array<Leg, kLegCount> legs;

  bool HasLeg(const std::string& right) const;
  /// 0 or 1 for a leg of group "A" or "B".
  std::optional<size_t> GroupOf(size_t leg) const;
};

/// None for a command of another kind, and for a text that isn't JSON.
std::optional<GroupCommand> ReadGroupCommand(const std::string& text);

}  // namespace iorder::testing
