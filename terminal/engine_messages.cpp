#include "terminal/engine_messages.h"

namespace iorder {

void CEngineMessages::Send(const MessageAction& message) {
  const Value value = m_bus.ValueOf(message.value);
  TraceEvent event;
  event.kind = TraceKind::kMessage;
  event.topic = message.topic;
  event.first = message.first;
  event.second = message.second;
  event.text = message.text;
  event.value = &value;
  m_feed.Tell(event);
  m_manager->OnTopicMessage(message.topic, message.first, message.second, message.text, value);
}

void CEngineMessages::Announce(const std::wstring& topic, int32_t handle) {
  MessageAction message;
  message.topic = topic;
  message.value.value = handle;
  Send(message);
}

}  // namespace iorder
