#include "server/support/ServerFixture.h"

#include <algorithm>
#include <iostream>

namespace tavren::test {

void ServerFixture::TearDown() {
    if (server_) {
        EXPECT_EQ(server_->stop(), 0) << "tavrend did not stop cleanly";
        if (HasFailure()) {
            std::cerr << "---- tavrend log ----\n" << server_->log() << "---------------------\n";
        }
        server_.reset();
    }
}

void ServerFixture::startServer(std::vector<std::string> extraArguments) {
    // Every test client comes from 127.0.0.1, so the per-address rations of connections, sign-ups
    // and failed logins are wide here; the tests of those limits narrow them again (a later
    // option wins).
    std::vector<std::string> arguments{"--db",
                                       database_.string(),
                                       "--ping-interval",
                                       "1",
                                       "--connect-rate",
                                       "100000",
                                       "--connect-burst",
                                       "10000",
                                       "--signups-per-hour",
                                       "100000",
                                       "--login-failures",
                                       "100000",
                                       "--max-password-jobs-per-address",
                                       "100"};
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    server_ = std::make_unique<TavrendProcess>(arguments, folder_ / "tavrend.log");
}

TavrendProcess::Result ServerFixture::accountAdd(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--db", database_.string(), "account", "add"});
    return TavrendProcess::runToEnd(arguments);
}

void ServerFixture::addAccount(const std::string& name, const std::string& password,
                               std::vector<std::string> extraArguments) {
    extraArguments.insert(extraArguments.begin(), {name, password});
    const auto result = accountAdd(extraArguments);
    ASSERT_EQ(result.exitCode, 0) << result.output;
}

std::unique_ptr<RawClient> ServerFixture::connect(int receiveBuffer) {
    auto client = std::make_unique<RawClient>(server_->port(), receiveBuffer);
    if (encryptClients_) {
        EXPECT_TRUE(client->startTls()) << "no TLS handshake";
    }
    return client;
}

std::unique_ptr<RawClient> ServerFixture::greet(const std::string& version, int receiveBuffer) {
    auto client = connect(receiveBuffer);
    client->send(in::kVersionBeforeLogin, version);
    const std::string hello = client->expect(out::kHello).payload;
    EXPECT_EQ(hello.rfind("tavrend;", 0), 0u) << hello;
    return client;
}

std::unique_ptr<RawClient> ServerFixture::logIn(const std::string& name,
                                                const std::string& password, int receiveBuffer) {
    auto client = greet("1.0.0", receiveBuffer);
    client->send(in::kCredentials, name + ":" + password);
    client->expect(out::kAccountRefresh);
    client->send(in::kAccountRefreshOk, "OK");
    client->expect(out::kLoginAccepted);
    client->expect(out::kSessionSettings);
    client->expect(out::kOnlineCount);
    client->expect(out::kScore);
    lastFloodMeters_ = client->expect(out::kFloodMeters).payload;
    lastBuddyList_ = client->expect(out::kBuddyPresence).payload;
    lastBuddyRecords_.clear();
    // One record follows for every buddy, and every buddy ends with ":".
    const auto buddies = std::count(lastBuddyList_.begin(), lastBuddyList_.end(), ':');
    for (auto i = buddies - (lastBuddyList_ == ":" ? 1 : 0); i > 0; --i) {
        lastBuddyRecords_.push_back(client->expect(out::kBuddyPresence).payload);
    }
    return client;
}

std::unique_ptr<RawClient> ServerFixture::member(const std::string& name, int receiveBuffer) {
    auto client = logIn(name, "secret1", receiveBuffer);
    client->ignore(out::kOnlineCount);
    client->ignore(kMessageOfTheDay);
    return client;
}

void ServerFixture::addMembers(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        addAccount(name, "secret1");
    }
}

}  // namespace tavren::test
