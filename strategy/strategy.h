#pragma once

#include <rapidjson/document.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/critical_section.h"
#include "records/base_data.h"
#include "reference/quote_data.h"
#include "strategy/strategy_host.h"
#include "strategy/symbol_set.h"

namespace iorder {

/// Numbers of the engine's message thread that concern a strategy. From kFirstStrategyEvent on they go to the
/// strategy.
inline constexpr uint32_t kDelStrategyMessage = 2030;
inline constexpr uint32_t kFirstStrategyEvent = 4024;

/// Who a strategy is: what its command said of it. The key joins type, ID and serial number.
struct CStrategyIdentity {
  std::wstring m_strStrategyKey;
  std::wstring m_strStrategyType;
  std::wstring m_strStrategyID;
  std::wstring m_strStrategySN;
  std::wstring m_strStrategyTag;  ///< of the command, else the ID up to its first "#"
  std::wstring m_strBrokerID;
  std::wstring m_strAccount;
  std::wstring m_strUserKey1;
  std::wstring m_strUserKey2;
  std::wstring m_strUserKey3;
  std::wstring m_strProcessID;
};

/// The part of an ID before its first "#", or the whole of it; "" for one that begins with "#".
std::wstring TagOfID(const std::wstring& strategyID);

/// Base of every automatic strategy: its identity, its copy of the order info, its own quote records, its log
/// line, and thin access to what the engine offers. It holds no trading logic.
///
/// Three kinds of thread enter a strategy: the engine's threads for commands and messages, the timer's
/// threads and the threads of the record bus. Every member has a lock or is atomic. Lock order: quote lock,
/// then reverse lock; neither is held when the engine's strategy lock may be taken (SubQuote, UnsubQuote).
class CStrategy : public CBaseDataEventReceiver, public std::enable_shared_from_this<CStrategy> {
 public:
  explicit CStrategy(IStrategyHost& owner);
  /// Closes what quotes are left. A derived class closes them first thing in its own destructor, so that no
  /// event finds it half destroyed.
  ~CStrategy() override;
  CStrategy(const CStrategy&) = delete;
  CStrategy& operator=(const CStrategy&) = delete;

  /// A strategy is held by shared references: an update on its way keeps it alive.
  std::optional<std::shared_ptr<void>> Pin() override;

  /// The number that stands for this object in texts and thread messages; never given twice.
  uint32_t ObjectNumber() const { return m_objectNumber; }
  using IdentityPtr = std::shared_ptr<const CStrategyIdentity>;
  /// Who the strategy is now; never none.
  IdentityPtr Identity() const;
  std::wstring Key() const { return Identity()->m_strStrategyKey; }
  void SetKey(const std::wstring& key);

  /// Takes the document over by exchange, reads the envelope and runs the two parse steps. On the command
  /// thread.
  void ParseStrategyInfo(rapidjson::Document& document);

  virtual void ParseOrderInfo() {}
  virtual void AfterParseOrderInfo() {}
  /// A report of one of the strategy's orders; the record is destroyed afterwards. On the message thread.
  virtual void OnReportUpdate(CBaseData*) {}
  /// A posted event; on the message thread.
  virtual void OnStrategyEvent(uint32_t, uintptr_t) {}
  /// Values one quote; 1 if the totals were recomputed.
  virtual int32_t OnPositionProfit(const CQuoteData&) { return 0; }
  virtual void PublishProfit() {}
  /// The minute tick, with the UTC time as YYYYMMDDhhmmss; on a timer thread, under the engine's strategy
  /// lock.
  virtual void Start(int64_t) {}
  /// The command with action 0; under the engine's strategy lock, so it stays short.
  virtual void OnStopCommand(const rapidjson::Document&) {}
  /// Asks the engine to drop this strategy.
  virtual void DelStrategy();
  virtual int64_t GetLongValue(const std::wstring&, int64_t fallback) { return fallback; }
  virtual double GetDoubleValue(const std::wstring&, double fallback) { return fallback; }
  /// Whether what GetDoubleValue tells, or the tag that it counts for, may have changed since this was last
  /// asked; true at first. Takes no lock.
  bool TakeTotalsChanged() { return m_totalsChanged.load() && m_totalsChanged.exchange(false); }

