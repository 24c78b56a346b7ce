#include "terminal/day_actions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <limits>
#include <utility>

#include "platform/text.h"
#include "terminal/day_file.h"
#include "terminal/quote_words.h"

namespace iorder {
namespace {

constexpr int64_t kInt32Least = std::numeric_limits<int32_t>::min();
constexpr int64_t kInt32Most = std::numeric_limits<int32_t>::max();
constexpr int64_t kLongestMs = 7LL * 24 * 3600 * 1000;

std::wstring NeedWide(CObjectReader& reader, std::string_view key) {
  return ToWide(reader.NeedText(key));
}

Value Int32Value(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  const std::optional<int64_t> value = IntegerOf(node);
  if (!value || *value < kInt32Least || *value > kInt32Most) {
    reader.FailKind(key, node, "a 32-bit integer");
  }
  return static_cast<int32_t>(*value);
}

Value Int64Value(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  const std::optional<int64_t> value = IntegerOf(node);
  if (!value) {
    reader.FailKind(key, node, "a 64-bit integer");
  }
  return *value;
}

Value ScaledOf(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  const std::optional<ScaledValue> value = DecimalOf(node);
  if (!value) {
    reader.FailKind(key, node, "a decimal with at most ten places");
  }
  return *value;
}

/// What a bare number stands for, which depends on where it stands.
enum class BareNumber { kInt32, kInt64, kScaled };

FieldValue ReadNamedKind(const CObjectReader& reader, std::string_view key, const JsonNode& node) {
  CObjectReader kind(node, "the value of '" + std::string(key) + "' in " + reader.What(), reader.Place());
  FieldValue result;
  if (const JsonNode* const int32 = kind.Find("int32")) {
    result.value = Int32Value(kind, "int32", *int32);
  } else if (const JsonNode* const int64 = kind.Find("int64")) {
    result.value = Int64Value(kind, "int64", *int64);
  } else if (const JsonNode* const scaled = kind.Find("scaled")) {
    result.value = ScaledOf(kind, "scaled", *scaled);
  } else if (kind.Find("handle") != nullptr) {
    result.kind = FieldValue::Kind::kHandle;
    result.record = NeedWide(kind, "handle");
  } else if (kind.Find("handle64") != nullptr) {
    result.kind = FieldValue::Kind::kHandle64;
    result.record = NeedWide(kind, "handle64");
  } else {
    kind.Finish();
    reader.FailKind(key, node, "int32, int64, scaled, handle or handle64");
  }
  kind.Finish();
  return result;
}

FieldValue ReadValue(const CObjectReader& reader, std::string_view key, const JsonNode& node,
                     BareNumber number) {
  FieldValue result;
  switch (node.kind) {
    case JsonNode::Kind::kNull:
      result.kind = FieldValue::Kind::kRemove;
      return result;
    case JsonNode::Kind::kText:
      result.value = number == BareNumber::kScaled ? ScaledOf(reader, key, node) : Value(ToWide(node.text));
      return result;
    case JsonNode::Kind::kNumber:
      result.value = number == BareNumber::kInt32   ? Int32Value(reader, key, node)
                     : number == BareNumber::kInt64 ? Int64Value(reader, key, node)
                                                    : ScaledOf(reader, key, node);
      return result;
    case JsonNode::Kind::kObject:
      return ReadNamedKind(reader, key, node);
    default:
      reader.FailKind(key, node, "a text, an integer, null or an object that names the kind");
  }
}

std::vector<FieldChange> ReadFields(CObjectReader& reader) {
  std::vector<FieldChange> changes;
  if (const JsonNode* const fields = reader.Object("fields")) {
    CObjectReader names(*fields, "the fields of " + reader.What(), reader.Place());
    for (const JsonNode* const field : names.Rest()) {
      changes.push_back({ToWide(field->name), ReadValue(names, field->name, *field, BareNumber::kInt32)});
    }
  }
  return changes;
}

std::vector<NumberChange> ReadNumbers(CObjectReader& reader) {
  std::vector<NumberChange> changes;
  if (const JsonNode* const numbers = reader.Object("numbers")) {
    CObjectReader ids(*numbers, "the numbers of " + reader.What(), reader.Place());
    for (const JsonNode* const number : ids.Rest()) {
      int32_t id = 0;
      const char* const end = number->name.data() + number->name.size();
      const auto [stop, error] = std::from_chars(number->name.data(), end, id);
      if (error != std::errc() || stop != end) {
        ids.Fail(number->name, "isn't the number of a field");
      }
      changes.push_back({id, ReadValue(ids, number->name, *number, BareNumber::kInt64)});
    }
  }
  return changes;
}

RecordChange ReadSubRecord(const JsonNode& node, const std::string& what, const FilePlace& place);

std::vector<RecordChange> ReadSubRecords(CObjectReader& reader, std::string_view key,
                                         const std::string& what) {
  std::vector<RecordChange> records;
  if (const JsonNode* const list = reader.List(key)) {
    for (const JsonNode& node : list->children) {
      records.push_back(ReadSubRecord(node, what, reader.Place()));
    }
  }
  return records;
}

void ReadContent(CObjectReader& reader, RecordChange& change) {
  change.fields = ReadFields(reader);
  change.numbers = ReadNumbers(reader);
  change.items = ReadSubRecords(reader, "items", "item");
  change.nodes = ReadSubRecords(reader, "nodes", "node");
}

RecordChange ReadSubRecord(const JsonNode& node, const std::string& what, const FilePlace& place) {
  CObjectReader reader(node, what, place);
  RecordChange change;
  change.name = ToWide(reader.Text("name").value_or(""));
  change.remove = reader.Flag("remove").value_or(false);
  change.clear = reader.Flag("clear").value_or(false);
  ReadContent(reader, change);
  reader.Finish();
  if (change.remove && change.name.empty()) {
    reader.Fail("remove", "needs the name of the one to take out");
  }
  return change;
}

std::optional<Firing> ReadFire(CObjectReader& reader) {
  const JsonNode* const node = reader.Find("fire");
  if (node == nullptr || node->kind == JsonNode::Kind::kFalse) {
    return std::nullopt;
  }
  Firing firing;
  if (node->kind == JsonNode::Kind::kTrue) {
    return firing;
  }
  if (!node->IsObject()) {
    reader.FailKind("fire", *node, "true, false or an object");
  }
  CObjectReader event(*node, "fire", reader.Place());
  firing.originator = event.Int32("originator");
  firing.payload = ToWide(event.Text("payload").value_or(""));
  event.Finish();
  return firing;
}

RecordAction ReadRecord(CObjectReader& reader) {
  RecordAction action;
  action.change.name = NeedWide(reader, "record");
  if (action.change.name.empty()) {
    reader.Fail("record", "a record needs a name");
  }
  action.change.clear = reader.Flag("clear").value_or(false);
  ReadContent(reader, action.change);
  action.firing = ReadFire(reader);
  if (reader.Flag("replace").value_or(false)) {
    action.firing = action.firing.value_or(Firing());
    action.firing->replace = true;
  }
  return action;
}

void ReadQuoteWord(CObjectReader& reader, const QuoteWord& word, QuoteUpdate& update) {
  const JsonNode* const node = reader.Find(word.word);
  if (node == nullptr) {
    return;
  }
  const bool isNumber = word.kind == QuoteWordKind::kInteger || word.kind == QuoteWordKind::kDecimal;
  if (isNumber && node->kind == JsonNode::Kind::kNull) {
    update.Remove(word.field);
    return;
  }
  switch (word.kind) {
    case QuoteWordKind::kInteger:
      update.Set(word.field, *reader.Integer(word.word));
      break;
    case QuoteWordKind::kDecimal:
      update.Set(word.field, *reader.Decimal(word.word));
      break;
    case QuoteWordKind::kMcode:
      update.mcode = reader.Int32(word.word);
      break;
    case QuoteWordKind::kTimeFormat:
      update.timeFormat = reader.Int32(word.word);
      break;
    case QuoteWordKind::kBid:
      update.best.bid = *reader.Decimal(word.word);
      break;
    case QuoteWordKind::kAsk:
      update.best.ask = *reader.Decimal(word.word);
      break;
    case QuoteWordKind::kBidQuantity:
      update.best.bidQuantity = *reader.Integer(word.word);
      break;
    case QuoteWordKind::kAskQuantity:
      update.best.askQuantity = *reader.Integer(word.word);
      break;
  }
}

QuoteAction ReadQuote(CObjectReader& reader) {
  QuoteAction action;
  action.symbol = NeedWide(reader, "quote");
  if (action.symbol.empty()) {
    reader.Fail("quote", "a quote needs a symbol");
  }
  for (const QuoteWord& word : QuoteWords()) {
    ReadQuoteWord(reader, word, action.update);
  }
  action.update.clock = reader.Flag("clock").value_or(true);
  action.more.fields = ReadFields(reader);
  action.more.numbers = ReadNumbers(reader);
  action.firing.originator = reader.Int32("originator");
  action.firing.payload = ToWide(reader.Text("payload").value_or(""));
  return action;
}

SettingsAction ReadSettings(CObjectReader& reader) {
  SettingsAction action{reader.NeedText("settings"), reader.NeedText("text")};
  std::replace(action.path.begin(), action.path.end(), '\\', '/');
  const std::filesystem::path path = std::filesystem::path(action.path).lexically_normal();
  if (path.empty() || path.is_absolute() || *path.begin() == ".." || !path.has_filename()) {
    reader.Fail("settings", "must be a path inside the terminal's folder, found '" + action.path + "'");
  }
  return action;
}

SymbolsAction ReadSymbols(CObjectReader& reader) {
  SymbolsAction action;
  reader.Need("symbols");
  for (const JsonNode& node : reader.List("symbols")->children) {
    CObjectReader row(node, "symbol", reader.Place());
    SymbolsAction::Row& values = action.rows.emplace_back();
    for (const char* const column : kSymbolColumns) {
      const JsonNode* const value = row.Find(column);
      const bool isNull = value != nullptr && value->kind == JsonNode::Kind::kNull;
      values.push_back(isNull ? std::nullopt : std::optional(row.Text(column).value_or("")));
    }
    row.Finish();
  }
  action.database = reader.Text("database");
  return action;
}

TicksAction ReadTicks(CObjectReader& reader) {
  return {PathBeside(reader.Place().file, reader.NeedText("ticks"))};
}

MessageAction ReadCommand(CObjectReader& reader) {
  const JsonNode& command = reader.Need("command");
  MessageAction action;
  action.topic = L"TRADE.IntelligentOrder";
  if (command.kind == JsonNode::Kind::kText) {
    action.text = ToWide(command.text);
  } else if (command.IsObject()) {
    std::string text;
    AppendCompactJson(command, text);
    action.text = ToWide(text);
  } else {
    reader.FailKind("command", command, "an object or a text");
  }
  return action;
}

MessageAction ReadMessage(CObjectReader& reader) {
  CObjectReader message(reader.Need("message"), "message", reader.Place());
  MessageAction action;
  action.topic = NeedWide(message, "topic");
  action.first = message.Int32("first").value_or(0);
  action.second = message.Int32("second").value_or(0);
  action.text = ToWide(message.Text("text").value_or(""));
  if (const JsonNode* const value = message.Find("value")) {
    action.value = ReadValue(message, "value", *value, BareNumber::kInt32);
  }
  message.Finish();
  return action;
}

AccountsAction ReadAccounts(CObjectReader& reader) {
  reader.Need("accounts");
  AccountsAction action;
  for (const JsonNode& node : reader.List("accounts")->children) {
    CObjectReader account(node, "account", reader.Place());
    AccountsAction::Account& entry = action.accounts.emplace_back();
    entry.broker = NeedWide(account, "BrokerID");
    entry.account = NeedWide(account, "Account");
    if (const JsonNode* const status = account.Find("ConnectStatus")) {
      entry.status = ReadValue(account, "ConnectStatus", *status, BareNumber::kInt32);
      entry.hasStatus = true;
    }
    account.Finish();
  }
  return action;
}

PhaseAction ReadPhase(CObjectReader& reader) {
  reader.Need("phase");
  const JsonNode& list = *reader.List("phase");
  if (list.children.size() != 2) {
    reader.FailKind("phase", list, "two integers, category and phase");
  }
  return {std::get<int32_t>(Int32Value(reader, "phase", list.children[0])),
          std::get<int32_t>(Int32Value(reader, "phase", list.children[1]))};
}

/// The members that nobody asked for are the fields.
std::vector<FieldChange> ReadRestAsFields(const CObjectReader& reader, bool pricesAreDecimals) {
  std::vector<FieldChange> changes;
  for (const JsonNode* const field : reader.Rest()) {
    const bool isPrice = pricesAreDecimals && (field->name == "Price" || field->name == "AvgPrice");
    changes.push_back({ToWide(field->name), ReadValue(reader, field->name, *field,
                                                      isPrice ? BareNumber::kScaled : BareNumber::kInt32)});
  }
  return changes;
}

ReportAction ReadReport(CObjectReader& reader) {
  CObjectReader report(reader.Need("report"), "report", reader.Place());
  ReportAction action;
  action.order = static_cast<int32_t>(report.NeedInteger("order", 1, kInt32Most));
  if (const std::optional<int64_t> node = report.Integer("node", 0, 100'000)) {
    action.node = static_cast<int32_t>(*node);
  }
  if (const std::optional<std::string> payload = report.Text("payload")) {
    action.payload = ToWide(*payload);
  }
  action.fields = ReadRestAsFields(report, true);
  return action;
}

ChildAction ReadChild(CObjectReader& reader) {
  CObjectReader child(reader.Need("child"), "child", reader.Place());
  ChildAction action;
  action.order = static_cast<int32_t>(child.NeedInteger("order", 1, kInt32Most));
  action.topic = ToWide(child.Text("topic").value_or(ToUtf8(action.topic)));
  action.announce = child.Flag("announce");
  action.fields = ReadRestAsFields(child, true);
  return action;
}

PositionAction ReadPosition(CObjectReader& reader) {
  CObjectReader position(reader.Need("position"), "position", reader.Place());
  PositionAction action;
  action.strategy = NeedWide(position, "strategy");
  const JsonNode& items = position.Need("items");
  if (items.kind != JsonNode::Kind::kNull) {
    position.List("items");
    action.items.emplace();
    for (const JsonNode& node : items.children) {
      RecordChange& item = action.items->emplace_back();
      item.fields = ReadRestAsFields(CObjectReader(node, "position item", reader.Place()), false);
    }
  }
  position.Finish();
  return action;
}

RequestAction ReadRequest(CObjectReader& reader) {
  CObjectReader request(reader.Need("request"), "request", reader.Place());
  RequestAction action;
  action.product = NeedWide(request, "product");
  if (const JsonNode* const document = request.Find("document")) {
    AppendCompactJson(*document, action.document);
  }
  if (const JsonNode* const reply = request.Find("reply")) {
    const FieldValue value = ReadValue(request, "reply", *reply, BareNumber::kInt32);
    if (value.kind == FieldValue::Kind::kHandle || value.kind == FieldValue::Kind::kHandle64) {
      request.FailKind("reply", *reply, "a text or an integer");
    }
    action.reply = value.value;
  }
  if (const JsonNode* const load = request.Object("load")) {
    CObjectReader record(*load, "load", reader.Place());
    action.load = ReadRecord(record);
    record.Finish();
  }
  request.Finish();
  return action;
}

/// Reads the settings of faults: each is its misbehaviour, or "none".
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

FaultAction ReadFault(CObjectReader& reader) {
  CObjectReader fault(reader.Need("fault"), "fault", reader.Place());
  const FaultAction action = CFaultReader(fault).Read();
  fault.Finish();
  return action;
}

NoteAction ReadNote(CObjectReader& reader) {
  reader.NeedText("note");
  return {};
}

struct ActionReader {
  std::string_view word;
  Action (*read)(CObjectReader&);
};

template <auto kRead>
Action ReadAs(CObjectReader& reader) {
  return kRead(reader);
}

constexpr std::array kActions = {
    ActionReader{"note", ReadAs<ReadNote>},         ActionReader{"settings", ReadAs<ReadSettings>},
    ActionReader{"symbols", ReadAs<ReadSymbols>},   ActionReader{"record", ReadAs<ReadRecord>},
    ActionReader{"quote", ReadAs<ReadQuote>},       ActionReader{"ticks", ReadAs<ReadTicks>},
    ActionReader{"command", ReadAs<ReadCommand>},   ActionReader{"message", ReadAs<ReadMessage>},
    ActionReader{"accounts", ReadAs<ReadAccounts>}, ActionReader{"phase", ReadAs<ReadPhase>},
    ActionReader{"report", ReadAs<ReadReport>},     ActionReader{"child", ReadAs<ReadChild>},
    ActionReader{"position", ReadAs<ReadPosition>}, ActionReader{"request", ReadAs<ReadRequest>},
    ActionReader{"fault", ReadAs<ReadFault>},
};

[[noreturn]] void FailUnknownAction(const CObjectReader& line) {
  const std::vector<const JsonNode*> rest = line.Rest();
  if (rest.empty()) {
    FailAt(line.Place(), "the line has no action");
  }
  std::vector<std::string_view> words;
  for (const ActionReader& action : kActions) {
    words.push_back(action.word);
  }
  const std::string& wrong = rest.front()->name;
  const std::string nearest = NearestWord(wrong, words);
  FailAt(line.Place(), "unknown action '" + wrong + "'" +
                           (nearest.empty() ? std::string() : "; did you mean '" + nearest + "'?"));
}

}  // namespace

Action ReadAction(CObjectReader& line) {
  for (const JsonNode* const member : line.Rest()) {
    const auto found = std::find_if(kActions.begin(), kActions.end(),
                                    [&](const ActionReader& action) { return action.word == member->name; });
    if (found != kActions.end()) {
      CObjectReader named(line.Node(), std::string(found->word), line.Place());
      named.Allow("at");
      named.Allow("next_day");
      Action action = found->read(named);
      named.Finish();
      return action;
    }
  }
  FailUnknownAction(line);
}

}  // namespace iorder
