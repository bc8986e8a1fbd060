#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/protocol/Fields.h"

namespace tavren::protocol {
namespace {

using Fields = std::vector<std::string>;

TEST(FieldsTest, SplitWithLimitKeepsFurtherSeparatorsInTheLastField) {
    EXPECT_EQ(SplitFields("General:hi: how:are you", ":", 2),
              (Fields{"General", "hi: how:are you"}));
    EXPECT_EQ(SplitFields("bob:2:0:10.0.0.1", ":", 4), (Fields{"bob", "2", "0", "10.0.0.1"}));
    EXPECT_EQ(SplitFields("bob:1:2000:1.2.3.4:extra", ":", 4),
              (Fields{"bob", "1", "2000", "1.2.3.4:extra"}));
    EXPECT_EQ(SplitFields("a:b", ":", 1), (Fields{"a:b"}));
    EXPECT_EQ(SplitFields("a:b:c", ":"), (Fields{"a", "b", "c"}));
    EXPECT_EQ(SplitFields("True;away text; with;semicolons", ";", 2),
              (Fields{"True", "away text; with;semicolons"}));
}

TEST(FieldsTest, SplitEdgesKeepEmptyFields) {
    EXPECT_EQ(SplitFields("", ":"), Fields{});
    EXPECT_EQ(SplitFields(":", ":"), (Fields{"", ""}));
    EXPECT_EQ(SplitFields("a::", ":"), (Fields{"a", "", ""}));
    EXPECT_EQ(SplitFields("a - b - c", " - ", 2), (Fields{"a", "b - c"}));
    EXPECT_EQ(SplitFields("a:b", ""), (Fields{"a:b"}));

    const Fields shortPayload = SplitFields("bob", ":", 3);
    EXPECT_EQ(FieldAt(shortPayload, 0), "bob");
    EXPECT_EQ(FieldAt(shortPayload, 2), "");
}

TEST(FieldsTest, JoinIsTheInverseOfAnUnlimitedSplit) {
    EXPECT_EQ(JoinFields({"alice", "secret"}, kFieldSeparator), "alice:secret");
    EXPECT_EQ(JoinFields({"room", "pw", "topic: a:b"}, kFieldSeparator), "room:pw:topic: a:b");
    for (const std::string text : {"a", "a:b", "::", "x:y:z:"}) {
        EXPECT_EQ(JoinFields(SplitFields(text, ":"), ":"), text);
    }
}

TEST(FieldsTest, RecordListsUseTheTwoControlCharacters) {
    const std::vector<Fields> inbox = {{"alice", "hello", "subject"},
                                       {"bob", "body:with;marks", "re"}};
    const std::string wire = JoinRecords(inbox);
    EXPECT_EQ(wire,
              "alice\x01hello\x01subject\x02"
              "bob\x01"
              "body:with;marks\x01re\x02");
    EXPECT_EQ(SplitRecords(wire), inbox);
    // Records separated rather than ended read the same.
    EXPECT_EQ(SplitRecords("a\x01"
                           "b\x02"
                           "c\x01"
                           "d"),
              (std::vector<Fields>{{"a", "b"}, {"c", "d"}}));
    EXPECT_EQ(SplitRecords("a\x01"
                           "b\x01"
                           "c\x01"
                           "d",
                           2),
              (std::vector<Fields>{{"a",
                                    "b\x01"
                                    "c\x01"
                                    "d"}}));
    EXPECT_TRUE(SplitRecords("").empty());
    EXPECT_TRUE(SplitRecords("\x02").empty());
}

TEST(FieldsTest, TruthValuesAreExactWords) {
    EXPECT_EQ(TruthText(true), "True");
    EXPECT_EQ(TruthText(false), "False");
    EXPECT_TRUE(IsTrue("True"));
    EXPECT_FALSE(IsTrue("true"));
    EXPECT_FALSE(IsTrue("False"));
    EXPECT_FALSE(IsTrue(""));
}

}  // namespace
}  // namespace tavren::protocol
