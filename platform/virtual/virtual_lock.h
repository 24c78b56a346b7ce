#pragma once

#include <string>
#include <string_view>

#include "platform/lock_order.h"
#include "platform/runtime.h"

namespace iorder {

class CScheduler;
class CVirtualThread;

/// A lock of the virtual runtime. Who finds it taken waits in line and is handed it.
class CVirtualLock final : public ILock {
 public:
  /// Whether entering may give another thread its turn.
  enum class Turn { kGiven, kKept };

  CVirtualLock(CScheduler& scheduler, const char* name, Turn turn = Turn::kGiven);
  ~CVirtualLock() override;

  void Enter() override;
  void Leave() noexcept override;

  std::string_view Name() const noexcept { return m_name; }
  std::string Describe() const;
  /// Takes `thread` out of the line.
  void RemoveWaiter(CVirtualThread& thread) noexcept;

 private:
  void WaitInLine(CVirtualThread& self);
  void SetOwner(CVirtualThread& thread);
  void DropOwner() noexcept;

  CScheduler& m_scheduler;
  const std::string_view m_name;
  const CLockOrder::Role m_role;
  const Turn m_turn;
  CVirtualThread* m_owner = nullptr;
  int m_depth = 0;
  CVirtualThread* m_firstWaiter = nullptr;
  CVirtualThread* m_lastWaiter = nullptr;
};

}  // namespace iorder
