#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "tests/checkers/order_info.h"
#include "tests/checkers/trace_step.h"

namespace iorder::testing {

/// What reports make of one symbol in one run, summed up anew from the fills that they tell.
struct HeldPosition {
  int64_t bought = 0;          ///< filled lots of the last open order with a fill
  Scaled average = kNone;      ///< of that order
  int64_t leaves = 0;          ///< of the last open order, or told by a confirmed cancel
  int64_t sold = 0;            ///< of all close orders
  Scaled soldAverage = kNone;  ///< of the finished ones
  int64_t soldTotal = 0;
  std::string soldReport;  ///< the last finished close order

  int64_t Net() const { return bought - sold; }
  bool IsOpenedAt(Scaled price) const { return price != kNone && average != kNone && Net() > 0; }
};

/// One report as the log tells it.
struct ToldReport {
  std::string symbol;
  std::string report;
  int64_t execType = 0;
  int64_t action = 0;
  int64_t price = kNone;
  int64_t average = kNone;
  int64_t orderType = 0;
  int64_t sent = 0;
  int64_t filled = 0;
  int64_t leaves = 0;
};

ToldReport ReadReport(const std::string& line);

/// What a close order's report adds up to.
struct SoldSum {
  int64_t quantity = 0;
  Scaled average = kNone;
};

/// Keeps the positions of all strategies. A report takes effect at some time between its line in the log and
/// its "Report" message; threads that look meanwhile may see either side, so the side before is kept until
/// then.
class CPositionModel {
 public:
  using Positions = std::map<std::string, HeldPosition>;

  void OnStep(const TraceStep& step);

  /// As they are now, and as they were if a report is on its way in.
  const Positions& Of(uint32_t strategy) const;
  const Positions& BeforeOf(uint32_t strategy) const;
  /// The report that is on its way in.
  const ToldReport* ReportOf(uint32_t strategy) const;
  /// What that report, a close order's, has added up to.
  const SoldSum& SumOf(uint32_t strategy) const;
  /// A reset met reports or values of the run in one moment: which came first isn't known, so nothing is
  /// known of the positions until the next reset.
  bool IsUnsure(uint32_t strategy, LocalTime at) const;

 private:
  struct Book {
    Positions now;
    Positions before;
    std::optional<ToldReport> report;
    SoldSum sum;
    LocalTime touched;  ///< by a report or a value
    LocalTime reset;
    bool isUnsure = false;
  };

  void Touch(Book& book, LocalTime at);
  void Reset(Book& book, LocalTime at);
  void Take(Book& book, const ToldReport& report);
  void TakeMessage(Book& book, const JsonNode& body);

  std::map<uint32_t, Book> m_books;
};

}  // namespace iorder::testing
