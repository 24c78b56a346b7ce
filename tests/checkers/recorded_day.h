#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "terminal/day.h"
#include "tests/checkers/checkers.h"
#include "tests/terminal/day_folder.h"

namespace iorder::testing {

/// The trace of a day that was played once, which a test then falsifies: what a checker says of the changed
/// trace shows whether it sees the mistake.
class CRecordedDay {
 public:
  /// `lines` follow a head that begins at 09:59:50 on 2024-03-04; `head` are further members of it.
  explicit CRecordedDay(const std::string& lines, const std::string& head = "");

  /// Replaces `from` in the first event whose text has `where`, and, where that announces a message, an order
  /// or a cancel, in what is then sent. It must be there.
  CRecordedDay& Change(const std::string& where, const std::string& from, const std::string& to);
  /// Takes out the first event whose text has `where`; with `all` every such event.
  CRecordedDay& Drop(const std::string& where, bool all = false);
  /// Lets the first event whose text has `where` happen again, right behind it.
  CRecordedDay& Repeat(const std::string& where);
  /// Puts the first event whose text has `where` right behind the first one whose text has `behind`.
  CRecordedDay& Move(const std::string& where, const std::string& behind);
  /// Lets the first event whose text has `where` happen on another thread.
  CRecordedDay& OnThread(const std::string& where, const std::string& thread);

  /// Lets the first read of that name from a record whose name begins so give another value.
  CRecordedDay& ChangeRead(const std::string& record, const std::string& name, const Value& value);
  /// Takes out all that happens on a thread.
  CRecordedDay& DropThread(const std::string& thread);
  /// Lets all that happens on a thread happen on another.
  CRecordedDay& MoveThread(const std::string& from, const std::string& to);
  /// Takes out the first read of that kind from a record whose name begins so.
  CRecordedDay& DropRead(const std::string& record, BusRead::Kind kind);

  /// The rules that the trace breaks now, each once, in alphabetical order.
  std::set<std::string> BrokenRules() const;
  /// What is said of them.
  std::string Report() const;
  bool Has(const std::string& text) const;
  /// The texts of all events that have `where`, in their order.
  std::vector<std::string> Texts(const std::string& where) const;

 private:
  /// An event, or what the engine read between two of them.
  struct Recorded : TraceStep {
    std::optional<BusRead> read;
  };
  friend class CStepRecorder;

  size_t Find(const std::string& where) const;
  Violations Check() const;

  std::shared_ptr<CDayFolder> m_folder = std::make_shared<CDayFolder>();
  Day m_day;
  std::vector<Recorded> m_steps;
};

}  // namespace iorder::testing
