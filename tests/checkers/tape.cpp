#include "tests/checkers/tape.h"

#include <algorithm>

#include "platform/text.h"
#include "terminal/tick_file.h"

namespace iorder::testing {
namespace {

constexpr int64_t kConnected = 2;

Scaled NumberOf(const FieldValue& value) {
  if (value.kind != FieldValue::Kind::kValue) return kNone;
  if (const auto* number = std::get_if<int64_t>(&value.value)) return *number;
  return kNone;
}

bool IsNear(Scaled left, Scaled right, Scaled apart) {
  if (left == kNone || right == kNone) return left == right;
  return std::abs(left - right) <= apart;
}

}  // namespace

CTape::CTape(const Day& day) {
  for (const DayLine& line : day.lines) {
    if (const auto* quote = std::get_if<QuoteAction>(&line.action)) {
      Note(ToUtf8(quote->symbol), quote->update, line.at);
      Note(ToUtf8(quote->symbol), quote->more, line.at);
    } else if (const auto* record = std::get_if<RecordAction>(&line.action)) {
      Note(ToUtf8(record->change.name), record->change, line.at);
    } else if (const auto* accounts = std::get_if<AccountsAction>(&line.action)) {
      NoteAccounts(*accounts, line.at);
    } else if (const auto* fault = std::get_if<FaultAction>(&line.action)) {
      NoteFault(*fault, line.at);
    } else if (const auto* ticks = std::get_if<TicksAction>(&line.action)) {
      CTickFile file(ticks->path, DateOf(line.at));
      CTickFile::Row row;
      while (file.Next(row)) Note(file.Symbols()[row.symbol], row.update, row.at);
    }
  }
  // Lines and rows of several files run beside one another.
  for (auto& [key, course] : m_courses) {
    std::stable_sort(course.begin(), course.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
  }
}

void CTape::Note(const std::string& symbol, int32_t field, LocalTime at, Scaled value) {
  m_courses[{symbol, field}].emplace_back(at, value);
}

void CTape::Note(const std::string& symbol, const QuoteUpdate& update, LocalTime at) {
  for (size_t i = 0; i < update.count; ++i) {
    const QuoteUpdate::Number& number = update.numbers[i];
    if (number.id == kLast || number.id == kOpen)
      Note(symbol, number.id, at, number.remove ? kNone : number.value);
  }
}

void CTape::Note(const std::string& symbol, const RecordChange& change, LocalTime at) {
  if (change.clear) {
    for (const int32_t field : {kLast, kOpen}) Note(symbol, field, at, kNone);
  }
  for (const NumberChange& number : change.numbers) {
    if (number.id == kLast || number.id == kOpen) Note(symbol, number.id, at, NumberOf(number.value));
  }
}

void CTape::NoteAccounts(const AccountsAction& action, LocalTime at) {
  m_connected.clear();
  for (const AccountsAction::Account& account : action.accounts) {
    const auto* status = std::get_if<int32_t>(&account.status.value);
    if (account.hasStatus && status != nullptr && *status == kConnected)
      m_connected.insert(ToUtf8(account.broker) + "_" + ToUtf8(account.account));
  }
  NoteReady(at);
}

void CTape::NoteFault(const FaultAction& action, LocalTime at) {
  if (action.kind != FaultAction::Kind::kAccount) return;
  if (action.clear) {
    m_dropped.erase(ToUtf8(action.name));
  } else {
    m_dropped.insert(ToUtf8(action.name));
  }
  NoteReady(at);
}

void CTape::NoteReady(LocalTime at) {
  std::set<std::string> ready;
  std::set_difference(m_connected.begin(), m_connected.end(), m_dropped.begin(), m_dropped.end(),
                      std::inserter(ready, ready.end()));
  m_ready.emplace_back(at, std::move(ready));
}

bool CTape::Showed(const std::string& symbol, int32_t field, Scaled value, LocalTime from, LocalTime to,
                   Scaled apart) const {
  const auto found = m_courses.find({symbol, field});
  if (found == m_courses.end()) return false;
  const Course& course = found->second;
  // Of what is written in one millisecond by two threads either may stay.
  for (size_t i = 0; i < course.size() && course[i].first <= to; ++i) {
    const auto isLater = [&](const auto& entry) { return entry.first > course[i].first; };
    const auto next = std::find_if(course.begin() + static_cast<std::ptrdiff_t>(i), course.end(), isLater);
    const bool isOver = next != course.end() && next->first < from;
    if (!isOver && IsNear(course[i].second, value, apart)) return true;
  }
  return false;
}

/// What holds behind the last change before the millisecond, or behind one within it.
template <typename Test>
bool CTape::AnyReady(LocalTime at, const Test& test) const {
  std::set<std::string> nobody;
  const std::set<std::string>* before = &nobody;
  bool found = false;
  for (const auto& [since, ready] : m_ready) {
    if (since < at) before = &ready;
    if (since == at) found |= test(ready);
  }
  return found || test(*before);
}

bool CTape::WasReady(const std::string& brokerAndAccount, LocalTime at) const {
  return AnyReady(at, [&](const auto& ready) { return ready.contains(brokerAndAccount); });
}

bool CTape::WasNotReady(const std::string& brokerAndAccount, LocalTime at) const {
  return AnyReady(at, [&](const auto& ready) { return !ready.contains(brokerAndAccount); });
}

}  // namespace iorder::testing
