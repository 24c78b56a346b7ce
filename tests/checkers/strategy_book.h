#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/checkers/order_info.h"
#include "tests/checkers/trace_step.h"

namespace iorder::testing {

/// A strategy, as commands and log lines tell of it.
struct KnownStrategy {
  uint32_t number = 0;
  OrderInfo info;
  std::string run;           ///< the stamp of its run; empty before the first reset
  bool stopCancels = false;  ///< by the last stop command that said so
  bool stopCloses = false;
  LocalTime stoppedAt;              ///< by the last stop command
  bool stopIsUnclear = false;       ///< two came so soon that the flags of either may count
  LocalTime changedAt;              ///< a later command gave it another order info
  std::optional<LocalTime> goneAt;  ///< the engine was asked to drop it
};

/// Which strategies there are, with their order infos and runs. Fed with each step before the checkers are.
class CStrategyBook {
 public:
  void OnStep(const TraceStep& step);

  /// Null if there has been no such strategy.
  const KnownStrategy* Find(uint32_t number) const;
  /// The last strategy of that key; one that is gone only if there is no other.
  const KnownStrategy* FindKey(const std::string& key) const;
  /// Whether a command has given a strategy another order info in this millisecond.
  bool HasChanged(LocalTime at) const;
  /// In the order of their starts, with those that may still be on their way out.
  std::vector<const KnownStrategy*> OfTag(const std::string& tag, LocalTime at) const;

 private:
  void OnCommand(const std::string& text, LocalTime at);
  void Stop(const JsonNode& command, LocalTime at);
  void Delete(const std::string& key, LocalTime at);

  std::map<uint32_t, KnownStrategy> m_strategies;
  JsonNode m_command;            ///< the last one that the engine took in hand
  bool m_commandGoesOn = false;  ///< it gives its order info to whichever strategy its thread names next
};

}  // namespace iorder::testing
