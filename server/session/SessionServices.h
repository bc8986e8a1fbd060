#pragma once

#include "server/base/ServerConfig.h"

namespace tavren::server {

class AccountStore;
class FeatureTable;
class LoginGate;
class NewsFile;
class PasswordGate;
class PresenceHub;

// What every session works with: the login stages use the accounts, the passwords and the hub;
// a logged-in member's requests go to the features. Owned by the program; all of it is used from
// the network thread only, except the password worker, which has its own thread.
struct SessionServices {
    const ServerConfig& config;
    AccountStore& accounts;
    PresenceHub& presence;
    PasswordGate& passwords;
    const FeatureTable& features;
    // Bans and suspensions that keep a member from logging in or signing up; none when null.
    LoginGate* gate = nullptr;
    // The news sent after login; none when null.
    NewsFile* news = nullptr;
};

}  // namespace tavren::server
