#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "app/happening.h"
#include "app/position_reader.h"

namespace iorder {

/// Reads happenings from the engine's events. States of strategies don't show in events of their own: they
/// are read from the log lines that each change goes with. Texts are UTF-8. Not for several threads at once.
class CHappeningReader {
 public:
  explicit CHappeningReader(const std::function<void(const Happening&)>& tell)
      : m_tell(tell), m_positions(tell) {}

  void OnCommand(std::string_view topic, std::string_view text);
  void OnLog(std::string_view text);
  void OnFault(std::string_view thread, std::string_view code, std::string_view text);

 private:
  void OnMessage(std::string_view json);
  void OnStrategyLog(const std::string& strategy, std::string_view text);
  void ChangeState(const std::string& strategy, int64_t state);

  std::function<void(const Happening&)> m_tell;
  CPositionReader m_positions;
  std::map<std::string, int64_t> m_states;  ///< by key of the strategy
  std::set<std::string> m_ending;           ///< strategies whose stop has begun
};

}  // namespace iorder
