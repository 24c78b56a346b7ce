#include "terminal/order_request.h"

#include <limits>

#include "records/number_text.h"

namespace iorder {
namespace {

constexpr int64_t kMarket = 1;
constexpr int64_t kWorkingPrice = 10;
constexpr int64_t kMarketWithProtection = 25;
constexpr int64_t kImmediateOrCancel = 2;

std::wstring ReadSide(const std::wstring& side, OrderRequest& request) {
  if (side != L"B" && side != L"1" && side != L"S" && side != L"2") {
    return L"side '" + side + L"' is neither B nor S";
  }
  request.side = side == L"B" || side == L"1" ? OrderSide::kBuy : OrderSide::kSell;
  return {};
}

std::wstring ReadQuantity(const std::wstring& text, OrderRequest& request) {
  request.quantity = LeadingInt64(text);
  const bool isGood = request.quantity >= 1 && request.quantity <= std::numeric_limits<int32_t>::max();
  return isGood ? std::wstring() : L"quantity '" + text + L"' isn't a number of lots";
}

std::wstring ReadPrice(const OrderFields& fields, OrderRequest& request) {
  if (request.isAtMarket) return {};
  if (const auto words = fields.find(L"PRICESTRING"); words != fields.end()) {
    request.words = ParsePriceWords(words->second);
    return request.words ? std::wstring() : L"price '" + words->second + L"' isn't understood";
  }
  const auto price = fields.find(L"PRICE");
  request.price = price != fields.end() && !price->second.empty() ? LeadingInt64(price->second) : NoValue;
  return request.price != NoValue ? std::wstring() : L"a limit order without a price";
}

std::wstring ReadChase(const OrderFields& fields, OrderRequest& request) {
  const std::wstring text = OrderField(fields, L"CHASEPRICE");
  request.isAtMarket = text.empty();
  if (text.empty()) return {};
  request.chase = ParseChasePrice(text);
  return request.chase ? std::wstring() : L"chase price '" + text + L"' isn't understood";
}

}  // namespace

OrderRequest ReadOrderRequest(const OrderFields& fields, bool chases) {
  const auto number = [&](const wchar_t* key) { return LeadingInt64(OrderField(fields, key)); };
  OrderRequest request;
  request.symbol = OrderField(fields, L"SYMBOL");
  const int64_t type = number(L"ORDERTYPE");
  const bool isAtWorkingPrice = type == kWorkingPrice;
  request.isAtMarket = type == kMarket || type == kMarketWithProtection || (isAtWorkingPrice && !chases);
  request.isImmediateOrCancel = number(L"TIMEINFORCE") == kImmediateOrCancel;
  request.mistake = ReadSide(OrderField(fields, L"SIDE"), request);
  if (request.mistake.empty()) request.mistake = ReadQuantity(OrderField(fields, L"QTY"), request);
  if (request.mistake.empty()) {
    request.mistake = isAtWorkingPrice && chases ? ReadChase(fields, request) : ReadPrice(fields, request);
  }
  return request;
}

}  // namespace iorder
