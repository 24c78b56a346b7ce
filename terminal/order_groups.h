#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "terminal/order_list.h"

namespace iorder {

/// Whether the string asks for a child order.
bool IsGroupOrder(const SentOrder& order);

/// The orders of groups on their way to the market. The engine doesn't say how many strings a group has, but
/// sends them one behind the other at one moment: what has joined when the first one is due is the group;
/// what comes later is a group of its own. Any thread may call.
class COrderGroups {
 public:
  explicit COrderGroups(IRuntime& runtime) : m_section(runtime, "order groups") {}

  /// Puts an order to its group; one without a GROUPID is a group by itself. True if it is the first one
  /// there: who put it in takes the group out when it is due.
  bool Join(const SentOrderPtr& order);
  /// The orders of the order's group, in the order in which they were sent; the group is gone then.
  std::vector<SentOrderPtr> Take(const SentOrderPtr& order);

 private:
  CCriticalSection m_section;
  std::map<std::wstring, std::vector<SentOrderPtr>> m_groups IORDER_GUARDED_BY(m_section);  ///< by GROUPID
};

}  // namespace iorder
