#include <gmock/gmock.h>

#include "tests/terminal/terminal_fixture.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(DayPlayer, AutomaticPhasesStandAroundTheLines) {
  CPlayedDay day(R"({"record": "Holiday", "fields": {"A": "1"}}
{"at": "08:45:00", "command": {"Action": 1, "Price": 1.0}}
{"command": "second"}
)");
  std::vector<std::string> times;
  day.engine.onPhase = [&](int32_t, int32_t phase) {
    times.push_back(day.Clock());
    if (phase == 1) {
      EXPECT_EQ(Value(std::wstring(L"1")), day.Open(L"Holiday")->GetValue(read_code::kField, L"A"));
    }
  };
  day.Play();
  EXPECT_THAT(day.problems, IsEmpty());
  EXPECT_THAT(day.engine.calls, ElementsAre(L"phase 1 1", L"phase 1 2",
                                            L"TRADE.IntelligentOrder 0 0 {\"Action\":1,\"Price\":1.0}",
                                            L"TRADE.IntelligentOrder 0 0 second", L"phase 1 4"));
  EXPECT_THAT(times, ElementsAre("08:40:00.000", "08:40:00.000", "08:46:00.000"));
}

}  // namespace
}  // namespace iorder::testing
