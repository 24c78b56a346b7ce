#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "records/scaled_value.h"

namespace iorder {

/// A symbol as a trader says it: "ND.O.TWF.TX.202403.C.18000" is "TX Mar24 18000 call", "ND.F.TWF.TX.HOT" is
/// "TX hot month future". What doesn't follow the grammar stays as it is.
std::string SymbolWords(std::string_view symbol);

/// The decimal that a scaled value stands for, exactly and without trailing zeros; "none" for NoValue. A
/// field on a scale of its own has more places than ten.
std::string DecimalText(ScaledValue value, int places = 10);

/// A price or an average, to six places and without trailing zeros.
std::string PriceText(double price);
/// The same, or `none` for no price.
std::string PriceText(const std::optional<double>& price, const std::string& none);
/// Money, to two places.
std::string MoneyText(double money);

}  // namespace iorder
