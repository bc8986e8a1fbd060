#pragma once

#include <string>
#include <string_view>

namespace tavren::server {

struct Account;

// Asked by the login stages before a member gets in: whether this account may log in, or anybody
// may sign up, from that address. Each answer is empty for yes, else the sentence the refusal
// carries. `peerAddress` is the connection's "address:port".
class LoginGate {
  public:
    virtual ~LoginGate() = default;

    virtual std::string loginRefusal(const Account& account, std::string_view peerAddress) = 0;
    virtual std::string signUpRefusal(std::string_view peerAddress) = 0;
};

}  // namespace tavren::server
