#pragma once

#include <rapidjson/stringbuffer.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "records/json_document.h"
#include "strategy/strategy.h"

namespace iorder {

/// The topic of the API's clients.
inline constexpr const wchar_t* kClientTopic = L"API_MSG.NewStrategyOrder";

/// Builds one status message: a compact JSON object with a fixed envelope, the body under "Data", keys in the
/// order in which they are added. A message without a body has no "Data". Used once.
class CStatusMessage {
 public:
  /// `decimals`: places of a double; what lies behind them is cut off.
  CStatusMessage(const CStrategyIdentity& identity, const char* messageType, int decimals = 6);
  /// The message of all strategies of a tag: its envelope names no single one.
  CStatusMessage(const char* messageType, const std::wstring& tag, int decimals);

  /// What a body begins with: the stamp of the run, and a symbol.
  CStatusMessage& About(std::wstring_view stamp, std::wstring_view symbol) {
    return Text("Stamp", stamp).Text("Symbol", symbol);
  }
  CStatusMessage& Text(const char* key, std::wstring_view value);
  CStatusMessage& Integer(const char* key, int64_t value);
  /// NoPrice is written like any other number, one that isn't finite as null.
  CStatusMessage& Number(const char* key, double value);
  /// The two integers under these keys: YYYYMMDD and HHMMSS of a YYYYMMDDhhmmss.
  CStatusMessage& Moment(const char* dateKey, const char* timeKey, int64_t dateTime14);

  std::wstring Finish();

 private:
  void WriteType(const char* messageType);
  void WriteText(const char* key, std::wstring_view value);
  void BeginBody();

  rapidjson::StringBuffer m_buffer;
  CJsonWriter m_writer;
  bool m_hasBody = false;
};

}  // namespace iorder
