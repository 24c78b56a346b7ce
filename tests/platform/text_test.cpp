#include "platform/text.h"

#include <gtest/gtest.h>

#include "platform/text_units.h"

namespace iorder::test {
namespace {

TEST(Text, WellFormedTextGoesThereAndBack) {
  const std::string text = "a\xC3\xA9\xE5\x8F\xB0\xF0\x9F\x82\xA1";  // one, two, three and four bytes
  EXPECT_EQ(ToUtf8(ToWide(text)), text);
  EXPECT_EQ(DecodeUtf8<char32_t>(text), U"a\u00E9\u53F0\U0001F0A1");
  EXPECT_EQ(DecodeUtf8<char16_t>(text), u"a\u00E9\u53F0\U0001F0A1");
  EXPECT_EQ(EncodeUtf8<char16_t>(u"a\u00E9\u53F0\U0001F0A1"), text);
  EXPECT_EQ(EncodeUtf8<char32_t>(U"a\u00E9\u53F0\U0001F0A1"), text);
}

TEST(Text, NothingIsLostAroundAZero) {
  EXPECT_EQ(ToWide(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
  EXPECT_EQ(ToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(ToWide(""), L"");
  EXPECT_EQ(ToUtf8(L""), "");
}

TEST(Text, WhatIsNotWellFormedBecomesTheReplacement) {
  for (const std::string bytes :
       {"\xFF", "\xC3", "\xE5\x8F", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80"}) {
    const std::u32string wide = DecodeUtf8<char32_t>("<" + bytes + ">");
    EXPECT_EQ(wide.front(), U'<');
    EXPECT_EQ(wide.back(), U'>') << "the good character after " << testing::PrintToString(bytes);
    EXPECT_GE(wide.size(), 3u);
    for (size_t i = 1; i + 1 < wide.size(); ++i) EXPECT_EQ(wide[i], kReplacement);
    EXPECT_EQ(DecodeUtf8<char16_t>(bytes).front(), u'\uFFFD');
  }
}

TEST(Text, HalfASurrogatePairBecomesTheReplacement) {
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(EncodeUtf8<char16_t>(std::u16string{u'a', 0xD83C}), "a" + replacement);
  EXPECT_EQ(EncodeUtf8<char16_t>(std::u16string{0xD83C, u'a'}), replacement + "a");
  EXPECT_EQ(EncodeUtf8<char16_t>(std::u16string{0xDCA1, 0xD83C, 0xDCA1}), replacement + "\xF0\x9F\x82\xA1");
  EXPECT_EQ(EncodeUtf8<char32_t>(std::u32string{0xD83C, 0x110000, U'a'}), replacement + replacement + "a");
}

}  // namespace
}  // namespace iorder::test
