#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "terminal/local_time.h"
#include "terminal/order_rules.h"
#include "terminal/quote_update.h"
#include "terminal/record_change.h"

namespace iorder {

/// The first line of a day file.
struct DayHead {
  LocalTime start;
  std::optional<LocalTime> end;  ///< none: 60 s after the last action
  std::string timezone = "Asia/Taipei";
  uint64_t seed = 0;
  bool autoPhases = true;
  bool needsSubscription = true;  ///< quotes and option records show nothing before they are subscribed
  Milliseconds subscriptionDelay{0};
  bool hasDatabase = true;
  std::optional<OrderRules> orders;  ///< none: lines of the day answer them
  /// Option figures are worked out from the market, at most once in so much time; none: lines give them.
  std::optional<Milliseconds> figuresPeriod;
  std::string folder;  ///< for the settings files; empty: a fresh temporary one
};

struct NoteAction {};

struct SettingsAction {
  std::string path;
  std::string text;
};

/// The columns of the table SymbolSearch.
inline constexpr const char* kSymbolColumns[] = {"Symbol",  "Type",    "SearchName",
                                                 "ExpDate", "product", "setpriadj"};

struct SymbolsAction {
  /// UTF-8 texts in the order of kSymbolColumns, none for SQL's NULL.
  using Row = std::vector<std::optional<std::string>>;

  std::optional<std::string> database;
  std::vector<Row> rows;
};

struct RecordAction {
  RecordChange change;
  std::optional<Firing> firing;
};

struct QuoteAction {
  std::wstring symbol;
  QuoteUpdate update;
  RecordChange more;  ///< the fields and numbers that have no word of their own
  Firing firing;
};

struct TicksAction {
  std::string path;
};

struct MessageAction {
  std::wstring topic;
  int32_t first = 0;
  int32_t second = 0;
  std::wstring text;
  FieldValue value;
};

struct AccountsAction {
  struct Account {
    std::wstring broker;
    std::wstring account;
    FieldValue status;
    bool hasStatus = false;
  };
  std::vector<Account> accounts;
};

struct PhaseAction {
  int32_t category = 0;
  int32_t phase = 0;
};

struct ReportAction {
  int32_t order = 0;
  std::optional<int32_t> node;
  std::optional<std::wstring> payload;
  std::vector<FieldChange> fields;
};

struct ChildAction {
  int32_t order = 0;
  std::wstring topic = L"TRADE.OTO.MANAGER";
  std::optional<bool> announce;
  std::vector<FieldChange> fields;
};

struct PositionAction {
  std::wstring strategy;
  /// None: the node goes.
  std::optional<std::vector<RecordChange>> items;
};

struct RequestAction {
  std::wstring product;
  std::string document;  ///< JSON, or "" to leave the document untouched
  Value reply;
  std::optional<RecordAction> load;
};

struct FaultAction {
  enum class Kind { kRecordOpen, kItemOpen, kAccount, kDatabase, kSink, kTimer, kThread, kStuck };

  Kind kind = Kind::kSink;
  bool clear = false;  ///< back to good behaviour
  std::wstring name;   ///< of the record, account, timer or thread
  std::wstring node;   ///< of the item, if it lies in a node
  FieldValue item;     ///< index or name
  std::optional<int32_t> times;
  Milliseconds time{0};
};

using Action = std::variant<NoteAction, SettingsAction, SymbolsAction, RecordAction, QuoteAction, TicksAction,
                            MessageAction, AccountsAction, PhaseAction, ReportAction, ChildAction,
                            PositionAction, RequestAction, FaultAction>;

struct DayLine {
  LocalTime at;
  size_t line = 0;  ///< in the day file, from 1; 0 if it wasn't in the file
  Action action;
};

/// A whole day, checked, but for the rows of its tick files.
struct Day {
  std::string path;
  DayHead head;
  std::vector<DayLine> lines;  ///< in the order of their times
  size_t setupCount = 0;       ///< the first so many come before phase 1
  size_t commandCount = 0;     ///< commands that were put in without a time
};

}  // namespace iorder
