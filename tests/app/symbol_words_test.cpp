#include "app/symbol_words.h"

#include <gtest/gtest.h>

namespace iorder {
namespace {

TEST(SymbolWords, OptionsAndFuturesReadAsTheyAreSaid) {
  EXPECT_EQ(SymbolWords("ND.O.TWF.TX.202403.C.18000"), "TX Mar24 18000 call");
  EXPECT_EQ(SymbolWords("ND.O.TWF.TX4.202107.P.17000"), "TX4 Jul21 17000 put");
  EXPECT_EQ(SymbolWords("ND.O.SHFE.cu.202112.C.70.5"), "cu Dec21 70.5 call");
  EXPECT_EQ(SymbolWords("ND.F.TWF.TX.202403"), "TX Mar24 future");
  EXPECT_EQ(SymbolWords("ND.F.TWF.TX.HOT"), "TX hot month future");
}

TEST(SymbolWords, OtherTextsStay) {
  for (const char* text :
       {"", "X", "ND.O.TWF", "ND.O.TWF.TX.202403.X.1", "ND.S.TSE.2330", "AB.F.TWF.TX.202403"}) {
    EXPECT_EQ(SymbolWords(text), text);
  }
  EXPECT_EQ(SymbolWords("ND.F.TWF.TX.202413"), "TX 202413 future");
}

TEST(DecimalText, IsExactAndShort) {
  EXPECT_EQ(DecimalText(0), "0");
  EXPECT_EQ(DecimalText(125000000000), "12.5");
  EXPECT_EQ(DecimalText(1), "0.0000000001");
  EXPECT_EQ(DecimalText(-5000000000), "-0.5");
  EXPECT_EQ(DecimalText(180000000000000), "18000");
  EXPECT_EQ(DecimalText(NoValue), "none");
}

}  // namespace
}  // namespace iorder
