#pragma once

#include <gtest/gtest.h>

#include <filesystem>
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

// Each test gets its own folder and database under the test's data root, a real tavrend on an
// ephemeral port, and helpers for the handshake. The server must stop cleanly (exit 0) at the
// end of every test; its log is printed when a test fails.
class ServerFixture : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Short intervals by default, so time-outs happen within a test's patience.
    void startServer(std::vector<std::string> extraArguments = {});
    // Through the command line, like an operator would.
    void addAccount(const std::string& name, const std::string& password,
                    std::vector<std::string> extraArguments = {});
    std::unique_ptr<RawClient> connect(int receiveBuffer = 0);
    // Runs the whole login handshake and checks every answer up to the score.
    std::unique_ptr<RawClient> logIn(const std::string& name, const std::string& password);

    std::filesystem::path folder_;
    std::filesystem::path database_;
    std::unique_ptr<TavrendProcess> server_;
};

}  // namespace tavren::test
