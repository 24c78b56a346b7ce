#include "app/import/taifex_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/import/source_folder.h"

namespace iorder {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::string kOneFuture = std::string(kFutureColumns) + "20210726,084500,TX,202108,17473,738,,,*\n";
constexpr const char* kTickColumns = "at,date,time,symbol,price,qty,volume,open";

std::vector<std::string> TicksOf(const std::string& optionRows, const std::string& futures = kOneFuture) {
  const CSourceFolder folder;
  folder.Write("options.csv", kOptionColumns + optionRows);
  folder.Write("futures.csv", futures);
  ImportTaifex(folder.Options());
  std::vector<std::string> lines = folder.Lines("day.ticks.csv");
  EXPECT_EQ(lines.at(0), kTickColumns);
  lines.erase(lines.begin());
  return lines;
}

/// The lines of a day file that hold a text.
std::vector<std::string> DayLines(const CSourceFolder& folder, const std::string& part) {
  std::vector<std::string> lines = folder.Lines("day.day.jsonl");
  std::erase_if(lines, [&](const std::string& line) { return line.find(part) == std::string::npos; });
  return lines;
}

TEST(TaifexImport, LocalTimeStandsInAtAndUtcInDateAndTime) {
  EXPECT_THAT(TicksOf("20210726,084501,TXO,202108,17000,C,500,2,\n"),
              ElementsAre("08:45:00,20210726,4500,ND.F.TWF.TX.202108,17473,369,369,17473",
                          "08:45:01,20210726,4501,ND.O.TWF.TX.202108.C.17000,500,1,1,500"));
}

TEST(TaifexImport, BothSidesOfATradeMakeItsLotsOnce) {
  EXPECT_THAT(TicksOf("20210726,090000,TXO,202107W4,17000,P,13.5,3,\n"
                      "20210726,090000,TXO,202107W4,17000,P,13.5,1,\n"
                      "20210726,090000,TXO,202107W4,17000,P,13.5,2,\n"),
              ElementsAre(HasSubstr("TX.202108"), HasSubstr("ND.O.TWF.TX4.202107.P.17000,13.5,1,1,13.5"),
                          HasSubstr("ND.O.TWF.TX4.202107.P.17000,13.5,1,2,"),
                          HasSubstr("ND.O.TWF.TX4.202107.P.17000,13.5,1,3,")));
}

TEST(TaifexImport, SidesPairWithinSeriesSecondAndPrice) {
  EXPECT_THAT(TicksOf("20210726,090000,TXO,202108,17000,P,10,1,\n"
                      "20210726,090000,TXO,202108,17000,P,11,1,\n"
                      "20210726,090000,TXO,202108,17100,P,10,1,\n"
                      "20210726,090000,TXO,202108,17000,P,11,1,\n"
                      "20210726,090000,TXO,202108,17000,P,10,1,\n"
                      "20210726,090000,TXO,202108,17100,P,10,1,\n"),
              ElementsAre(HasSubstr("TX.202108,"), HasSubstr("P.17000,11,1,1,10"),
                          HasSubstr("P.17000,10,1,2,"), HasSubstr("P.17100,10,1,1,10")));
}

TEST(TaifexImport, TheOpeningPriceIsThatOfTheFirstTradeAndStandsInTheFirstTick) {
  const std::vector<std::string> ticks = TicksOf(
      "20210726,090000,TXO,202108,17000,P,.62,2,\n"
      "20210726,090001,TXO,202108,17000,P,12,4,\n");
  EXPECT_EQ(ticks.at(1), "09:00:00,20210726,10000,ND.O.TWF.TX.202108.P.17000,0.62,1,1,0.62");
  EXPECT_EQ(ticks.at(2), "09:00:01,20210726,10001,ND.O.TWF.TX.202108.P.17000,12,2,3,");
}

TEST(TaifexImport, SpreadsAndOtherProductsAreLeftOut) {
  const std::string futures = kOneFuture +
                              "20210726,084501,TX,202108/202109,-105,4,17470,17365,\n"
                              "20210726,084502,MTX,202108,17470,2,,,\n"
                              "20210726,084503,TE,202108,800,2,,,\n"
                              "20210726,084504,MTX,202107W4,17593,2,,,\n";
  EXPECT_THAT(
      TicksOf("20210726,090000,TEO,202108,800,C,5,2,\n20210726,090000,TXO,202108,17000,C,5,2,\n", futures),
      ElementsAre(HasSubstr("ND.F.TWF.TX.202108,17473"), HasSubstr("ND.F.TWF.MX4.202107,17593"),
                  HasSubstr("ND.O.TWF.TX.202108.C.17000")));
}

TEST(TaifexImport, WithinOneSecondFuturesComeFirst) {
  EXPECT_THAT(TicksOf("20210726,084500,TXO,202108,17000,C,500,2,*\n"),
              ElementsAre(HasSubstr("ND.F."), HasSubstr("ND.O.")));
}

TEST(TaifexImport, ASessionTakesItsOwnTradesAlone) {
  const CSourceFolder folder;
  folder.Write("options.csv", std::string(kOptionColumns) +
                                  "20210723,150000,TXO,202108,17000,C,490,2,*\n"
                                  "20210724,045959,TXO,202108,17000,C,495,2,\n"
                                  "20210726,084500,TXO,202108,17000,C,500,2,*\n");
  folder.Write("futures.csv", std::string(kFutureColumns) +
                                  "20210723,150000,TX,202108,17409,2,,,*\n"
                                  "20210724,000000,TX,202108,17410,2,,,\n"
                                  "20210726,084500,TX,202108,17473,2,,,*\n");
  ImportTaifex(folder.Options(TaifexSession::kNight));
  EXPECT_THAT(folder.Lines("day.ticks.csv"),
              ElementsAre(kTickColumns, "15:00:00,20210723,70000,ND.F.TWF.TX.202108,17409,1,1,17409",
                          "15:00:00,20210723,70000,ND.O.TWF.TX.202108.C.17000,490,1,1,490",
                          "2021-07-24T00:00:00,20210723,160000,ND.F.TWF.TX.202108,17410,1,2,",
                          "2021-07-24T04:59:59,20210723,205959,ND.O.TWF.TX.202108.C.17000,495,1,2,"));
  EXPECT_THAT(
      folder.Lines("day.day.jsonl").at(0),
      HasSubstr(R"("start":"2021-07-23T14:45:00","end":"2021-07-24T05:15:00","timezone":"Asia/Taipei")"));

  ImportTaifex(folder.Options(TaifexSession::kDay));
  EXPECT_THAT(folder.Lines("day.ticks.csv"), SizeIs(3));
  EXPECT_THAT(folder.Lines("day.day.jsonl").at(0),
              HasSubstr(R"("start":"2021-07-26T08:30:00","end":"2021-07-26T14:00:00")"));
}

TEST(TaifexImport, TheDayHoldsWhatAnEngineAsksFor) {
  const CSourceFolder folder;
  folder.Write("options.csv", std::string(kOptionColumns) +
                                  "20210726,084500,TXO,202107W4,17000,P,13.5,2,*\n"
                                  "20210726,084500,TXO,202108,17000,C,500,2,*\n"
                                  "20210726,084500,TXO,202109,17000,C,600,2,*\n");
  folder.Write("futures.csv", kOneFuture + "20210726,084500,MTX,202107W4,17593,2,,,*\n");
  TaifexImportOptions options = folder.Options();
  options.brokerId = "B\"2";
  options.account = "A2";
  ImportTaifex(options);
  EXPECT_THAT(
      DayLines(folder, "OpenLottery.ini"),
      ElementsAre(HasSubstr(R"([UnderlyingF]\nND.O.TWF.TX=ND.F.TWF.TX\nND.O.TWF.TX4=ND.F.TWF.MX4\n)")));
  EXPECT_THAT(DayLines(folder, "SystemSettings.ini"), ElementsAre(HasSubstr(R"([SYSTEM]\nSystemName=)")));
  EXPECT_THAT(DayLines(folder, "HOTMONTHTABLE"),
              ElementsAre(R"({"record":"HOTMONTHTABLE","fields":{"ND.F.TWF.MX4.HOT":"ND.F.TWF.MX4.202107",)"
                          R"("ND.F.TWF.TX.HOT":"ND.F.TWF.TX.202108","ND.O.TWF.TX.HOT":"ND.O.TWF.TX.202108",)"
                          R"("ND.O.TWF.TX4.HOT":"ND.O.TWF.TX4.202107"}})"));
  EXPECT_THAT(
      DayLines(folder, "Security.Info"),
      ElementsAre(testing::AllOf(
          HasSubstr(
              R"("ND.O.TWF.TX4":"{\"TickSize\":\"0:0.1;10:0.5;50:1;500:5;1000:10\",\"Weight\":\"50\"}")"),
          HasSubstr(R"("ND.F.TWF.TX":"{\"TickSize\":\"1\",\"Weight\":\"200\"}")"))));
  EXPECT_THAT(DayLines(folder, "accounts"),
              ElementsAre(R"({"accounts":[{"BrokerID":"B\"2","Account":"A2","ConnectStatus":2}]})"));
  EXPECT_THAT(
      DayLines(folder, "TX4.202107.P"),
      ElementsAre(R"({"symbols":[{"Symbol":"ND.O.TWF.TX4.202107.P.17000","Type":"O","SearchName":"17000",)"
                  R"("ExpDate":"20210728","product":"TX4","setpriadj":""}]})",
                  R"({"quote":"ND.O.TWF.TX4.202107.P.17000","clock":false,"mcode":1,"end_date":20210728})"));
  EXPECT_THAT(folder.Lines("day.day.jsonl"), Contains(R"({"ticks":"day.ticks.csv"})"));
}

TEST(TaifexImport, WithoutAListTheTradedSeriesAreListedWithBothRights) {
  const CSourceFolder folder;
  folder.Write("options.csv", std::string(kOptionColumns) + "20210726,084500,TXO,202108,17000,P,13.5,2,*\n");
  folder.Write("futures.csv", kOneFuture);
  const TaifexImportResult result = ImportTaifex(folder.Options());
  EXPECT_EQ(result.listedOptions, 2U);
  EXPECT_EQ(result.tradedOptions, 1U);
  EXPECT_EQ(result.tradedFutures, 1U);
  EXPECT_EQ(result.ticks, 2U);
  EXPECT_THAT(DayLines(folder, "ND.O.TWF.TX.202108.C.17000"), SizeIs(2));
}

TEST(TaifexImport, TheExchangesListAddsSeriesThatDidNotTradeAndLeavesOutTheExpired) {
  const CSourceFolder folder;
  folder.Write("options.csv", std::string(kOptionColumns) + "20210726,084500,TXO,202108,17000,P,13.5,2,*\n");
  folder.Write("futures.csv", kOneFuture);
  folder.Write(
      "series.csv",
      "product,expiry,strike,right,delta\n"
      "TXO,202107W3,17000,C,0.5\nTXO,202107,17000,C,0.5\nTXO,202107W4,17000,C,0.5\nTXO,202203,9000,C,NA\n"
      "TEO,202108,800,C,0.5\n");
  TaifexImportOptions options = folder.Options();
  options.seriesFile = folder.Path("series.csv");
  EXPECT_EQ(ImportTaifex(options).listedOptions, 6U);
  EXPECT_THAT(DayLines(folder, "ND.O.TWF.TX.202203.C.9000"), SizeIs(2));
  EXPECT_THAT(DayLines(folder, "ND.O.TWF.TX4.202107.C.17000"), SizeIs(2));
  EXPECT_THAT(DayLines(folder, "202107.C.17000"), SizeIs(2)) << "the month series of July had expired";
}

TEST(TaifexImport, TheExchangesOwnFormStandsBySeriesAndIsPutInOrderOfTime) {
  const CSourceFolder folder;
  folder.Write(
      "options.csv",
      "\xA6\xA8\xA5\xE6\xA4\xE9\xB4\xC1,\xB0\xD3\xAB~\xA5N\xB8\xB9,\xBCi\xAC\xF9\xBB\xF9\xAE\xE6,"
      "\xA8\xEC\xB4\xC1\xA4\xEB\xA5\xF7(\xB6g\xA7O),\xB6R\xBD\xE6\xC5v\xA7O,\xA6\xA8\xA5\xE6\xAE\xC9\xB6\xA1,"
      "\xA6\xA8\xA5\xE6\xBB\xF9\xAE\xE6,\xA6\xA8\xA5\xE6\xBC\xC6\xB6q(B or "
      "S),\xB6}\xBDL\xB6\xB0\xA6X\xC4v\xBB\xF9 \r\n"
      "--------  "
      ",----------,----------,----------------,--------,--------,--------,--------------,------------\r\n"
      "20210726  ,TXO       ,17000.0000 ,202107W4        ,C       ,090500  ,.62     ,2             ,         "
      "   \r\n"
      "20210726  ,TXO       ,17000.0000 ,202107W4        ,P       ,084500  ,13.5    ,2             ,*        "
      "   \r\n");
  folder.Write(
      "futures.csv",
      "\xA6\xA8\xA5\xE6\xA4\xE9\xB4\xC1,\xB0\xD3\xAB~\xA5N\xB8\xB9,\xA8\xEC\xB4\xC1\xA4\xEB\xA5\xF7("
      "\xB6g\xA7O),"
      "\xA6\xA8\xA5\xE6\xAE\xC9\xB6\xA1,\xA6\xA8\xA5\xE6\xBB\xF9\xAE\xE6,\xA6\xA8\xA5\xE6\xBC\xC6\xB6q(B+S),"
      "\xAA\xF1\xA4\xEB\xBB\xF9\xAE\xE6,\xBB\xB7\xA4\xEB\xBB\xF9\xAE\xE6,\xB6}"
      "\xBDL\xB6\xB0\xA6X\xC4v\xBB\xF9 \r\n"
      "--------  ,----------,----------------,--------,--------,--------------,--------,--------,--------\r\n"
      "20210726  ,TX        ,202108          ,084500  ,17473   ,738           ,-       ,-       ,*       \r\n"
      "20210726  ,TX        ,202108/202109   ,084600  ,-105    ,4             ,17470   ,17365   ,        "
      "\r\n");
  ImportTaifex(folder.Options());
  EXPECT_THAT(folder.Lines("day.ticks.csv"),
              ElementsAre(kTickColumns, "08:45:00,20210726,4500,ND.F.TWF.TX.202108,17473,369,369,17473",
                          "08:45:00,20210726,4500,ND.O.TWF.TX4.202107.P.17000,13.5,1,1,13.5",
                          "09:05:00,20210726,10500,ND.O.TWF.TX4.202107.C.17000,0.62,1,1,0.62"));
}

TEST(TaifexImport, ReadsGzip) {
  const CSourceFolder folder;
  folder.WriteGzip("options.csv.gz",
                   std::string(kOptionColumns) + "20210726,084500,TXO,202108,17000,P,13.5,2,*\n");
  folder.WriteGzip("futures.csv.gz", kOneFuture);
  TaifexImportOptions options = folder.Options();
  options.optionsFile = folder.Path("options.csv.gz");
  options.futuresFile = folder.Path("futures.csv.gz");
  EXPECT_EQ(ImportTaifex(options).ticks, 2U);
}

TEST(TaifexImport, TellsHowFarItIs) {
  const CSourceFolder folder;
  std::string rows = kOptionColumns;
  for (int i = 0; i < 40000; ++i) rows += "20210726,090000,TXO,202108,17000,P,13.5,2,\n";
  folder.Write("options.csv", rows);
  folder.Write("futures.csv", kOneFuture);
  TaifexImportOptions options = folder.Options();
  std::vector<uint64_t> done;
  options.progress = [&](uint64_t bytes, uint64_t total) {
    EXPECT_EQ(total, rows.size() + kOneFuture.size());
    done.push_back(bytes);
  };
  ImportTaifex(options);
  EXPECT_GE(done.size(), 3U);
  EXPECT_TRUE(std::ranges::is_sorted(done));
  EXPECT_EQ(done.back(), rows.size() + kOneFuture.size());
}

TEST(TaifexImport, TheSameFilesMakeTheSameDay) {
  const CSourceFolder folder;
  folder.Write("options.csv", std::string(kOptionColumns) + "20210726,084500,TXO,202108,17000,P,13.5,2,*\n");
  folder.Write("futures.csv", kOneFuture);
  ImportTaifex(folder.Options());
  const std::string day = folder.Read("day.day.jsonl");
  const std::string ticks = folder.Read("day.ticks.csv");
  ImportTaifex(folder.Options());
  EXPECT_EQ(folder.Read("day.day.jsonl"), day);
  EXPECT_EQ(folder.Read("day.ticks.csv"), ticks);
  EXPECT_THAT(folder.Files(), ElementsAre("day.day.jsonl", "day.ticks.csv", "futures.csv", "options.csv"));
}

}  // namespace
}  // namespace iorder
