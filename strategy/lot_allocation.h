#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "records/scaled_value.h"

namespace iorder {

/// A symbol's share of a batch.
struct CBatchSymbol {
  std::wstring strSymbol;
  std::optional<double>
      dbPrice;  ///< of one lot before the weight; none before the first pass, NoPrice: it gets no lot
  int64_t llCashOrder = 0;  ///< cost of one lot in money
  int32_t lQty = 0;         ///< lots
};

/// Gives out the lots of one batch: passes over the symbols in their order, a lot for each that fits into
/// what is left of `cash`, until a pass adds nothing or a hundred have run. A symbol is priced in the first
/// pass. One whose lot costs less than 1 ends the batch after its pass, with nothing left from there on.
/// Whatever doesn't fit is passed over, so a cheaper symbol can still take a lot. Returns the cash that is
/// left; -1 after a lot below 1. Pure but for what the two functions do: `priceOf` prices a symbol once,
/// `log` is told each refusal.
int64_t AllocateLots(std::vector<CBatchSymbol>& symbols, int64_t cash, double weight,
                     const std::function<double(const std::wstring& symbol)>& priceOf,
                     const std::function<void(const std::wstring& line)>& log);

}  // namespace iorder
