#include "records/json_value.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

#include "platform/text.h"
#include "records/scaled_value.h"
#include "tests/support/virtual_world.h"

namespace iorder {
namespace {

std::string Hexadecimal(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%a", number);
  return text;
}

/// The whole value in one line, each number with its kind: {"a":i1,"b":[l2,d0x1p+0,"x",true,null]}.
std::string Shape(const JsonValue& value) {
  std::string shape;
  if (value.Kind() == JsonKind::kNull) return "null";
  if (const auto* boolean = value.As<bool>()) return *boolean ? "true" : "false";
  if (const auto* number = value.As<int32_t>()) return "i" + std::to_string(*number);
  if (const auto* number = value.As<int64_t>()) return "l" + std::to_string(*number);
  if (const auto* number = value.As<double>()) return "d" + Hexadecimal(*number);
  if (value.Kind() == JsonKind::kString) return '"' + ToUtf8(value.Text()) + '"';
  if (const auto* values = value.As<JsonValue::Array>()) {
    for (const JsonValue& one : *values) shape += (shape.empty() ? "" : ",") + Shape(one);
    return "[" + shape + "]";
  }
  for (const auto& [key, member] : *value.As<JsonValue::Object>()) {
    shape += (shape.empty() ? "\"" : ",\"") + ToUtf8(key) + "\":" + (member ? Shape(*member) : "absent");
  }
  return "{" + shape + "}";
}

/// What is read of a text: the characters taken and the value. Taken 0 is failure, with null.
struct Row {
  std::wstring text;
  int64_t taken;
  std::string shape;
};

void ExpectRows(std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    JsonValue value(true);
    EXPECT_EQ(ParseJsonValue(value, row.text), row.taken) << ToUtf8(row.text);
    EXPECT_EQ(Shape(value), row.shape) << ToUtf8(row.text);
  }
}

void ExpectFailures(std::initializer_list<std::wstring> texts) {
  for (const std::wstring& text : texts) ExpectRows({{text, 0, "null"}});
}

/// Of a number as it stands in an array, alone.
std::string NumberShape(const std::wstring& number) {
  JsonValue value;
  const std::wstring text = L"[" + number + L"]";
  EXPECT_EQ(ParseJsonValue(value, text), static_cast<int64_t>(text.size())) << ToUtf8(number);
  const auto* const values = value.As<JsonValue::Array>();
  return values != nullptr && values->size() == 1 ? Shape(values->front()) : "not one value: " + Shape(value);
}

std::wstring Nested(size_t depth) {
  return std::wstring(depth, L'[') + std::wstring(depth, L']');
}

TEST(JsonValue, ReadsChaseSettings) {
  ExpectRows({{LR"({"Times": "3", "Interval":"10","Tick" :"2" })", 44,
               R"({"Interval":"10","Tick":"2","Times":"3"})"}});
}

TEST(JsonValue, KindsHaveTheirNumbers) {
  const std::pair<const wchar_t*, int32_t> kinds[] = {{L"null", 0},        {L"true", 1}, {L"1 ", 2},
                                                      {L"1234567890 ", 3}, {L"1. ", 4},  {L"\"\"", 5},
                                                      {L"[]", 6},          {L"{}", 7}};
  for (const auto& [text, kind] : kinds) {
    JsonValue value;
    EXPECT_GT(ParseJsonValue(value, text), 0) << text;
    EXPECT_EQ(static_cast<int32_t>(value.Kind()), kind) << text;
  }
}

TEST(JsonValue, SpaceInFrontCountsAndSpaceBehindDoesNot) {
  ExpectRows({{L"\x1 \t\r\n\x1F null ", 11, "null"}, {L"  \"a\" ", 5, "\"a\""}, {L"\v{ } ", 4, "{}"}});
  ExpectRows({{std::wstring(L"\0[\0]", 4), 4, "[]"}});
}

TEST(JsonValue, WhatLiesBeyondASpaceIsNone) {
  ExpectFailures({L"\x21null", L"\x7Fnull", L"\xA0null", L"\x3000null", L"\xFEFFnull"});
}

TEST(JsonValue, ATextWithoutAValueFails) {
  ExpectFailures({L"", L"   ", L"}", L"]", L":", L",", L"'a'", L".5 ", L"#1 "});
}

TEST(JsonValue, LiteralsAreReadInAnyCase) {
  ExpectRows({{L"true", 4, "true"},
              {L"TRUE", 4, "true"},
              {L"True", 4, "true"},
              {L"tRuE", 4, "true"},
              {L"false", 5, "false"},
              {L"FALSE", 5, "false"},
              {L"faLSe", 5, "false"},
              {L"null", 4, "null"},
              {L"NULL", 4, "null"},
              {L"Null", 4, "null"}});
}

TEST(JsonValue, ALiteralIsTakenWhateverFollows) {
  ExpectRows({{L"trueish", 4, "true"}, {L"falsehood", 5, "false"}, {L"nullify", 4, "null"}});
}

TEST(JsonValue, AnotherWordFails) {
  ExpectFailures({L"tru", L"t", L"fals", L"FALS", L"f", L"nul", L"trux", L"tr ue", L"fales", L"nill", L"none",
                  L"ture", L"xrue", L"\x0422rue"});
}

TEST(JsonValue, ANumberOfLessThanTenDigitsHas32Bits) {
  EXPECT_EQ(NumberShape(L"0"), "i0");
  EXPECT_EQ(NumberShape(L"7"), "i7");
  EXPECT_EQ(NumberShape(L"999999999"), "i999999999");
  EXPECT_EQ(NumberShape(L"000000012"), "i12");
}

TEST(JsonValue, ANumberOfTenDigitsHas64Bits) {
  EXPECT_EQ(NumberShape(L"1000000000"), "l1000000000");
  EXPECT_EQ(NumberShape(L"0000000012"), "l12");
  EXPECT_EQ(NumberShape(L"-0000000012"), "l-12");
  EXPECT_EQ(NumberShape(L"9223372036854775807"), "l9223372036854775807");
}

TEST(JsonValue, AnIntegerThatDoesNotFitIsTheNearestThatDoes) {
  EXPECT_EQ(NumberShape(L"9223372036854775808"), "l9223372036854775807");
  EXPECT_EQ(NumberShape(L"-99999999999999999999"), "l-9223372036854775807");
}

TEST(JsonValue, ASignComesFirstAndAMinusNegates) {
  EXPECT_EQ(NumberShape(L"+5"), "i5");
  EXPECT_EQ(NumberShape(L"-5"), "i-5");
  EXPECT_EQ(NumberShape(L"-999999999"), "i-999999999");
  EXPECT_EQ(NumberShape(L"-1234567890"), "l-1234567890");
  EXPECT_EQ(NumberShape(L"-0.5"), "d-0x1p-1");
  EXPECT_EQ(NumberShape(L"+0.5"), "d0x1p-1");
  EXPECT_EQ(NumberShape(L"-12E1"), "l-120");
}

TEST(JsonValue, ASignWithoutADigitIsZero) {
  EXPECT_EQ(NumberShape(L"-"), "i0");
  EXPECT_EQ(NumberShape(L"+"), "i0");
  EXPECT_EQ(NumberShape(L"-E3"), "l0");
  ExpectRows({{L"- 5", 1, "i0"}, {L"--5", 1, "i0"}, {L"+x", 1, "i0"}});
}

TEST(JsonValue, ANumberWithAPointIsADouble) {
  EXPECT_EQ(NumberShape(L"1.5"), "d0x1.8p+0");
  EXPECT_EQ(NumberShape(L"5."), "d0x1.4p+2");
  EXPECT_EQ(NumberShape(L"+.25"), "d0x1p-2");
  EXPECT_EQ(NumberShape(L"-."), "d-0x0p+0");
  EXPECT_EQ(NumberShape(L"0.1"), "d" + Hexadecimal(0.1));
  EXPECT_EQ(NumberShape(L"12345678901234567890.0"), "d" + Hexadecimal(12345678901234567890.0));
}

TEST(JsonValue, ADoubleBeyondAllIsInfiniteAndOneTooSmallIsZero) {
  EXPECT_EQ(NumberShape(std::wstring(400, L'9') + L".0"), "dinf");
  EXPECT_EQ(NumberShape(L"-" + std::wstring(400, L'9') + L"."), "d-inf");
  EXPECT_EQ(NumberShape(L"0." + std::wstring(400, L'0') + L"1"), "d0x0p+0");
}

TEST(JsonValue, ASecondPointFails) {
  ExpectFailures({L"1.2.3 ", L"1.. ", L"[1.2.3]", L"1.2.3E1,", L"-.. "});
}

TEST(JsonValue, ANumberAtTheEndOfTheTextFails) {
  ExpectFailures({L"5", L"-5", L"-", L"+", L"1.5", L"1.", L"1234567890", L" 5"});
  ExpectRows({{L"5 ", 1, "i5"},
              {L"5,", 1, "i5"},
              {L"5x", 1, "i5"},
              {L"[5]", 3, "[i5]"},
              {L"{\"a\":5}", 7, "{\"a\":i5}"}});
}

TEST(JsonValue, ACapitalEBeginsAnExponentAndMakes64Bits) {
  EXPECT_EQ(NumberShape(L"5E0"), "l5");
  EXPECT_EQ(NumberShape(L"12E3"), "l12000");
  EXPECT_EQ(NumberShape(L"1.5E+1"), "l15");
  EXPECT_EQ(NumberShape(L"1E18"), "l1000000000000000000");
  EXPECT_EQ(NumberShape(L"+E1"), "l0");
}

TEST(JsonValue, APowerIsTruncated) {
  EXPECT_EQ(NumberShape(L"1.99E0"), "l1");
  EXPECT_EQ(NumberShape(L"-1.99E0"), "l-1");
  EXPECT_EQ(NumberShape(L"1999E-3"), "l1");
  EXPECT_EQ(NumberShape(L"2E-1"), "l0");
}

TEST(JsonValue, ANegativeExponentMultipliesByTheReciprocal) {
  // Divided, these would be 1 and 8.
  EXPECT_EQ(NumberShape(L"100000000000E-11"), "l0");
  EXPECT_EQ(NumberShape(L"800000000000E-11"), "l7");
  EXPECT_EQ(NumberShape(L"49000E-3"), "l49");
}

TEST(JsonValue, APowerOfTenIsSquaredUp) {
  // The double nearest to ten to the 33rd would give the round number.
  EXPECT_EQ(NumberShape(L"0.00000000000000001E33"), "l10000000000000002");
}

TEST(JsonValue, AnExponentGoesToTheNextDelimiter) {
  ExpectRows({{L"1E2,3", 3, "l100"},
              {L"1E2\"", 3, "l100"},
              {L"1E2]", 3, "l100"},
              {L"1E2}", 3, "l100"},
              {L"1E 2 x:{[,", 9, "l100"},
              {L"1E,", 2, "l1"},
              {L"1Ex,", 3, "l1"},
              {L"1E2.9,", 5, "l100"},
              {L"[1E2 3]", 7, "[l100]"},
              {L"{\"a\":1E2 \"b\":2}", 15, "{\"a\":l100,\"b\":i2}"}});
}

TEST(JsonValue, AnExponentWithoutADelimiterFails) {
  ExpectFailures({L"1E", L"1E5", L"1E5 ", L"1E5 x{["});
}

TEST(JsonValue, APowerThatDoesNotFitIsNoValue) {
  const std::string none = "l" + std::to_string(NoValue);
  EXPECT_EQ(NumberShape(L"1E19"), none);
  EXPECT_EQ(NumberShape(L"-1E19"), none);
  EXPECT_EQ(NumberShape(L"1E400"), none);
  EXPECT_EQ(NumberShape(L"1E99999999999"), none);
  EXPECT_EQ(NumberShape(L"0E400"), none);  // zero times infinity is no number
  EXPECT_EQ(NumberShape(L"1E-400"), "l0");
  EXPECT_EQ(NumberShape(L"1E-99999999999"), "l0");
}

TEST(JsonValue, ASmallEEndsANumberAndItsReaderFails) {
  ExpectRows({{L"1e5 ", 1, "i1"}, {L"1.5e5,", 3, "d0x1.8p+0"}});
  ExpectFailures({L"[1e5]", L"{\"a\":1e5}"});
  // What is left of it stands in front of the next key, which begins at its quote.
  ExpectRows({{L"{\"a\":1e5,\"b\":2}", 15, R"({"a":i1,"b":i2})"}});
}

TEST(JsonValue, AStringHasItsText) {
  ExpectRows({{L"\"\"", 2, "\"\""}, {L"\"a b\"c", 5, "\"a b\""}, {L"\"期\n{}[],:\"", 10, "\"期\n{}[],:\""}});
}

TEST(JsonValue, EscapesAreRead) {
  ExpectRows({{LR"("\"")", 4, "\"\"\""},
              {LR"("\n")", 4, "\"\n\""},
              {LR"("\r")", 4, "\"\r\""},
              {LR"("\t")", 4, "\"\t\""},
              {LR"("\/")", 4, "\"/\""},
              {LR"("a\tb\/c\"d")", 12, "\"a\tb/c\"d\""}});
}

