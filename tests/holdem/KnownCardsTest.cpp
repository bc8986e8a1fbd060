#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "holdem/KnownCards.h"

namespace tavren::holdem {
namespace {

std::vector<int> Cards(const std::optional<KnownCards>& known) {
    return known ? std::vector<int>(known->cards().begin(), known->cards().end())
                 : std::vector<int>{};
}

TEST(KnownCards, ALineOfTwoToSevenCardNumbersIsRead) {
    EXPECT_EQ(Cards(KnownCards::parse("1 52")), (std::vector<int>{1, 52}));
    EXPECT_EQ(Cards(KnownCards::parse("  13\t14 26  27 39 40 52\r")),
              (std::vector<int>{13, 14, 26, 27, 39, 40, 52}));
}

TEST(KnownCards, ALineWithABadOrRepeatedCardIsRefusedWithAReason) {
    struct Case {
        const char* line;
        const char* reasonMentions;
    };
    const Case cases[] = {
        {"1 x", "\"x\""},
        {"1 0", "\"0\""},
        {"1 53", "\"53\""},
        {"1 -3", "\"-3\""},
        {"1 +3", "\"+3\""},
        {"1 2.5", "\"2.5\""},
        {"1 99999999999", "\"99999999999\""},
        {"7 8 7", "7 is given twice"},
        {"5", "got 1"},
        {"", "got 0"},
        {"1 2 3 4 5 6 7 8", "more than 7"},
    };
    for (const Case& c : cases) {
        std::string error;
        EXPECT_FALSE(KnownCards::parse(c.line, &error).has_value()) << c.line;
        EXPECT_NE(error.find(c.reasonMentions), std::string::npos) << c.line << " -> " << error;
    }
}

TEST(KnownCards, CardsFromTheTableSkipHiddenOnesAndRefuseNonsense) {
    const std::vector<int> preFlop = {12, 25, 0, 0, 0, 0, 0};
    EXPECT_EQ(Cards(KnownCards::from(preFlop)), (std::vector<int>{12, 25}));
    const std::vector<int> nothingShown = {0, 0};
    ASSERT_TRUE(KnownCards::from(nothingShown).has_value());
    EXPECT_TRUE(KnownCards::from(nothingShown)->cards().empty());

    for (const std::vector<int>& bad :
         {std::vector<int>{3, 3}, std::vector<int>{-1}, std::vector<int>{53},
          std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}}) {
        std::string error;
        EXPECT_FALSE(KnownCards::from(bad, &error).has_value());
        EXPECT_FALSE(error.empty());
    }
}

}  // namespace
}  // namespace tavren::holdem
