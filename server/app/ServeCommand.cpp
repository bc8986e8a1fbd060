#include "server/app/ServeCommand.h"

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <iostream>

#include "server/accounts/AccountRequests.h"
#include "server/accounts/PasswordWorker.h"
#include "server/app/CommandLine.h"
#include "server/base/Log.h"
#include "server/contacts/MailboxRequests.h"
#include "server/contacts/StatusLineRequests.h"
#include "server/net/LocalPresenceHub.h"
#include "server/net/Server.h"
#include "server/session/FeatureTable.h"
#include "server/session/SessionHandler.h"
#include "server/session/SessionServices.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteDatabase.h"

namespace tavren::server {

int ServeCommand::run(const CommandLine& commandLine) {
    const ServerConfig& config = commandLine.config;
    SqliteDatabase db(config.databasePath);
    SqliteAccountStore accounts(db);
    Log::info("database " + config.databasePath.string());

    asio::io_context io(1);
    LocalPresenceHub presence;
    PasswordWorker passwords;

    AccountRequests accountRequests(accounts, passwords);
    MailboxRequests mailbox;
    StatusLineRequests statusLines;
    FeatureTable features;
    features.add(accountRequests);
    features.add(mailbox);
    features.add(statusLines);

    const SessionServices services{config, accounts, presence, passwords, features};
    Server server(io, config, [&services](ClientLink& link, std::weak_ptr<ClientLink> shared) {
        return std::make_unique<SessionHandler>(services, link, std::move(shared));
    });
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&](const asio::error_code& error, int signal) {
        if (!error) {
            Log::info("stopping on signal " + std::to_string(signal));
            // Password work queued behind a stopping server is skipped, not waited for.
            passwords.shutDown();
            server.stop();
        }
    });
    server.start();
    // Tools and tests read the bound address from here, which matters when the port was 0.
    const auto endpoint = server.localEndpoint();
    std::cout << "listening on " << endpoint.address().to_string() << ":" << endpoint.port()
              << std::endl;
    io.run();
    Log::info("stopped");
    return 0;
}

}  // namespace tavren::server
