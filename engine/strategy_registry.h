#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "strategy/strategy.h"

namespace iorder {

/// The engine's strategies: all live ones in the order of their creation, with indexes by key and by object
/// number, and the two stages of deferred deletion. A strategy may have events in flight, so it is never
/// deleted where it is removed: it waits in `m_arRetiring` and then in `m_arRetired`, and the minute tick
/// empties them. Whoever is inside a strategy holds a reference, so that it outlives the lists if it must.
///
/// Any thread may call. Lock order: m_csStrategies, then m_csRetiring. A strategy's destructor unsubscribes
/// and so takes m_csStrategies: strategies are taken out of a list under its lock and deleted after it was
/// left.
class CStrategyRegistry {
 public:
  using StrategyPtr = std::shared_ptr<CStrategy>;

  explicit CStrategyRegistry(IRuntime& runtime);

  /// The lock of the live strategies, for steps that need several operations under one hold.
  CCriticalSection& Lock() IORDER_THREAD_ANNOTATION(lock_returned(m_csStrategies)) { return m_csStrategies; }

  /// Where a walk for a key ended: at the strategy with that key, or behind the last entry, index -1, with
  /// the last entry still in hand (none if there is no strategy).
  struct CWalk {
    int32_t index = -1;
    StrategyPtr strategy;
    bool IsFound() const { return index >= 0; }
  };
  CWalk WalkTo(const std::wstring& key);
  /// Enters a new strategy under its key and returns its index.
  int32_t Add(StrategyPtr strategy, const std::wstring& key);

  /// The live strategy of this object number, or none.
  StrategyPtr Find(uintptr_t objectNumber);
  /// The live strategy of this key, or none.
  StrategyPtr FindByKey(const std::wstring& key);
  /// Grows with each strategy that comes or goes.
  uint64_t Revision() const { return m_revision; }
  /// Calls `visit` with each live strategy, in order, with the lock held.
  void ForEach(const std::function<void(CStrategy&)>& visit);
  /// True if a live strategy has the symbol in its quote table.
  bool AnyHolds(const std::wstring& symbol);

  /// The same, also among the strategies that were retired and not yet deleted.
  StrategyPtr FindWithRetired(uintptr_t objectNumber);

  /// Takes a live strategy out of all tables; it is deleted at the second turn from now. Nothing happens to
  /// one that isn't live any more.
  void Retire(CStrategy& strategy);
  /// One turn of the minute tick: deletes what was retired before the last turn.
  void Turn();
  /// The end: retires what is live and deletes everything. The indexes stay, and lead nowhere.
  void DeleteAll();

 private:
  StrategyPtr Remove(CStrategy& strategy) IORDER_REQUIRES(m_csStrategies);

  std::atomic<uint64_t> m_revision{0};
  CCriticalSection m_csStrategies;
  std::vector<StrategyPtr> m_arStrategies IORDER_GUARDED_BY(m_csStrategies);
  /// By object number: a test of life that a reused address can't deceive.
  std::map<uintptr_t, std::weak_ptr<CStrategy>> m_setStrategies IORDER_GUARDED_BY(m_csStrategies);
  std::map<std::wstring, std::weak_ptr<CStrategy>> m_mapStrategies IORDER_GUARDED_BY(m_csStrategies);

  CCriticalSection m_csRetiring;
  std::vector<StrategyPtr> m_arRetiring IORDER_GUARDED_BY(m_csRetiring);
  CCriticalSection m_csRetired;
  std::vector<StrategyPtr> m_arRetired IORDER_GUARDED_BY(m_csRetired);
};

}  // namespace iorder
