#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace iorder {

/// What a word of a quote stands for.
enum class QuoteWordKind {
  kInteger,     ///< a numeric field, a whole number
  kDecimal,     ///< a numeric field, a decimal made a ScaledValue
  kMcode,       ///< the field "MCODE"
  kTimeFormat,  ///< the field "TradeTimeFormat"
  kBid,
  kAsk,
  kBidQuantity,
  kAskQuantity,
};

struct QuoteWord {
  std::string_view word;
  QuoteWordKind kind;
  int32_t field;  ///< numeric field id of the first two kinds
};

/// The words that say what a quote is to hold, the same in a line and as a column of a table.
std::span<const QuoteWord> QuoteWords();

}  // namespace iorder
