#include "terminal/day_head.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "terminal/day_file.h"
#include "terminal/object_reader.h"

namespace iorder {
namespace {

constexpr Milliseconds kOneDay = std::chrono::hours(24);

/// The index of the text that stands under `key`, or of `fallback`.
size_t ReadChoice(CObjectReader& reader, std::string_view key, const std::vector<std::string_view>& choices,
                  size_t fallback) {
  const std::optional<std::string> text = reader.Text(key);
  if (!text) {
    return fallback;
  }
  const auto found = std::find(choices.begin(), choices.end(), *text);
  if (found == choices.end()) {
    std::string expected;
    for (const std::string_view choice : choices) {
      expected += (expected.empty() ? "'" : " or '") + std::string(choice) + "'";
    }
    reader.Fail(key, "expected " + expected + ", found '" + *text + "'");
  }
  return static_cast<size_t>(found - choices.begin());
}

void ReadShare(CObjectReader& reader, std::string_view key, Share& share) {
  share = reader.Decimal(key).value_or(share);
  if (share < 0 || share > kWholeShare) {
    reader.Fail(key, "must lie from 0 to 1");
  }
}

void ReadTime(CObjectReader& reader, std::string_view key, Milliseconds& time) {
  time = Milliseconds(reader.Integer(key, 0, kOneDay.count()).value_or(time.count()));
}

std::optional<OrderRules> ReadOrderRules(CObjectReader& head) {
  const JsonNode* const node = head.Find("orders");
  if (node == nullptr || (node->kind == JsonNode::Kind::kText && node->text == "manual")) {
    return std::nullopt;
  }
  if (!node->IsObject()) {
    head.FailKind("orders", *node, "'manual' or an object");
  }
  CObjectReader reader(*node, "orders", head.Place());
  OrderRules rules;
  ReadTime(reader, "latency_ms", rules.latency);
  rules.fill =
      static_cast<OrderRules::Fill>(ReadChoice(reader, "fill", {"touch", "through", "immediate", "none"}, 0));
  ReadShare(reader, "partial", rules.partial);
  ReadShare(reader, "reject", rules.reject);
  rules.chase = reader.Flag("chase").value_or(rules.chase);
  ReadTime(reader, "late_ms", rules.late);
  rules.outOfOrder = reader.Flag("out_of_order").value_or(rules.outOfOrder);
  ReadShare(reader, "repeat", rules.repeat);
  ReadShare(reader, "lost_ack", rules.lostAck);
  ReadTime(reader, "rec_fill_lag_ms", rules.recFillLag);
  ReadShare(reader, "failed_child", rules.failedChild);
  ReadShare(reader, "lost_child", rules.lostChild);
  ReadShare(reader, "late_child", rules.lateChild);
  ReadShare(reader, "lost_end", rules.lostEnd);
  reader.Finish();
  return rules;
}

std::optional<LocalTime> ReadEnd(CObjectReader& head, LocalTime start) {
  const std::optional<std::string> text = head.Text("end");
  if (!text) {
    return std::nullopt;
  }
  if (const std::optional<Milliseconds> time = ParseTimeOfDay(*text)) {
    const LocalTime end = DateOf(start) + *time;
    return end > start ? end : end + kOneDay;
  }
  const std::optional<LocalTime> end = ParseLocalTime(*text);
  if (!end) {
    head.Fail("end", "expected YYYY-MM-DDTHH:MM:SS[.mmm] or HH:MM:SS[.mmm], found '" + *text + "'");
  }
  if (*end <= start) {
    head.Fail("end", "lies before the start");
  }
  return end;
}

}  // namespace

DayHead ReadDayHead(const JsonNode& line, const FilePlace& place) {
  CObjectReader outer(line, "the head", place);
  CObjectReader reader(outer.Need("day"), "day", place);
  outer.Finish();

  DayHead head;
  const std::string start = reader.NeedText("start");
  const std::optional<LocalTime> startTime = ParseLocalTime(start);
  if (!startTime) {
    reader.Fail("start", "expected YYYY-MM-DDTHH:MM:SS[.mmm], found '" + start + "'");
  }
  head.start = *startTime;
  head.end = ReadEnd(reader, head.start);
  head.timezone = reader.Text("timezone").value_or(head.timezone);
  head.seed = static_cast<uint64_t>(reader.Integer("seed", 0, INT64_MAX).value_or(0));
  head.autoPhases = ReadChoice(reader, "phases", {"auto", "manual"}, 0) == 0;
  head.needsSubscription = ReadChoice(reader, "subscriptions", {"required", "open"}, 0) == 0;
  head.subscriptionDelay = Milliseconds(reader.Integer("subscription_ms", 0, kOneDay.count()).value_or(0));
  head.hasDatabase = ReadChoice(reader, "database", {"sqlite", "none"}, 0) == 0;
  head.orders = ReadOrderRules(reader);
  const bool marketFigures = ReadChoice(reader, "figures", {"given", "market"}, 0) == 1;
  const Milliseconds figuresPeriod(reader.Integer("figures_ms", 1, kOneDay.count()).value_or(200));
  const std::optional<std::string> folder = reader.Text("folder");
  if (folder && folder->empty()) {
    reader.Fail("folder", "is empty; '.' is the folder of the day file");
  }
  reader.Finish();
  if (marketFigures) {
    head.figuresPeriod = figuresPeriod;
  }
  if (folder) {
    head.folder = PathBeside(place.file, *folder);
  }
  return head;
}

}  // namespace iorder
