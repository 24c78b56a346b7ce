#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "records/scaled_value.h"

namespace iorder {

/// One of the fields that the record of an option's figures holds, all of them 64-bit scaled values. "MCODE"
/// (32-bit) stands beside them: 1 while there are figures.
struct OptionFigureField {
  enum class Unit {
    kLevel,  ///< of the option alone: no sum over positions
    kLot,    ///< of one lot: a position has it times its signed quantity
    kMoney,  ///< the same, in money for a point worth 1: a position has it times the contract weight as well
  };

  std::wstring_view name;
  Unit unit = Unit::kLot;
  /// Decimal places that are told, so that the last bits of a machine's arithmetic don't show.
  int places = 0;
};

/// What the figures say, with F the forward, V the option's value in points and s its volatility, stands in
/// docs/day-files.md. Their order is that of OptionFigures.
inline constexpr std::array<OptionFigureField, 11> kOptionFigureFields = {{
    {L"ImpVol", OptionFigureField::Unit::kLevel, 4},      // s in percent a year
    {L"Delta", OptionFigureField::Unit::kLot, 6},         // dV/dF times 100
    {L"Gamma", OptionFigureField::Unit::kLot, 10},        // d2V/dF2
    {L"Vega", OptionFigureField::Unit::kLot, 6},          // of one percent more of s
    {L"Theta", OptionFigureField::Unit::kLot, 6},         // of one calendar day
    {L"Vanna", OptionFigureField::Unit::kLot, 8},         // dV/dF, of one percent more of s
    {L"$Delta", OptionFigureField::Unit::kMoney, 4},      // dV/dF F
    {L"1Pct$Gamma", OptionFigureField::Unit::kMoney, 4},  // of $Delta, F one percent higher
    {L"$Vega", OptionFigureField::Unit::kMoney, 6},       // as Vega
    {L"$Theta", OptionFigureField::Unit::kMoney, 6},      // as Theta
    {L"1Pct$Vanna", OptionFigureField::Unit::kMoney, 4},  // of $Delta, one percent more of s
}};

/// The figures of one option, in the order of kOptionFigureFields.
using OptionFigures = std::array<ScaledValue, kOptionFigureFields.size()>;

}  // namespace iorder
