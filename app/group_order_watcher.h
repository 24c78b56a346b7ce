#pragma once

#include <functional>
#include <string>

#include "app/replay_listener.h"
#include "grouporder/group_order_watch.h"
#include "terminal/embedded_terminal.h"

namespace iorder {

/// Tells a listener what the group orders of an engine decide, between the events of their terminal. Calls
/// come from several engine threads at once; the run is the same with it and without. Terminal and listener
/// outlive it.
class CGroupOrderWatcher : public IGroupOrderWatch {
 public:
  CGroupOrderWatcher(CEmbeddedTerminal& terminal, CHappeningListener& listener)
      : m_terminal(terminal), m_listener(listener) {}

  void OnLook(const stcIntlgntOrd& order, const CStopCheck& check) override;
  void OnCycle(const stcIntlgntOrd& order, const CGroupCycle& cycle) override;
  void OnEnd(const stcIntlgntOrd& order, GroupOrderEnd end) override;
  void OnChild(const stcIntlgntOrd& order, const std::wstring& levelKey) override;
  void OnChildUpdate(const stcIntlgntOrd& order, const std::wstring& levelKey, int32_t execType,
                     size_t live) override;
  void OnNoLook(const stcIntlgntOrd& order) override;
  void OnRecheck(const stcIntlgntOrd& order, int32_t timerId, int32_t delayMs) override;

 private:
  void Tell(const std::function<void(IGroupOrderWatch& watch)>& what);

  CEmbeddedTerminal& m_terminal;
  CHappeningListener& m_listener;
};

}  // namespace iorder
