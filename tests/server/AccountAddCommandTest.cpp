// The operator's way to create accounts, run as the real program.
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using AccountAddCommandTest = ServerFixture;

TEST_F(AccountAddCommandTest, AddsOnceRefusesDuplicatesAndBadInput) {
    const std::string db = database_.string();
    auto added = TavrendProcess::runToEnd(
        {"--db", db, "account", "add", "Admin", "secret1", "--staff", "3"});
    EXPECT_EQ(added.exitCode, 0) << added.output;

    auto duplicate = TavrendProcess::runToEnd({"--db", db, "account", "add", "admin", "other1"});
    EXPECT_NE(duplicate.exitCode, 0);
    EXPECT_NE(duplicate.output.find("already taken"), std::string::npos) << duplicate.output;

    auto badName = TavrendProcess::runToEnd({"--db", db, "account", "add", "a:b", "secret1"});
    EXPECT_NE(badName.exitCode, 0);
    EXPECT_NE(badName.output.find("A name has"), std::string::npos) << badName.output;

    auto badStaff = TavrendProcess::runToEnd(
        {"--db", db, "account", "add", "Other", "secret1", "--staff", "9"});
    EXPECT_NE(badStaff.exitCode, 0);

    // The account works, with its staff level, and the duplicate did not change its password.
    startServer();
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    client->send(in::kCredentials, "admin:other1");
    client->expect(kLoginResult);
    client->send(in::kCredentials, "admin:secret1");
    EXPECT_EQ(client->expect(out::kAccountRefresh).payload, "Admin;3;");
}

}  // namespace
}  // namespace tavren::test
