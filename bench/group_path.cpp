#include <rapidjson/document.h>

#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/group_host.h"
#include "bench/paths.h"
#include "grouporder/group_orders.h"
#include "grouporder/leg_scan.h"
#include "platform/text.h"
#include "records/json_document.h"

namespace iorder {

namespace {

constexpr int kRecords = 400;
constexpr int kCommands = 200;
constexpr double kLooks = double{kRecords} * kLegs;

std::vector<std::wstring> Calls(int count) {
  std::vector<std::wstring> symbols;
  for (int i = 0; i < count; ++i) {
    symbols.push_back(L"ND.O.TWF.TX.202403.C." + std::to_wstring(10000 + 50 * i));
  }
  return symbols;
}

/// An order whose four legs look at all calls for a figure each.
void FillLegs(stcIntlgntOrd& order, const std::vector<std::wstring>& symbols,
              const PerLeg<std::wstring>& fields) {
  order.strCallPut.fill(L"Call");
  order.strLegCondition = fields;
  for (size_t leg = 0; leg < kLegs; ++leg) order.llLegTarget[leg] = ToScaled(20.0 * static_cast<double>(leg));
  for (const std::wstring& symbol : symbols) order.arCallSymbols.push_back(L"OPT.REAL." + symbol);
}

Ratio ScanAgainstLookups(const std::string& name, const PerLeg<std::wstring>& fields, int repeats) {
  CGroupHost host(Calls(kRecords));
  std::unordered_map<std::wstring, int64_t> figures;
  Ratio ratio;
  host.Run([&] {
    stcIntlgntOrd order(host.GetWorld().runtime);
    FillLegs(order, host.Symbols(), fields);
    for (const std::wstring& record : order.arCallSymbols) figures[record] = 1;
    const auto lookUp = [&] {
      int64_t sum = 0;
      for (const std::wstring& record : order.arCallSymbols) sum += figures.find(record)->second;
      Keep(sum);
    };
    const auto scan = [&] {
      CHeldPositions none;
      CLegScan(host, order, nullptr).Run(none);
      Keep(order.strLegSymbol);
    };
    ratio = Compare(name, "hash look-up of the record's name", Timed(kRecords, lookUp), Timed(kLooks, scan),
                    0, repeats);
  });
  return ratio;
}

/// About 2 KB: every member, and long keys of the user's own.
std::string LongCommand() {
  const std::string key(380, 'k');
  std::string text =
      R"({"StrategyType":"Group","StrategyID":"G1","StrategyName":"vanna","BrokerID":"B1","Account":"A1",)"
      R"("Security":"ND.O.TWF.TX.202403","ProcessID":"4711","UserKey1":")" +
      key + R"(","UserKey2":")" + key + R"(","UserKey3":")" + key +
      R"(","StopCondition":"1%$Vanna=250000.5","StopFactor":1.25,"CheckCondition1":"Delta=100",)"
      R"("CheckRange1":0.1,"CheckCondition2":"Gamma=0","CheckRange2":0.25,"Cash":1000000,)"
      R"("GroupAType":1,"GroupBType":2,"Order":[)";
  for (const char* leg : {"Call\",\"Condition\":\"Delta=0.25", "Call\",\"Condition\":\"Delta=0.10",
                          "Put\",\"Condition\":\"Delta=-0.25", "Put\",\"Condition\":\"Delta=-0.10"}) {
    text += std::string(R"({"CallPut":")") + leg + R"(","Qty":2,"Group":"A"},)";
  }
  text.back() = ']';
  return text + "}";
}

void Build(const std::string& text) {
  for (int i = 0; i < kCommands; ++i) {
    rapidjson::Document document;
    document.Parse(text.c_str(), text.size());
    Keep(document.MemberCount());
  }
}

}  // namespace

std::vector<Ratio> ScansAgainstLookups(int repeats) {
  return {ScanAgainstLookups("a record and leg of a scan, one field",
                             {L"Delta", L"Delta", L"Delta", L"Delta"}, repeats),
          ScanAgainstLookups("a record and leg of a scan, four fields",
                             {L"Delta", L"Gamma", L"Vanna", L"Theta"}, repeats)};
}

Ratio GroupCommandAgainstDocument(int repeats) {
  const std::string text = LongCommand();
  const std::wstring wide = ToWide(text);
  CGroupHost host(Calls(1));
  CGroupOrders orders(host);
  Ratio ratio;
  host.Run([&] {
    const auto accept = [&] {
      for (int i = 0; i < kCommands; ++i) {
        rapidjson::Document document;
        if (ParseJson(ToUtf8(wide), document)) throw std::runtime_error("the command can't be read");
        orders.ParseGroupOrder(document);
      }
    };
    ratio = Compare("a group command of 2 KB, to its strings", "rapidjson builds its document",
                    Timed(kCommands, [&] { Build(text); }), Timed(kCommands, accept), 2.0, repeats);
  });
  if (host.Strings() == 0) throw std::runtime_error("the command sent nothing");
  return ratio;
}

}  // namespace iorder
