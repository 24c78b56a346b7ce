// Watching group orders while a day is played.

#include "app/group_order_watcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "app/happening_text.h"
#include "app/run_day.h"
#include "terminal/day_file.h"
#include "terminal/trace_writer.h"

namespace iorder {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kExamples = IORDER_EXAMPLES;

/// Two group orders at the same time, on a chain that a third one has subscribed.
Day TwoOrders() {
  Day day = ReadDayFile(kExamples + "/days/greeks.day.jsonl");
  const auto give = [&day](const std::string& command, const std::string& time) {
    std::ifstream file(kExamples + "/commands/" + command + ".json");
    std::ostringstream text;
    text << file.rdbuf();
    InsertCommand(day, text.str(), ParseLocalTime("2024-03-04T" + time));
  };
  give("group-warm-up", "08:46:00");
  give("group-vanna", "08:47:00");
  give("group-bands-above", "08:47:00");
  return day;
}

std::vector<std::string> Errors(CDayRun& run) {
  return run.Run();
}

TEST(GroupOrderWatcher, ARunIsTheSameWithItAndWithout) {
  const Day day = TwoOrders();
  for (uint64_t seed = 0; seed < 6; ++seed) {
    CTraceText unwatched;
    CDayRun plain(day, {.seed = seed}, {&unwatched});
    EXPECT_THAT(Errors(plain), IsEmpty());

    CTraceText watched;
    size_t told = 0;
    CHappeningListener listener([&told](const std::string&, const Happening&) { ++told; });
    CDayRun run(day, {.seed = seed}, {&watched, &listener});
    run.WatchGroupOrders(listener);
    EXPECT_THAT(Errors(run), IsEmpty());
    EXPECT_GT(told, 50u);
    EXPECT_THAT(unwatched.Text(), HasSubstr("SYNTHETIC=1"));
    EXPECT_EQ(watched.Text(), unwatched.Text()) << "seed " << seed;
  }
}

TEST(GroupOrderWatcher, OnTheNativeClockSeveralThreadsTellIt) {
  const Day day = TwoOrders();
  std::vector<std::string> words;
  CHappeningListener listener(
      [&words](const std::string&, const Happening& happening) { words.push_back(Words(happening)); });
  CDayRun run(day, {.native = true, .speed = 300, .seed = {}}, {&listener});
  run.WatchGroupOrders(listener);
  EXPECT_THAT(Errors(run), IsEmpty());
  EXPECT_THAT(words, Contains("end           group order VANNA: done, target reached"));
  EXPECT_THAT(words, Contains("end           group order ABOVE: done, target reached"));
  EXPECT_THAT(words, Contains(HasSubstr("leg 3 of group order VANNA, in group B")));
}

}  // namespace
}  // namespace iorder
