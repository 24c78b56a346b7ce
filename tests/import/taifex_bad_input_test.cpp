#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "app/import/import_error.h"
#include "tests/import/source_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kGoodRow = "20210726,090000,TXO,202108,17000,P,13.5,2,\n";
constexpr const char* kGoodFuture = "20210726,084500,TX,202108,17473,738,,,*\n";

/// Imports from good files, one of which is then replaced.
class TaifexBadInput : public testing::Test {
 protected:
  TaifexBadInput() {
    m_folder.Write("options.csv", std::string(kOptionColumns) + kGoodRow);
    m_folder.Write("futures.csv", std::string(kFutureColumns) + kGoodFuture);
  }

  /// The import must fail there, in one line, and leave nothing behind.
  void ExpectError(const TaifexImportOptions& options, const std::string& file, size_t line,
                   const std::string& what, const std::string& expected) {
    const std::vector<std::string> before = m_folder.Files();
    try {
      ImportTaifex(options);
      ADD_FAILURE() << "imported, where this was to fail: " << what;
    } catch (const CImportError& error) {
      EXPECT_EQ(error.File().filename(), file);
      EXPECT_EQ(error.Line(), line) << error.what();
      EXPECT_THAT(error.What(), HasSubstr(what));
      EXPECT_THAT(error.Expected(), HasSubstr(expected));
      EXPECT_THAT(std::string(error.what()), Not(HasSubstr("\n")));
      EXPECT_THAT(std::string(error.what()), HasSubstr(error.What() + "; expected " + error.Expected()));
    }
    EXPECT_EQ(m_folder.Files(), before);
  }

  /// The same for a file that can't be read at all.
  void ExpectFileError(const TaifexImportOptions& options, const std::string& file, const std::string& what) {
    const std::vector<std::string> before = m_folder.Files();
    try {
      ImportTaifex(options);
      ADD_FAILURE() << "imported, where this was to fail: " << what;
    } catch (const InputError& error) {
      EXPECT_THAT(std::string(error.what()), HasSubstr(file + ": " + what));
      EXPECT_THAT(std::string(error.what()), Not(HasSubstr("\n")));
    }
    EXPECT_EQ(m_folder.Files(), before);
  }

  void ExpectOptionRowError(const std::string& row, const std::string& what, const std::string& expected) {
    m_folder.Write("options.csv", std::string(kOptionColumns) + kGoodRow + row + "\n");
    ExpectError(m_folder.Options(), "options.csv", 3, what, expected);
  }

  CSourceFolder m_folder;
};

TEST_F(TaifexBadInput, MissingFile) {
  TaifexImportOptions options = m_folder.Options();
  options.futuresFile = m_folder.Path("none.csv");
  ExpectFileError(options, "none.csv", "can't be opened");
}

TEST_F(TaifexBadInput, Directory) {
  TaifexImportOptions options = m_folder.Options();
  std::filesystem::create_directory(m_folder.Path("folder"));
  options.optionsFile = m_folder.Path("folder");
  ExpectFileError(options, "folder", "is a directory; a file was expected");
}

TEST_F(TaifexBadInput, EmptyFile) {
  m_folder.Write("options.csv", "");
  ExpectError(m_folder.Options(), "options.csv", 0, "is empty", "column names");
}

TEST_F(TaifexBadInput, NoTradeOfTheSession) {
  m_folder.Write("options.csv", kOptionColumns);
  ExpectError(m_folder.Options(), "options.csv", 0, "no trade of the day session", "TXO");
  ExpectError(m_folder.Options(TaifexSession::kNight), "options.csv", 0, "no trade of the night session",
              "TXO");
}

TEST_F(TaifexBadInput, WrongColumns) {
  m_folder.Write("options.csv", std::string("date,time,product,expiry,right,price,qty_b_or_s\n") + kGoodRow);
  ExpectError(m_folder.Options(), "options.csv", 1, "no column 'strike'",
              "date,time,product,expiry,strike,right,price,qty_b_or_s");
  m_folder.Write("options.csv", std::string(kFutureColumns) + kGoodFuture);
  ExpectError(m_folder.Options(), "options.csv", 1, "no column 'strike'", "Big5");
}

TEST_F(TaifexBadInput, ColumnOfTheExchangesFormIsMissing) {
  m_folder.Write("options.csv", "\xA6\xA8\xA5\xE6\xA4\xE9\xB4\xC1,\xB0\xD3\xAB~\xA5N\xB8\xB9\n");
  ExpectError(m_folder.Options(), "options.csv", 1, "no column 'time'", "Big5");
}

TEST_F(TaifexBadInput, GzipThatIsCutOff) {
  std::string rows = kOptionColumns;
  for (int i = 0; i < 10000; ++i)
    rows += "20210726,090000,TXO,202108,17000,P," + std::to_string(i + 1) + ",2,\n";
  m_folder.WriteGzip("options.csv.gz", rows);
  const std::string whole = m_folder.Read("options.csv.gz");
  m_folder.Write("options.csv.gz", whole.substr(0, whole.size() / 2));
  TaifexImportOptions options = m_folder.Options();
  options.optionsFile = m_folder.Path("options.csv.gz");
  ExpectFileError(options, "options.csv.gz", "broken gzip data: the file ends too early");
}

