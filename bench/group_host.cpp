#include "bench/group_host.h"

#include <utility>

namespace iorder {

namespace {

constexpr DateTime kStart{2024, 3, 1, 4, 9, 0, 0, 0};

Day OpenDay() {
  Day day;
  day.head.start = ToLocalTime(kStart);
  day.head.needsSubscription = false;
  return day;
}

FieldChange Figure(const std::wstring& name, double value) {
  FieldChange change;
  change.name = name;
  change.value.value = ToScaled(value);
  return change;
}

}  // namespace

CGroupHost::CGroupHost(std::vector<std::wstring> calls)
    : m_calls(std::move(calls)),
      m_runtime({.zone = "Asia/Taipei", .start = kStart, .seed = 0}),
      m_day(OpenDay()),
      m_terminal(m_runtime, m_day),
      m_events(m_runtime) {
  m_events.Advise(&m_terminal.Events());
  m_runtime.Run([this] { FillBus(); });
}

CGroupHost::~CGroupHost() {
  m_runtime.Run([this] {
    m_position.reset();
    m_setup.reset();
  });
}

void CGroupHost::FillBus() {
  auto& bus = static_cast<CEmbeddedBus&>(m_terminal.GetWorld().bus);
  double strike = 0;
  for (const std::wstring& call : m_calls) {
    RecordChange change;
    change.name = L"OPT.REAL." + call;
    for (const wchar_t* figure :
         {L"Delta", L"Gamma", L"Vega", L"Theta", L"Vanna", L"1Pct$Vanna", L"ImpVol"}) {
      change.fields.push_back(Figure(figure, strike));
      strike += 0.11;
    }
    bus.Apply(change);
  }
  m_position = OpenRecord(L"STRATEGY.POSITION", nullptr);
  m_setup = OpenRecord(L"TRADE.EXTENDORDER.SETUP", nullptr);
}

std::unique_ptr<CBaseData> CGroupHost::OpenRecord(const std::wstring& name,
                                                  CBaseDataEventReceiver* receiver) {
  const int32_t handle = m_events.FireOpenRecord(name);
  return handle != 0 ? CBaseData::OpenByHandle(GetWorld(), handle, receiver) : nullptr;
}

Value CGroupHost::SendHostEvent(const std::wstring&, int32_t, int32_t, const std::wstring& text,
                                const Value&) {
  m_strings += text.empty() ? 0 : 1;
  return {};
}

}  // namespace iorder
