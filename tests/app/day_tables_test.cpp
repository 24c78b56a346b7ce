// The tables that `iorder replay --csv` writes.

#include "app/day_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "terminal/input_error.h"
#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kAt = "2024-03-04T08:45:00.000";
const std::string kDay = IORDER_EXAMPLES "/days/profit-limit.day.jsonl";

TEST(DayTables, HoldTheOrdersFillsPositionsAndProfitOfADay) {
  const CProgramFolder folder;
  ASSERT_EQ(folder.Run("replay " + kDay + " --csv tables").exitCode, 0);
  EXPECT_THAT(folder.Files(), ElementsAre("tables", "tables/children.csv", "tables/cycles.csv",
                                          "tables/fills.csv", "tables/legs.csv", "tables/orders.csv",
                                          "tables/positions.csv", "tables/profit.csv"));
  EXPECT_EQ(folder.Read("tables/orders.csv"),
            "at,strategy,account,symbol,side,lots,price,closes,group_order,number,leg\n"
            "2024-03-04T08:47:00.050,OpenLottery_S1_1,B1/A1,ND.O.TWF.TX.202403.C.17700,B,3,15,0,,,\n"
            "2024-03-04T08:47:00.050,OpenLottery_S1_1,B1/A1,ND.O.TWF.TX.202403.C.17600,B,2,15,0,,,\n"
            "2024-03-04T08:50:00.000,OpenLottery_S1_1,B1/A1,ND.O.TWF.TX.202403.C.17700,S,3,,1,,,\n");
  EXPECT_EQ(folder.Read("tables/fills.csv"),
            "at,strategy,symbol,report,side,lots,price,filled,sent\n"
            "2024-03-04T08:48:00.020,OpenLottery_S1_1,ND.O.TWF.TX.202403.C.17700,R1,B,2,15,2,3\n"
            "2024-03-04T08:48:30.020,OpenLottery_S1_1,ND.O.TWF.TX.202403.C.17700,R1,B,1,15,3,3\n"
            "2024-03-04T08:50:00.040,OpenLottery_S1_1,ND.O.TWF.TX.202403.C.17700,R3,S,3,18,3,3\n");
  EXPECT_EQ(folder.Read("tables/positions.csv"),
            "at,strategy,life,run,symbol,bought,bought_at,sold,sold_at,held\n"
            "2024-03-04T08:48:00.020,OpenLottery_S1_1,1,0,ND.O.TWF.TX.202403.C.17700,2,15,0,,2\n"
            "2024-03-04T08:48:30.020,OpenLottery_S1_1,1,0,ND.O.TWF.TX.202403.C.17700,3,15,0,,3\n"
            "2024-03-04T08:50:00.040,OpenLottery_S1_1,1,0,ND.O.TWF.TX.202403.C.17700,3,15,3,18,0\n");
  EXPECT_EQ(folder.Read("tables/profit.csv"),
            "at,tag,cost,profit\n"
            "2024-03-04T08:47:00.200,S1,0,0.00\n"
            "2024-03-04T08:48:00.200,S1,1500,0.00\n"
            "2024-03-04T08:48:10.200,S1,1500,50.00\n"
            "2024-03-04T08:48:30.200,S1,2250,-75.00\n"
            "2024-03-04T08:49:00.200,S1,2250,150.00\n"
            "2024-03-04T08:50:00.200,S1,2250,450.00\n");
}

TEST(DayTables, ACellWithACommaAQuoteOrALineEndIsQuoted) {
  const CProgramFolder folder;
  CDayTables tables(folder.File("t"));
  for (const char* const tag : {"plain", "a,b", "say \"so\"", "two\nlines"})
    tables.Add(kAt, TagTotalChanged{tag, 1500, -2.5});
  OrderSent order;
  order.strategy = "OpenLottery_A,B_1";
  order.account = "B,1/A1";
  order.symbol = "X";
  order.side = "B";
  order.lots = 2;
  order.priceWords = "BID-3T";
  tables.Add(kAt, order);
  tables.Commit();
  EXPECT_EQ(folder.Read("t/profit.csv"),
            "at,tag,cost,profit\n"
            "2024-03-04T08:45:00.000,plain,1500,-2.50\n"
            "2024-03-04T08:45:00.000,\"a,b\",1500,-2.50\n"
            "2024-03-04T08:45:00.000,\"say \"\"so\"\"\",1500,-2.50\n"
            "2024-03-04T08:45:00.000,\"two\nlines\",1500,-2.50\n");
  EXPECT_EQ(folder.Read("t/orders.csv"),
            "at,strategy,account,symbol,side,lots,price,closes,group_order,number,leg\n"
            "2024-03-04T08:45:00.000,\"OpenLottery_A,B_1\",\"B,1/A1\",X,B,2,BID-3T,0,,,\n");
}

