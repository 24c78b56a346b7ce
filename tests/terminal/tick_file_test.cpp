#include "terminal/tick_file.h"

#include <gmock/gmock.h>

#include "terminal/input_error.h"
#include "tests/terminal/day_folder.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class TickFile : public ::testing::Test {
 protected:
  CTickFile Open(const std::string& text) { return CTickFile(m_folder.Write("t.csv", text), m_date); }
  std::string Mistake(const std::string& text) {
    try {
      CTickFile file = Open(text);
      CTickFile::Row row;
      while (file.Next(row)) {
      }
    } catch (const InputError& error) {
      const std::string what = error.what();
      return what.substr(what.find("t.csv"));
    }
    return "";
  }

  CDayFolder m_folder;
  LocalTime m_date = *ParseLocalTime("2024-03-04T00:00:00");
};

TEST_F(TickFile, RowsAreReadColumnByColumn) {
  CTickFile file = Open(
      "symbol,at,price,volume,mcode,time_format,bid,ask,bid_qty,ask_qty,Y\r\n"
      "ND.A,08:45:00.250,17473.5,12,1,2,17473,17474.25,3,4,-1\r\n"
      "\r\n"
      "ND.B,2024-03-05T01:00:00,,,,,,,,,\r\n");
  CTickFile::Row row;
  ASSERT_TRUE(file.Next(row));
  EXPECT_EQ("2024-03-04T08:45:00.250", ToText(row.at));
  EXPECT_EQ("ND.A", file.Symbols()[row.symbol]);
  ASSERT_EQ(3U, row.update.count);
  EXPECT_EQ(174'735'000'000'000, row.update.numbers[0].value);
  EXPECT_EQ(12, row.update.numbers[1].value);
  EXPECT_EQ(quote_field::kPriceY, row.update.numbers[2].id);
  EXPECT_EQ(-10'000'000'000, row.update.numbers[2].value);
  EXPECT_EQ(1, row.update.mcode);
  EXPECT_EQ(2, row.update.timeFormat);
  EXPECT_EQ(174'742'500'000'000, row.update.best.ask);
  EXPECT_EQ(4, row.update.best.askQuantity);

  ASSERT_TRUE(file.Next(row));
  EXPECT_EQ("2024-03-05T01:00:00.000", ToText(row.at));
  EXPECT_EQ("ND.B", file.Symbols()[row.symbol]);
  EXPECT_EQ(0U, row.update.count);
  EXPECT_FALSE(row.update.mcode);
  EXPECT_EQ(NoValue, row.update.best.bid);
  EXPECT_FALSE(file.Next(row));
}

TEST_F(TickFile, ASymbolKeepsItsNumber) {
  CTickFile file = Open("at,symbol\n08:45:00,ND.A\n08:45:00,ND.B\n08:45:00,ND.A\n08:45:01,ND.A");
  std::vector<size_t> symbols;
  for (CTickFile::Row row; file.Next(row);) {
    symbols.push_back(row.symbol);
  }
  EXPECT_THAT(symbols, ElementsAre(0, 1, 0, 0));
}

TEST_F(TickFile, ARowMayBeLongerThanABlock) {
  const std::string symbol(600'000, 'S');
  CTickFile file = Open("at,symbol\n08:45:00,ND.A\n08:45:00," + symbol + "\n08:45:00,ND.B\n");
  CTickFile::Row row;
  ASSERT_TRUE(file.Next(row));
  ASSERT_TRUE(file.Next(row));
  EXPECT_EQ(symbol, file.Symbols()[row.symbol]);
  ASSERT_TRUE(file.Next(row));
  EXPECT_EQ("ND.B", file.Symbols()[row.symbol]);
}

TEST_F(TickFile, AMistakeIsToldInOneLineWhateverItQuotes) {
  EXPECT_EQ("t.csv:1: unknown column 'a\\x0D\\x1B[2J\\x7Fé'", Mistake("at,symbol,a\r\x1B[2J\x7Fé\n"));
}

TEST_F(TickFile, MistakesNameFileLineAndColumn) {
  EXPECT_EQ("t.csv:2: 'price': expected a decimal with at most ten places, found '1x'",
            Mistake("at,symbol,price\n08:45:00,ND.A,1x\n"));
  EXPECT_EQ("t.csv:3: 'volume': expected an integer, found '1.5'",
            Mistake("at,symbol,volume\n08:45:00,ND.A,1\n08:45:00,ND.A,1.5\n"));
  EXPECT_EQ("t.csv:2: 'mcode': 3000000000 doesn't fit 32 bits",
            Mistake("at,symbol,mcode\n08:45:00,ND.A,3000000000\n"));
  EXPECT_EQ("t.csv:2: expected 3 cells, found 2", Mistake("at,symbol,price\n08:45:00,ND.A\n"));
  EXPECT_EQ("t.csv:2: expected 2 cells, found more", Mistake("at,symbol\n08:45:00,ND.A,1\n"));
  EXPECT_EQ("t.csv:2: 'symbol' is empty", Mistake("at,symbol\n08:45:00,\n"));
  EXPECT_THAT(Mistake("at,symbol\n8:45,ND.A\n"), HasSubstr("t.csv:2: 'at': expected HH:MM:SS[.mmm]"));
  EXPECT_THAT(Mistake("at,symbol\n08:45:00,ND.A\n08:44:59,ND.A\n"),
              HasSubstr("t.csv:3: 'at': 08:44:59 lies before the time of the row above"));
  EXPECT_EQ("t.csv:1: column 'at' stands twice", Mistake("at,symbol,at\n"));
  EXPECT_EQ("t.csv:1: unknown column 'symbl'; did you mean 'symbol'?", Mistake("at,symbl\n"));
}

}  // namespace
}  // namespace iorder::testing
