#include "tests/checkers/group_cycle.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "tests/checkers/group_chase.h"

namespace iorder::testing {
namespace {

constexpr std::string_view kFigures = "OPT.REAL.";
/// What is held and lies nearer than this to no leg belongs to none.
constexpr int64_t kNearestLimit = 922337203685477580;

int64_t Around(uint64_t number) {
  return static_cast<int64_t>(number);
}

int64_t Distance(int64_t left, int64_t right) {
  const auto difference = static_cast<uint64_t>(left) - static_cast<uint64_t>(right);
  return Around(Around(difference) < 0 ? 0 - difference : difference);
}

struct Held {
  std::string symbol;
  int32_t lots = 0;
  int32_t side = 0;
};

class CCycleWorker {
 public:
  CCycleWorker(GroupOrder& order, const GroupLook& look)
      : m_order(order), m_command(order.command), m_look(look) {}

  WorkedCycle Work() {
    Stop();
    if (m_cycle.stops) return std::move(m_cycle);
    Check();
    LoadHeld();
    const size_t calls = CallCount();
    Choose("Call", 0, calls, m_calls);
    Choose("Put", calls, m_look.options.size(), m_puts);
    const auto last = std::find_if(m_order.symbols.rbegin(), m_order.symbols.rend(),
                                   [](const std::string& symbol) { return !symbol.empty(); });
    m_cycle.hasOption = last != m_order.symbols.rend();
    if (!m_cycle.hasOption) return std::move(m_cycle);
    m_cycle.chase = WorkOutChase(m_command, *last, m_look, m_cycle.mistakes);
    for (size_t leg = 0; leg < kLegCount; ++leg) Send(leg);
    return std::move(m_cycle);
  }

 private:
  /// The next walk over what is held. Without the record there is none, and nothing is held.
  PositionWalk NextWalk() {
    if (m_look.walks.empty()) return {};
    if (m_walk < m_look.walks.size() && m_look.walks[m_walk].strategy == m_command.id)
      return m_look.walks[m_walk++];
    m_cycle.mistakes.push_back("doesn't look at what it holds");
    return {};
  }

  Value Field(const PositionWalk::Item& item, const std::string& name) {
    const auto found = item.find(name);
    if (found != item.end()) return found->second;
    m_cycle.mistakes.push_back("doesn't read '" + name + "' of what it holds");
    return {};
  }

  void Stop() {
    const PositionWalk walk = NextWalk();
    const double target = m_command.stopValue;
    int32_t& direction = m_order.direction;
    const bool isNew = direction == 0;
    if (!walk.hasNode) {
      if (isNew) direction = target > 0 ? kRise : target < 0 ? kFall : 0;
      m_cycle.stops = isNew && direction == 0;
    } else {
      uint64_t sum = 0;
      for (const auto& item : walk.items) {
        const int64_t value = Int64Of(Field(item, m_command.stopField), INT64_MIN);
        if (value != INT64_MIN) sum += static_cast<uint64_t>(value);
      }
      const double value = static_cast<double>(Around(sum)) / 1e10 * m_command.stopFactor;
      if (isNew) direction = value < target ? kRise : value > target ? kFall : 0;
      m_cycle.stops = direction == kRise ? !(value < target) : direction == kFall ? !(value > target) : true;
    }
    if (isNew && direction == kRise) m_order.sides = {kBuy, kSell, kSell, kBuy};
    if (isNew && direction == kFall) m_order.sides = {kSell, kBuy, kBuy, kSell};
  }

  void Check() {
    if (m_command.checks[0].field.empty() && m_command.checks[1].field.empty()) return;
    const PositionWalk walk = NextWalk();
    std::vector<PositionWalk::Item> held;
    for (const auto& item : walk.items) {
      if (Int32Of(Field(item, "Quantity"), INT32_MIN) != 0) held.push_back(item);
    }
    if (held.empty()) return;
    bool isOut = false;
    bool isAbove[2] = {false, false};
    for (size_t i = 0; i < 2; ++i) {
      const GroupCommand::Check& check = m_command.checks[i];
      if (check.field.empty()) continue;
      uint64_t sum = 0;
      for (const auto& item : held)
        sum += static_cast<uint64_t>(Int64Of(Field(item, check.field), INT64_MIN));
      const double value = static_cast<double>(Around(sum)) / 1e10;
      const auto centre = static_cast<double>(check.target);
      const double half = (check.target != 0 ? std::abs(centre) : m_command.cash) * check.range;
      isOut |= value > centre + half || value < centre - half;
      isAbove[i] = value >= centre;
    }
    if (!isOut) return;
    const bool rises = m_order.direction == kRise;
    const size_t leg = !isAbove[0] && !isAbove[1]  ? (rises ? 0 : 1)
                       : !isAbove[0] && isAbove[1] ? (rises ? 2 : 3)
                       : isAbove[0] && isAbove[1]  ? (rises ? 1 : 0)
                                                   : (rises ? 3 : 2);
    m_cycle.multipliers[leg] = 2;
  }

