#include "platform/ticker.h"

#include <utility>

namespace iorder {

CTicker::CTicker(Milliseconds period, std::function<void()> function)
    : m_thread([this, period, function = std::move(function)](const std::stop_token& stop) {
        Work(stop, period, function);
      }) {}

void CTicker::Work(const std::stop_token& stop, Milliseconds period, const std::function<void()>& function) {
  for (;;) {
    {
      std::unique_lock lock(m_mutex);
      m_wake.wait_for(lock, stop, period, [] { return false; });
    }
    if (stop.stop_requested()) return;
    function();
  }
}

}  // namespace iorder
