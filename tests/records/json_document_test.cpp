#include "records/json_document.h"

#include <gtest/gtest.h>

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
