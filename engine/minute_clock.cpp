#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "engine/intelligent_order.h"

namespace iorder {

namespace {

constexpr int32_t kTimer1MinPrev = 100;  ///< TIMER_1MIN_PREV: the way to the whole minute, one shot
constexpr int32_t kTimer1Min = 200;      ///< TIMER_1MIN: the minute tick
constexpr int64_t kMinuteMs = 60000;

/// Milliseconds to the next whole minute of the local clock, 1 to 60000.
int64_t ToWholeMinute(const DateTime& local) {
  return kMinuteMs - ToDateTime17(local) % 100000;
}

}  // namespace

void CIntelligentOrder::ArmMinuteClock() {
  ArmTimer(kTimer1MinPrev, ToWholeMinute(m_world.runtime.LocalTime()));
}

void CIntelligentOrder::KillMinuteClock() {
  m_timer.KillTimer(kTimer1MinPrev);
  m_timer.KillTimer(kTimer1Min);
}

int32_t CIntelligentOrder::ArmTimer(int32_t id, int64_t intervalMs) {
  return m_timer.SetTimer(id, static_cast<int32_t>(intervalMs),
                          [this](int32_t timerId) { OnEngineTimer(timerId); });
}

void CIntelligentOrder::OnEngineTimer(int32_t id) {
  Guarded([this, id] {
    if (id != kTimer1Min) m_timer.KillTimer(id);  // all others are one shots
    switch (id) {
      case kTimer1MinPrev:
        AlignToMinute();
        break;
      case kTimer1Min:
        MinuteTick();
        break;
      default:
        m_groupOrders.OnOrderRecheck(id);
        break;
    }
  });
}

void CIntelligentOrder::AlignToMinute() {
  WriteLog(L"TIMER_1MIN_PREV.");
  const int64_t diff = ToWholeMinute(m_world.runtime.LocalTime());
  if (diff < 2000) {
    // No timer is armed on this path: the minute tick stays off.
    m_world.runtime.Sleep(Milliseconds{diff});
    WriteLog(L"TIMER_1MIN_PREV. Sleep.");
  } else if (diff > 20000 && diff < 55000) {
    ArmTimer(kTimer1MinPrev, diff);
    WriteLog(fmt::sprintf(L"TIMER_1MIN_PREV. Next. llDiff=%lld.", diff));
  } else {
    WriteLog(L"TIMER_1MIN. Start.");
    ArmTimer(kTimer1Min, kMinuteMs);
  }
  StartStrategies();
}

void CIntelligentOrder::MinuteTick() {
  WriteLog(L"TIMER_1MIN.");
  StartStrategies();
  m_strategies.Turn();
}

void CIntelligentOrder::StartStrategies() {
  m_strategies.ForEach(
      [this](CStrategy& strategy) { strategy.Start(ToDateTime14(m_world.runtime.UtcTime())); });
}

}  // namespace iorder
