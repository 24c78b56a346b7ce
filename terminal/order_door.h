#pragma once

#include <string>
#include <vector>

#include "terminal/accounts_record.h"
#include "terminal/answer_draws.h"
#include "terminal/order_list.h"
#include "terminal/order_request.h"
#include "terminal/order_rules.h"
#include "terminal/record_bus.h"
#include "terminal/tick_ladder.h"

namespace iorder {

/// An order at the door of the market.
struct Arrival {
  SentOrderPtr sent;
  OrderRequest request;
  CTickLadder ladder;
  std::wstring refusal;  ///< why the market doesn't take it; "" if it does
};

/// Says which orders the market takes. Any thread may call.
class COrderDoor {
 public:
  COrderDoor(CEmbeddedBus& bus, CAccountsRecord& accounts, const OrderRules& rules, const CAnswerDraws& draws)
      : m_bus(bus), m_accounts(accounts), m_rules(rules), m_draws(draws) {}

  /// Orders that come together. A group whose GROUPTYPE isn't 0 is taken whole or not at all.
  std::vector<Arrival> Receive(const std::vector<SentOrderPtr>& together);

 private:
  std::wstring RefusalOf(const SentOrder& sent, const OrderRequest& request);

  CEmbeddedBus& m_bus;
  CAccountsRecord& m_accounts;
  const OrderRules m_rules;
  const CAnswerDraws m_draws;
};

}  // namespace iorder
