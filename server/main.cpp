// tavrend: the Tavren chat server. Parses the command line and runs the command it names: serve
// in the foreground (the default), add an account, print the certificate's fingerprint, or print
// the usage.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "server/app/AccountAddCommand.h"
#include "server/app/CommandLine.h"
#include "server/app/ServeCommand.h"
#include "server/base/Log.h"
#include "server/net/TlsCredentials.h"

int main(int argc, char** argv) {
    using namespace tavren::server;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    CommandLine commandLine;
    try {
        commandLine = CommandLine::parse(arguments);
    } catch (const CommandLineError& error) {
        std::cerr << "tavrend: " << error.what() << "\n\n" << CommandLine::usage();
        return 64;
    }
    switch (commandLine.mode) {
        case CommandLine::Mode::kHelp:
            std::cout << CommandLine::usage();
            return 0;
        case CommandLine::Mode::kAccountAdd:
            return AccountAddCommand::run(commandLine, std::cout, std::cerr);
        case CommandLine::Mode::kFingerprint:
            try {
                std::cout << TlsCredentials::forServer(commandLine.config).current()->fingerprint()
                          << "\n";
                return 0;
            } catch (const std::exception& error) {
                std::cerr << "tavrend: " << error.what() << "\n";
                return 1;
            }
        case CommandLine::Mode::kServe:
            break;
    }
    try {
        return ServeCommand::run(commandLine);
    } catch (const std::exception& error) {
        Log::warn(std::string("cannot serve: ") + error.what());
        return 1;
    }
}
