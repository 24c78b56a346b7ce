#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

#include "platform/date_time.h"

namespace iorder {

/// Calls a function again and again, on a thread of its own, for as long as it lives: `period` of the
/// machine's time lies before each call.
class CTicker {
 public:
  CTicker(Milliseconds period, std::function<void()> function);
  /// A call that is going on ends before.
  ~CTicker() = default;
  CTicker(const CTicker&) = delete;
  CTicker& operator=(const CTicker&) = delete;

 private:
  void Work(const std::stop_token& stop, Milliseconds period, const std::function<void()>& function);

  std::mutex m_mutex;
  std::condition_variable_any m_wake;
  std::jthread m_thread;  ///< last: it is stopped before what it waits with goes
};

}  // namespace iorder
