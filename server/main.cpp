// tavrend: the Tavren chat server. Parses the command line and either adds an account or serves
// in the foreground until SIGINT or SIGTERM.
#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "server/AccountAddCommand.h"
#include "server/CommandLine.h"
#include "server/Log.h"
#include "server/Server.h"
#include "server/SqliteAccountStore.h"
#include "server/SqliteDatabase.h"

namespace {

using tavren::server::CommandLine;
using tavren::server::Log;

int serve(const CommandLine& commandLine) {
    using namespace tavren::server;
    SqliteDatabase db(commandLine.config.databasePath);
    SqliteAccountStore accounts(db);
    Log::info("database " + commandLine.config.databasePath.string());

    asio::io_context io(1);
    Server server(io, commandLine.config, accounts);
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&server](const asio::error_code& error, int signal) {
        if (!error) {
            Log::info("stopping on signal " + std::to_string(signal));
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

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    CommandLine commandLine;
    try {
        commandLine = CommandLine::parse(arguments);
    } catch (const tavren::server::CommandLineError& error) {
        std::cerr << "tavrend: " << error.what() << "\n\n" << CommandLine::usage();
        return 64;
    }
    switch (commandLine.mode) {
        case CommandLine::Mode::kHelp:
            std::cout << CommandLine::usage();
            return 0;
        case CommandLine::Mode::kAccountAdd:
            return tavren::server::AccountAddCommand::run(commandLine, std::cout, std::cerr);
        case CommandLine::Mode::kServe:
            break;
    }
    try {
        return serve(commandLine);
    } catch (const std::exception& error) {
        Log::warn(std::string("cannot serve: ") + error.what());
        return 1;
    }
}
