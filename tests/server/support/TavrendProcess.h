#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tavren::test {

// The real build/bin/tavrend (found through $TAVREN_BIN_DIR), run as a child process with its
// output kept in a log file: the "listening on HOST:PORT" line there gives the port, and a
// failing test can show what the server said.
class TavrendProcess {
  public:
    struct Result {
        int exitCode = -1;
        std::string output;  // stdout and stderr together
    };

    static std::filesystem::path binary();
    // Runs tavrend to completion with the given arguments (for "account add" and friends).
    static Result runToEnd(const std::vector<std::string>& arguments);

    // Starts serving on an ephemeral loopback port; `arguments` come after --listen.
    explicit TavrendProcess(const std::vector<std::string>& arguments,
                            const std::filesystem::path& logFile);
    ~TavrendProcess();
    TavrendProcess(const TavrendProcess&) = delete;
    TavrendProcess& operator=(const TavrendProcess&) = delete;

    std::uint16_t port() const { return port_; }
    pid_t pid() const { return pid_; }
    // SIGTERM, then wait; returns the exit code (-1 if it had to be killed or died of a signal).
    int stop(std::chrono::milliseconds grace = std::chrono::seconds(10));
    // SIGKILL: the server gets no chance to finish anything.
    void killAtOnce();
    std::string log() const;

  private:
    pid_t pid_ = -1;
    std::uint16_t port_ = 0;
    std::filesystem::path logFile_;
};

}  // namespace tavren::test
