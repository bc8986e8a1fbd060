// Stopping the server with a signal ends every link and exits 0.
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using ShutdownTest = ServerFixture;

TEST_F(ShutdownTest, ServerStopsCleanlyOnSignalWithClientsConnected) {
    addAccount("alice", "secret1");
    startServer();
    auto alice = logIn("alice", "secret1");
    auto anonymous = connect();
    EXPECT_EQ(server_->stop(), 0);
    server_.reset();
    EXPECT_TRUE(alice->waitClosed());
    EXPECT_TRUE(anonymous->waitClosed());
}

}  // namespace
}  // namespace tavren::test
