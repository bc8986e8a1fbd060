// The news file: how an operator's text becomes items, and how it follows changes.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "server/base/NewsFile.h"

namespace tavren::server {
namespace {

TEST(NewsFilePartsTest, TitlesStartItemsAndTheTextIsCleanedAndBounded) {
    const auto items = NewsFile::parse(
        "Lines before the first title are notes for the operator.\n"
        "# Server moved  \r\n"
        "\n"
        "We are on a new machine.\x01\x02\x07\n"
        "  Reconnect if you see lag.\n"
        "\n"
        "#Not a title, part of the text\n"
        "# Tables\n"
        "#\n"
        "text of an untitled item\n"
        "# \n");
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0], (NewsItem{"Server moved",
                                  "We are on a new machine.\nReconnect if you see lag.\n\n#Not a "
                                  "title, part of the text"}));
    EXPECT_EQ(items[1], (NewsItem{"Tables", ""}));
    EXPECT_EQ(items[2], (NewsItem{"", "text of an untitled item"}));
    EXPECT_EQ(NewsFile::payload(items[1]), std::string("Tables\x01"));

    std::string many;
    for (int i = 0; i < 30; ++i) {
        many += "# Item " + std::to_string(i) + "\n" + std::string(5000, 'x') + "\n";
    }
    const auto bounded = NewsFile::parse(many);
    ASSERT_EQ(bounded.size(), NewsFile::kMostItems);
    EXPECT_EQ(bounded[0].text.size(), NewsFile::kLargestText);
    EXPECT_TRUE(NewsFile::parse("").empty());
    EXPECT_TRUE(NewsFile::parse(std::string("\0\0\0", 3)).empty());
}

TEST(NewsFilePartsTest, TheFileIsReadAgainWhenItChangesAndMissingMeansNone) {
    const auto path = std::filesystem::path(std::getenv("TAVREN_HOME")) / "news-parts.txt";
    std::filesystem::create_directories(path.parent_path());
    std::filesystem::remove(path);
    NewsFile news(path);
    EXPECT_TRUE(news.current().empty());
    std::ofstream(path) << "# One\nfirst\n";
    ASSERT_EQ(news.current().size(), 1u);
    std::ofstream(path) << "# One\nfirst\n# Two\nsecond, longer\n";
    EXPECT_EQ(news.current().size(), 2u);
    std::ofstream(path) << std::string(NewsFile::kLargestFile + 1, 'x');
    EXPECT_TRUE(news.current().empty());
    std::filesystem::remove(path);
    EXPECT_TRUE(news.current().empty());
}

}  // namespace
}  // namespace tavren::server
