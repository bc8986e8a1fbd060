#include "server/support/ServerFixture.h"

#include <unistd.h>
#include <cstdlib>

namespace tavren::test {

void ServerFixture::SetUp() {
    const char* home = std::getenv("TAVREN_HOME");
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::path(home ? home : std::filesystem::temp_directory_path().c_str()) /
              (std::string(info->test_suite_name()) + "." + info->name() + "." +
               std::to_string(getpid()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    database_ = folder_ / "tavrend.db";
}

void ServerFixture::TearDown() {
    if (server_) {
        const int exitCode = server_->stop();
        EXPECT_EQ(exitCode, 0) << "tavrend did not stop cleanly";
        if (HasFailure()) {
            std::cerr << "---- tavrend log ----\n" << server_->log() << "---------------------\n";
        }
        server_.reset();
    }
    if (!HasFailure()) {
        std::filesystem::remove_all(folder_);
    }
}

void ServerFixture::startServer(std::vector<std::string> extraArguments) {
    std::vector<std::string> arguments{"--db", database_.string(), "--ping-interval", "1"};
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    server_ = std::make_unique<TavrendProcess>(arguments, folder_ / "tavrend.log");
}

void ServerFixture::addAccount(const std::string& name, const std::string& password,
                               std::vector<std::string> extraArguments) {
    std::vector<std::string> arguments{"--db",  database_.string(), "account", "add", name,
                                       password};
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    const auto result = TavrendProcess::runToEnd(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.output;
}

std::unique_ptr<RawClient> ServerFixture::connect(int receiveBuffer) {
    return std::make_unique<RawClient>(server_->port(), receiveBuffer);
}

std::unique_ptr<RawClient> ServerFixture::logIn(const std::string& name,
                                                const std::string& password) {
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    client->send(in::kCredentials, name + ":" + password);
    client->expect(out::kAccountRefresh);
    client->send(in::kAccountRefreshOk, "OK");
    client->expect(out::kLoginAccepted);
    client->expect(out::kSessionSettings);
    client->expect(out::kOnlineCount);
    client->expect(out::kScore);
    return client;
}

}  // namespace tavren::test
