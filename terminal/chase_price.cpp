#include "terminal/chase_price.h"

#include <algorithm>
#include <limits>

#include "records/number_text.h"

namespace iorder {
namespace {

/// Takes the piece in front of the next bar off `text`.
std::wstring_view TakePiece(std::wstring_view& text) {
  const size_t bar = std::min(text.find(L'|'), text.size());
  const std::wstring_view piece = text.substr(0, bar);
  text.remove_prefix(std::min(bar + 1, text.size()));
  return piece;
}

/// A whole number from 0 to the largest 32-bit one; none for any other text.
std::optional<int32_t> WholeNumber(std::wstring_view text) {
  const bool isNumber = !text.empty() && text.find_first_not_of(L"0123456789") == std::wstring_view::npos;
  const int64_t number = LeadingInt64(text);
  return isNumber && number <= std::numeric_limits<int32_t>::max()
             ? std::optional(static_cast<int32_t>(number))
             : std::nullopt;
}

}  // namespace

std::optional<ChasePrice> ParseChasePrice(std::wstring_view text) {
  const bool beginsWell = TakePiece(text) == L"0";
  const std::optional<int32_t> times = WholeNumber(TakePiece(text));
  const std::optional<int32_t> timeout = WholeNumber(TakePiece(text));
  if (!beginsWell || !times || !timeout || text != L"C|2") return std::nullopt;
  return ChasePrice{*times, Milliseconds(*timeout)};
}

ScaledValue CChase::LimitIn(const COrderBook& book) const {
  if (m_steps > m_price.times || m_price.timeout.count() == 0) return NoValue;
  const bool isBuy = m_side == OrderSide::kBuy;
  const ScaledValue own = isBuy ? book.Bid() : book.Ask();
  const ScaledValue other = isBuy ? book.Ask() : book.Bid();
  const ScaledValue from = own != NoValue ? own : book.Last();
  if (from == NoValue) return NoValue;
  const ScaledValue limit = m_ladder.Step(from, isBuy ? m_steps : -m_steps);
  if (other == NoValue) return limit;
  return isBuy ? std::min(limit, other) : std::max(limit, other);
}

}  // namespace iorder
