#pragma once

#include <atomic>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/world_runtime.h"
#include "terminal/local_clock.h"
#include "terminal/quote_player.h"
#include "terminal/tick_file.h"

namespace iorder {

/// A tick file that a line of the day names.
struct TickSource {
  std::string path;
  LocalTime date;  ///< midnight of the day of that line
};

/// Plays the rows of tick files on a thread "bus" of its own, in the order of their times, those of one time
/// in the order of the files. It applies and fires each row itself: nothing is handed over on the way.
class CTickPlayer {
 public:
  /// Rows behind `end` aren't played.
  CTickPlayer(IWorldRuntime& runtime, CQuotePlayer& quotes, std::vector<TickSource> sources,
              std::optional<LocalTime> end);

  /// Creates the thread; without sources there is none. Before the first fault of the day, that none may hit
  /// it.
  void Create();
  /// Lets the thread begin.
  void Start();
  /// Waits until all rows are played. A mistake in a file is raised here.
  void Wait();
  /// Raises what ended the playing so far, if anything has.
  void Check();
  /// Of the last row played, once Wait has returned; none if there was no row.
  std::optional<LocalTime> LastTime() const { return m_lastTime; }

  /// From any thread, while it plays.
  size_t RowsPlayed() const { return m_rowsPlayed; }

 private:
  struct Stream {
    Stream(const TickSource& source) : file(source.path, source.date), isOpen(file.Next(row)) {}

    CTickFile file;
    CTickFile::Row row;
    bool isOpen;
    std::vector<CQuotePlayer::Target> targets;  ///< by index of the symbol
  };

  void Play();
  void PlayRow(Stream& stream);
  static Stream* NextStream(const std::vector<std::unique_ptr<Stream>>& streams);

  IWorldRuntime& m_runtime;
  CQuotePlayer& m_quotes;
  const std::vector<TickSource> m_sources;
  const std::optional<LocalTime> m_end;
  CLocalClock m_clock;
  std::shared_ptr<IThread> m_thread;
  std::optional<LocalTime> m_lastTime;
  std::exception_ptr m_error;  ///< written before m_hasError
  std::atomic<bool> m_hasError = false;
  std::atomic<size_t> m_rowsPlayed = 0;
};

}  // namespace iorder
