#include "terminal/fault_action.h"

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/text.h"
#include "terminal/record_action.h"

namespace iorder {
namespace {

constexpr int64_t kInt32Most = std::numeric_limits<int32_t>::max();
constexpr int64_t kLongestMs = 7LL * 24 * 3600 * 1000;

class CFaultReader {
 public:
  explicit CFaultReader(CObjectReader& reader) : m_reader(reader) {}

  FaultAction Read() {
    if (m_reader.Find("record") != nullptr) {
      return ReadRecordFault();
    }
    if (m_reader.Find("account") != nullptr) {
      return ReadAccountFault();
    }
    if (m_reader.Find("database") != nullptr) {
      return ReadPlain(FaultAction::Kind::kDatabase, "database", "fail");
    }
    if (m_reader.Find("sink") != nullptr) {
      return ReadPlain(FaultAction::Kind::kSink, "sink", "fail");
    }
    if (m_reader.Find("timer") != nullptr) {
      return ReadTimerFault();
    }
    if (m_reader.Find("thread") != nullptr) {
      FaultAction fault = ReadPlain(FaultAction::Kind::kThread, "thread", "fail");
      fault.times = Times().value_or(1);
      return fault;
    }
    if (m_reader.Find("stuck") != nullptr) {
      FaultAction fault;
      fault.kind = FaultAction::Kind::kStuck;
      fault.name = NeedWide(m_reader, "stuck");
      ReadTime("ms", fault);
      return fault;
    }
    m_reader.Finish();
    FailAt(m_reader.Place(), "fault is empty");
  }

 private:
  bool IsNone(std::string_view key) {
    const JsonNode* const node = m_reader.Find(key);
    return node != nullptr && node->kind == JsonNode::Kind::kText && node->text == "none";
  }

  /// True for "none"; anything else but `setting` is a mistake.
  bool ReadSetting(std::string_view key, const std::string& setting) {
    const JsonNode& node = m_reader.Need(key);
    if (!IsNone(key) && (node.kind != JsonNode::Kind::kText || node.text != setting)) {
      m_reader.FailKind(key, node, "'" + setting + "' or 'none'");
    }
    return IsNone(key);
  }

  std::optional<int32_t> Times() {
    const std::optional<int64_t> times = m_reader.Integer("times", 1, kInt32Most);
    return times ? std::optional(static_cast<int32_t>(*times)) : std::nullopt;
  }

  FaultAction ReadPlain(FaultAction::Kind kind, std::string_view key, const std::string& setting) {
    FaultAction fault;
    fault.kind = kind;
    fault.clear = ReadSetting(key, setting);
    return fault;
  }

  FaultAction ReadRecordFault() {
    const JsonNode* const item = m_reader.Find("item");
    FaultAction fault = item == nullptr ? ReadPlain(FaultAction::Kind::kRecordOpen, "open", "fail")
                                        : ReadPlain(FaultAction::Kind::kItemOpen, "open", "unresolved");
    fault.name = NeedWide(m_reader, "record");
    if (item != nullptr) {
      fault.item = ReadValue(m_reader, "item", *item, BareNumber::kInt32);
      if (!std::holds_alternative<int32_t>(fault.item.value) &&
          !std::holds_alternative<std::wstring>(fault.item.value)) {
        m_reader.FailKind("item", *item, "an index or a name");
      }
      fault.node = ToWide(m_reader.Text("node").value_or(""));
      fault.times = Times();
    }
    return fault;
  }

  FaultAction ReadAccountFault() {
    FaultAction fault;
    fault.kind = FaultAction::Kind::kAccount;
    fault.name = NeedWide(m_reader, "account");
    m_reader.Need("drop");
    fault.clear = IsNone("drop") || !*m_reader.Flag("drop");
    return fault;
  }

  FaultAction ReadTimerFault() {
    FaultAction fault;
    fault.kind = FaultAction::Kind::kTimer;
    // The waitable timers of the engine are named by their service and this number.
    fault.name = L"." + std::to_wstring(m_reader.NeedInteger("timer", 0, kInt32Most));
    ReadTime("late_ms", fault);
    return fault;
  }

  void ReadTime(std::string_view key, FaultAction& fault) {
    m_reader.Need(key);
    fault.clear = IsNone(key);
    if (!fault.clear) {
      fault.time = Milliseconds(m_reader.NeedInteger(key, 0, kLongestMs));
    }
  }

  CObjectReader& m_reader;
};

}  // namespace

FaultAction ReadFault(CObjectReader& reader) {
  CObjectReader fault(reader.Need("fault"), "fault", reader.Place());
  const FaultAction action = CFaultReader(fault).Read();
  fault.Finish();
  return action;
}

}  // namespace iorder