TEST(DayTables, HoldTheCyclesLegsAndChildrenOfGroupOrders) {
  const CProgramFolder folder;
  ASSERT_EQ(
      folder
          .Run("replay " IORDER_EXAMPLES "/days/greeks.day.jsonl --csv tables --command " IORDER_EXAMPLES
               "/commands/group-warm-up.json@08:46 --command " IORDER_EXAMPLES
               "/commands/group-bands-below.json@08:47")
          .exitCode,
      0);
  EXPECT_EQ(
      folder.Read("tables/cycles.csv"),
      "at,group_order,number,cycle,sum,target,check1,value1,low1,high1,check2,value2,low2,high2,doubled,"
      "orders,lots\n"
      "2024-03-04T08:46:00.000,WARM-UP,1,1,,1,,,,,,,,,,0,0\n"
      "2024-03-04T08:47:00.000,BELOW,2,1,-2.054201,0,Vega,-59.616564,-50,50,Gamma,-0.002437,-0.002,"
      "0.002,1,2,3\n"
      "2024-03-04T08:47:02.040,BELOW,2,2,-0.540651,0,Vega,-44.712423,-50,50,Gamma,-0.001828,-0.002,"
      "0.002,,2,2\n");
  EXPECT_THAT(folder.Read("tables/legs.csv"),
              testing::StartsWith(
                  "at,group_order,number,cycle,leg,right,side,lots,field,wanted,symbol,figure,distance,"
                  "offset,opened\n"
                  "2024-03-04T08:46:00.000,WARM-UP,1,1,1,Call,B,0,,0,ND.O.TWF.TX.202403.C.16800,,,0,0\n"
                  "2024-03-04T08:46:00.000,WARM-UP,1,1,2,Put,S,0,,0,ND.O.TWF.TX.202403.P.16800,,,0,0\n"
                  "2024-03-04T08:47:00.000,BELOW,2,1,1,Call,B,2,Delta,0.5,ND.O.TWF.TX.202403.C.17500,"
                  "0.51355019,0.01355019,2,0\n"
                  "2024-03-04T08:47:00.000,BELOW,2,1,2,Put,S,1,Delta,-0.5,ND.O.TWF.TX.202403.P.17500,"
                  "-0.48644981,0.01355019,0,1\n"));
  EXPECT_THAT(folder.Read("tables/children.csv"),
              testing::StartsWith("at,group_order,number,child,state,words,live,fails\n"
                                  "2024-03-04T08:47:00.020,BELOW,2,C1,,is there,1,0\n"
                                  "2024-03-04T08:47:00.020,BELOW,2,C2,,is there,2,0\n"
                                  "2024-03-04T08:47:00.040,BELOW,2,C1,3,is filled,1,0\n"
                                  "2024-03-04T08:47:00.040,BELOW,2,C2,3,is filled,0,0\n"));
  EXPECT_THAT(folder.Read("tables/orders.csv"),
              HasSubstr("2024-03-04T08:47:00.000,,B1/A1,ND.O.TWF.TX.202403.C.17500,B,2,,0,BELOW,2,1\n"));
}

TEST(DayTables, ASecondCheckAloneStandsInItsOwnColumns) {
  const CProgramFolder folder;
  CDayTables tables(folder.File("t"));
  GroupCycleMade cycle;
  cycle.order = {"G", 1, false};
  cycle.cycle = 1;
  cycle.checks = {{2, "Vega", 130, 90, 110, true}};
  tables.Add(kAt, cycle);
  tables.Commit();
  EXPECT_THAT(folder.Read("t/cycles.csv"),
              testing::EndsWith("\n2024-03-04T08:45:00.000,G,1,1,,0,,,,,Vega,130,90,110,,0,0\n"));
}

