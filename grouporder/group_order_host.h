#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "records/base_data.h"

namespace iorder {

/// What group orders may ask of the engine. All operations may come from any thread, and none is called under
/// a lock of the group orders.
class IGroupOrderHost {
 public:
  virtual ~IGroupOrderHost() = default;

  virtual World& GetWorld() = 0;
  virtual std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name,
                                                CBaseDataEventReceiver* receiver) = 0;
  virtual Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second,
                              const std::wstring& text, const Value& value) = 0;
  /// The record of a handle that the host announced; its updates reach the engine. None if there is none.
  virtual std::unique_ptr<CBaseData> FollowRecord(int32_t handle) = 0;

  /// Calls of a chain's options, in the order in which legs look at them.
  virtual std::vector<std::wstring> QueryOptionList(const std::wstring& symbol) = 0;
  /// As CQuoteSubscriptions has them.
  virtual bool EnsureOptionTopic(const std::wstring& name) = 0;
  virtual bool IsQuoteValid(const std::wstring& name) = 0;

  /// The standing records "STRATEGY.POSITION" and "TRADE.EXTENDORDER.SETUP"; none if they aren't open.
  virtual CBaseData* StrategyPosition() = 0;
  virtual CBaseData* ExtendOrderSetup() = 0;

  /// How many times faster than the day itself the host plays it; 0 or 1 in real time.
  virtual int32_t ReplaySpeed() = 0;
  /// A timer that calls OnOrderRecheck with its id. 0 if the id runs already: it is left as it is.
  virtual int32_t ArmRecheck(int32_t timerId, int32_t delayMs) = 0;
  /// Counts the whole delay from now. 0 if the id doesn't run.
  virtual int32_t PutOffRecheck(int32_t timerId, int32_t delayMs) = 0;
};

}  // namespace iorder
