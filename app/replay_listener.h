#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/happening_reader.h"
#include "app/output_file.h"
#include "app/progress.h"
#include "terminal/day.h"
#include "terminal/terminal_listener.h"

namespace iorder {

/// Reads the engine's events as happenings and hands each on, with its local time "YYYY-MM-DDTHH:MM:SS.mmm".
class CHappeningListener : public ITerminalListener {
 public:
  using Tell = std::function<void(const std::string& at, const Happening& happening)>;

  explicit CHappeningListener(Tell tell);

  void OnEvent(const TraceEvent& event) override;

 private:
  std::string m_time;  ///< of the event that is being read
  CHappeningReader m_reader;
};

/// Shows how far a day is.
class CProgressListener : public ITerminalListener {
 public:
  /// The share done is told from the clock of the day.
  CProgressListener(const Day& day, CProgress& progress);

  void OnEvent(const TraceEvent& event) override;
  /// Only with the updates of quotes there is enough to tell progress by.
  bool WantsInputs() const override { return true; }

 private:
  const LocalTime m_start;
  const std::optional<LocalTime> m_end;
  CProgress& m_progress;
  int64_t m_events = 0;
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
