#include "grouporder/leg_orders.h"

#include <algorithm>
#include <string_view>

#include "grouporder/group_order_string.h"
#include "records/wrapping.h"
#include "reference/symbol.h"

namespace iorder {

namespace {

constexpr int kTypePlace = 2;

struct Group {
  int32_t lType = 0;
  std::wstring_view id;
};

Group GroupOf(const stcIntlgntOrd& order, size_t leg) {
  if (order.strGroup[leg] == L"A") return {order.lGroupAType, order.strGroupAId};
  if (order.strGroup[leg] == L"B") return {order.lGroupBType, order.strGroupBId};
  return {};
}

/// Makes the strings of one leg.
class CLegWriter {
 public:
  CLegWriter(const stcIntlgntOrd& order, size_t leg, const std::wstring& chasePrice,
             std::vector<CLegOrder>& orders)
      : m_order(order), m_leg(leg), m_chasePrice(chasePrice), m_orders(orders) {}

  bool IsDone() const { return m_remaining <= 0; }

  /// A position on the leg's own side is left as it is.
  void Offset(const stcPosition& position) {
    if (position.lSide == m_order.lSide[m_leg] || position.lQuantity <= 0) return;
    Write(position.strSymbol, std::min(position.lQuantity, m_remaining), true);
  }

  void OpenRest() { Write(m_order.strLegSymbol[m_leg], m_remaining, false); }

 private:
  void Write(const std::wstring& symbol, int32_t quantity, bool bOffset) {
    m_remaining -= quantity;
    const Group group = IsDone() ? GroupOf(m_order, m_leg) : Group{};
    const CGroupOrderString string{
        .type = SymbolToken(m_order.strLegSymbol[m_leg], kTypePlace),
        .symbol = symbol,
        .lSide = m_order.lSide[m_leg],
        .lQty = quantity,
        .lGroupType = group.lType,
        .groupId = group.id,
    };
    m_orders.push_back({m_leg, bOffset, symbol, quantity, FormatGroupOrder(m_order, string, m_chasePrice)});
  }

  const stcIntlgntOrd& m_order;
  const size_t m_leg;
  const std::wstring& m_chasePrice;
  std::vector<CLegOrder>& m_orders;
  int32_t m_remaining = WrappedProduct(m_order.lMultiplier[m_leg], m_order.lQty[m_leg]);
};

void WriteLeg(CLegWriter& writer, const std::vector<stcPosition>& held, bool forwards) {
  for (size_t i = 0; i < held.size() && !writer.IsDone(); ++i) {
    writer.Offset(forwards ? held[i] : held[held.size() - 1 - i]);
  }
  if (!writer.IsDone()) writer.OpenRest();
}

}  // namespace

std::vector<CLegOrder> MakeLegOrders(const stcIntlgntOrd& order, const CLegScan& scan,
                                     const std::wstring& chasePrice) {
  std::vector<CLegOrder> orders;
  for (size_t leg = 0; leg < kLegs; ++leg) {
    if (order.strLegSymbol[leg].empty()) continue;
    CLegWriter writer(order, leg, chasePrice, orders);
    WriteLeg(writer, scan.Held(leg), leg % 2 == 0);
  }
  return orders;
}

}  // namespace iorder