TEST(JsonValue, AnotherCharacterBehindABackslashIsDropped) {
  ExpectRows({{LR"("\\")", 4, R"("\")"},
              {LR"("\\\\n")", 7, R"("\\n")"},
              {LR"("\b")", 4, R"("\")"},
              {LR"("\f1")", 5, R"("\1")"},
              {LR"("\N")", 4, R"("\")"},
              {LR"("\U0041")", 8, R"("\0041")"},
              {L"\"\\ \"", 4, R"("\")"}});
}

TEST(JsonValue, ACodeIsFourHexadecimalCharacters) {
  ExpectRows({{LR"("\u0041")", 8, "\"A\""},
              {LR"("\u671F!")", 9, "\"期!\""},
              {LR"("\u671f0041")", 12, "\"期0041\""},
              {LR"("\u000a")", 8, "\"\n\""}});
}

TEST(JsonValue, ACodeEndsAtWhatIsNotHexadecimal) {
  ExpectRows({{LR"("\u41G7")", 8, "\"A\""}, {LR"("\u41"}")", 8, "\"A\""}, {LR"("\u41\"")", 8, "\"A\""}});
  JsonValue value;
  EXPECT_EQ(ParseJsonValue(value, LR"("\uGHIJ")"), 8);
  EXPECT_EQ(value.Text(), std::wstring(1, L'\0'));
  EXPECT_EQ(ParseJsonValue(value, LR"("\u0x41")"), 8);
  EXPECT_EQ(value.Text(), std::wstring(1, L'\0'));
}

