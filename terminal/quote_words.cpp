#include "terminal/quote_words.h"

#include "terminal/quote_update.h"

namespace iorder {

std::span<const QuoteWord> QuoteWords() {
  static constexpr QuoteWord kWords[] = {
      {"time", QuoteWordKind::kInteger, quote_field::kTime},
      {"date", QuoteWordKind::kInteger, quote_field::kDate},
      {"price", QuoteWordKind::kDecimal, quote_field::kPrice},
      {"open", QuoteWordKind::kDecimal, quote_field::kOpen},
      {"qty", QuoteWordKind::kInteger, quote_field::kQuantity},
      {"volume", QuoteWordKind::kInteger, quote_field::kVolume},
      {"R", QuoteWordKind::kDecimal, quote_field::kPriceR},
      {"P", QuoteWordKind::kDecimal, quote_field::kPriceP},
      {"Y", QuoteWordKind::kDecimal, quote_field::kPriceY},
      {"end_date", QuoteWordKind::kInteger, quote_field::kEndDate},
      {"mcode", QuoteWordKind::kMcode, 0},
      {"time_format", QuoteWordKind::kTimeFormat, 0},
      {"bid", QuoteWordKind::kBid, 0},
      {"ask", QuoteWordKind::kAsk, 0},
      {"bid_qty", QuoteWordKind::kBidQuantity, 0},
      {"ask_qty", QuoteWordKind::kAskQuantity, 0},
  };
  return kWords;
}

}  // namespace iorder
