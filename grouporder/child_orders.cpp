#include <algorithm>
#include <utility>

#include "grouporder/group_orders.h"
#include "records/exec_type.h"

namespace iorder {

namespace {

constexpr int32_t kRecheckDelayMs = 2000;
/// Keeps a fast replay from spinning.
constexpr int32_t kLeastRecheckDelayMs = 50;

}  // namespace

void CGroupOrders::RegisterChildOrder(int32_t handle) {
  auto announced = CBaseData::OpenByHandle(m_host.GetWorld(), handle, nullptr);
  if (announced == nullptr) return;
  const std::wstring strategyID = announced->GetString(L"Strategy");
  const std::wstring levelKey = announced->GetString(L"LevelKey");
  announced.reset();
  if (strategyID.empty()) return;
  const GroupOrderPtr order = m_book.Find(strategyID);
  if (order == nullptr) return;  // of another source
  if (!m_book.NoteChild(levelKey)) return;

  const bool hasSiblings = order->AddChild(levelKey) > 1;
  if (m_watch != nullptr) m_watch->OnChild(*order, levelKey);
  if (FollowChild(*order, levelKey, handle)) return;
  // The last of the others may have ended meanwhile, and found this one alive.
  if (hasSiblings && order->bFailed == 0 && order->ChildCount() == 0) ScheduleRecheck(order);
}

bool CGroupOrders::FollowChild(stcIntlgntOrd& order, const std::wstring& levelKey, int32_t handle) {
  auto record = m_host.FollowRecord(handle);  // its updates come from here on
  if (record == nullptr) {
    order.RemoveChild(levelKey);
    m_book.EndChild(levelKey);
    if (m_watch != nullptr) m_watch->OnChildUpdate(order, levelKey, NoInt, order.ChildCount());
    return false;
  }
  // Only here are the handles of ended children closed, when this goes: no event of theirs is running.
  const CGroupOrderBook::Handles ended = m_book.KeepChild(levelKey, std::move(record));
  return true;
}

void CGroupOrders::OnChildOrderUpdate(CBaseData& source) {
  const std::wstring levelKey = source.GetString(L"LevelKey");
  const std::wstring strategyID = source.GetString(L"Strategy");
  const int32_t execType = source.GetInt(L"ExecType", NoInt);
  const int32_t clientModify = source.GetInt(L"ClientModify", 0);
  const GroupOrderPtr order = m_book.Find(strategyID);
  if (order == nullptr) return;

  // A failed child lets no further timer be armed for the order.
  if (exec_type::FailsChild(execType) && clientModify == 0) order->bFailed = 1;
  if (exec_type::EndsChild(execType)) {
    order->RemoveChild(levelKey);
    m_book.EndChild(levelKey);
  }
  const size_t live = order->ChildCount();
  if (m_watch != nullptr) m_watch->OnChildUpdate(*order, levelKey, execType, live);
  // Whatever this update told: an update behind the last end puts the next look off.
  if (order->bFailed == 0 && live == 0) ScheduleRecheck(order);
}

void CGroupOrders::ScheduleRecheck(const GroupOrderPtr& order) {
  const int32_t delay = RecheckDelay();
  const CGroupOrderBook::CRecheck recheck = m_book.NoteRecheck(order);
  if (recheck.overwritten != nullptr) TellEnd(*recheck.overwritten, GroupOrderEnd::kAsleep);
  if (m_watch != nullptr) m_watch->OnRecheck(*order, recheck.lTimerId, delay);
  if (m_host.ArmRecheck(recheck.lTimerId, delay) == 0 && !recheck.bNew) {
    m_host.PutOffRecheck(recheck.lTimerId, delay);
  }
}

int32_t CGroupOrders::RecheckDelay() {
  const int32_t speed = m_host.ReplaySpeed();
  return speed > 1 ? std::max(kRecheckDelayMs / speed, kLeastRecheckDelayMs) : kRecheckDelayMs;
}

void CGroupOrders::CloseChildren() {
  const CGroupOrderBook::Handles handles = m_book.TakeHandles();  // closed outside the book's lock
}

}  // namespace iorder
