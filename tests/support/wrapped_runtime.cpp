#include "tests/support/wrapped_runtime.h"

#include <vector>

namespace iorder::test {

namespace {

class CWrappedTimer : public IWaitableTimer {
 public:
  CWrappedTimer(std::unique_ptr<IWaitableTimer> timer, const bool& refuseCancel)
      : m_timer(std::move(timer)), m_refuseCancel(refuseCancel) {}

  bool Arm(Milliseconds first, Milliseconds period) override { return m_timer->Arm(first, period); }
  bool Cancel() override { return !m_refuseCancel && m_timer->Cancel(); }
  IWaitable* Inner() const { return m_timer.get(); }

 private:
  std::unique_ptr<IWaitableTimer> m_timer;
  const bool& m_refuseCancel;
};

}  // namespace

std::unique_ptr<IWaitableTimer> CWrappedRuntime::CreateWaitableTimer(std::wstring name) {
  return std::make_unique<CWrappedTimer>(m_runtime.CreateWaitableTimer(std::move(name)), refuseCancel);
}

std::optional<size_t> CWrappedRuntime::Wait(std::span<IWaitable* const> what,
                                            std::optional<Milliseconds> limit) {
  std::vector<IWaitable*> inner;
  for (IWaitable* one : what) {
    const auto* timer = dynamic_cast<CWrappedTimer*>(one);
    inner.push_back(timer != nullptr ? timer->Inner() : one);
  }
  return m_runtime.Wait(inner, limit);
}

}  // namespace iorder::test
