#pragma once

namespace tavren::server {

struct CommandLine;

// `tavrend [options]`: opens the database, puts the features together, serves in the foreground
// until SIGINT or SIGTERM and returns the exit status. Throws when it cannot start (the address
// is taken, the database cannot be opened).
class ServeCommand {
  public:
    static int run(const CommandLine& commandLine);
};

}  // namespace tavren::server
