#include "terminal/quote_words.h"

#include "terminal/quote_update.h"

namespace iorder {

std::span<const QuoteWord> QuoteWords() {
  static constexpr QuoteWord kWords[] = {
      {"time", QuoteWordKind::kInteger, feed_field::kTime},
      {"date", QuoteWordKind::kInteger, feed_field::kDate},
      {"price", QuoteWordKind::kDecimal, feed_field::kPrice},
      {"open", QuoteWordKind::kDecimal, feed_field::kOpen},
      {"qty", QuoteWordKind::kInteger, feed_field::kQuantity},
      {"volume", QuoteWordKind::kInteger, feed_field::kVolume},
      {"R", QuoteWordKind::kDecimal, feed_field::kPriceR},
      {"P", QuoteWordKind::kDecimal, feed_field::kPriceP},
      {"Y", QuoteWordKind::kDecimal, feed_field::kPriceY},
      {"end_date", QuoteWordKind::kInteger, feed_field::kEndDate},
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
