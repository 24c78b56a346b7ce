#include "tests/checkers/cycle_checker.h"

#include <fmt/format.h>

namespace iorder::testing {

void CCycleChecker::OnMomentEnd(LocalTime /*at*/) {
  for (const CGroupBook::Mistake& mistake : m_book.Mistakes()) Complain(mistake.at, mistake.what);
  for (const CGroupBook::Cycle& cycle : m_book.Cycles()) {
    const GroupLook& look = cycle.look;
    const std::string id = "'" + cycle.order->command.id + "' ";
    for (const std::string& mistake : cycle.worked.mistakes) Complain(look.at, id + mistake);
    const bool scans = !look.options.empty() || !look.strings.empty();
    if (cycle.worked.stops && scans) Complain(look.at, id + "goes on, though its target is reached");
    const bool sends = !look.strings.empty();
    const bool hasToSend = !cycle.worked.stops && !cycle.worked.strings.empty();
    if (hasToSend && !sends) Complain(look.at, id + "doesn't go on, though its target isn't reached");
  }
}

}  // namespace iorder::testing