TEST(JsonValue, WithLessThanSixCharactersLeftTheRestIsCopied) {
  ExpectRows({{LR"("\u12")", 6, R"("\u12"")"},
              {LR"("a\u")", 5, R"("a\u"")"},
              {LR"("\u)", 3, R"("\u")"},
              {LR"("\u041)", 6, R"("\u041")"},
              {LR"("\u0041)", 7, "\"A\""}});
}

TEST(JsonValue, AStringThatIsNotClosedEndsWithTheText) {
  ExpectRows(
      {{L"\"abc", 4, "\"abc\""}, {L"\"", 1, "\"\""}, {L"\"a\\", 3, R"("a\")"}, {L"\"a\\n", 4, "\"a\n\""}});
}

TEST(JsonValue, AnObjectIsReadWithSpaceAnywhere) {
  ExpectRows({{L"{}", 2, "{}"},
              {L"{ \n }x", 5, "{}"},
              {L"{ \"a\" : 1 , \"b\" : { \"c\" : null } } ", 34, "{\"a\":i1,\"b\":{\"c\":null}}"},
              {L"{\"\":true}", 9, "{\"\":true}"}});
}

TEST(JsonValue, MembersMayLackCommasAndHaveOneTooMany) {
  ExpectRows({{L"{\"a\":1,}", 8, "{\"a\":i1}"},
              {L"{\"a\":1 , }", 10, "{\"a\":i1}"},
              {L"{\"a\":1\"b\":2}", 12, "{\"a\":i1,\"b\":i2}"},
              {L"{\"a\":\"1\" \"b\":\"2\"}", 17, "{\"a\":\"1\",\"b\":\"2\"}"},
              {L"{\"a\":{}\"b\":[]}", 14, "{\"a\":{},\"b\":[]}"}});
}

