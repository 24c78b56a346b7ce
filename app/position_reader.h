#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "app/happening.h"

namespace iorder {

/// Reads fills, positions, profit and limits from the engine's messages and log lines. What repeats tells
/// nothing new. Not for several threads at once.
class CPositionReader {
 public:
  explicit CPositionReader(std::function<void(const Happening&)> tell) : m_tell(std::move(tell)) {}

  /// A message of a strategy: its kind and body.
  void OnMessage(const std::string& strategy, const std::string& kind, const rapidjson::Value& data);
  /// "ClearReport": a run of a strategy of this tag begins, or a command waits for its time.
  void OnClear(const std::string& strategy, const std::string& tag);
  /// "TotalProfit", which names a tag in place of a strategy.
  void OnTotal(std::string_view json);
  /// A line of a strategy, behind its key.
  void OnStrategyLog(const std::string& strategy, std::string_view text);
  /// The strategy was deleted. One that is started with its key later is another.
  void OnGone(const std::string& strategy);
  /// A line of the engine itself.
  void OnLog(std::string_view text);

 private:
  /// Strategy, life, run, symbol.
  using PositionKey = std::tuple<std::string, int64_t, std::string, std::string>;
  struct Limit {
    std::string side;  ///< profit or loss, the one that was reached last
    bool isTold = false;
  };
  struct Fills {
    int64_t lots = 0;
    ScaledValue average = 0;
  };

  void OnReport(const std::string& strategy, const rapidjson::Value& data);
  void OnOrderReport(const std::string& strategy, std::string_view text);
  void OnLimit(std::string_view text);
  /// Which limit ends the runs of a tag, as "profit limit".
  std::string LimitName(const std::string& tag) const;
  void EndRun(const std::string& strategy, const std::string& reason);

  int64_t LifeOf(const std::string& strategy) const;

  std::function<void(const Happening&)> m_tell;
  std::map<PositionKey, PositionChanged> m_positions;
  std::map<std::string, int64_t> m_gone;                         ///< by strategy: how often it was deleted
  std::map<std::pair<std::string, std::string>, Fills> m_fills;  ///< by strategy and report
  std::map<std::string, Limit> m_limits;                         ///< by tag
  std::set<std::string> m_beginning;                             ///< strategies whose run is about to begin
  std::set<std::string> m_ended;                                 ///< strategies whose end was told
};

}  // namespace iorder
