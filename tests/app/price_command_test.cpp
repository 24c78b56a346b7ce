#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "analytics/theory_price.h"
#include "tests/analytics/exact_price.h"
#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string Output(const std::string& arguments) {
  const ProgramResult result = CProgramFolder().Run("price " + arguments);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, IsEmpty());
  return result.output;
}

rapidjson::Document Json(const std::string& arguments) {
  const std::string output = Output(arguments + " --json");
  rapidjson::Document list;
  list.Parse<rapidjson::kParseFullPrecisionFlag>(output);
  EXPECT_TRUE(list.IsArray()) << output;
  return list;
}

std::vector<std::string> Keys(const rapidjson::Value& object) {
  std::vector<std::string> keys;
  for (const auto& member : object.GetObject()) keys.emplace_back(member.name.GetString());
  return keys;
}

/// What the program says of arguments that it can't take.
std::string Refusal(const std::string& arguments) {
  const CProgramFolder folder;
  const ProgramResult result = folder.Run("price " + arguments);
  EXPECT_EQ(result.exitCode, 2) << arguments;
  EXPECT_THAT(result.output, IsEmpty()) << arguments;
  EXPECT_THAT(result.errors, StartsWith("iorder: ")) << arguments;
  EXPECT_EQ(1, std::count(result.errors.begin(), result.errors.end(), '\n')) << result.errors;
  return result.errors;
}

constexpr const char* kOption =
    "--right C --vol 20 --strike 17000 --underlying 17250 --years 0.25 --rate 2 --carry 0";

TEST(PriceCommand, PricesAnOptionOfPercentages) {
  const ExactOption option{.call = true,
                           .strike = 17000,
                           .underlying = 17250,
                           .rate = 0.02L,
                           .rateTime = 0.25,
                           .volatilityTime = 0.25,
                           .b = 0,
                           .volatility = 0.2L};
  const rapidjson::Document list = Json(kOption);
  ASSERT_EQ(1U, list.Size());
  EXPECT_NEAR(static_cast<double>(option.Price()), list[0]["price"].GetDouble(), 0.0035);
}

TEST(PriceCommand, JsonHasTheInputsBesideThePrice) {
  const rapidjson::Document list = Json(
      "--right P --vol 18.5 --strike 17000.5 --underlying 17250 --days 16 --of 365 --rate -1.5 --carry 0.25");
  ASSERT_EQ(1U, list.Size());
  const rapidjson::Value& one = list[0];
  EXPECT_THAT(Keys(one),
              ElementsAre("right", "vol", "strike", "underlying", "years", "rate", "carry", "price"));
  EXPECT_STREQ("P", one["right"].GetString());
  EXPECT_EQ(18.5, one["vol"].GetDouble());
  EXPECT_EQ(17000.5, one["strike"].GetDouble());
  EXPECT_EQ(17250, one["underlying"].GetDouble());
  EXPECT_EQ(16.0 / 365.0, one["years"].GetDouble());
  EXPECT_EQ(-1.5, one["rate"].GetDouble());
  EXPECT_EQ(0.25, one["carry"].GetDouble());
}

TEST(PriceCommand, JsonHasThePriceToItsLastBit) {
  const rapidjson::Document list =
      Json("--vol 23.7 --strike 90.1:112.9:0.3 --underlying 101.7 --years 0.3 --rate 3.1 --carry 1.7");
  for (const auto& one : list.GetArray()) {
    const std::wstring right = one["right"].GetString() == std::string("C") ? L"C" : L"P";
    EXPECT_EQ(
        CalcTheoryPrice(23.7 / 100, one["strike"].GetDouble(), 101.7, 3.1 / 100, 0.3, 0.3, 1.7 / 100, right),
        one["price"].GetDouble())
        << one["strike"].GetDouble();
  }
}

TEST(PriceCommand, AStripHasStrikesAtEqualDistancesUpToItsEnd) {
  std::vector<double> strikes;
  const rapidjson::Document list =
      Json("--right C --vol 20 --strike 16.9:17.35:0.1 --underlying 17 --years 1");
  for (const auto& one : list.GetArray()) strikes.push_back(one["strike"].GetDouble());
  EXPECT_THAT(strikes, ElementsAre(16.9, 17.0, 17.1, 17.2, 17.3)) << "each the nearest double of its digits";
  EXPECT_EQ(1U, Json("--right C --vol 20 --strike 17:17:5 --underlying 17 --years 1").Size());
}

