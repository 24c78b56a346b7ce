#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace iorder {

/// Which timers fire late the next time, by the end of their name.
class CTimerDelays {
 public:
  void Add(std::wstring_view nameEnd, Milliseconds late) {
    m_delays.insert_or_assign(std::wstring(nameEnd), late);
  }

  /// How late the timer of this name fires that is about to do so; it is told once.
  std::optional<Milliseconds> Take(std::wstring_view name) {
    for (auto one = m_delays.begin(); one != m_delays.end(); ++one) {
      if (!name.ends_with(one->first)) continue;
      const Milliseconds late = one->second;
      m_delays.erase(one);
      return late;
    }
    return std::nullopt;
  }

 private:
  std::map<std::wstring, Milliseconds> m_delays;
};

}  // namespace iorder
