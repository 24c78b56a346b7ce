#include "strategy/strategy_open_lottery.h"

namespace iorder {

// Orders are withdrawn (and cancel strings sent) and positions closed once reports are followed; until then
// an ending run leaves them alone, and a hit that comes after the first batch waits.

void CStrategyOpenLottery::DoCancelOrderOpen(int32_t) {}

void CStrategyOpenLottery::DoClosePos(int32_t) {}

}  // namespace iorder
