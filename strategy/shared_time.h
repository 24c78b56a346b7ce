#pragma once

#include <atomic>
#include <cstdint>

#include "platform/date_time.h"

namespace iorder {

/// A moment, to the second, that one thread stores and others read, without a lock. Year 0 before the first
/// store.
class CSharedTime {
 public:
  void Store(const DateTime& time) { m_dateTime14 = ToDateTime14(time); }
  int64_t Year() const { return m_dateTime14 / 10000000000; }
  /// yyyymmdd
  int64_t Date() const { return m_dateTime14 / 1000000; }
  /// hhmmss
  int64_t Time() const { return m_dateTime14 % 1000000; }

 private:
  std::atomic<int64_t> m_dateTime14{0};
};

}  // namespace iorder
