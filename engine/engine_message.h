#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/runtime.h"

namespace iorder {

/// The numbered messages of the engine's threads. Strategy events have the numbers from kFirstStrategyEvent
/// on.
namespace engine_message {
inline constexpr uint32_t kReport = 2029;   ///< payload of "TRADE.ORDERSET"; the receiver owns the text
inline constexpr uint32_t kCommand = 5332;  ///< text of a command; the receiver owns the text
}  // namespace engine_message

/// Takes over the text that a message carries; none for a message without one.
inline std::unique_ptr<std::wstring> TakeText(const ThreadMessage& message) {
  const bool carriesText =
      message.number == engine_message::kReport || message.number == engine_message::kCommand;
  return std::unique_ptr<std::wstring>(carriesText ? reinterpret_cast<std::wstring*>(message.first)
                                                   : nullptr);
}

}  // namespace iorder
