#include "server/AccountRules.h"

#include <gtest/gtest.h>

#include "server/VersionNumber.h"

namespace tavren::server {
namespace {

TEST(AccountRulesTest, NamesAtTheEdges) {
    for (const char* good : {"ab", "Alice", "a.b-c_d", "A1234567890123456789", "z9"}) {
        EXPECT_EQ(AccountRules::checkName(good), "") << good;
    }
    for (const char* bad : {"", "a", "1abc", "_abc", "A12345678901234567890", "a b", "a:b", "a;b",
                            "@abc", "*new_user*", "caf\xe9", "a\x01"}) {
        EXPECT_NE(AccountRules::checkName(bad), "") << bad;
    }
}

TEST(AccountRulesTest, PasswordsAndEmails) {
    EXPECT_EQ(AccountRules::checkPassword("abcd"), "");
    EXPECT_EQ(AccountRules::checkPassword("with blank \xe9"), "");
    EXPECT_EQ(AccountRules::checkPassword(std::string(64, 'p')), "");
    for (const std::string& bad : {std::string("abc"), std::string(65, 'p'), std::string("ab:cd"),
                                   std::string("ab;cd"), std::string("ab\ncd")}) {
        EXPECT_NE(AccountRules::checkPassword(bad), "") << bad;
    }
    EXPECT_EQ(AccountRules::checkEmail("a@b"), "");
    for (const char* bad :
         {"", "ab", "@b.c", "a@", "a@b@c", "a b@c.d", "a:b@c.d", "a;b@c", "a,b@c"}) {
        EXPECT_NE(AccountRules::checkEmail(bad), "") << bad;
    }
}

TEST(VersionNumberTest, ParsesOnlyThreeNumbersAndOrdersThemNumerically) {
    EXPECT_EQ(VersionNumber::parse("1.10.0"), (VersionNumber{1, 10, 0}));
    for (const char* bad :
         {"", "1", "1.2", "1.2.3.4", "1..3", "1.2.x", " 1.2.3", "-1.2.3", "1.2.123456"}) {
        EXPECT_FALSE(VersionNumber::parse(bad)) << bad;
    }
    EXPECT_LT((VersionNumber{1, 9, 9}), (VersionNumber{1, 10, 0}));
    EXPECT_LT((VersionNumber{0, 99, 99}), (VersionNumber{1, 0, 0}));
}

}  // namespace
}  // namespace tavren::server
