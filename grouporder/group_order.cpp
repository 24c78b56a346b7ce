#include "grouporder/group_order.h"

#include <algorithm>

namespace iorder {

size_t stcIntlgntOrd::AddChild(const std::wstring& levelKey) {
  CLockGuard guard(cs);
  arChildKeys.push_back(levelKey);
  return arChildKeys.size();
}

void stcIntlgntOrd::RemoveChild(const std::wstring& levelKey) {
  CLockGuard guard(cs);
  const auto found = std::find(arChildKeys.begin(), arChildKeys.end(), levelKey);
  if (found != arChildKeys.end()) arChildKeys.erase(found);
}

size_t stcIntlgntOrd::ChildCount() {
  CLockGuard guard(cs);
  return arChildKeys.size();
}

}  // namespace iorder
