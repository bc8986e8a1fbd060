#include "server/CommandLine.h"

#include <gtest/gtest.h>

namespace tavren::server {
namespace {

TEST(CommandLineTest, ServeOptionsAreParsed) {
    const auto line = CommandLine::parse({"--listen", "0.0.0.0:0", "--db", "/tmp/x.db",
                                          "--ping-interval", "0.25", "--login-timeout", "2",
                                          "--min-version", "1.2.3", "--frame-rate", "7.5"});
    EXPECT_EQ(line.mode, CommandLine::Mode::kServe);
    EXPECT_EQ(line.config.listenHost, "0.0.0.0");
    EXPECT_EQ(line.config.listenPort, 0);
    EXPECT_EQ(line.config.databasePath, "/tmp/x.db");
    EXPECT_EQ(line.config.pingInterval, std::chrono::milliseconds(250));
    EXPECT_EQ(line.config.loginTimeout, std::chrono::milliseconds(2000));
    EXPECT_EQ(line.config.minimumVersion, (VersionNumber{1, 2, 3}));
    EXPECT_DOUBLE_EQ(line.config.framesPerSecond, 7.5);

    const auto v6 = CommandLine::parse({"--listen", "[::1]:5678"});
    EXPECT_EQ(v6.config.listenHost, "::1");
    EXPECT_EQ(v6.config.listenPort, 5678);
    EXPECT_FALSE(v6.config.databasePath.empty()) << "a default database is always chosen";
}

TEST(CommandLineTest, AccountAddTakesNamePasswordAndStaffAnywhere) {
    const auto line = CommandLine::parse(
        {"--db", "a.db", "account", "add", "Alice", "pw12", "--staff", "2", "--email", "a@b.c"});
    EXPECT_EQ(line.mode, CommandLine::Mode::kAccountAdd);
    EXPECT_EQ(line.accountName, "Alice");
    EXPECT_EQ(line.accountPassword, "pw12");
    EXPECT_EQ(line.staffLevel, 2);
    EXPECT_EQ(line.accountEmail, "a@b.c");
}

TEST(CommandLineTest, NonsenseIsRefusedWithAReason) {
    const std::vector<std::vector<std::string>> bad = {
        {"--listen", "5678"},
        {"--listen", "host:99999"},
        {"--listen", ":5678"},
        {"--ping-interval", "0"},
        {"--ping-interval", "nan"},
        {"--ping-interval", "1e9"},
        {"--max-payload", "2000000"},
        {"--min-version", "1.2"},
        {"--db"},
        {"--no-such-option", "1"},
        {"account", "add", "Alice"},
        {"account", "remove", "Alice", "pw"},
        {"--staff", "2"},
        {"account", "add", "A", "pw12", "--staff", "4"},
        {"stray"},
    };
    for (const auto& arguments : bad) {
        EXPECT_THROW(CommandLine::parse(arguments), CommandLineError) << arguments.front();
    }
}

}  // namespace
}  // namespace tavren::server