  void LoadHeld() {
    for (const auto& item : NextWalk().items) {
      Held held{TextOf(Field(item, "Symbol")), static_cast<int32_t>(Int64Of(Field(item, "Quantity"), 0)),
                static_cast<int32_t>(Int64Of(Field(item, "Side"), 0))};
      const bool isCall = held.symbol.find(".C.") != std::string::npos;
      (isCall ? m_calls : m_puts).push_back(std::move(held));
    }
  }

  /// Of several items of a call the first counts. Of puts each one that is reached is used up, and the last
  /// of them counts; the walk passes over what moves up into a freed place.
  static std::optional<Held> Take(std::vector<Held>& all, const std::string& symbol, bool isCall) {
    std::optional<Held> taken;
    for (size_t i = 0; i < all.size() && !(isCall && taken); ++i) {
      if (all[i].symbol != symbol) continue;
      taken = all[i];
      all.erase(all.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return taken;
  }

  /// The calls come before the puts of the same strikes.
  size_t CallCount() const {
    if (!m_command.HasLeg("Call")) return 0;
    return m_command.HasLeg("Put") ? m_look.options.size() / 2 : m_look.options.size();
  }

  /// Among the options from `begin` to before `end`.
  void Choose(const std::string& right, size_t begin, size_t end, std::vector<Held>& positions) {
    std::array<int64_t, kLegCount> best{};
    best.fill(std::numeric_limits<int64_t>::max());
    for (size_t i = begin; i < end; ++i) {
      const OptionSeen& option = m_look.options[i];
      if (!option.opened) continue;
      const std::string symbol = option.record.substr(kFigures.size());
      const std::optional<Held> held = Take(positions, symbol, right == "Call");
      std::optional<size_t> nearest;
      int64_t nearestDistance = kNearestLimit;
      for (size_t leg = 0; leg < kLegCount; ++leg) {
        if (m_command.legs[leg].right != right) continue;
        const int64_t distance = DistanceOf(option, leg);
        if (held && distance < nearestDistance) {
          nearest = leg;
          nearestDistance = distance;
        }
        if (distance < best[leg]) {
          best[leg] = distance;
          m_order.symbols[leg] = symbol;
        }
      }
      if (nearest) m_held[*nearest].push_back(*held);
    }
  }

  int64_t DistanceOf(const OptionSeen& option, size_t leg) {
    const GroupCommand::Leg& wanted = m_command.legs[leg];
    const auto field = option.fields.find(wanted.field);
    if (field == option.fields.end()) {
      m_cycle.mistakes.push_back("doesn't read '" + wanted.field + "' of " + option.record);
      return std::numeric_limits<int64_t>::max();
    }
    return Distance(Int64Of(field->second, INT64_MIN), wanted.target);
  }

  void Send(size_t leg) {
    if (m_order.symbols[leg].empty()) return;
    const auto lots = static_cast<int64_t>(m_command.legs[leg].lots) * m_cycle.multipliers[leg];
    auto rest = static_cast<int32_t>(static_cast<uint32_t>(lots));
    std::vector<Held> held = m_held[leg];
    if (leg % 2 == 1) std::reverse(held.begin(), held.end());
    for (const Held& position : held) {
      if (rest <= 0) break;
      if (position.side == m_order.sides[leg] || position.lots <= 0) continue;
      const int32_t used = std::min(position.lots, rest);
      rest -= used;
      Add(leg, true, position.symbol, used, rest == 0);
    }
    if (rest > 0) Add(leg, false, m_order.symbols[leg], rest, true);
  }

  void Add(size_t leg, bool isOffset, const std::string& symbol, int32_t lots, bool isLast) {
    m_cycle.strings.push_back({leg, isOffset, symbol, m_order.sides[leg], lots,
                               isLast ? m_command.GroupOf(leg) : std::optional<size_t>()});
  }

  GroupOrder& m_order;
  const GroupCommand& m_command;
  const GroupLook& m_look;
  WorkedCycle m_cycle;
  size_t m_walk = 0;
  std::vector<Held> m_calls;
  std::vector<Held> m_puts;
  std::array<std::vector<Held>, kLegCount> m_held;
};

}  // namespace

WorkedCycle WorkOut(GroupOrder& order, const GroupLook& look) {
  return CCycleWorker(order, look).Work();
}

}  // namespace iorder::testing
