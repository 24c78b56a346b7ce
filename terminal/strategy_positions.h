#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "terminal/day.h"
#include "terminal/record_bus.h"

namespace iorder {

inline constexpr const wchar_t* kStrategyPosition = L"STRATEGY.POSITION";

/// The record "STRATEGY.POSITION" as the fills of group orders make it: one node per strategy, one item per
/// symbol, with "Symbol", "Quantity" (lots, never below 0), "Side" (1 bought, 2 sold) and the figures of the
/// option times its signed lots, those in money times the contract weight as well. A figure that the option
/// doesn't have, or that doesn't fit, is absent. A symbol that has become flat stays, with no lots.
///
/// Any thread may call. The lock is held while the record changes, so that no older figure comes behind a
/// newer one; nothing is fired under it.
class CStrategyPositions {
 public:
  CStrategyPositions(IRuntime& runtime, CEmbeddedBus& bus)
      : m_bus(bus), m_section(runtime, "strategy positions") {}

  /// Lots that were bought; below 0: sold. No more are held than 32 bits tell. Fires the record's update,
  /// with the strategy as payload.
  void Fill(const std::wstring& strategy, const std::wstring& symbol, int64_t lots);
  /// A line of the day says what the strategy holds from now on. What it names of an item stays as it is
  /// until that changes. Fires nothing.
  void Set(const PositionAction& position);

 private:
  struct Holding {
    int64_t lots = 0;     ///< below 0: sold
    bool isSold = false;  ///< of no lots: as they were last
  };
  /// What is known of an option by now.
  struct Option {
    std::map<std::wstring, Value, std::less<>> fields;  ///< of its figures
    int64_t contractWeight = 1;
  };
  using Holdings = std::map<std::wstring, Holding>;  ///< by symbol

  void Watch(const std::wstring& symbol);
  void OnFigures(const std::wstring& symbol);
  RecordChange TakeItem(const RecordChange& given, Holdings& holdings);
  void Write(const std::wstring& strategy, const std::wstring& symbol, std::vector<FieldChange> fields)
      IORDER_REQUIRES(m_section);
  Option OptionOf(const std::wstring& symbol);
  static std::vector<FieldChange> FiguresOf(const Option& option, int64_t lots);

  CEmbeddedBus& m_bus;
  CCriticalSection m_section;
  std::map<std::wstring, Holdings> m_holdings IORDER_GUARDED_BY(m_section);  ///< by strategy
};

}  // namespace iorder
