#include "terminal/report_queue.h"

#include <gmock/gmock.h>

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;

TimePoint At(int64_t ms) {
  return TimePoint(Milliseconds(ms));
}

OrderReport Report(int32_t order, int64_t filled) {
  OrderReport report;
  report.order = order;
  report.filled = filled;
  return report;
}

/// All that comes out, as "TIME ORDER:FILLED/RECEIVED", looking at each millisecond.
std::vector<std::string> TakeAll(CReportQueue& queue, int64_t until) {
  std::vector<std::string> texts;
  for (int64_t ms = 0; ms <= until; ++ms) {
    while (const auto report = queue.TakeDue(At(ms))) {
      texts.push_back(std::to_string(ms) + " " + std::to_string(report->order) + ":" +
                      std::to_string(report->filled) + "/" + std::to_string(report->received));
    }
  }
  return texts;
}

TEST(ReportQueue, AReportComesWhenItIsDue) {
  CReportQueue queue({}, CAnswerDraws(0));
  EXPECT_THAT(queue.Add(Report(1, 2), At(7)), ElementsAre(At(7)));
  queue.Add(Report(2, 0), At(5));
  EXPECT_THAT(TakeAll(queue, 20), ElementsAre("5 2:0/0", "7 1:2/2"));
}

TEST(ReportQueue, NoReportOfAnOrderComesBeforeAnEarlierOne) {
  CReportQueue queue({}, CAnswerDraws(0));
  queue.Add(Report(1, 1), At(9));
  EXPECT_THAT(queue.Add(Report(1, 2), At(4)), ElementsAre(At(10)));
  EXPECT_THAT(TakeAll(queue, 20), ElementsAre("9 1:1/1", "10 1:2/2"));
}

TEST(ReportQueue, LateReportsKeepTheirOrderUnlessTheyMayOvertake) {
  bool isOneOvertaken = false;
  for (uint64_t seed = 0; seed < 20; ++seed) {
    for (const bool outOfOrder : {false, true}) {
      OrderRules rules;
      rules.late = Milliseconds(50);
      rules.outOfOrder = outOfOrder;
      CReportQueue queue(rules, CAnswerDraws(seed));
      const TimePoint first = queue.Add(Report(1, 1), At(10)).front();
      const TimePoint second = queue.Add(Report(1, 2), At(11)).front();
      EXPECT_GE(first, At(10));
      EXPECT_LE(first, At(60));
      EXPECT_LE(second, At(61));
      EXPECT_TRUE(outOfOrder || first <= second);
      isOneOvertaken |= second < first;
    }
  }
  EXPECT_TRUE(isOneOvertaken);
}

TEST(ReportQueue, PunctualReportsKeepTheirOrderEvenIfLateOnesMayOvertake) {
  OrderRules rules;
  rules.outOfOrder = true;
  CReportQueue queue(rules, CAnswerDraws(0));
  queue.Add(Report(1, 1), At(20));
  EXPECT_THAT(queue.Add(Report(1, 2), At(10)), ElementsAre(At(21)));
  EXPECT_THAT(TakeAll(queue, 30), ElementsAre("20 1:1/1", "21 1:2/2"));
}

TEST(ReportQueue, NoTwoReportsOfAnOrderComeAtTheSameMoment) {
  OrderRules rules;
  rules.recFillLag = Milliseconds(4);
  CReportQueue queue(rules, CAnswerDraws(0));
  queue.Add(Report(1, 1), At(5));
  queue.Add(Report(1, 1), At(5));
  queue.Add(Report(2, 1), At(5));
  queue.Add(Report(1, 1), At(9));
  EXPECT_THAT(TakeAll(queue, 20),
              ElementsAre("5 1:1/0", "5 2:1/0", "6 1:1/0", "9 1:1/1", "9 2:1/1", "10 1:1/1"));
}

TEST(ReportQueue, ARepeatedReportComesTwice) {
  OrderRules rules;
  rules.repeat = kWholeShare;
  CReportQueue queue(rules, CAnswerDraws(0));
  queue.Add(Report(1, 1), At(5));
  EXPECT_THAT(TakeAll(queue, 20), ElementsAre("5 1:1/1", "6 1:1/1"));
}

TEST(ReportQueue, WhatWasReceivedOfAFillLagsBehindAndIsCompletedOnce) {
  OrderRules rules;
  rules.recFillLag = Milliseconds(10);
  CReportQueue queue(rules, CAnswerDraws(0));
  EXPECT_THAT(queue.Add(Report(1, 0), At(1)), ElementsAre(At(1)));
  EXPECT_THAT(queue.Add(Report(1, 2), At(5)), ElementsAre(At(5), At(15)));
  queue.Add(Report(1, 5), At(8));
  EXPECT_THAT(queue.Add(Report(1, 5), At(30)), ElementsAre(At(30)));  // a cancel tells no new fill
  EXPECT_THAT(TakeAll(queue, 40),
              ElementsAre("1 1:0/0", "5 1:2/0", "8 1:5/0", "15 1:5/2", "18 1:5/5", "30 1:5/5"));
}

TEST(AnswerDraws, AShareHitsItsPartAndTheEndsAreSure) {
  int hits = 0;
  for (int32_t order = 1; order <= 2000; ++order) {
    const CAnswerDraws draws(7);
    EXPECT_FALSE(draws.Rejects(order, 0));
    EXPECT_TRUE(draws.Rejects(order, kWholeShare));
    hits += draws.Rejects(order, kWholeShare / 4) ? 1 : 0;
    EXPECT_EQ(draws.LosesAck(order, kWholeShare / 2), CAnswerDraws(7).LosesAck(order, kWholeShare / 2));
  }
  // 500 are expected, with a standard deviation of 19.
  EXPECT_NEAR(500, hits, 100);
}

TEST(AnswerDraws, LatenessReachesBothEnds) {
  std::vector<int> counts(4);
  for (int32_t report = 1; report <= 400; ++report) {
    ++counts.at(static_cast<size_t>(CAnswerDraws(3).Lateness(1, report, Milliseconds(3)).count()));
  }
  EXPECT_THAT(counts, ::testing::Each(::testing::Gt(50)));
  EXPECT_EQ(Milliseconds(0), CAnswerDraws(3).Lateness(1, 1, Milliseconds(0)));
}

}  // namespace
}  // namespace iorder::testing
