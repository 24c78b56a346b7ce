#include "terminal/day_actions.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <utility>

#include "platform/text.h"
#include "terminal/day_file.h"
#include "terminal/fault_action.h"
#include "terminal/quote_words.h"
#include "terminal/record_action.h"

namespace iorder {
namespace {

constexpr int64_t kInt32Most = std::numeric_limits<int32_t>::max();

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
