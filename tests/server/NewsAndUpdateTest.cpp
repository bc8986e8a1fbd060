// The news after login and the checksum in the update notice, against the real tavrend.
#include <fstream>

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

inline constexpr protocol::CodePair kNewsItem{4, 3};

class NewsAndUpdateTest : public ServerFixture {};

TEST_F(NewsAndUpdateTest, NewsFollowTheMessageOfTheDayAndChangesReachTheNextLogin) {
    addAccount("alice", "secret1");
    const auto news = folder_ / "news.txt";
    std::ofstream(news) << "# Welcome\nTavren runs here.\n# Tables\nHold'em on Fridays.\n";
    startServer({"--motd", "Be kind.", "--news", news.string()});
    auto alice = logIn("alice", "secret1");
    alice->expect(out::kClearPane);
    alice->expect(out::kClearOtherPane);
    EXPECT_EQ(alice->expect(kMessageOfTheDay).payload, "Be kind.");
    EXPECT_EQ(alice->expect(kNewsItem).payload, "Welcome\x01Tavren runs here.");
    EXPECT_EQ(alice->expect(kNewsItem).payload, "Tables\x01Hold'em on Fridays.");

    std::ofstream(news) << "# Moved\nWe moved house, and the news file grew.\n";
    auto again = logIn("alice", "secret1");
    again->expect(out::kClearPane);
    again->expect(out::kClearOtherPane);
    again->expect(kMessageOfTheDay);
    EXPECT_EQ(again->expect(kNewsItem).payload, "Moved\x01We moved house, and the news file grew.");
}

TEST_F(NewsAndUpdateTest, TheUpdateNoticeCarriesTheChecksumAsAThirdField) {
    addAccount("alice", "secret1");
    const std::string sum(64, 'a');
    startServer({"--latest-version", "1.2.0", "--update-url", "https://example.org/setup.exe",
                 "--update-sha256", std::string(64, 'A')});
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    EXPECT_EQ(client->expect(out::kUpdateNotice).payload,
              "1.2.0;https://example.org/setup.exe;sha256=" + sum);
    client->send(in::kCredentials, "alice:secret1");
    client->expect(out::kAccountRefresh);
}

}  // namespace
}  // namespace tavren::test
