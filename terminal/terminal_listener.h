#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/date_time.h"
#include "platform/value.h"

namespace iorder {

/// What happened between the engine and the terminal. The first group are the events that the engine fires,
/// the second what the terminal does to it.
enum class TraceKind {
  kAdvertise,
  kSubscribe,
  kUnsubscribe,
  kOpenRecord,
  kCommand,
  kLog,
  kFault,
  kMessage,
  kPhase,
  kUpdate,
  kReplace,
  kQuery,
};

constexpr bool IsInput(TraceKind kind) {
  return kind >= TraceKind::kMessage;
}

/// One event. Only the members that its kind names are set; the texts live as long as the call.
struct TraceEvent {
  TraceKind kind = TraceKind::kLog;
  TimePoint time;
  DateTime local;  ///< `time` as the local clock shows it
  std::wstring_view thread;
  std::wstring_view topic;  ///< advertise, subscribe, unsubscribe, command, message
  std::wstring_view
      text;  ///< command, log, fault, message; the payload of an update; the where-clause of a query
  std::wstring_view record;    ///< open_record, update, replace
  std::wstring_view database;  ///< query
  std::wstring_view table;     ///< query
  int32_t first = 0;   ///< command, message; the value of advertise; the category of phase; the originator of
                       ///< update and replace; the handle of open_record; the rows of query
  int32_t second = 0;  ///< command, message; the phase
  uint32_t code = 0;   ///< fault
  const Value* value = nullptr;  ///< command, message
};

/// Hears what happens, one event after the other in their order, on whichever thread it happens. It must not
/// call back into the terminal, and it must not raise.
class ITerminalListener {
 public:
  virtual ~ITerminalListener() = default;
  virtual void OnEvent(const TraceEvent& event) = 0;
  /// Whether the second group of events is wanted too. Asked once, when the listener is added.
  virtual bool WantsInputs() const { return false; }
};

}  // namespace iorder