TEST(DayTables, ALegThatWantsNothingThatFitsHasAnEmptyCell) {
  const CProgramFolder folder;
  CDayTables tables(folder.File("t"));
  GroupLegChosen leg;
  leg.order = {"G", 1, false};
  leg.leg = 1;
  leg.side = "B";
  leg.field = "Vega";
  leg.wanted = NoValue;
  tables.Add(kAt, leg);
  tables.Commit();
  EXPECT_THAT(folder.Read("t/legs.csv"),
              testing::EndsWith("\n2024-03-04T08:45:00.000,G,1,0,1,,B,0,Vega,,,,,0,0\n"));
}

TEST(DayTables, WithoutCommitThereIsNone) {
  const CProgramFolder folder;
  {
    CDayTables tables(folder.File("t"));
    tables.Add(kAt, TagTotalChanged{"T", 1500, 0});
  }
  EXPECT_THAT(folder.Files(), ElementsAre("t"));
}

TEST(DayTables, AFolderThatCantBeMadeIsRefused) {
  const CProgramFolder folder;
  folder.Write("file", "");
  const ProgramResult result = folder.Run("replay " + kDay + " --csv file/tables --trace t.jsonl");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.output, IsEmpty());
  EXPECT_THAT(result.errors, testing::StartsWith("iorder: file/tables: can't be made: "));
  EXPECT_THAT(folder.Files(), ElementsAre("file"));
}

TEST(DayTables, ATableThatCantBeWrittenLeavesNoOther) {
  const CProgramFolder folder;
  folder.Write("tables/profit.csv/x", "");
  const ProgramResult result = folder.Run("replay " + kDay + " --csv tables --trace t.jsonl");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors, "iorder: tables/profit.csv: is a folder, expected a file to write\n");
  EXPECT_THAT(folder.Files(), ElementsAre("tables", "tables/profit.csv", "tables/profit.csv/x"));
}

TEST(ProfitEvery, IsTheLeastTimeBetweenTwoLinesOfTheSame) {
  const CProgramFolder folder;
  const auto lines = [&folder](const std::string& options) {
    const ProgramResult result =
        folder.RunShell(CProgramFolder::Program() + " replay " + kDay + " " + options +
                        " | grep -E '^[0-9:.]+  (profit|total) ' | cut -c1-8,14-20");
    EXPECT_EQ(result.exitCode, 0);
    return result.output;
  };
  EXPECT_EQ(lines("--profit-every 0"),
            "08:47:00 total \n"
            "08:48:00 profit\n08:48:00 total \n"
            "08:48:10 profit\n08:48:10 total \n"
            "08:48:30 profit\n08:48:30 total \n"
            "08:49:00 profit\n08:49:00 total \n"
            "08:50:00 profit\n08:50:00 total \n");
  const std::string eachMinute =
      "08:47:00 total \n"
      "08:48:00 profit\n08:48:00 total \n"
      "08:49:00 profit\n08:49:00 total \n"
      "08:50:00 profit\n08:50:00 total \n";
  EXPECT_EQ(lines("--profit-every 60"), eachMinute);
  EXPECT_EQ(lines(""), eachMinute);
  EXPECT_EQ(lines("--profit-every 86400"), "08:47:00 total \n08:48:00 profit\n");
}

TEST(ProfitEvery, LeavesTablesAndJsonAsTheyAre) {
  const CProgramFolder folder;
  const auto run = [&folder](const std::string& seconds) {
    const std::string output =
        folder.Run("replay " + kDay + " --json --csv tables --profit-every " + seconds).output;
    return output + folder.Read("tables/profit.csv") + folder.Read("tables/positions.csv");
  };
  const std::string every = run("0");
  EXPECT_THAT(every, HasSubstr(R"("kind":"profit")"));
  EXPECT_EQ(every, run("60"));
  EXPECT_EQ(every, run("86400"));
}

}  // namespace
}  // namespace iorder
