#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "server/base/ServerConfig.h"

namespace tavren::server {

// The parsed command line of `tavrend`:
//   tavrend [--listen HOST:PORT] [--db FILE] [limits...]          serve in the foreground
//   tavrend [--db FILE] account add NAME PASSWORD [--staff 1|2|3] [--email ADDRESS]
//   tavrend [--db FILE] [--tls-cert FILE --tls-key FILE] fingerprint
//   tavrend --help
struct CommandLine {
    enum class Mode { kServe, kAccountAdd, kFingerprint, kHelp };

    Mode mode = Mode::kServe;
    ServerConfig config;
    std::string accountName;
    std::string accountPassword;
    std::string accountEmail;
    int staffLevel = 0;

    // Throws CommandLineError with a message for the user on anything it does not understand.
    static CommandLine parse(const std::vector<std::string>& arguments);
    static std::string usage();
};

class CommandLineError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavren::server
