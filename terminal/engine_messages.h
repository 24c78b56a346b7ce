#pragma once

#include <cstdint>
#include <string>

#include "platform/host_events.h"
#include "terminal/day.h"
#include "terminal/event_feed.h"
#include "terminal/record_bus.h"

namespace iorder {

/// The host's messages to the engine. After Connect any thread may send, under no lock.
class CEngineMessages {
 public:
  CEngineMessages(CEventFeed& feed, CEmbeddedBus& bus) : m_feed(feed), m_bus(bus) {}

  /// Before the first message and before another thread may send one; the engine outlives the day.
  void Connect(INordoManager& manager) { m_manager = &manager; }

  void Send(const MessageAction& message);
  /// Tells the engine of a record.
  void Announce(const std::wstring& topic, int32_t handle);

 private:
  CEventFeed& m_feed;
  CEmbeddedBus& m_bus;
  INordoManager* m_manager = nullptr;
};

}  // namespace iorder
