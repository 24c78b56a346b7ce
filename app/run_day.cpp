#include "app/run_day.h"

#include <stdexcept>

#include "engine/intelligent_order.h"
#include "platform/native/native_runtime.h"
#include "platform/virtual/virtual_runtime.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

std::unique_ptr<IWorldRuntime> MakeRuntime(const DayHead& head, const RunOptions& options) {
  const DateTime start = ToDateTime(head.start);
  if (options.native) {
    return std::make_unique<CNativeRuntime>(
        NativeRuntimeOptions{.zone = head.timezone, .start = start, .speed = options.speed});
  }
  return std::make_unique<CVirtualRuntime>(
      VirtualRuntimeOptions{.zone = head.timezone, .start = start, .seed = options.seed.value_or(head.seed)});
}

std::unique_ptr<IWorldRuntime> MakeRuntime(const Day& day, const RunOptions& options) {
  try {
    return MakeRuntime(day.head, options);
  } catch (const std::runtime_error& error) {
    throw InputError(day.path + ": 'timezone' in day: " + error.what());
  }
}

}  // namespace

CDayRun::CDayRun(const Day& day, const RunOptions& options, const std::vector<ITerminalListener*>& listeners)
    : m_runtime(MakeRuntime(day, options)), m_terminal(*m_runtime, day) {
  for (ITerminalListener* const listener : listeners) m_terminal.AddListener(*listener);
}

void CDayRun::WatchGroupOrders(CHappeningListener& listener) {
  m_groupOrders.emplace(m_terminal, listener);
}

std::vector<std::string> CDayRun::Run() {
  std::vector<std::string> errors = m_runtime->Run([this] {
    // The engine's threads belong to the run, so it goes before the run is over.
    CIntelligentOrder engine(m_terminal.GetWorld());
    engine.Advise(&m_terminal.Events());
    if (m_groupOrders) engine.SetWatch(&*m_groupOrders);
    m_terminal.Play(engine);
  });
  if (m_terminal.Error()) throw InputError(*m_terminal.Error());
  return errors;
}

}  // namespace iorder
