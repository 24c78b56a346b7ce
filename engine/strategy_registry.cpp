#include "engine/strategy_registry.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace iorder {

CStrategyRegistry::CStrategyRegistry(IRuntime& runtime)
    : m_csStrategies(runtime, "m_csStrategies"),
      m_csRetiring(runtime, "m_csRetiring"),
      m_csRetired(runtime, "m_csRetired") {}

CStrategyRegistry::CWalk CStrategyRegistry::WalkTo(const std::wstring& key) {
  CLockGuard guard(m_csStrategies);
  CWalk walk;
  for (size_t i = 0; i < m_arStrategies.size(); ++i) {
    walk.strategy = m_arStrategies[i];
    if (walk.strategy->Key() != key) continue;
    walk.index = static_cast<int32_t>(i);
    break;
  }
  return walk;
}

int32_t CStrategyRegistry::Add(StrategyPtr strategy, const std::wstring& key) {
  CLockGuard guard(m_csStrategies);
  ++m_revision;
  m_setStrategies[strategy->ObjectNumber()] = strategy;
  m_mapStrategies[key] = strategy;
  m_arStrategies.push_back(std::move(strategy));
  return static_cast<int32_t>(m_arStrategies.size()) - 1;
}

CStrategyRegistry::StrategyPtr CStrategyRegistry::Find(uintptr_t objectNumber) {
  CLockGuard guard(m_csStrategies);
  const auto found = m_setStrategies.find(objectNumber);
  return found == m_setStrategies.end() ? nullptr : found->second.lock();
}

CStrategyRegistry::StrategyPtr CStrategyRegistry::FindByKey(const std::wstring& key) {
  CLockGuard guard(m_csStrategies);
  const auto found = m_mapStrategies.find(key);
  return found == m_mapStrategies.end() ? nullptr : found->second.lock();
}

CStrategyRegistry::StrategyPtr CStrategyRegistry::FindWithRetired(uintptr_t objectNumber) {
  if (StrategyPtr live = Find(objectNumber)) return live;
  const auto findIn = [objectNumber](const std::vector<StrategyPtr>& strategies) -> StrategyPtr {
    const auto found = std::find_if(
        strategies.begin(), strategies.end(),
        [objectNumber](const StrategyPtr& entry) { return entry->ObjectNumber() == objectNumber; });
    return found == strategies.end() ? nullptr : *found;
  };
  {
    CLockGuard guard(m_csRetiring);
    if (StrategyPtr retiring = findIn(m_arRetiring)) return retiring;
  }
  CLockGuard guard(m_csRetired);
  return findIn(m_arRetired);
}

void CStrategyRegistry::ForEach(const std::function<void(CStrategy&)>& visit) {
  CLockGuard guard(m_csStrategies);
  for (const StrategyPtr& strategy : m_arStrategies) visit(*strategy);
}

bool CStrategyRegistry::AnyHolds(const std::wstring& symbol) {
  CLockGuard guard(m_csStrategies);
  return std::any_of(m_arStrategies.begin(), m_arStrategies.end(),
                     [&symbol](const StrategyPtr& strategy) { return strategy->HasQuote(symbol); });
}

CStrategyRegistry::StrategyPtr CStrategyRegistry::Remove(CStrategy& strategy) {
  const auto found = std::find_if(m_arStrategies.begin(), m_arStrategies.end(),
                                  [&strategy](const StrategyPtr& entry) { return entry.get() == &strategy; });
  if (found == m_arStrategies.end()) return nullptr;
  ++m_revision;
  StrategyPtr removed = std::move(*found);
  m_arStrategies.erase(found);
  m_mapStrategies.erase(removed->Key());
  m_setStrategies.erase(removed->ObjectNumber());
  // A key that the strategy had before a command gave it another one leads nowhere now.
  std::erase_if(m_mapStrategies, [&removed](const auto& entry) { return entry.second.lock() == removed; });
  return removed;
}

void CStrategyRegistry::Retire(CStrategy& strategy) {
  CLockGuard guard(m_csStrategies);
  StrategyPtr removed = Remove(strategy);
  if (removed == nullptr) return;
  CLockGuard retiringGuard(m_csRetiring);
  m_arRetiring.push_back(std::move(removed));
}

void CStrategyRegistry::Turn() {
  std::vector<StrategyPtr> retired;
  {
    CLockGuard guard(m_csRetired);
    retired.swap(m_arRetired);
  }
  retired.clear();
  std::vector<StrategyPtr> retiring;
  {
    CLockGuard guard(m_csRetiring);
    retiring.swap(m_arRetiring);
  }
  CLockGuard guard(m_csRetired);
  std::move(retiring.begin(), retiring.end(), std::back_inserter(m_arRetired));
}

void CStrategyRegistry::DeleteAll() {
  {
    CLockGuard guard(m_csStrategies);
    CLockGuard retiringGuard(m_csRetiring);
    std::move(m_arStrategies.begin(), m_arStrategies.end(), std::back_inserter(m_arRetiring));
    m_arStrategies.clear();
  }
  std::vector<StrategyPtr> ending;
  {
    CLockGuard guard(m_csRetiring);
    ending.swap(m_arRetiring);
  }
  // One by one, in their order: each unsubscribes for itself.
  for (StrategyPtr& strategy : ending) strategy.reset();
  ending.clear();
  {
    CLockGuard guard(m_csRetired);
    ending.swap(m_arRetired);
  }
  for (StrategyPtr& strategy : ending) strategy.reset();
}

}  // namespace iorder
