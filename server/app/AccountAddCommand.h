#pragma once

#include <iosfwd>

namespace tavren::server {

struct CommandLine;

// `tavrend account add NAME PASSWORD [--staff N] [--email ADDRESS]`: creates one account in the
// database and returns the exit status (0 on success); says why on `errors` otherwise. The name,
// password and e-mail follow the same rules as a sign-up; the e-mail may be left out here.
class AccountAddCommand {
  public:
    static int run(const CommandLine& commandLine, std::ostream& out, std::ostream& errors);
};

}  // namespace tavren::server
