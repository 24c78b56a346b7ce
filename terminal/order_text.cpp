#include "terminal/order_text.h"

namespace iorder {

OrderFields ParseOrderText(std::wstring_view text) {
  OrderFields fields;
  while (!text.empty()) {
    const size_t comma = text.find(L',');
    const std::wstring_view piece = text.substr(0, comma);
    const size_t equals = piece.find(L'=');
    if (equals != std::wstring_view::npos) {
      fields.emplace(piece.substr(0, equals), piece.substr(equals + 1));
    }
    text.remove_prefix(comma == std::wstring_view::npos ? text.size() : comma + 1);
  }
  return fields;
}

std::wstring OrderField(const OrderFields& fields, std::wstring_view key) {
  const auto found = fields.find(key);
  return found != fields.end() ? found->second : std::wstring();
}

}  // namespace iorder
