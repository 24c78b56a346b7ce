#include "tests/terminal/group_order_day.h"

#include <gmock/gmock.h>

#include "platform/text.h"
#include "terminal/child_records.h"
#include "terminal/strategy_positions.h"

namespace iorder::testing {
namespace {

const std::string kWorld = R"({"accounts": [{"BrokerID": "B1", "Account": "A1", "ConnectStatus": 2}]}
{"record": "Security.Info", "items": [{"name": "ND.O.TWF", "fields": {"ND.O.TWF.TX": "{\"TickSize\": \"0.5\", \"Weight\": \"50\"}"}}]}
{"quote": "ND.O.TWF.TX.202403.C.18000", "mcode": 1}
{"quote": "ND.O.TWF.TX.202403.P.18000", "mcode": 1}
)";

}  // namespace

std::string GroupOrder(const std::string& symbol, const std::string& side, int lots,
                       const std::string& rest) {
  return rest + (rest.empty() ? "" : ",") + "TYPE=O,BROKERID=B1,ACCOUNT=A1,SYMBOL=" + symbol +
         ",SIDE=" + side + ",QTY=" + std::to_string(lots) +
         ",PRICE=0,ORDERTYPE=10,POSITIONEFFECT=4,TIMEINFORCE=1,SYNTHETIC=1,GROUPTYPE=0,GROUPID=,CHASEPRICE=,"
         "STRATEGY=S1,STRATEGYNAME=N,USERKEY1=,USERKEY2=,USERKEY3=,PROCESSID=0";
}

std::string SendAt(const std::string& at, const std::vector<std::string>& strings) {
  std::string text;
  for (const std::string& string : strings) {
    text += (text.empty() ? "" : ";") + string;
  }
  return "{\"at\": \"" + at + "\", \"command\": \"" + text + "\"}\n";
}

CGroupOrderDay::CGroupOrderDay(const std::string& lines, const std::string& orders, const std::string& head)
    : day(kWorld + lines, R"(, "subscriptions": "open", "orders": )" + orders + head) {
  day.engine.onMessage = [this](const std::wstring& topic, const std::wstring& text, const Value& value) {
    if (topic == kChildTopic) {
      OnChild(Int32Or(value, 0));
      return;
    }
    for (size_t begin = 0; begin < text.size();) {
      const size_t end = std::min(text.find(L';', begin), text.size());
      day.terminal->Events().Command(L"TRADE.NEWORDER", 1, 2, text.substr(begin, end - begin), {});
      begin = end + 1;
    }
  };
  day.Play();
  EXPECT_THAT(day.problems, ::testing::IsEmpty());
  EXPECT_EQ(std::nullopt, day.terminal->Error());
}

void CGroupOrderDay::OnChild(int32_t handle) {
  const std::shared_ptr<IBusObject> child = day.terminal->GetWorld().bus.Resolve(handle);
  ASSERT_NE(nullptr, child);
  const std::string key = Text(*child, L"LevelKey");
  seen.push_back(day.Clock() + " " + key + " announced");
  if (!m_children.emplace(key, child).second) return;
  auto sink = std::make_shared<CRecordingSink>();
  sink->onUpdate = [this, key, record = child.get()] {
    seen.push_back(day.Clock() + " " + key + " " + Text(*record, L"ExecType") + " " +
                   Text(*record, L"CumQty"));
  };
  child->Advise(sink);
}

std::string CGroupOrderDay::Text(IBusObject& record, const wchar_t* name) {
  const Value value = record.GetValue(read_code::kField, name);
  const std::wstring* const text = std::get_if<std::wstring>(&value);
  return text != nullptr ? ToUtf8(*text) : std::to_string(Int32Or(value, -1));
}

Value CGroupOrderDay::Child(int32_t order, const wchar_t* name) {
  const auto child = m_children.find(ToUtf8(ChildKey(order)));
  return child != m_children.end() ? child->second->GetValue(read_code::kField, name) : Value();
}

Value CGroupOrderDay::Position(const wchar_t* strategy, const std::string& symbol, const wchar_t* name) {
  IRecordBus& bus = day.terminal->GetWorld().bus;
  const auto record = day.Open(kStrategyPosition);
  const auto node = bus.Resolve(Int32Or(record->GetValue(read_code::kNodeByName, strategy), 0));
  if (node == nullptr) return {};
  const auto item = bus.Resolve(Int32Or(node->GetValue(read_code::kItemByName, ToWide(symbol)), 0));
  return item != nullptr ? item->GetValue(read_code::kField, name) : Value();
}

}  // namespace iorder::testing