TEST_F(TaifexBadInput, GzipWithWrongContent) {
  m_folder.WriteGzip("options.csv.gz", std::string(kOptionColumns) + kGoodRow);
  std::string content = m_folder.Read("options.csv.gz");
  content[content.size() - 6] = static_cast<char>(content[content.size() - 6] ^ 1);  // the check sum
  m_folder.Write("options.csv.gz", content);
  TaifexImportOptions options = m_folder.Options();
  options.optionsFile = m_folder.Path("options.csv.gz");
  ExpectFileError(options, "options.csv.gz", "broken gzip data");
}

TEST_F(TaifexBadInput, NameSaysGzipButContentIsNot) {
  m_folder.Write("options.csv.gz", std::string(kOptionColumns) + kGoodRow);
  TaifexImportOptions options = m_folder.Options();
  options.optionsFile = m_folder.Path("options.csv.gz");
  ExpectFileError(options, "options.csv.gz", "isn't a gzip file");
}

TEST_F(TaifexBadInput, RowWithAnotherNumberOfFields) {
  ExpectOptionRowError("20210726,090000,TXO,202108", "has 4 fields", "9");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,13.5,2,,", "has 10 fields", "9");
}

TEST_F(TaifexBadInput, TimeThatGoesBack) {
  ExpectOptionRowError("20210726,085959,TXO,202108,17100,C,13.5,2,",
                       "goes back in time to 2021-07-26T08:59:59", "2021-07-26T09:00:00");
}

TEST_F(TaifexBadInput, TimeBetweenTheSessions) {
  ExpectOptionRowError("20210726,143000,TXO,202108,17000,P,13.5,2,", "between the sessions",
                       "084500 to 134500");
}

TEST_F(TaifexBadInput, TradesOfTwoDays) {
  ExpectOptionRowError("20210727,090000,TXO,202108,17000,P,13.5,2,", "another session", "one session");
}

TEST_F(TaifexBadInput, FuturesOfAnotherDay) {
  m_folder.Write("futures.csv", std::string(kFutureColumns) + "20210727,084500,TX,202108,17473,738,,,*\n");
  ExpectError(m_folder.Options(), "futures.csv", 2, "another session", "2021-07-26T08:45:00");
}

TEST_F(TaifexBadInput, ValuesThatDoNotRead) {
  ExpectOptionRowError("2021-07-26,090000,TXO,202108,17000,P,13.5,2,", "date is '2021-07-26'",
                       "whole number");
  ExpectOptionRowError("20210732,090000,TXO,202108,17000,P,13.5,2,", "date is '20210732'", "yyyymmdd");
  ExpectOptionRowError("20210726,096000,TXO,202108,17000,P,13.5,2,", "time is '096000'", "hhmmss");
  ExpectOptionRowError("20210726,,TXO,202108,17000,P,13.5,2,", "time is ''", "whole number");
  ExpectOptionRowError("20210726,090000,TXO,202113,17000,P,13.5,2,", "expiry is '202113'", "yyyymmWn");
  ExpectOptionRowError("20210726,090000,TXO,202108,abc,P,13.5,2,", "strike is 'abc'", "above 0");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,X,13.5,2,", "right is 'X'", "C or P");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,1e3,2,", "price is '1e3'", "decimal");
}

TEST_F(TaifexBadInput, NumbersOutOfRange) {
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,0,2,", "price is '0'", "above 0");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,-1,2,", "price is '-1'", "above 0");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,99999999999999999999,2,", "price is",
                       "up to 10000000");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,13.5,0,", "qty_b_or_s is '0'", "from 1");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,13.5,-2,", "qty_b_or_s is '-2'", "from 1");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,13.5,99999999999999999999,", "qty_b_or_s is",
                       "from 1");
  ExpectOptionRowError("20210726,090000,TXO,202108,17000,P,13.5,1.5,", "qty_b_or_s is '1.5'", "whole number");
}

TEST_F(TaifexBadInput, ALotWithoutItsOtherSide) {
  ExpectOptionRowError("20210726,090000,TXO,202108,17100,P,14,1,", "without its other side at the price 14",
                       "even");
}

TEST_F(TaifexBadInput, ListWithoutSeries) {
  m_folder.Write("series.csv", "product,expiry,strike,right\nTEO,202108,800,C\n");
  TaifexImportOptions options = m_folder.Options();
  options.seriesFile = m_folder.Path("series.csv");
  ExpectError(options, "series.csv", 0, "lists no series", "TXO");
  m_folder.Write("series.csv", "product,expiry,strike\n");
  ExpectError(options, "series.csv", 1, "no column 'right'", "product,expiry,strike,right");
}

TEST_F(TaifexBadInput, ADayThatCannotBeWritten) {
  TaifexImportOptions options = m_folder.Options();
  options.day = m_folder.Path("missing/day.day.jsonl");
  EXPECT_THROW(ImportTaifex(options), InputError);
  options.day = m_folder.Path("day.json");
  EXPECT_THROW(ImportTaifex(options), InputError);
  EXPECT_THAT(m_folder.Files(), ElementsAre("futures.csv", "options.csv"));
}

TEST_F(TaifexBadInput, AnEarlierDayStaysWhenAnImportFails) {
  ImportTaifex(m_folder.Options());
  const std::string day = m_folder.Read("day.day.jsonl");
  const std::string ticks = m_folder.Read("day.ticks.csv");
  ExpectOptionRowError("20210726,090000,TXO,202108,17100,P,14,1,", "without its other side", "even");
  EXPECT_EQ(m_folder.Read("day.day.jsonl"), day);
  EXPECT_EQ(m_folder.Read("day.ticks.csv"), ticks);
}

}  // namespace
}  // namespace iorder
