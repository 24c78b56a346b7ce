#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "terminal/json_line.h"
#include "terminal/local_time.h"
#include "terminal/terminal_listener.h"

namespace iorder::testing {

/// One event of a trace, with what its text says: read once for all checkers. Texts are UTF-8.
struct TraceStep {
  TraceKind kind = TraceKind::kLog;
  LocalTime at;
  std::string thread;
  std::string topic;
  std::string text;
  std::string value;   ///< of a command, if it is a text
  std::string record;  ///< of an opened record or an update
  int32_t handle = 0;  ///< of an opened record (0: it didn't open), or that a message announces
  int32_t first = 0;
  int32_t second = 0;

  /// Of a strategy's line in the log: the number of the strategy's object, which no other of the day has, and
  /// the line behind its prefix.
  uint32_t strategy = 0;
  std::string key;
  std::string line;
  /// Of the line that announces a status message.
  std::optional<JsonNode> message;

  bool IsLog() const { return kind == TraceKind::kLog; }
  bool IsCommand(std::string_view name) const { return kind == TraceKind::kCommand && topic == name; }
  bool LineStarts(std::string_view words) const { return strategy != 0 && line.starts_with(words); }
};

inline constexpr std::string_view kNewOrder = "TRADE.NEWORDER";
inline constexpr std::string_view kCancelOrder = "TRADE.CANCELORDER";
inline constexpr std::string_view kScreenMessages = "MSG.NewStrategyOrder";
inline constexpr std::string_view kClientMessages = "API_MSG.NewStrategyOrder";
inline constexpr std::string_view kBatchThread = "ProcessMsgLoop";
inline constexpr std::string_view kCommandThread = "OrderCommandThread";
inline constexpr std::string_view kEnginePrefix = "<CIntelligentOrder>";

TraceStep ReadStep(const TraceEvent& event);
/// The same for a log line or a command that a test writes down.
void ReadText(TraceStep& step);

/// The text behind `name=` in a line of "name=value, name=value.", or in an order string; none if it has no
/// such name.
std::optional<std::string> FieldText(std::string_view line, std::string_view name);
/// The same as an integer; 0 if it isn't there.
int64_t FieldInteger(std::string_view line, std::string_view name);
/// The same as a decimal; 0 if it isn't there.
double FieldDecimal(std::string_view line, std::string_view name);

/// What a line says that an attribute of a symbol is ("Weight", "TickSize").
struct ToldAttribute {
  std::string symbol;
  std::string name;
  std::string value;

  /// The leading whole number; 1 for an empty text, 0 for one that is no number.
  double AsWeight() const;
};
/// None for any other line.
std::optional<ToldAttribute> ReadAttribute(const TraceStep& step);

/// The integer or text of a member of an object; 0 and "" if there is none.
int64_t IntegerOf(const JsonNode& object, std::string_view name);
double DecimalOf(const JsonNode& object, std::string_view name);
std::string TextOf(const JsonNode& object, std::string_view name);

/// The body of a status message of that kind; null if it is of another kind.
const JsonNode* BodyOf(const TraceStep& step, std::string_view kind);

}  // namespace iorder::testing