TEST(PriceCommand, WithoutARightBothArePriced) {
  const rapidjson::Document list = Json("--vol 20 --strike 90:110:10 --underlying 100 --years 1");
  ASSERT_EQ(6U, list.Size());
  for (rapidjson::SizeType i = 0; i < 3; ++i) {
    EXPECT_STREQ("C", list[i]["right"].GetString());
    EXPECT_STREQ("P", list[i + 3]["right"].GetString());
    EXPECT_NEAR(100 - list[i]["strike"].GetDouble(),
                list[i]["price"].GetDouble() - list[i + 3]["price"].GetDouble(), 1e-12);
  }
}

TEST(PriceCommand, DaysAreOf250WithoutAnotherWord) {
  EXPECT_EQ(Output("--vol 20 --strike 100 --underlying 100 --days 12"),
            Output("--vol 20 --strike 100 --underlying 100 --days 12 --of 250"));
  EXPECT_EQ(Output("--vol 20 --strike 100 --underlying 100 --days 12 --of 240"),
            Output("--vol 20 --strike 100 --underlying 100 --years 0.05"));
}

TEST(PriceCommand, TheTableHasALineForEachStrike) {
  EXPECT_EQ(
      "        strike            call             put\n"
      "            20       80.000000        0.000000\n"
      "           100        3.987760        3.987760\n"
      "           180        0.000000       80.000000\n",
      Output("--vol 20 --strike 20:180:80 --underlying 100 --years 0.25"));
}

TEST(PriceCommand, WideNumbersDontRunTogether) {
  EXPECT_EQ(
      "        strike              call              put\n"
      "     900000000  142858342.208201  37731232.570599\n",
      Output("--vol 20 --strike 900000000 --underlying 1000000000 --years 1 --rate -5"));
  EXPECT_THAT(Output("--right C --vol 20 --strike 100000000.0123456789 --underlying 100000000 --years 1"),
              StartsWith("            strike            call\n100000000.01234567  "));
}

TEST(PriceCommand, APriceThatIsNotFiniteIsNull) {
  const rapidjson::Document list = Json("--vol 20 --strike 100 --underlying 100 --years 100 --rate -999");
  EXPECT_TRUE(list[0]["price"].IsNull());
  EXPECT_THAT(Output("--right C --vol 20 --strike 100 --underlying 100 --years 100 --rate -999"),
              EndsWith("           100               -\n"));
}

TEST(PriceCommand, WhatItCantTakeIsTold) {
  const std::string rest = " --underlying 100 --years 1";
  EXPECT_THAT(Refusal("--vol 0 --strike 100" + rest), HasSubstr("--vol: '0', expected a number above 0"));
  EXPECT_THAT(Refusal("--vol nan --strike 100" + rest), HasSubstr("--vol: 'nan', expected"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100 --underlying -5 --years 1"),
              HasSubstr("--underlying: '-5', expected"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100 --underlying 100 --years 0"),
              HasSubstr("--years: '0', expected"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100 --underlying 100 --days 5 --of 0"),
              HasSubstr("--of: '0', expected"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100 --rate 5000" + rest), HasSubstr("--rate: '5000', expected"));
  EXPECT_THAT(Refusal("--right X --vol 20 --strike 100" + rest), HasSubstr("--right: 'X', expected C or P"));
  EXPECT_THAT(Refusal("--right C --vol 20 --strike 100 --underlying 100"),
              EndsWith("expected either --years, or --days (with --of)\n"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100 --days 5" + rest),
              EndsWith("expected either --years, or --days (with --of)\n"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100 --of 365" + rest), HasSubstr("--of requires --days"));
  EXPECT_THAT(Refusal("--strike 100" + rest), HasSubstr("--vol is required"));
  EXPECT_THAT(Refusal("--vol 20 --strike 100" + rest + " --spot 5"), HasSubstr("'--spot' isn't known"));
}

TEST(PriceCommand, AStrikeThatItCantTakeIsTold) {
  const auto refusal = [](const std::string& strike) {
    return Refusal("--vol 20 --underlying 100 --years 1 --strike " + strike);
  };
  for (const char* strike : {"0", "-5", "1e5", "17x", "''", "1:2:x", "1:2:0", "1::3", "1:2:3:4"}) {
    EXPECT_THAT(refusal(strike), HasSubstr("expected a number above 0, or FROM:TO:STEP of such")) << strike;
  }
  EXPECT_THAT(refusal("1:2"), EndsWith("expected a strike or FROM:TO:STEP\n"));
  EXPECT_THAT(refusal("3:2:1"), EndsWith("expected FROM not above TO\n"));
  EXPECT_THAT(refusal("1:1000000:1"), EndsWith("has 1000000 strikes, expected at most 100000\n"));
}

}  // namespace
}  // namespace iorder
