#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/run_day.h"
#include "fuzz/fuzz_target.h"
#include "platform/text.h"
#include "records/json_document.h"
#include "terminal/day_file.h"
#include "terminal/order_text.h"
#include "terminal/trace_writer.h"

namespace iorder::fuzzing {
namespace {

/// An input is one command a line. The first so many are given to the engine, one after the other.
constexpr size_t kMostCommands = 8;
constexpr Milliseconds kFirstAt = std::chrono::seconds(2);
constexpr Milliseconds kBetween = std::chrono::seconds(16);

Day DayWith(std::string_view commands) {
  static const Day empty = ReadDayFile(IORDER_FUZZ_DAY);
  Day day = empty;
  LocalTime at = day.head.start + kFirstAt;
  for (size_t i = 0; i < kMostCommands && !commands.empty(); ++i, at += kBetween) {
    const size_t end = std::min(commands.find('\n'), commands.size());
    InsertCommand(day, commands.substr(0, end), at);
    commands.remove_prefix(std::min(end + 1, commands.size()));
  }
  return day;
}

/// Holds what must hold of every event, whatever the commands were.
class CEventCheck : public ITerminalListener {
 public:
  void OnEvent(const TraceEvent& event) override {
    const std::string text = ToUtf8(event.text);
    if (event.kind == TraceKind::kFault) {
      // A distance that leads out of the chain ends the selection so: that is its rule.
      Require(text.starts_with("strike index "), "nothing fails inside the engine: " + text);
    }
    if (event.kind != TraceKind::kCommand) return;
    if (event.topic == L"TRADE.NEWORDER") CheckOrder(event.text);
    if (event.topic.ends_with(L"MSG.NewStrategyOrder")) CheckMessage(text);
  }

 private:
  /// Texts of a command that hold commas make keys of their own: such an order isn't looked into.
  static void CheckOrder(std::wstring_view text) {
    const OrderFields order = ParseOrderText(text);
    const auto pieces = 1 + std::count(text.begin(), text.end(), L',');
    const auto isPlain = [&](const wchar_t* key, int64_t keys) {
      return order.contains(key) && pieces == keys && static_cast<int64_t>(order.size()) == keys;
    };
    if (!isPlain(L"GROUPID", kGroupKeys) && !isPlain(L"PRICE", kKeys) && !isPlain(L"PRICESTRING", kKeys))
      return;
    const std::wstring side = OrderField(order, L"SIDE");
    Require(side == L"B" || side == L"S", "an order buys or sells");
    Require(std::stoll(OrderField(order, L"QTY")) > 0, "an order has lots");
    Require(OrderField(order, L"SYMBOL").starts_with(L"ND.O.TWF.TX."),
            "an order is for an option of the chain");
  }

  static void CheckMessage(const std::string& text) {
    rapidjson::Document message;
    Require(!ParseJson(text, message) && message.IsObject(), "a status message is JSON: " + text);
  }

  static constexpr int64_t kKeys = 16;
  static constexpr int64_t kGroupKeys = 20;
};

void Play(const Day& day, const std::vector<ITerminalListener*>& listeners) {
  CDayRun run(day, {}, listeners);
  const std::vector<std::string> errors = run.Run();
  Require(errors.empty(), "a run ends without errors: " + (errors.empty() ? "" : errors.front()));
}

std::string TraceOf(const Day& day) {
  CTraceText trace(/*withInputs=*/true);
  Play(day, {&trace});
  return trace.Text();
}

}  // namespace
}  // namespace iorder::fuzzing

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace iorder::fuzzing;
  const iorder::Day day = DayWith(TextOf(data, size));
  CEventCheck check;
  Play(day, {&check});
  // Two traces cost more than another input, so not every day is played again.
  constexpr size_t kPlayedAgain = 16;
  if (size % kPlayedAgain == 0) Require(TraceOf(day) == TraceOf(day), "the same day gives the same trace");
  return 0;
}
