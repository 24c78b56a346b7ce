#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "records/host_gateway.h"
#include "reference/quote_data.h"

namespace iorder {

class CStrategy;

/// What a strategy may ask of the engine. All operations may come from any thread; those that take the
/// engine's strategy lock say so, and a strategy calls them under none of its own locks.
class IStrategyHost {
 public:
  virtual ~IStrategyHost() = default;

  virtual World& GetWorld() = 0;
  virtual void WriteLog(const std::wstring& text) = 0;
  virtual std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name,
                                                CBaseDataEventReceiver* receiver) = 0;
  virtual Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second,
                              const std::wstring& text, const Value& value) = 0;

  /// Posts `message` for `strategy` to the engine's message thread: delivered in order there, dropped if the
  /// strategy has gone by then.
  virtual void PostEngineMessage(uint32_t message, CStrategy* strategy, uintptr_t extra) = 0;

  /// Tells the host to deliver quotes of `symbol`, or to stop, unless another strategy or a group order holds
  /// it. They take the engine's strategy lock.
  virtual void SubQuote(const std::wstring& symbol) = 0;
  virtual void UnsubQuote(const std::wstring& symbol) = 0;

  virtual std::wstring GetHotMonth(const std::wstring& symbol) = 0;
  virtual std::vector<std::wstring> QueryOptionList(const std::wstring& symbol) = 0;
  virtual std::wstring GetStringFromSecurity(const std::wstring& symbol, const std::wstring& attribute) = 0;
  virtual ScaledValue RoundToTick(const std::wstring& symbol, double price) = 0;
  /// As CTradingCalendar has them; a date that can't be raises CPlatformError.
  virtual int32_t GetTradingDays(const std::wstring& symbol, int32_t endDate, int32_t startDate) = 0;
  virtual bool IsAccountReady(const std::wstring& broker, const std::wstring& account) = 0;
  /// Hands a snapshot to the profit monitor.
  virtual void EnqueueQuote(const CQuoteData& quote) = 0;
};

}  // namespace iorder
