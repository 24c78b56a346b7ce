#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "platform/host_events.h"
#include "terminal/day.h"
#include "terminal/local_clock.h"
#include "terminal/terminal_parts.h"
#include "terminal/tick_player.h"

namespace iorder {

/// Plays a day's lines, one strictly after the other. What the host does (commands, phases, settings, faults)
/// happens on the calling thread, what the bus does on a thread of the bus, while the calling thread waits
/// for it. The rows of the tick files run beside, behind the lines of the same time.
class CDayPlayer {
 public:
  CDayPlayer(const Day& day, TerminalParts& parts);

  /// Plays the whole day on the thread "host" of the runtime's run and returns at its end. A mistake that
  /// shows only now is an InputError; the day has been ended by then.
  void Play(INordoManager& manager);

  /// From any thread, while it plays.
  size_t LinesPlayed() const { return m_linesPlayed; }
  size_t RowsPlayed() const { return m_ticks.RowsPlayed(); }

 private:
  void PlayLines();
  void WaitForEnd();
  void PlayLine(const DayLine& line);
  void OnBus(const std::function<void()>& job);
  void SetPhase(const PhaseAction& phase);

  void Do(const NoteAction&) {}
  void Do(const SettingsAction& action);
  void Do(const SymbolsAction& action);
  void Do(const RecordAction& action);
  void Do(const QuoteAction& action);
  void Do(const TicksAction&) {}
  void Do(const MessageAction& action);
  void Do(const AccountsAction& action);
  void Do(const PhaseAction& action);
  void Do(const ReportAction& action);
  void Do(const ChildAction& action);
  void Do(const PositionAction& action);
  void Do(const RequestAction& action);
  void Do(const FaultAction& action);

  const Day& m_day;
  TerminalParts& m_parts;
  CLocalClock m_clock;
  CTickPlayer m_ticks;
  INordoManager* m_manager = nullptr;
  bool m_isStarted = false;        ///< automatic phases have begun
  bool m_isOpen = false;           ///< phase 2 has been called
  bool m_accountsWaiting = false;  ///< to be announced after phase 2
  std::atomic<size_t> m_linesPlayed = 0;
};

}  // namespace iorder