TEST(JsonValue, AKeyBeginsAtTheNextDoubleQuote) {
  ExpectRows({{L"{x\"a\":1}", 8, "{\"a\":i1}"},
              {L"{,\"a\":1}", 8, "{\"a\":i1}"},
              {L"{\"a\":1,,]:\"b\":2}", 16, "{\"a\":i1,\"b\":i2}"},
              {L"{\"a\":trueX\"b\":2}", 16, "{\"a\":true,\"b\":i2}"},
              {L"{\"a\":{\"b\":1 x},\"c\":2}}", 22, "{\"a\":{\"b\":i1,\"c\":i2}}"}});
  ExpectFailures({L"{x}", L"{,}", L"{a:1}", L"{\"a\":1 x}", L"{\"a\":1,,}"});
}

TEST(JsonValue, OfEqualKeysTheLastStays) {
  ExpectRows({{L"{\"a\":1,\"a\":2}", 13, "{\"a\":i2}"},
              {L"{\"a\":[1],\"A\":3,\"a\":\"x\"}", 23, "{\"A\":i3,\"a\":\"x\"}"},
              {LR"({"a":1,"\u0061":2})", 18, "{\"a\":i2}"}});
}

TEST(JsonValue, AMemberNeedsAColonAndAValue) {
  ExpectFailures({L"{\"a\"}", L"{\"a\" 1}", L"{\"a\"=1}", L"{\"a\":}", L"{\"a\":,\"b\":1}", L"{\"a\":x}",
                  L"{\"a\"::1}", L"{:1}"});
}

