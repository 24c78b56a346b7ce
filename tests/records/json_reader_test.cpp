#include "records/json_reader.h"

#include <gtest/gtest.h>

#include "records/scaled_value.h"
#include "tests/strategy/json_text.h"

namespace iorder::testing {
namespace {

TEST(JsonReader, AStringIsReadFromUtf8AndAnythingElseIsEmpty) {
  const auto object = Json("{\"a\":\"\xE8\x87\xBA\\n\",\"b\":5,\"c\":null}");
  EXPECT_EQ(L"\u81FA\n", ReadJsonString(object, "a"));
  EXPECT_EQ(L"", ReadJsonString(object, "b"));
  EXPECT_EQ(L"", ReadJsonString(object, "c"));
  EXPECT_EQ(L"", ReadJsonString(object, "d"));
}

TEST(JsonReader, NamesAreCaseSensitive) {
  EXPECT_EQ(-7, ReadJsonInt(Json(R"({"cash":5})"), "Cash", -7));
}

TEST(JsonReader, AnInt32MustFit32Bits) {
  const auto object = Json(R"({"max":2147483647,"min":-2147483648,"big":3000000000,"low":-2147483649})");
  EXPECT_EQ(2147483647, ReadJsonInt(object, "max", 5));
  EXPECT_EQ(-2147483647 - 1, ReadJsonInt(object, "min", 5));
  EXPECT_EQ(5, ReadJsonInt(object, "big", 5));
  EXPECT_EQ(5, ReadJsonInt(object, "low", 5));
}

TEST(JsonReader, AnInt64MustFit64Bits) {
  const auto object = Json(R"({"big":3000000000,"max":9223372036854775807,"beyond":9223372036854775808})");
  EXPECT_EQ(3000000000, ReadJsonInt64(object, "big", 5));
  EXPECT_EQ(9223372036854775807, ReadJsonInt64(object, "max", 5));
  EXPECT_EQ(5, ReadJsonInt64(object, "beyond", 5));
}

TEST(JsonReader, AnIntegerReaderRefusesAnythingElse) {
  const auto object = Json(R"({"double":1.0,"exponent":1e3,"text":"1","bool":true,"null":null,"list":[1]})");
  for (const char* name : {"double", "exponent", "text", "bool", "null", "list", "missing"}) {
    EXPECT_EQ(-3, ReadJsonInt(object, name, -3)) << name;
    EXPECT_EQ(-3, ReadJsonInt64(object, name, -3)) << name;
  }
}

TEST(JsonReader, ADoubleReaderRefusesIntegers) {
  const auto object = Json(R"({"double":1.0,"integer":1})");
  EXPECT_EQ(1.0, ReadJsonDouble(object, "double", -3.0));
  EXPECT_EQ(-3.0, ReadJsonDouble(object, "integer", -3.0));
}

TEST(JsonReader, ADoubleKeepsTenPlaces) {
  const auto object = Json(R"({"long":12.34567890129,"less":-12.34567890129,"nearly":0.29999999999})");
  EXPECT_EQ(12.3456789012, ReadJsonDouble(object, "long", 0.0));
  EXPECT_EQ(-12.3456789012, ReadJsonDouble(object, "less", 0.0));
  EXPECT_EQ(0.2999999999, ReadJsonDouble(object, "nearly", 0.0));
}

TEST(JsonReader, WhatMultiplyingADoubleLosesIsTakenUp) {
  for (const double number : {0.1, 0.7, 17.15, 1.005, 22222.3333, -0.7, -17.15}) {
    const auto object = Json("{\"n\":" + std::to_string(number) + "}");
    EXPECT_EQ(number, ReadJsonDouble(object, "n", 0.0));
  }
}

TEST(JsonReader, ANumberIsReadFromBothSpellings) {
  const auto object = Json(R"({"integer":5,"double":5.0,"part":5.5,"big":3000000000})");
  EXPECT_EQ(5.0, ReadJsonNumber(object, "integer", -2));
  EXPECT_EQ(5.0, ReadJsonNumber(object, "double", -2));
  EXPECT_EQ(5.5, ReadJsonNumber(object, "part", -2));
  EXPECT_EQ(3000000000.0, ReadJsonNumber(object, "big", -2));
  EXPECT_EQ(5.0, ReadJsonNumber(object, "integer", NoPrice));
  EXPECT_EQ(5.5, ReadJsonNumber(object, "part", NoPrice));
}

TEST(JsonReader, ANumberOfAnotherKindIsTheDefault) {
  const auto object = Json(R"({"text":"5","null":null,"object":{},"bool":true})");
  for (const char* name : {"text", "null", "object", "bool", "missing"}) {
    EXPECT_EQ(-2.0, ReadJsonNumber(object, name, -2)) << name;
    EXPECT_EQ(NoPrice, ReadJsonNumber(object, name, NoPrice)) << name;
  }
}

TEST(JsonReader, AnIntegerBeyond64BitsIsNoPriceEither) {
  const auto object = Json(R"({"beyond":9223372036854775808})");
  EXPECT_EQ(NoPrice, ReadJsonNumber(object, "beyond", NoPrice));
  EXPECT_EQ(-2.0, ReadJsonNumber(object, "beyond", -2));
}

// The ten places of a double are those of a scaled value, which ends at 2^63 / 10^10.
TEST(JsonReader, ADoubleBeyondTheTenPlacesReadsAsTheLowestScaledValue) {
  const auto object = Json(
      R"({"last":922337203.6854775,"beyond":922337203.6854777,"Cash":1000000000.0,"below":-1000000000.0})");
  EXPECT_EQ(922337203.6854775, ReadJsonNumber(object, "last", NoPrice));
  for (const char* name : {"beyond", "Cash", "below"}) {
    EXPECT_EQ(-922337203.6854775808, ReadJsonNumber(object, name, NoPrice)) << name;
    EXPECT_EQ(-922337203.6854775808, ReadJsonNumberLoose(object, name, NoPrice)) << name;
    EXPECT_EQ(-922337203.6854775808, ReadJsonDouble(object, name, 0.0)) << name;
  }
}

TEST(JsonReader, AnIntegerIsNotBoundByTheTenPlaces) {
  const auto object = Json(R"({"Cash":1000000000})");
  EXPECT_EQ(1000000000.0, ReadJsonNumber(object, "Cash", NoPrice));
  EXPECT_EQ(1000000000.0, ReadJsonNumberLoose(object, "Cash", NoPrice));
}

TEST(JsonReader, TheLooseReaderGivesTheLowestNumberInPlaceOfNoPrice) {
  const auto object = Json(R"({"integer":5,"double":5.5,"text":"5"})");
  EXPECT_EQ(5.0, ReadJsonNumberLoose(object, "integer", NoPrice));
  EXPECT_EQ(5.5, ReadJsonNumberLoose(object, "double", NoPrice));
  EXPECT_EQ(-9223372036854775808.0, ReadJsonNumberLoose(object, "missing", NoPrice));
  EXPECT_EQ(-9223372036854775808.0, ReadJsonNumberLoose(object, "text", NoPrice));
  EXPECT_EQ(NoValue, Truncate(ReadJsonNumberLoose(object, "missing", NoPrice)));
}

TEST(JsonReader, OnlyAnObjectIsFoundAsOne) {
  const auto object = Json(R"({"object":{"a":1},"list":[1],"text":"{}","null":null})");
  ASSERT_NE(nullptr, FindObject(object, "object"));
  EXPECT_EQ(1, ReadJsonInt(*FindObject(object, "object"), "a", 0));
  for (const char* name : {"list", "text", "null", "missing"}) {
    EXPECT_EQ(nullptr, FindObject(object, name)) << name;
  }
}

TEST(JsonReader, WhatIsNoObjectHasNoMembers) {
  for (const char* text : {"[1]", "5", "\"text\"", "null"}) {
    const auto value = Json(text);
    EXPECT_EQ(L"", ReadJsonString(value, "a")) << text;
    EXPECT_EQ(4, ReadJsonInt(value, "a", 4)) << text;
    EXPECT_EQ(NoPrice, ReadJsonNumber(value, "a", NoPrice)) << text;
    EXPECT_EQ(nullptr, FindObject(value, "a")) << text;
  }
}

}  // namespace
}  // namespace iorder::testing
