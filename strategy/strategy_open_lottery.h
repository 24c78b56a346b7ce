#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "strategy/lot_allocation.h"
#include "strategy/open_lottery_info.h"
#include "strategy/option_chain.h"
#include "strategy/order_pricing.h"
#include "strategy/order_report.h"
#include "strategy/order_string.h"
#include "strategy/position_book.h"
#include "strategy/shared_time.h"
#include "strategy/strategy.h"
#include "strategy/symbol_set.h"

namespace iorder {

class CStatusMessage;

/// The states of an OpenLottery strategy. They have numbers only: the numbers show in log lines.
namespace lottery_state {
inline constexpr int32_t kRejected = -3;  ///< a report of the run was refused
inline constexpr int32_t kStopped = -2;   ///< by command; the minute tick ignores the strategy
inline constexpr int32_t kIdle = -1;      ///< no run
inline constexpr int32_t kResetting = 0;
inline constexpr int32_t kWaiting = 1;    ///< reset done, waiting for the start minute
inline constexpr int32_t kRunning = 2;    ///< scan done, no orders in flight
inline constexpr int32_t kPlacing = 3;    ///< a batch is being built and sent
inline constexpr int32_t kOrdersOut = 4;  ///< waiting for acknowledgements
inline constexpr int32_t kCancelling = 5;
inline constexpr int32_t kCancelsOut = 6;
inline constexpr int32_t kFilled = 8;  ///< a report of the batch told a fill or an end
}  // namespace lottery_state

/// The events that a strategy posts to itself, handled on the message thread.
namespace lottery_event {
inline constexpr uint32_t kPlaceBatch = 4025;
inline constexpr uint32_t kMakeRoom = 4026;          ///< cancel what works to make room for a new hit
inline constexpr uint32_t kUnderlyingPriced = 4027;  ///< try the selection again
inline constexpr uint32_t kStop = 4028;
inline constexpr uint32_t kLimitReached = 4029;  ///< stop by profit or loss
}  // namespace lottery_event

/// A daily routine over one option chain. A minute before its start time it builds the chain (Reset) and
/// keeps the strikes that its rules select around the at-the-money strike of the underlying (GetSymbolList).
/// From the start time on it judges each option by its opening price (ScanQuote, OnUpdate), and buys the ones
/// that pass in batches under a cash limit (DoPlaceOrder). It follows the reports of its orders
/// (OnReportUpdate), values what it holds (OnPositionProfit), and cancels and closes when its stop time, a
/// command or a limit says so (DoCancelOrderOpen, DoClosePos).
///
/// Entered by the command thread (parse, stop command), the message thread (events, batches, reports), timer
/// threads (Start), bus threads (OnUpdate) and the engine's profit threads. Each collection has a lock of its
/// own, held briefly; the state is read as a snapshot. Lock order: chain, then symbols; symbols, then quote
/// lock, and then the scan's sets; scan hits, then ordered symbols; positions, then profit. Lines and
/// messages leave under a lock in four places: the walk of a scan under that of the symbols; a close-out, a
/// valuation and the telling of profit under that of the positions. Batches and reports stay serial
/// because only the message thread runs them, and other threads reach it by posting.
class CStrategyOpenLottery : public CStrategy {
 public:
  /// `installPath` is the terminal's folder, with a trailing separator.
  CStrategyOpenLottery(IStrategyHost& owner, std::wstring installPath);
  ~CStrategyOpenLottery() override;

  void OnUpdate(CBaseData* source, int32_t originator, const std::wstring& payload) override;
  void ParseOrderInfo() override;
  void AfterParseOrderInfo() override;
  void OnStrategyEvent(uint32_t number, uintptr_t extra) override;
  void Start(int64_t utcDateTime14) override;
  void OnStopCommand(const rapidjson::Document& document) override;
  /// "TotalCashOrder": the cash that the last batch committed.
  int64_t GetLongValue(const std::wstring& name, int64_t fallback) override;
  /// "PnL" and "Cost": profit of the positions, and what was paid for them, in money.
  double GetDoubleValue(const std::wstring& name, double fallback) override;
  void OnReportUpdate(CBaseData* record) override;
  int32_t OnPositionProfit(const CQuoteData& quote) override;
  void PublishProfit() override;

 private:
  using InfoPtr = std::shared_ptr<const COpenLotteryInfo>;

  // Parameters and state.
  InfoPtr Info() const;
  void SetInfo(COpenLotteryInfo info);
  int32_t Status() const;
  void SetStatus(int32_t status);
  /// Counts the runs: "0" after the first Reset, "" before it.
  std::wstring StampText() const;

  // Lifecycle.
  bool IsStartAllowed(const COpenLotteryInfo& info, const DateTime& now);
  void StartAtOnce();
  void StartRun(int32_t status);
  void StopByTime(const COpenLotteryInfo& info);
  void StopByCommand();
  void StopByLimit();
  void RetrySelection();
  bool WaitForSymbolList();
  /// Looks up to ten times, with a sleep after each failed look, until all quotes of the run are valid.
  bool WaitForValidQuotes();
  void ReleaseUnderlying();
  void UnsubAll();

