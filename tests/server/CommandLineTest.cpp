#include "server/app/CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tavren::server {
namespace {

// The rest of the options are used, and so checked, by the tests that run the real server.
TEST(CommandLineTest, AnIPv6ListenAddressFractionalSecondsAndADefaultDatabase) {
    const auto line = CommandLine::parse({"--listen", "[::1]:5678", "--ping-interval", "0.25"});
    EXPECT_EQ(line.mode, CommandLine::Mode::kServe);
    EXPECT_EQ(line.config.listenHost, "::1");
    EXPECT_EQ(line.config.listenPort, 5678);
    EXPECT_EQ(line.config.pingInterval, std::chrono::milliseconds(250));
    EXPECT_FALSE(line.config.databasePath.empty()) << "a default database is always chosen";
}

TEST(CommandLineTest, NonsenseIsRefusedWithAReason) {
    for (const char* line : {"--listen 5678",
                             "--listen host:99999",
                             "--listen :5678",
                             "--ping-interval 0",
                             "--ping-interval nan",
                             "--ping-interval 1e9",
                             "--max-payload 2000000",
                             "--min-version 1.2",
                             "--db",
                             "--no-such-option 1",
                             "account add Alice",
                             "account remove Alice pw",
                             "--staff 2",
                             "account add A pw12 --staff 4",
                             "stray",
                             "--max-channel-members 40001",
                             "--channel @Staff",
                             "--flood-interval 0",
                             "--tls-cert a.pem",
                             "--tls-key k.pem fingerprint",
                             "fingerprint now",
                             "--tls-handshake-time 0"}) {
        std::istringstream words(line);
        std::vector<std::string> arguments;
        for (std::string word; words >> word;) {
            arguments.push_back(word);
        }
        EXPECT_THROW(CommandLine::parse(arguments), CommandLineError) << line;
    }
}

// --require-tls is the one option without a value; the fingerprint command takes the
// certificate options like serving does.
TEST(CommandLineTest, EncryptionOptionsAndTheFingerprintCommand) {
    const auto serve = CommandLine::parse({"--require-tls", "--tls-handshake-time", "2.5"});
    EXPECT_EQ(serve.mode, CommandLine::Mode::kServe);
    EXPECT_TRUE(serve.config.tls.required);
    EXPECT_EQ(serve.config.tls.handshakeTimeout, std::chrono::milliseconds(2500));
    const auto print =
        CommandLine::parse({"--tls-cert", "c.pem", "fingerprint", "--tls-key", "k.pem"});
    EXPECT_EQ(print.mode, CommandLine::Mode::kFingerprint);
    EXPECT_EQ(print.config.tls.certificateFile, "c.pem");
    EXPECT_EQ(print.config.tls.keyFile, "k.pem");
    EXPECT_FALSE(print.config.tls.required);
}

TEST(CommandLineTest, OfficialChannelsAddUpWithoutDuplicatesInAnyCase) {
    const auto line = CommandLine::parse({"--channel", "Help Desk", "--channel", "GENERAL",
                                          "--channel", "help desk", "--max-line", "100"});
    EXPECT_EQ(line.config.rooms.officialChannels,
              (std::vector<std::string>{"General", "Tavren General Chat", "Help Desk"}));
    EXPECT_EQ(line.config.rooms.maxLine, 100u);
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
