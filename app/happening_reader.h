#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "app/happening.h"

namespace iorder {

/// Reads happenings from the engine's events. States of strategies don't show in events of their own: they
/// are read from the log lines that each change goes with. Texts are UTF-8. Not for several threads at once.
class CHappeningReader {
 public:
  explicit CHappeningReader(std::function<void(const Happening&)> tell) : m_tell(std::move(tell)) {}

  void OnCommand(std::string_view topic, std::string_view text);
  void OnLog(std::string_view text);
  void OnFault(std::string_view thread, std::string_view code, std::string_view text);

 private:
  void OnMessage(std::string_view json);
  void OnStrategyLog(const std::string& strategy, std::string_view text);
  void ChangeState(const std::string& strategy, int64_t state);

  std::function<void(const Happening&)> m_tell;
  std::map<std::string, int64_t> m_states;  ///< by key of the strategy
};

}  // namespace iorder