  /// True if the symbol is in the quote table, also without a handle.
  bool HasQuote(const std::wstring& symbol);

 protected:
  /// A handle of the quote table. Whoever holds it may read it, also after the symbol was unsubscribed.
  /// Inside OnUpdate the source itself is used instead: a handle must not die in its own event.
  using QuoteHandle = std::shared_ptr<CBaseData>;
  using QuoteKey = std::shared_ptr<const CQuoteKey>;
  struct CQuote {
    QuoteKey key;
    QuoteHandle handle;
  };

  /// After each change of what GetDoubleValue tells.
  void NoteTotalsChanged() { m_totalsChanged = true; }

  IStrategyHost& Owner() { return m_owner; }
  IRuntime& Runtime() { return m_owner.GetWorld().runtime; }

  void WriteLog(const std::wstring& message);
  void PostEvent(uint32_t number, uintptr_t extra = 0) { m_owner.PostEngineMessage(number, this, extra); }
  /// What the order info said in "UserKey2" gives way to this.
  void SetUserKey2(const std::wstring& text);

  /// The order info of the last command; only on the command thread, inside the parse steps.
  const rapidjson::Document& OrderInfo() const { return m_orderInfo; }
  /// The same as compact JSON, from any thread.
  std::wstring OrderInfoText() const;

  /// The new handle, or none if the strategy holds the symbol already or the record doesn't open; then the
  /// table holds an entry without a handle.
  QuoteHandle SubscribeQuote(const std::wstring& symbol);
  void UnsubscribeQuote(const std::wstring& symbol);
  void CloseAllQuotes();
  QuoteHandle GetQuote(const std::wstring& symbol) { return FindQuote(symbol).handle; }
  /// The entry of the quote table; an empty one if the symbol isn't there.
  CQuote FindQuote(const std::wstring& symbol);
  /// NoValue without a handle.
  int64_t GetQuoteField(const std::wstring& symbol, int32_t id);
  /// True if the quote's "MCODE" is above 0.
  bool IsQuoteValid(const std::wstring& symbol);
  /// The symbol of an open handle, or none.
  QuoteKey KeyOf(CBaseData* handle);
  /// The key of any symbol, whether there is a quote of it or not; never none.
  QuoteKey KeyOfSymbol(const std::wstring& symbol);

  /// The symbol's "Weight" as a whole number; 1.0 if it has none.
  double GetContractWeight(const std::wstring& symbol);
  /// The present local time as YYYYMMDDhhmmss.
  int64_t LocalDateTime14() { return ToDateTime14(Runtime().LocalTime()); }

 private:
  QuoteKey KeyFor(const std::wstring& symbol) IORDER_REQUIRES(m_csQuote);
  void SetIdentity(CStrategyIdentity identity);

  IStrategyHost& m_owner;
  const uint32_t m_objectNumber;
  const std::wstring m_logSuffix;  ///< what stands between key and message of a log line

  mutable CCriticalSection m_csIdentity;
  IdentityPtr m_identity IORDER_GUARDED_BY(m_csIdentity);
  std::atomic<bool> m_totalsChanged{true};

  mutable CCriticalSection m_csOrderInfo;
  rapidjson::Document m_orderInfo;

  CCriticalSection m_csQuote;
  std::map<std::wstring, CQuote> m_mapQuote IORDER_GUARDED_BY(m_csQuote);
  std::map<std::wstring, QuoteKey> m_mapKeys IORDER_GUARDED_BY(m_csQuote);
  CCriticalSection m_csReverse;
  std::unordered_map<CBaseData*, QuoteKey> m_mapReverse IORDER_GUARDED_BY(m_csReverse);
};

}  // namespace iorder