TEST(JsonValue, AnObjectWithoutAnEndFails) {
  ExpectFailures({L"{", L"{\"a\":1", L"{\"a\":\"x\",", L"[{]", L"[{\"a\":1]", L"}{"});
}

TEST(JsonValue, AnEndInsideAStringIsSeenButDoesNotEnd) {
  ExpectFailures({L"{\"a\":\"}\"", L"{\"}\":1", L"{\"a\":\"}", L"{\"a\":{\"b\":\"}\"}"});
  ExpectRows({{L"{\"a\":\"}\"}", 9, "{\"a\":\"}\"}"}});
}

TEST(JsonValue, AnArrayIsReadWithSpaceAnywhere) {
  ExpectRows({{L"[]", 2, "[]"},
              {L"[ ]]", 3, "[]"},
              {L"[ 1 , \"a\" , [ ] , { } , true , null , 2.5 ] ", 43, "[i1,\"a\",[],{},true,null,d0x1.4p+1]"},
              {L"[[1],[2,[3]]]", 13, "[[i1],[i2,[i3]]]"}});
}

TEST(JsonValue, ValuesMayLackCommasAndHaveOneTooMany) {
  ExpectRows({{L"[1,]", 4, "[i1]"},
              {L"[1 2]", 5, "[i1,i2]"},
              {L"[1-2+3]", 7, "[i1,i-2,i3]"},
              {L"[\"a\"\"b\"]", 8, "[\"a\",\"b\"]"},
              {L"[truefalsenull]", 15, "[true,false,null]"}});
}

