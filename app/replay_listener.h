#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "app/group_order_reader.h"
#include "app/happening_reader.h"
#include "app/output_file.h"
#include "terminal/day.h"
#include "terminal/terminal_listener.h"

namespace iorder {

/// Reads the engine's events, and what its group orders decide, as happenings and hands each on, with its
/// local time "YYYY-MM-DDTHH:MM:SS.mmm".
class CHappeningListener : public ITerminalListener {
 public:
  using Tell = std::function<void(const std::string& at, const Happening& happening)>;

  explicit CHappeningListener(Tell tell);

  void OnEvent(const TraceEvent& event) override;

  /// What hears of the group orders at this local time, by turns with OnEvent.
  IGroupOrderWatch& GroupOrders(const DateTime& local);

 private:
  void Hand(const Happening& happening);

  const Tell m_tell;
  std::string m_time;  ///< of the event that is being read
  CGroupOrderReader m_groupOrders;
  CHappeningReader m_reader;
};

/// Tells from any thread how much of a day's time has passed. It is read from the engine's events, of which
/// every minute has some.
class CDayClock : public ITerminalListener {
 public:
  explicit CDayClock(const Day& day) : m_start(day.head.start), m_end(day.head.end) {}

  void OnEvent(const TraceEvent& event) override { m_passed = (ToLocalTime(event.local) - m_start).count(); }
  /// 0 to 1; 0 for a day whose end isn't known before.
  double Share() const;

 private:
  const LocalTime m_start;
  const std::optional<LocalTime> m_end;
  std::atomic<int64_t> m_passed = 0;  ///< ms
};

/// Writes the lines of the log, each behind its local time.
class CLogWriter : public ITerminalListener {
 public:
  explicit CLogWriter(const std::string& path) : m_file(path) {}

  void OnEvent(const TraceEvent& event) override;
  /// Writes what is left and lets the file appear. What went wrong while the day ran is an InputError here.
  void Commit();

 private:
  COutputFile m_file;
  std::string m_text;
  std::string m_error;
};

}  // namespace iorder
