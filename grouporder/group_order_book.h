#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "grouporder/group_order.h"
#include "platform/critical_section.h"
#include "records/base_data.h"

namespace iorder {

using GroupOrderPtr = std::shared_ptr<stcIntlgntOrd>;

/// Where the group orders and their children stand: pending ones, those that have sent, the handles of their
/// children, and which timer will wake which order.
///
/// Any thread may call. Three locks, never held together, each only for the one look-up or change; handles
/// are closed by the caller, outside of them. An order stays alive for whoever is at work on it, also when
/// another has taken its place.
class CGroupOrderBook {
 public:
  using Handles = std::vector<std::unique_ptr<CBaseData>>;

  explicit CGroupOrderBook(IRuntime& runtime);

  // Orders that wait for their option records.
  void AddPending(const GroupOrderPtr& order);
  std::vector<GroupOrderPtr> TakePending();
  /// Takes out those at these indices, given in rising order, as far as they are there.
  void RemovePending(const std::vector<size_t>& indices);

  // Orders that have sent.
  /// Gives the order that had the same id before; none, or `order` itself, if no other loses its place.
  GroupOrderPtr Enter(const GroupOrderPtr& order);
  GroupOrderPtr Find(const std::wstring& strategyID);
  /// Takes out whichever order has that id, and gives it.
  GroupOrderPtr Remove(const std::wstring& strategyID);

  // Children.
  /// Takes note of a child that has no handle yet. False if it is known already.
  bool NoteChild(const std::wstring& levelKey);
  /// Keeps the handle of a noted child, and gives those of children that have ended, for closing.
  [[nodiscard]] Handles KeepChild(const std::wstring& levelKey, std::unique_ptr<CBaseData> record);
  /// Forgets the child. Its handle is put aside: it can't be closed inside its own event.
  void EndChild(const std::wstring& levelKey);

  // Re-check timers.
  struct CRecheck {
    int32_t lTimerId = 0;
    bool bNew = false;          ///< the id was given out just now
    GroupOrderPtr overwritten;  ///< another order that had that id: it will never wake
  };
  /// The timer that an order waits for: the one that it has, or a new one.
  CRecheck NoteRecheck(const GroupOrderPtr& order);
  /// Takes out the order that waits for a timer, or none.
  GroupOrderPtr TakeRecheck(int32_t timerId);

  /// Takes out every handle, for the end.
  [[nodiscard]] Handles TakeHandles();

 private:
  static constexpr int32_t kFirstTimerId = 3000;

  int32_t NextTimerId() IORDER_REQUIRES(m_csTimers);

  CCriticalSection m_csPending;
  std::vector<GroupOrderPtr> m_arPendingOrders IORDER_GUARDED_BY(m_csPending);

  CCriticalSection m_csOrders;
  std::map<std::wstring, GroupOrderPtr> m_mapOrders IORDER_GUARDED_BY(m_csOrders);
  std::map<std::wstring, std::unique_ptr<CBaseData>> m_mapChildRecords IORDER_GUARDED_BY(m_csOrders);
  Handles m_arDeadRecords IORDER_GUARDED_BY(m_csOrders);

  CCriticalSection m_csTimers;
  std::map<int32_t, GroupOrderPtr> m_mapTimerOrders IORDER_GUARDED_BY(m_csTimers);
  std::map<std::wstring, int32_t> m_mapOrderTimers IORDER_GUARDED_BY(m_csTimers);
  int32_t m_lNextTimerId IORDER_GUARDED_BY(m_csTimers) = kFirstTimerId;  ///< the last that was given out
};

}  // namespace iorder
