#include "terminal/answer_draws.h"

#include "platform/random.h"
#include "records/int128.h"

namespace iorder {

Milliseconds CAnswerDraws::Lateness(int32_t order, int32_t report, Milliseconds most) const {
  const uint64_t bound = static_cast<uint64_t>(most.count()) + 1;
  return Milliseconds(Draw(Kind::kLateness, order, report, bound));
}

bool CAnswerDraws::Hits(Kind kind, int32_t order, int32_t report, Share share) const {
  return Draw(kind, order, report, static_cast<uint64_t>(kWholeShare)) < static_cast<uint64_t>(share);
}

uint64_t CAnswerDraws::Draw(Kind kind, int32_t order, int32_t report, uint64_t bound) const {
  // One stream for each question: the numbers of the question go into its seed one after the other.
  uint64_t seed = m_seed;
  for (const uint64_t part :
       {static_cast<uint64_t>(kind), static_cast<uint64_t>(order), static_cast<uint64_t>(report)}) {
    seed = CRandom(seed ^ part).Next();
  }
  return static_cast<uint64_t>((Uint128{CRandom(seed).Next()} * bound) >> 64);
}

}  // namespace iorder
