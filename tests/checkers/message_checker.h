#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/checkers/checker.h"

namespace iorder::testing {

/// Status messages: valid JSON with exactly the keys of their kind, in their order and of their types, dated
/// with the moment at which they leave. Each is announced in the log and goes out at once, by the same
/// thread, with the same text on both topics; the total of a tag goes to the clients alone, and only when its
/// text has changed.
class CMessageChecker : public CChecker {
 public:
  explicit CMessageChecker(Violations& violations) : CChecker("messages", violations) {}

  void OnStep(const TraceStep& step) override;

 private:
  /// What a thread has announced and not yet sent.
  struct Announced {
    std::string text;
    LocalTime at;
    bool screenIsDue = false;
  };
  /// Of each thread what is due. One after the other; only of the bus, whose threads all bear one name, there
  /// may be several.
  using Dues = std::vector<Announced>;

  void OnAnnouncement(const TraceStep& step);
  void OnTotal(const TraceStep& step, const std::string& text);
  void OnMessage(const TraceStep& step);
  void CheckForm(const TraceStep& step, const std::string& text);
  void CheckMoment(const TraceStep& step, const JsonNode& body);

  void CheckSent(const TraceStep& step);

  std::map<std::string, Dues> m_dues;           ///< by thread
  std::map<std::string, std::string> m_totals;  ///< the last text of each tag
  LocalTime m_now;
};

}  // namespace iorder::testing
