#pragma once

#include <optional>

namespace iorder {

/// The volatility at which Black's model of 1976 gives an option on a future its price, in percent a year;
/// without interest. None for a price that the model can't give above a volatility of 0 (not above what
/// exercise brings, above all that it can). Rounded to four places, so that every machine's last bits give
/// the same.
std::optional<double> ImpliedVolatility(bool isCall, double strike, double future, double price,
                                        double years);

}  // namespace iorder
