#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "core/protocol/Catalogue.h"
#include "server/support/RawClient.h"
#include "server/support/TavrendProcess.h"

namespace tavren::test {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

inline constexpr protocol::CodePair kLoginResult{3, 1};
inline constexpr protocol::CodePair kSignUpResult{3, 2};
inline constexpr protocol::CodePair kNotice{4, 1};
inline constexpr protocol::CodePair kMessageOfTheDay{4, 2};

// A real tavrend on an ephemeral port with a database in the test's own data root, and helpers
// for the handshake. The server must stop cleanly (exit 0) at the end of every test; its log is
// printed when a test fails.
class ServerFixture : public ::testing::Test {
  protected:
    void TearDown() override;

    // Short intervals by default, so time-outs happen within a test's patience.
    void startServer(std::vector<std::string> extraArguments = {});
    // `tavrend --db DATABASE account add ARGUMENTS...`, like an operator would.
    TavrendProcess::Result accountAdd(std::vector<std::string> arguments);
    void addAccount(const std::string& name, const std::string& password,
                    std::vector<std::string> extraArguments = {});
    // Encrypted when `encryptClients_` is set, plain otherwise.
    std::unique_ptr<RawClient> connect(int receiveBuffer = 0);
    // Connected and past the version check: the server waits for credentials.
    std::unique_ptr<RawClient> greet(const std::string& version = "1.0.0", int receiveBuffer = 0);
    // Runs the whole login handshake and checks every answer up to the buddy list and its
    // presence records (the message of the day, when there is one, comes after them).
    std::unique_ptr<RawClient> logIn(const std::string& name, const std::string& password,
                                     int receiveBuffer = 0);
    // Logged in with the password "secret1" and deaf to what every member hears at every login
    // (the online count, the message of the day), so that a test reads only what it is about.
    std::unique_ptr<RawClient> member(const std::string& name, int receiveBuffer = 0);
    void addMembers(std::initializer_list<const char*> names);

    const std::filesystem::path folder_{std::getenv("TAVREN_HOME")};
    const std::filesystem::path database_ = folder_ / "tavrend.db";
    std::unique_ptr<TavrendProcess> server_;
    bool encryptClients_ = false;
    std::string lastFloodMeters_;                // the (2, 16) payload of the latest login
    std::string lastBuddyList_;                  // the buddy list (2, 13) of the latest login
    std::vector<std::string> lastBuddyRecords_;  // and the presence records after it
};

}  // namespace tavren::test
