#include "strategy/status_message.h"

#include "platform/text.h"

namespace iorder {

CStatusMessage::CStatusMessage(const CStrategyIdentity& identity, const char* messageType, int decimals)
    : m_writer(m_buffer) {
  m_writer.SetMaxDecimalPlaces(decimals);
  m_writer.StartObject();
  WriteText("StrategyType", identity.m_strStrategyType);
  WriteText("StrategyTag", identity.m_strStrategyTag);
  WriteText("StrategyID", identity.m_strStrategyID);
  WriteText("StrategySN", identity.m_strStrategySN);
  WriteType(messageType);
}

CStatusMessage::CStatusMessage(const char* messageType, const std::wstring& tag, int decimals)
    : m_writer(m_buffer) {
  m_writer.SetMaxDecimalPlaces(decimals);
  m_writer.StartObject();
  WriteText("StrategyType", L"OpenLottery");
  WriteText("StrategyTag", tag);
  WriteType(messageType);
}

void CStatusMessage::WriteType(const char* messageType) {
  m_writer.Key("MsgType");
  m_writer.String(messageType);
}

void CStatusMessage::WriteText(const char* key, std::wstring_view value) {
  m_writer.Key(key);
  m_writer.String(ToUtf8(value));
}

void CStatusMessage::BeginBody() {
  if (m_hasBody) return;
  m_hasBody = true;
  m_writer.Key("Data");
  m_writer.StartObject();
}

CStatusMessage& CStatusMessage::Text(const char* key, std::wstring_view value) {
  BeginBody();
  WriteText(key, value);
  return *this;
}

CStatusMessage& CStatusMessage::Integer(const char* key, int64_t value) {
  BeginBody();
  m_writer.Key(key);
  m_writer.Int64(value);
  return *this;
}

CStatusMessage& CStatusMessage::Number(const char* key, double value) {
  BeginBody();
  m_writer.Key(key);
  m_writer.Double(value);
  return *this;
}

CStatusMessage& CStatusMessage::Moment(const char* dateKey, const char* timeKey, int64_t dateTime14) {
  return Integer(dateKey, dateTime14 / 1000000).Integer(timeKey, dateTime14 % 1000000);
}

std::wstring CStatusMessage::Finish() {
  if (m_hasBody) m_writer.EndObject();
  m_writer.EndObject();
  return ToWide({m_buffer.GetString(), m_buffer.GetSize()});
}

}  // namespace iorder
