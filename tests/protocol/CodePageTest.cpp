#include <gtest/gtest.h>

#include <string>

#include "core/protocol/CodePage1252.h"

namespace tavren::protocol {
namespace {

TEST(CodePageTest, EveryByteSurvivesTheRoundTrip) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    const std::string text = Cp1252ToUtf8(all);
    EXPECT_EQ(Utf8ToCp1252(text), all);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(one)), one) << byte;
    }
}

TEST(CodePageTest, HighBytesMapToTheirCharacters) {
    EXPECT_EQ(Cp1252ToUtf8("\x80"), "\u20AC");  // euro sign
    EXPECT_EQ(Cp1252ToUtf8("\x92"), "\u2019");
    EXPECT_EQ(Cp1252ToUtf8("\x9F"), "\u0178");
    EXPECT_EQ(Cp1252ToUtf8("\xB9"), "\u00B9");  // the rank mark "@¹"
    EXPECT_EQ(Cp1252ToUtf8("\xE9t\xE9"), "\u00E9t\u00E9");
    // Undefined bytes become the C1 controls of the same number.
    for (const char32_t control : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        const std::string utf8 = {static_cast<char>(0xC2), static_cast<char>(control)};
        EXPECT_EQ(Cp1252ToUtf8(std::string(1, static_cast<char>(control))), utf8);
    }
    EXPECT_EQ(Utf8ToCp1252("\u20AC 5 \u00E9"), "\x80 5 \xE9");
}

TEST(CodePageTest, SeparatorsSurviveAndForeignCharactersBecomeQuestionMarks) {
    const std::string fields =
        "a:b;c\x01"
        "d\x02"
        "e";
    EXPECT_EQ(Cp1252ToUtf8(fields), fields);
    EXPECT_EQ(Utf8ToCp1252(fields), fields);

    EXPECT_EQ(Utf8ToCp1252("\u4F60\u597D:\U0001F600"), "??:?");
    EXPECT_EQ(Utf8ToCp1252("\u0080"), "?");  // a C1 control the code page gives to the euro
    // Broken UTF-8: one "?" per byte that does not start a valid sequence.
    EXPECT_EQ(Utf8ToCp1252("a\xFF"
                           "b"),
              "a?b");
    EXPECT_EQ(Utf8ToCp1252("\xC3"), "?");            // cut short
    EXPECT_EQ(Utf8ToCp1252("\xC0\xAF"), "??");       // overlong "/"
    EXPECT_EQ(Utf8ToCp1252("\xED\xA0\x80"), "???");  // surrogate
}

}  // namespace
}  // namespace tavren::protocol
