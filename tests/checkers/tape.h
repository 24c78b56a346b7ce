#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "terminal/day.h"
#include "tests/checkers/order_info.h"

namespace iorder::testing {

/// What a day's lines and tick rows do to quotes and accounts, moment by moment: the outside world, whatever
/// the engine makes of it.
class CTape {
 public:
  /// Reads the tick files too.
  explicit CTape(const Day& day);

  static constexpr int32_t kLast = 3;
  static constexpr int32_t kOpen = 8;

  /// Whether the field of that quote had that value, or one that differs by no more than `apart`, at some
  /// time between the two, both ends included.
  bool Showed(const std::string& symbol, int32_t field, Scaled value, LocalTime from, LocalTime to,
              Scaled apart = 0) const;
  /// Whether the account was connected at some time in this millisecond; and whether it wasn't.
  bool WasReady(const std::string& brokerAndAccount, LocalTime at) const;
  bool WasNotReady(const std::string& brokerAndAccount, LocalTime at) const;

 private:
  using Course = std::vector<std::pair<LocalTime, Scaled>>;

  void Note(const std::string& symbol, int32_t field, LocalTime at, Scaled value);
  void Note(const std::string& symbol, const QuoteUpdate& update, LocalTime at);
  void Note(const std::string& symbol, const RecordChange& change, LocalTime at);
  void NoteAccounts(const AccountsAction& action, LocalTime at);
  void NoteFault(const FaultAction& action, LocalTime at);
  void NoteReady(LocalTime at);
  template <typename Test>
  bool AnyReady(LocalTime at, const Test& test) const;

  std::map<std::pair<std::string, int32_t>, Course> m_courses;
  std::set<std::string> m_connected;  ///< by what the accounts say
  std::set<std::string> m_dropped;    ///< by a fault
  /// The accounts that are ready from then on.
  std::vector<std::pair<LocalTime, std::set<std::string>>> m_ready;
};

}  // namespace iorder::testing