  // Reset.
  void Reset();
  void ClearRun();
  void BuildChain(const COpenLotteryInfo& info, const std::wstring& chainSymbol);
  std::wstring ResolveChain(const COpenLotteryInfo& info);
  std::wstring ComposeUnderlying(const COpenLotteryInfo& info, const std::wstring& chainSymbol);
  std::wstring GetUnderlyingBase(const std::wstring& symbol);
  std::shared_ptr<CBaseData> UnderlyingList();
  void SubscribeUnderlying(const COpenLotteryInfo& info, const std::wstring& underlying,
                           const std::wstring& greeks);

  // Trading session.
  bool IsInTradingHours(CBaseData* handle, const std::wstring& symbol);
  bool IsTWFTradingHour(CBaseData* handle, const std::wstring& symbol);
  /// Where hours are tested: takes the UTC time from the clock, unless a minute tick has stored one of our
  /// years.
  void FillUtcTime();

  // Selection of strikes.
  void GetSymbolList();
  /// Finds the price that the selection goes by; false if it isn't there yet.
  bool FindUnderlyingPrice(const COpenLotteryInfo& info);
  void GetATM();
  bool SelectSymbols(const COpenLotteryInfo& info);
  void SelectByFlags(const COpenLotteryInfo& info);
  void SelectByRange(const COpenLotteryInfo& info);

  // Judging options.
  enum class Verdict { kUnjudged, kKnown, kNewPass, kKnownPass };
  int32_t ScanQuote();
  Verdict Judge(const CQuoteKey& option, CBaseData& handle, ScaledValue& openPrice);
  void JudgeUpdate(const CQuoteKey& option, CBaseData& handle, int32_t updateId);
  void LogOpenPrice(const CQuoteKey& option, CBaseData& handle, ScaledValue openPrice);

  // Placing orders.
  void DoPlaceOrder();
  std::vector<std::wstring> DrainHits();
  void StampBatch();
  /// Forgets the reports of the batch before; true if there was one.
  bool ClearReports();
  /// All symbols taken so far, in the order in which they are served: calls from the highest strike, puts
  /// from the lowest.
  std::vector<CBatchSymbol> SymbolsInOrder(const std::vector<std::wstring>& newSymbols);
  double OrderPriceOf(const COpenLotteryInfo& info, const std::wstring& symbol);
  /// What one price point of a lot of the run's chain is worth.
  double ChainWeight();
  int32_t PlaceLots(const std::vector<CBatchSymbol>& symbols);
  bool NewOrderOpen(const std::wstring& symbol, ScaledValue price, int32_t lots);
  bool NewOrder(const COrder& order);

  // Calculating order prices.
  /// The theoretical price after an adverse move of the underlying, within its band and on the tick, or
  /// NoPrice; told in any case.
  double GetCalOrderPrice(const COpenLotteryInfo& info, const std::wstring& symbol);
  void ReadVolatility(const COpenLotteryInfo& info, COrderPricing& pricing);
  void ReadUnderlying(const COpenLotteryInfo& info, COrderPricing& pricing);
  void CountDays(COrderPricing& pricing);
  void LogCalOrderPrice(const COpenLotteryInfo& info, const COrderPricing& pricing, double orderPrice);
  void PublishCalOrderPrice(const COpenLotteryInfo& info, const COrderPricing& pricing);

  // Following reports.
  /// A fill or a rejection changes the state.
  void NoteExecution(int32_t execType);
  void KeepReport(const COrderReport& report, CBaseData& record);
  void FollowOpenOrder(const COrderReport& report, int32_t status);
  /// Goes on once every ordered symbol has its acknowledgement, or its cancellation.
  void CheckBatchComplete(int32_t status);
  size_t CountReports(int32_t execType);
  /// Takes a report into its symbol's position and tells both; `now` is a YYYYMMDDhhmmss.
  void UpdatePosition(const COrderReport& report, int32_t action, int64_t now);
  static void TellOpenOrder(const COrderReport& report, CStatusMessage& message);
  static void TellClosed(const CPosInfo::CClosed& closed, CStatusMessage& message);
  /// A stopped strategy goes once nothing is held and nothing works.
  void LeaveIfEmpty();

  // Ending orders and positions. Both give 1 if there was something to end.
  /// bStop 0: to make room for a new batch, 1: the run ends.
  int32_t DoCancelOrderOpen(int32_t bStop);
  std::vector<std::wstring> WorkingReports();
  bool HasNoReports();
  void CancelOpenOrder(const std::wstring& reportID, int32_t bStop);
  std::wstring SymbolOfReport(const std::wstring& reportID);
  bool IsCancelAsked(const std::wstring& reportID);
  void CancelOrder(const std::wstring& reportID);
  /// bByProfit 1: a profit or loss limit was reached.
  int32_t DoClosePos(int32_t bByProfit);
  void AnnounceClose(const std::wstring& symbol, const std::wstring& type, int32_t lots, int32_t result);

