#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "platform/critical_section.h"
#include "records/base_data.h"
#include "records/host_gateway.h"
#include "records/locked_string_map.h"

namespace iorder {

/// The static attributes of contracts ("TickSize", "Weight" and so on), as text: from a cache, else from the
/// record "Security.Info" or from the host, which is asked to fetch what isn't loaded. The attributes without
/// which orders can't be priced have a fixed default.
///
/// Any thread may call. The lock covers only the cache: no lock is held while the bus or the host is asked,
/// so two threads may look the same key up at once; the later answer stays.
class CSecurityAttributes {
 public:
  explicit CSecurityAttributes(IHostGateway& host);

  /// Takes the open record "Security.Info", or none; before the first look-up.
  void SetRecord(std::unique_ptr<CBaseData> record);
  /// The record, to tell its events by; none before SetRecord.
  const CBaseData* Record() const { return m_pSecurityInfo; }

  /// The attribute's text, or "". An empty answer is kept too: it stays until the engine ends. Without the
  /// record the answer is "" and nothing is kept.
  std::wstring GetStringFromSecurity(const std::wstring& symbol, const std::wstring& attribute);

  /// The tick nearest to `price`, a tie going up; NoValue for NoPrice. A price below 0 is rounded towards 0,
  /// and one without a tick above 0 stays as it is.
  ScaledValue RoundToTick(const std::wstring& symbol, double price);

 private:
  std::wstring LookUp(const std::wstring& symbol, const std::wstring& attribute);
  std::wstring ReadRecord(const std::wstring& symbol, const std::wstring& attribute, CBaseData* exchangeItem);
  void RequestSecurityInfo(const std::wstring& exchangeKey, const std::wstring& productId,
                           std::unique_ptr<CBaseData>& exchangeItem, AnswerDocument& answer);
  Value SendRequest(const std::wstring& productId, AnswerDocument& answer, bool itemExists);
  void LogAnswer(const Value& reply, const wchar_t* line);

  IHostGateway& m_host;
  std::unique_ptr<CBaseData> m_owner;
  /// Commands may come before the record is opened.
  std::atomic<CBaseData*> m_pSecurityInfo{nullptr};
  CCriticalSection m_csSecurityCache;
  CGlcMapStringToString m_mapSecurityCache IORDER_GUARDED_BY(m_csSecurityCache);
};

/// The tick of a "TickSize" text at a scaled price: a plain number, or a ladder "0:0.1;10:0.5;50:1" of
/// thresholds in whole price units with the tick from there on. Below the first threshold the tick is 1.
double TickAt(const std::wstring& tickSize, ScaledValue price);

}  // namespace iorder
