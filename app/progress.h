#pragma once

#include <string>

#include "platform/status_line.h"
#include "platform/stopwatch.h"

namespace iorder {

/// Tells somebody who watches the error stream how far a long piece of work is: the share done, the rate and
/// the time that remains. Silent during the first second. One thread at a time.
class CProgress {
 public:
  /// `unit` is what is counted, as in "ticks". `total` is how many there are; 0 if that isn't known.
  CProgress(CStatusLine& line, std::string unit, double total);

  /// `count` of the unit are done, which is the share `share` of the work (0 to 1). Cheap enough to be called
  /// often.
  void Show(double count, double share);
  /// The same where the share is that of the total.
  void Show(double count);

 private:
  CStatusLine& m_line;
  std::string m_unit;
  double m_total;
  double m_next = 1;  ///< seconds behind the start at which the line is written again
  CStopwatch m_stopwatch;
};

/// A duration as "4 s", "3 min 05 s" or "2 h 07 min".
std::string DurationText(double seconds);

/// A count as "950", "12.4 k" or "3.05 M".
std::string CountText(double count);

}  // namespace iorder
