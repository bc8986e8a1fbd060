#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tavren::bench {

// The real tavrend on an ephemeral loopback port with a fresh database in `folder`, holding the
// accounts "sender" and "m0".."m<members-1>" (password kPassword), and limits opened up so that
// only the fan-out itself is measured. Stopped with SIGTERM when destroyed.
class TavrendUnderTest {
  public:
    static constexpr const char* kPassword = "benchpw1";

    // `extraArguments` go after the ones that open the limits up.
    TavrendUnderTest(const std::filesystem::path& binary, const std::filesystem::path& folder,
                     int members, const std::vector<std::string>& extraArguments = {});
    ~TavrendUnderTest();
    TavrendUnderTest(const TavrendUnderTest&) = delete;
    TavrendUnderTest& operator=(const TavrendUnderTest&) = delete;

    std::uint16_t port() const { return port_; }
    pid_t pid() const { return pid_; }

  private:
    // A login costs a full argon2id check by design, which would make a thousand logins take a
    // minute. The hash carries its own cost parameters, so accounts made here with the lowest
    // ones log in at once through exactly the same code.
    static void createAccounts(const std::filesystem::path& database, int members);

    pid_t pid_ = -1;
    std::uint16_t port_ = 0;
};

}  // namespace tavren::bench