  // Valuing positions.
  /// Hands the state of a quote (none: no values) to the profit monitor.
  void EnqueueSnapshot(const std::wstring& symbol, CBaseData* quote, int32_t updateId);
  /// Money of one price point; 1.0 while none is known.
  double WeightOf(const std::wstring& symbol, CPosInfo& position);

  // Status messages.
  void UpdateStatus(const std::wstring& text, int32_t bLog);
  void PublishOrderResult(const std::wstring& symbol, int32_t lResult, int32_t lAction);
  void PublishScanResult(const std::wstring& symbol, ScaledValue openPrice, int32_t openPriceOK);
  void PublishClearReport();

  const std::wstring m_strInstallPath;

  mutable CCriticalSection m_csInfo;
  InfoPtr m_info IORDER_GUARDED_BY(m_csInfo);
  std::atomic<int32_t> m_bManuStopCancel{0};
  std::atomic<int32_t> m_bManuStopClosePos{0};
  std::atomic<int64_t> m_llResetTime{NoValue};
  /// 3: a market whose trading hours are tested, 1: one whose aren't.
  std::atomic<int32_t> m_lMarketKind{3};

  mutable CCriticalSection m_csStatus;
  int32_t m_lStatus IORDER_GUARDED_BY(m_csStatus) = lottery_state::kIdle;

  /// The run's symbols, as Reset resolved them.
  mutable CCriticalSection m_csRun;
  std::wstring m_strChainSymbol IORDER_GUARDED_BY(m_csRun);
  std::wstring m_strSymbolUnderlying IORDER_GUARDED_BY(m_csRun);
  std::wstring m_strSymbolUnderlyingGreeks IORDER_GUARDED_BY(m_csRun);
  /// The record "Underlying.F.List", opened when first needed and kept.
  std::shared_ptr<CBaseData> m_pUnderlyingList IORDER_GUARDED_BY(m_csRun);

  /// Only compared with the source of an update; the quote table owns the handles.
  std::atomic<const CBaseData*> m_pQuoteUnderlying{nullptr};
  std::atomic<const CBaseData*> m_pQuoteGreeks{nullptr};
  std::atomic<int32_t> m_bSymbolListReady{0};
  std::atomic<int32_t> m_bGreeksReady{0};

  COptionChain m_chain;
  /// Every symbol of the run: the chain after selection, the underlying, the greeks record's name.
  CSymbolList m_mapSymbols;
  std::atomic<int32_t> m_lATM0IndexCall{-1};
  std::atomic<int32_t> m_lATM0IndexPut{-1};
  std::atomic<ScaledValue> m_llUnderlyingPrice{NoValue};

  CSymbolList m_mapScanHit;    ///< accepted, not yet taken by a batch
  CSymbolSet m_mapScanPassed;  ///< accepted in this run
  CSymbolSet m_mapScanFailed;  ///< rejected in this run
  CSymbolSet m_mapOpenLogged;  ///< logged with their opening price in this run
  CSymbolList m_mapOrdered;    ///< taken into a batch

  CCriticalSection m_csScanned;
  std::vector<std::wstring> m_arScannedSymbolCall IORDER_GUARDED_BY(m_csScanned);
  std::vector<std::wstring> m_arScannedSymbolPut IORDER_GUARDED_BY(m_csScanned);

  CCriticalSection m_csReportRecord;
  std::map<std::wstring, std::unique_ptr<CBaseData>> m_mapReportRecord IORDER_GUARDED_BY(m_csReportRecord);
  CCriticalSection m_csReportExec;
  std::map<std::wstring, int32_t> m_mapReportExec IORDER_GUARDED_BY(m_csReportExec);

  CCriticalSection m_csBatch;
  std::wstring m_strBatchStamp IORDER_GUARDED_BY(m_csBatch);

  CCriticalSection m_csCash;
  int64_t m_llTotalCashOrder IORDER_GUARDED_BY(m_csCash) = 0;

  CPositionBook m_positions;
  CCriticalSection m_csProfit;
  double m_dbTotalPnL IORDER_GUARDED_BY(m_csProfit) = 0.0;
  double m_dbTotalCost IORDER_GUARDED_BY(m_csProfit) = 0.0;
  std::atomic<bool> m_hasUntoldProfit{false};  ///< some position is dirty
  /// A limit has closed out. Nothing clears it: that happens once in a strategy's life.
  std::atomic<int32_t> m_bDoClosePosByProfit{0};

  /// Reports whose cancel was told, so that its confirmation is known; it only grows.
  CCriticalSection m_csCancelAsked;
  std::set<std::wstring> m_mapCancelAsked IORDER_GUARDED_BY(m_csCancelAsked);

  std::atomic<int64_t> m_llStamp{0};  ///< counts the Resets
  CSharedTime m_stLocalTime;          ///< of the last minute tick
  CSharedTime m_stUTCTime;
};

}  // namespace iorder
