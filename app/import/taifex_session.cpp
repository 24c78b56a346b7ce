#include "app/import/taifex_session.h"

namespace iorder {

using namespace std::chrono_literals;

LocalTime TaifexSessionDate::Opens() const {
  return session == TaifexSession::kDay ? date + 8h + 45min : date + 15h;
}

LocalTime TaifexSessionDate::Closes() const {
  return session == TaifexSession::kDay ? date + 13h + 45min : date + 29h;
}

std::optional<TaifexSessionDate> TaifexSessionDate::Of(LocalTime time) {
  const std::chrono::local_days today = std::chrono::floor<std::chrono::days>(time);
  for (const TaifexSessionDate candidate :
       {TaifexSessionDate{TaifexSession::kDay, today}, TaifexSessionDate{TaifexSession::kNight, today},
        TaifexSessionDate{TaifexSession::kNight, today - std::chrono::days(1)}}) {
    if (candidate.Opens() <= time && time <= candidate.Closes()) return candidate;
  }
  return std::nullopt;
}

}  // namespace iorder
