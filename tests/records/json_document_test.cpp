#include "records/json_document.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>

namespace iorder {
namespace {

std::string Nested(size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

TEST(JsonDocument, TellsWhereAParseFailed) {
  rapidjson::Document document;
  const JsonFailure failure = ParseJson("{\"a\":1,}", document);
  EXPECT_EQ(failure.code, rapidjson::kParseErrorObjectMissName);
  EXPECT_EQ(failure.offset, 7u);
  EXPECT_TRUE(document.IsNull());
}

TEST(JsonDocument, AnEmptyTextFails) {
  rapidjson::Document document;
  const JsonFailure failure = ParseJson("", document);
  EXPECT_EQ(failure.code, rapidjson::kParseErrorDocumentEmpty);
  EXPECT_EQ(failure.offset, 0u);
}

TEST(JsonDocument, Takes256LevelsAndNoMore) {
  rapidjson::Document document;
  EXPECT_FALSE(ParseJson(Nested(256), document));
  EXPECT_EQ(WriteJson(document), Nested(256));
  EXPECT_EQ(ParseJson(Nested(257), document).code, rapidjson::kParseErrorTermination);
  EXPECT_TRUE(document.IsNull());
}

TEST(JsonDocument, AMillionLevelsFailLikeAnyOther) {
  rapidjson::Document document;
  EXPECT_EQ(ParseJson(std::string(1'000'000, '['), document).code, rapidjson::kParseErrorTermination);
}

TEST(JsonDocument, LevelsThatWereClosedDoNotCount) {
  std::string wide = "[";
  for (int i = 0; i < 1000; ++i) wide += Nested(200) + ",";
  rapidjson::Document document;
  EXPECT_FALSE(ParseJson(wide + "1]", document));
}

TEST(JsonDocument, ADocumentCanBeParsedIntoAgain) {
  rapidjson::Document document;
  ParseJson("{\"a\":1}", document);
  EXPECT_FALSE(ParseJson("[2]", document));
  EXPECT_EQ(WriteJson(document), "[2]");
}

TEST(JsonDocument, DoublesAreReadExactly) {
  rapidjson::Document document;
  ParseJson("[0.1,17976.931348623157,2.2250738585072011e-308]", document);
  EXPECT_EQ(document[0].GetDouble(), 0.1);
  EXPECT_EQ(document[1].GetDouble(), 17976.931348623157);
  EXPECT_EQ(document[2].GetDouble(), 2.2250738585072011e-308);
}

TEST(JsonDocument, StringsAreUnescapedAndOutliveTheirText) {
  rapidjson::Document document;
  {
    std::string text =
        R"({"k\"ey" : "a\u0041\n\ud83d\ude00", "plain":"\u00e9t\u00e9 ", "n": [-12 ,3.5,"" ]})";
    ASSERT_FALSE(ParseJson(text, document));
    text.assign(text.size(), 'x');
  }
  EXPECT_EQ(StringMember(document, "k\"ey"), L"aA\n\U0001F600");
  EXPECT_EQ(StringMember(document, "plain"), L"\u00e9t\u00e9 ");
  EXPECT_EQ(WriteJson(*FindMember(document, "n")), R"([-12,3.5,""])");
}

TEST(JsonDocument, AFractionMayBeAnyLength) {
  rapidjson::Document document;
  for (const size_t length : {10, 22, 23, 30, 100, 340, 400, 5000}) {
    const std::string zeros = "0." + std::string(length, '0');
    ASSERT_FALSE(ParseJson(
        "[" + zeros + ",-" + zeros + "," + zeros + "1," + zeros + "1e" + std::to_string(length) + "]",
        document));
    EXPECT_EQ(document[0].GetDouble(), 0.0) << length;
    EXPECT_EQ(document[1].GetDouble(), 0.0) << length;
    EXPECT_EQ(document[2].GetDouble(), std::strtod((zeros + "1").c_str(), nullptr)) << length;
    EXPECT_EQ(document[3].GetDouble(), 0.1) << length;
  }
}

TEST(JsonDocument, ANumberTooGreatForADoubleFailsWhereItBegins) {
  rapidjson::Document document;
  for (const std::string& number : {std::string("1e400"), std::string(400, '9')}) {
    const JsonFailure failure = ParseJson("[1," + number + "]", document);
    EXPECT_EQ(failure.code, rapidjson::kParseErrorNumberTooBig) << number;
    EXPECT_EQ(failure.offset, 3u) << number;
  }
  EXPECT_FALSE(ParseJson("[-1.8e308]", document));
  EXPECT_EQ(document[0].GetDouble(), -std::numeric_limits<double>::infinity());
}

/// The narrowest of the kinds, as an order command is asked for them.
std::string KindOf(const std::string& number) {
  rapidjson::Document document;
  if (ParseJson("[" + number + "]", document)) return "failure";
  const rapidjson::Value& value = document[0];
  return std::string(value.IsInt() ? "int " : "") + (value.IsUint() ? "uint " : "") +
         (value.IsInt64() ? "int64 " : "") + (value.IsUint64() ? "uint64 " : "") +
         (value.IsDouble() ? "double" : "");
}

TEST(JsonDocument, AWholeNumberIsOfTheNarrowestKindThatHoldsIt) {
  EXPECT_EQ(KindOf("0"), "int uint int64 uint64 ");
  EXPECT_EQ(KindOf("-0"), "int uint int64 uint64 ");
  EXPECT_EQ(KindOf("2147483647"), "int uint int64 uint64 ");
  EXPECT_EQ(KindOf("2147483648"), "uint int64 uint64 ");
  EXPECT_EQ(KindOf("4294967295"), "uint int64 uint64 ");
  EXPECT_EQ(KindOf("4294967296"), "int64 uint64 ");
  EXPECT_EQ(KindOf("9223372036854775808"), "uint64 ");
  EXPECT_EQ(KindOf("18446744073709551615"), "uint64 ");
  EXPECT_EQ(KindOf("18446744073709551616"), "double");
  EXPECT_EQ(KindOf("-1"), "int int64 ");
  EXPECT_EQ(KindOf("-2147483648"), "int int64 ");
  EXPECT_EQ(KindOf("-2147483649"), "int64 ");
  EXPECT_EQ(KindOf("-9223372036854775808"), "int64 ");
  EXPECT_EQ(KindOf("-9223372036854775809"), "double");
  EXPECT_EQ(KindOf("1.0"), "double");
  EXPECT_EQ(KindOf("1e0"), "double");
}

TEST(JsonDocument, WholeNumbersKeepTheirValue) {
  rapidjson::Document document;
  ParseJson("[-2147483648,4294967295,-9223372036854775808,18446744073709551615,-0]", document);
  EXPECT_EQ(WriteJson(document), "[-2147483648,4294967295,-9223372036854775808,18446744073709551615,0]");
}

TEST(JsonDocument, ANumberThatIsNotFiniteIsWrittenAsNull) {
  rapidjson::StringBuffer buffer;
  CJsonWriter writer(buffer);
  writer.StartArray();
  writer.Double(1.5);
  writer.Double(std::numeric_limits<double>::quiet_NaN());
  writer.Double(-std::numeric_limits<double>::infinity());
  writer.EndArray();
  EXPECT_STREQ(buffer.GetString(), "[1.5,null,null]");
}

TEST(JsonDocument, TheFirstOfTwoMembersOfOneNameCounts) {
  rapidjson::Document document;
  ParseJson("{\"a\":\"1\",\"a\":\"2\"}", document);
  EXPECT_EQ(StringMember(document, "a"), L"1");
}

TEST(JsonDocument, AMemberOfWhatIsNoObjectIsNone) {
  rapidjson::Document document;
  for (const char* text : {"[1]", "5", "\"a\"", "null"}) {
    ParseJson(text, document);
    EXPECT_EQ(FindMember(document, "a"), nullptr) << text;
    EXPECT_EQ(StringMember(document, "a"), L"") << text;
  }
}

TEST(JsonDocument, AStringMemberOfAnotherKindIsEmpty) {
  rapidjson::Document document;
  ParseJson("{\"a\":5,\"b\":null,\"c\":\"期\"}", document);
  EXPECT_EQ(StringMember(document, "a"), L"");
  EXPECT_EQ(StringMember(document, "b"), L"");
  EXPECT_EQ(StringMember(document, "C"), L"");
  EXPECT_EQ(StringMember(document, "c"), L"期");
}

}  // namespace
}  // namespace iorder
