#include "engine/report_payload.h"

#include <gmock/gmock.h>

#include <vector>

namespace iorder::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int32_t> NodesOf(std::wstring_view payload) {
  std::vector<int32_t> nodes;
  ForEachReportNode(payload, [&nodes](int32_t node) { nodes.push_back(node); });
  return nodes;
}

TEST(ReportPayload, AnEntryGivesItsNumber) {
  EXPECT_THAT(NodesOf(L"BN5=[]"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN5=[];"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN1234567=[a,b]"), ElementsAre(1234567));
}

TEST(ReportPayload, NothingBehindTheNumberIsNeeded) {
  EXPECT_THAT(NodesOf(L"BN5"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN5="), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN5=7=8"), ElementsAre(5));
}

TEST(ReportPayload, OnlyTheFirstEntryIsGiven) {
  EXPECT_THAT(NodesOf(L"BN5=[];BN6=[]"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN5;BN6;BN7"), ElementsAre(5));
}

TEST(ReportPayload, WithoutAReportInFrontNothingIsGiven) {
  EXPECT_THAT(NodesOf(L"AN5=[];BN6=[]"), IsEmpty());
  EXPECT_THAT(NodesOf(L"bN5=[]"), IsEmpty());
  EXPECT_THAT(NodesOf(L" BN5=[]"), IsEmpty());
  EXPECT_THAT(NodesOf(L"=BN5"), IsEmpty());
}

TEST(ReportPayload, EmptyPiecesAreIgnored) {
  EXPECT_THAT(NodesOf(L""), IsEmpty());
  EXPECT_THAT(NodesOf(L";;;"), IsEmpty());
  EXPECT_THAT(NodesOf(L";;BN5=[];;"), ElementsAre(5));
}

TEST(ReportPayload, ASemicolonInBracketsBelongsToItsEntry) {
  EXPECT_THAT(NodesOf(L"BN5=[a;b;c];BN6=[]"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN5=[;]"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BN5=[BN6=x;y]"), ElementsAre(5));
}

TEST(ReportPayload, ABracketThatDoesNotCloseKeepsItsEntryOpen) {
  EXPECT_THAT(NodesOf(L"BN5=[a;b"), IsEmpty());
  EXPECT_THAT(NodesOf(L"BN5=[a;BN6=[]"), ElementsAre(5)) << "closed by the bracket of the next";
  EXPECT_THAT(NodesOf(L"BN5=];BN6"), IsEmpty()) << "one of the two alone, whichever";
  EXPECT_THAT(NodesOf(L"BN5=];[;x"), ElementsAre(5));
}

TEST(ReportPayload, TwoLettersStandInFrontOfTheNumber) {
  EXPECT_THAT(NodesOf(L"BX5"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"B15"), ElementsAre(5));
  EXPECT_THAT(NodesOf(L"BNN5"), ElementsAre(0)) << "no number counts as 0";
  EXPECT_THAT(NodesOf(L"BN"), ElementsAre(0));
  EXPECT_THAT(NodesOf(L"B"), ElementsAre(0));
  EXPECT_THAT(NodesOf(L"BN5x"), ElementsAre(5));
}

TEST(ReportPayload, WhatIsLeftOfAnEntryStandsInFrontOfTheNext) {
  EXPECT_THAT(NodesOf(L"B;N5"), ElementsAre(0))
      << "nothing is left of the first, and the second is no report";
  EXPECT_THAT(NodesOf(L"BN;BN5"), ElementsAre(0, 5)) << "nothing is left of the first";
}

}  // namespace
}  // namespace iorder::test
