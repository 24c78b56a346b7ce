#include "bench/counting_host.h"

#include <rapidjson/document.h>

#include "strategy/order_report.h"

namespace iorder {

namespace {

constexpr DateTime kStart{2024, 3, 1, 4, 9, 0, 0, 0};

Day EmptyDay() {
  Day day;
  day.head.start = ToLocalTime(kStart);
  return day;
}

FieldChange Field(const std::wstring& name, const Value& value) {
  FieldChange change;
  change.name = name;
  change.value.value = value;
  return change;
}

}  // namespace

CCountingHost::CCountingHost()
    : m_runtime({.zone = "Asia/Taipei", .start = kStart, .seed = 0}),
      m_day(EmptyDay()),
      m_terminal(m_runtime, m_day) {}

CCountingHost::~CCountingHost() = default;

void CCountingHost::Run(const std::function<void()>& body) {
  m_runtime.Run(body);
}

CEmbeddedBus& CCountingHost::Bus() {
  return static_cast<CEmbeddedBus&>(m_terminal.GetWorld().bus);
}

World& CCountingHost::GetWorld() {
  return m_terminal.GetWorld();
}

std::unique_ptr<CBaseData> CCountingHost::OpenRecord(const std::wstring& name,
                                                     CBaseDataEventReceiver* receiver) {
  return CBaseData::OpenByHandle(GetWorld(), Bus().Open(name), receiver);
}

Value CCountingHost::SendHostEvent(const std::wstring&, int32_t, int32_t, const std::wstring& text,
                                   const Value&) {
  m_characters += text.size();
  return {};
}

std::shared_ptr<CStrategyOpenLottery> MakeBenchStrategy(CCountingHost& host, const std::string& id,
                                                        const std::string& tag) {
  auto strategy = std::make_shared<CStrategyOpenLottery>(host, L"");
  rapidjson::Document command;
  command.Parse(R"({"StrategyType":"OpenLottery","StrategyID":")" + id +
                R"(","StrategySN":"1","StrategyTag":")" + tag + R"("})");
  strategy->SetKey(L"OpenLottery_" + std::wstring(id.begin(), id.end()) + L"_1");
  strategy->ParseStrategyInfo(command);
  return strategy;
}

std::unique_ptr<CBaseData> MakeBenchReport(CCountingHost& host, const std::wstring& name,
                                           const std::wstring& strategyKey, const std::wstring& symbol,
                                           int32_t lots) {
  constexpr int64_t kPrice = 12 * static_cast<int64_t>(kScale);
  RecordChange change;
  change.name = name;
  change.fields = {Field(L"UserKey2", strategyKey + L"@"),
                   Field(L"LevelKey", name),
                   Field(L"Symbol", symbol),
                   Field(L"Side", std::wstring(L"B")),
                   Field(L"ExecType", exec_type::kPartlyFilled),
                   Field(L"PositionEffect", int32_t{0}),
                   Field(L"Price", kPrice),
                   Field(L"AvgPrice", kPrice),
                   Field(L"OrderType", int32_t{2}),
                   Field(L"SendQty", lots + 1),
                   Field(L"CumQty", lots),
                   Field(L"LeavesQty", int32_t{1}),
                   Field(L"RecFillQty", lots)};
  host.Bus().Apply(change);
  return host.OpenRecord(name, nullptr);
}

}  // namespace iorder