TEST(JsonValue, AnArrayTakesNothingButValues) {
  ExpectFailures({L"[,]", L"[,1]", L"[1,,2]", L"[1,,]", L"[x]", L"[\"a\":1]", L"[1}]", L"[1 x]"});
}

TEST(JsonValue, AnArrayWithoutAnEndFails) {
  ExpectFailures({L"[", L"[1,", L"[1 ", L"{\"a\":[1}", L"][", L"[\"]\"", L"[\"]"});
}

TEST(JsonValue, AFailureInsideFailsAllAround) {
  ExpectFailures({L"{\"a\":{\"b\":[1,{\"c\":x}]}}", L"[[[[1.2.3]]]]", L"{\"a\":1,\"b\":[1 x]}"});
}

TEST(JsonValue, TakesNoMoreThanTheTextGiven) {
  const std::wstring_view text = L"[5]{}\"a\"";
  JsonValue value;
  EXPECT_EQ(ParseJsonValue(value, text.substr(0, 2)), 0);
  EXPECT_EQ(ParseJsonValue(value, text.substr(1, 1)), 0);
  EXPECT_EQ(ParseJsonValue(value, text.substr(3, 1)), 0);
  EXPECT_EQ(ParseJsonValue(value, text.substr(5, 2)), 2);
  EXPECT_EQ(value.Text(), L"a");
}

TEST(JsonValue, AMemberThatIsNotThereIsEnteredAsAbsent) {
  JsonValue value;
  ParseJsonValue(value, L"{\"a\":\"1\"}");
  ASSERT_NE(value.Member(L"a"), nullptr);
  EXPECT_EQ(value.Member(L"a")->Text(), L"1");
  EXPECT_EQ(value.Member(L"A"), nullptr);
  EXPECT_EQ(value.Member(L"A"), nullptr);
  EXPECT_EQ(Shape(value), "{\"A\":absent,\"a\":\"1\"}");
}

TEST(JsonValue, OnlyAnObjectHasMembersAndOnlyAStringText) {
  for (const wchar_t* text :
       {L"null", L"true", L"1 ", L"1234567890 ", L"1. ", L"\"a\"", L"[\"a\"]", L"{\"a\":1}"}) {
    JsonValue value;
    ASSERT_GT(ParseJsonValue(value, text), 0) << text;
    EXPECT_EQ(value.Member(L"a") != nullptr, value.Kind() == JsonKind::kObject) << text;
    EXPECT_EQ(value.Text(), value.Kind() == JsonKind::kString ? L"a" : L"") << text;
  }
}

TEST(JsonValue, Takes256LevelsOnAFiberAndNoMore) {
  test::CVirtualWorld world;
  world.Run([] {
    ExpectRows({{Nested(256), 512, ToUtf8(Nested(256))}});
    ExpectFailures({Nested(257)});
    std::wstring objects;
    for (int i = 0; i < kMaxJsonValueDepth; ++i) objects += L"{\"a\":";
    const std::wstring ends(kMaxJsonValueDepth, L'}');
    JsonValue value;
    EXPECT_EQ(ParseJsonValue(value, objects + L"1" + ends), kMaxJsonValueDepth * 6 + 1);
    EXPECT_EQ(ParseJsonValue(value, objects + L"{\"a\":1}" + ends), 0);
  });
}

TEST(JsonValue, LevelsThatWereClosedDoNotCount) {
  std::wstring wide = L"[";
  for (int i = 0; i < 100; ++i) wide += Nested(255) + L"{}";
  JsonValue value;
  EXPECT_EQ(ParseJsonValue(value, wide + L"]"), static_cast<int64_t>(wide.size()) + 1);
}

}  // namespace
}  // namespace iorder
