#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/happening.h"
#include "grouporder/group_order_watch.h"
#include "terminal/local_time.h"

namespace iorder {

/// Makes happenings of what the group orders decide. Not for several threads at once.
class CGroupOrderReader : public IGroupOrderWatch {
 public:
  explicit CGroupOrderReader(std::function<void(const Happening&)> tell) : m_tell(std::move(tell)) {}

  /// The local time of what comes next.
  void SetNow(LocalTime now) { m_now = now; }

  /// Tells an order string the number of its group order and its leg, which the string itself doesn't name.
  void Complete(OrderSent& order);

  void OnLook(const stcIntlgntOrd& order, const CStopCheck& check) override;
  void OnCycle(const stcIntlgntOrd& order, const CGroupCycle& cycle) override;
  void OnEnd(const stcIntlgntOrd& order, GroupOrderEnd end) override;
  void OnChild(const stcIntlgntOrd& order, const std::wstring& levelKey) override;
  void OnChildUpdate(const stcIntlgntOrd& order, const std::wstring& levelKey, int32_t execType,
                     size_t live) override;
  void OnNoLook(const stcIntlgntOrd& order) override;
  void OnRecheck(const stcIntlgntOrd& order, int32_t timerId, int32_t delayMs) override;

 private:
  /// What is remembered of one order.
  struct Known {
    int64_t cycles = 0;
    std::optional<double> sum;             ///< of the last look
    std::map<std::string, bool> children;  ///< true: its announcement has come
    size_t live = 0;
    bool isFailed = false;
  };

  GroupOrderName NameOf(const stcIntlgntOrd& order);
  void ExpectStrings(const GroupOrderName& name, const stcIntlgntOrd& order, const CGroupCycle& cycle);

  std::function<void(const Happening&)> m_tell;
  LocalTime m_now{};
  std::map<int64_t, Known> m_known;                   ///< by number
  std::map<std::string, std::set<int64_t>> m_ids;     ///< numbers of the orders of each id
  std::multimap<std::string, GroupString> m_strings;  ///< made, but not sent yet; by their text
};

}  // namespace iorder
