#pragma once

#include "server/ServerConfig.h"

namespace tavren::server {

class AccountStore;
class PasswordWorker;
class PresenceHub;

// The shared services every connection works with. Owned by the Server; all of it is used from
// the network thread only, except the password worker, which has its own thread.
struct ServerContext {
    const ServerConfig& config;
    AccountStore& accounts;
    PresenceHub& presence;
    PasswordWorker& passwords;
};

}  // namespace tavren::server
