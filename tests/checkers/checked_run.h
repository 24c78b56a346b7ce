#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/virtual/virtual_runtime.h"
#include "terminal/day.h"
#include "terminal/embedded_terminal.h"
#include "terminal/terminal_listener.h"
#include "tests/checkers/bus_tap.h"
#include "tests/checkers/trace_step.h"

namespace iorder::testing {

/// Hears what happens in a run: what the engine fires, which child orders it is told of, and what it reads of
/// positions, option figures, order settings, replay speed and child orders, in the order of it all.
class IRunListener : public IBusReader {
 public:
  virtual void OnStep(const TraceStep& step) = 0;
};

/// One day, played in virtual time with the checkers' tap at the bus.
class CCheckedRun : private ITerminalListener {
 public:
  /// `seed`: of the order of the threads, in place of the day's. Day and listener outlive the run.
  CCheckedRun(const Day& day, std::optional<uint64_t> seed, IRunListener& listener);

  /// Plays the day to its end. What went wrong with the run itself, as texts; a mistake in the day that shows
  /// only as it is played is an InputError.
  std::vector<std::string> Run();

 private:
  void OnEvent(const TraceEvent& event) override;
  bool WantsInputs() const override { return true; }

  IRunListener& m_listener;
  CVirtualRuntime m_runtime;
  CEmbeddedTerminal m_terminal;
  CBusTap m_tap;
};

}  // namespace iorder::testing
