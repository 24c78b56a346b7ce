#pragma once

#include <rapidjson/document.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "grouporder/group_order_book.h"
#include "grouporder/group_order_host.h"
#include "grouporder/group_order_watch.h"
#include "grouporder/trigger_evaluation.h"

namespace iorder {

/// The conditional group orders of an engine. A command becomes an order; each of its cycles looks at the
/// option chain and sends order strings; the host answers with a child order for each; when the last child
/// has ended, a timer brings the order back to its stop condition, and from there to the next cycle or to
/// its end. No error goes back to the sender in any case.
///
/// Operations come on the threads that they name, several at a time. An order is worked on by one of them;
/// the book's locks and that of an order's children are held only for a look-up, and nothing is called under
/// them.
class CGroupOrders {
 public:
  /// `host` must outlive it.
  explicit CGroupOrders(IGroupOrderHost& host) : m_host(host), m_book(host.GetWorld().runtime) {}

  /// Before the first command; none: nobody watches.
  void SetWatch(IGroupOrderWatch* watch) { m_watch = watch; }

  /// Accepts a command: the whole first cycle runs here, on the thread of commands.
  void ParseGroupOrder(const rapidjson::Value& command);
  /// Lets an accepted order wait for its option records. No command leads here: the first cycle of each runs
  /// without waiting.
  void AddPending(const GroupOrderPtr& order) { m_book.AddPending(order); }
  /// Sends the orders that waited for their option records; on the watch thread.
  void PassPendingOrders();
  /// Follows a child order that the host announces by its record's handle; on a host thread.
  void RegisterChildOrder(int32_t handle);
  /// A child order has changed; on a bus thread. Any record may come, and one that is no child's finds no
  /// order.
  void OnChildOrderUpdate(CBaseData& source);
  /// The re-check timer of an order has fired and is killed; on the timer's own thread.
  void OnOrderRecheck(int32_t timerId);

  /// Closes the handles of all children: no update comes any more.
  void CloseChildren();

 private:
  /// True if the order has come to its end.
  bool IsDone(stcIntlgntOrd& order);
  /// Subscribes every record that a leg may look at. True if the first cycle needn't wait for them: always.
  bool SubscribeChain(stcIntlgntOrd& order);
  bool AreRecordsReady(const stcIntlgntOrd& order);
  /// One cycle: looks at the chain and sends. The order is entered, or let go.
  void SubmitGroupOrder(const GroupOrderPtr& order, const CBandChecks& checks);
  void NameGroups(stcIntlgntOrd& order);
  void Enter(const GroupOrderPtr& order);
  /// False if its record is gone: it can't hold the order back then.
  bool FollowChild(stcIntlgntOrd& order, const std::wstring& levelKey, int32_t handle);
  void ScheduleRecheck(const GroupOrderPtr& order);
  int32_t RecheckDelay();
  void TellEnd(const stcIntlgntOrd& order, GroupOrderEnd end);

  IGroupOrderHost& m_host;
  CGroupOrderBook m_book;
  std::atomic<int64_t> m_llLastNumber{0};
  IGroupOrderWatch* m_watch = nullptr;
};

}  // namespace iorder
