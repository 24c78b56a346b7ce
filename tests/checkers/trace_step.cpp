#include "tests/checkers/trace_step.h"

#include <charconv>

#include "platform/text.h"

namespace iorder::testing {
namespace {

constexpr std::string_view kStrategyPrefix = "[OpenLottery]<";
constexpr std::string_view kAttribute = "<CIntelligentOrder>GetStringFromSecurity. ";
constexpr std::string_view kAnnounced = "UpdateStatus. Status=";

uint32_t HexNumber(std::string_view text) {
  uint32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return number;
}

/// "<CIntelligentOrder>[OpenLottery]<KEY.NUMBER> LINE"
void ReadStrategyLine(TraceStep& step) {
  std::string_view text = step.text;
  if (!text.starts_with(kEnginePrefix)) return;
  text.remove_prefix(kEnginePrefix.size());
  if (!text.starts_with(kStrategyPrefix)) return;
  text.remove_prefix(kStrategyPrefix.size());
  const size_t end = text.find("> ");
  const size_t dot = text.rfind('.', end);
  if (end == std::string_view::npos || dot == std::string_view::npos) return;
  step.key = text.substr(0, dot);
  step.strategy = HexNumber(text.substr(dot + 1, end - dot - 1));
  step.line = text.substr(end + 2);
}

}  // namespace

void ReadText(TraceStep& step) {
  step.message.reset();
  if (!step.IsLog()) return;
  ReadStrategyLine(step);
  if (!step.LineStarts(kAnnounced) || !step.line.ends_with("}.")) return;
  const std::string json = step.line.substr(kAnnounced.size(), step.line.size() - kAnnounced.size() - 1);
  try {
    step.message = ParseJson(json, {});
  } catch (const InputError&) {
    // The checker of messages complains about the text itself.
  }
}

TraceStep ReadStep(const TraceEvent& event) {
  TraceStep step;
  step.kind = event.kind;
  step.at = ToLocalTime(event.local);
  step.thread = ToUtf8(event.thread);
  step.topic = ToUtf8(event.topic);
  step.text = ToUtf8(event.text);
  step.first = event.first;
  step.second = event.second;
  step.record = ToUtf8(event.record);
  if (event.kind == TraceKind::kOpenRecord) step.handle = event.first;
  if (event.value != nullptr) {
    if (const auto* text = std::get_if<std::wstring>(event.value)) step.value = ToUtf8(*text);
    if (const auto* handle = std::get_if<int32_t>(event.value)) step.handle = *handle;
  }
  ReadText(step);
  return step;
}

std::optional<std::string> FieldText(std::string_view line, std::string_view name) {
  for (size_t at = line.find(name); at != std::string_view::npos; at = line.find(name, at + 1)) {
    const bool begins = at == 0 || line[at - 1] == ' ' || line[at - 1] == ',';
    const size_t equals = at + name.size();
    if (!begins || equals >= line.size() || line[equals] != '=') continue;
    std::string_view value = line.substr(equals + 1);
    const size_t end = value.find(',');
    if (end != std::string_view::npos) return std::string(value.substr(0, end));
    if (value.ends_with('.')) value.remove_suffix(1);
    return std::string(value);
  }
  return std::nullopt;
}

int64_t FieldInteger(std::string_view line, std::string_view name) {
  const std::string text = FieldText(line, name).value_or("");
  int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

double FieldDecimal(std::string_view line, std::string_view name) {
  const std::string text = FieldText(line, name).value_or("");
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

double ToldAttribute::AsWeight() const {
  int64_t weight = value.empty() ? 1 : 0;
  std::from_chars(value.data(), value.data() + value.size(), weight);
  return static_cast<double>(weight);
}

std::optional<ToldAttribute> ReadAttribute(const TraceStep& step) {
  if (!step.IsLog() || !step.text.starts_with(kAttribute)) return std::nullopt;
  const std::string key = FieldText(step.text, "strMapKey").value_or("");
  const size_t colon = key.rfind(':');
  if (colon == std::string::npos) return std::nullopt;
  return ToldAttribute{key.substr(0, colon), key.substr(colon + 1),
                       FieldText(step.text, "strResult").value_or("")};
}

int64_t IntegerOf(const JsonNode& object, std::string_view name) {
  const JsonNode* const node = object.Find(name);
  int64_t number = 0;
  if (node != nullptr && node->kind == JsonNode::Kind::kNumber) {
    std::from_chars(node->text.data(), node->text.data() + node->text.size(), number);
  }
  return number;
}

double DecimalOf(const JsonNode& object, std::string_view name) {
  const JsonNode* const node = object.Find(name);
  double number = 0;
  if (node != nullptr && node->kind == JsonNode::Kind::kNumber) {
    std::from_chars(node->text.data(), node->text.data() + node->text.size(), number);
  }
  return number;
}

std::string TextOf(const JsonNode& object, std::string_view name) {
  const JsonNode* const node = object.Find(name);
  return node != nullptr && node->kind == JsonNode::Kind::kText ? node->text : std::string();
}

const JsonNode* BodyOf(const TraceStep& step, std::string_view kind) {
  if (!step.message || TextOf(*step.message, "MsgType") != kind) return nullptr;
  return step.message->Find("Data");
}

}  // namespace iorder::testing
