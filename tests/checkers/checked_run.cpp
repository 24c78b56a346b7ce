#include "tests/checkers/checked_run.h"

#include "engine/intelligent_order.h"
#include "platform/text.h"
#include "terminal/input_error.h"

namespace iorder::testing {
namespace {

bool IsHeeded(std::wstring_view record) {
  return record == L"STRATEGY.POSITION" || record == L"TRADE.EXTENDORDER.SETUP" ||
         record == L"NordoSystemTime" || record.starts_with(L"OPT.REAL.");
}

bool AnnouncesChild(const TraceEvent& event) {
  return event.kind == TraceKind::kMessage &&
         (event.topic == L"TRADE.OTO.MANAGER" || event.topic == L"TRADE.HOT.MONTH") &&
         event.value != nullptr && std::holds_alternative<int32_t>(*event.value);
}

/// Of quotes the tape tells.
bool IsUpdateOfQuote(const TraceEvent& event) {
  return event.record.starts_with(L"ND.") || event.record.starts_with(L"OPT.");
}

}  // namespace

CCheckedRun::CCheckedRun(const Day& day, std::optional<uint64_t> seed, IRunListener& listener)
    : m_listener(listener),
      m_runtime({.zone = day.head.timezone,
                 .start = ToDateTime(day.head.start),
                 .seed = seed.value_or(day.head.seed)}),
      m_terminal(m_runtime, day),
      m_tap(m_terminal.GetWorld().bus, m_runtime, listener) {
  m_terminal.AddListener(*this);
}

std::vector<std::string> CCheckedRun::Run() {
  const World& own = m_terminal.GetWorld();
  World world{own.runtime, m_tap, own.database, own.settings, own.hostExecutable};
  std::vector<std::string> errors = m_runtime.Run([&] {
    // The engine's threads belong to the run, so it goes before the run is over.
    CIntelligentOrder engine(world);
    engine.Advise(&m_terminal.Events());
    m_terminal.Play(engine);
  });
  if (m_terminal.Error()) throw InputError(*m_terminal.Error());
  return errors;
}

void CCheckedRun::OnEvent(const TraceEvent& event) {
  if (event.kind == TraceKind::kOpenRecord && event.first != 0 && IsHeeded(event.record))
    m_tap.Heed(event.first, ToUtf8(event.record));
  const bool announces = AnnouncesChild(event);
  if (announces) {
    const int32_t handle = std::get<int32_t>(*event.value);
    m_tap.Heed(handle, std::string(kChildRecord) + std::to_string(handle));
  }
  const bool isPlainUpdate = event.kind == TraceKind::kUpdate && !IsUpdateOfQuote(event);
  if (!IsInput(event.kind) || announces || isPlainUpdate) m_listener.OnStep(ReadStep(event));
}

}  // namespace iorder::testing
