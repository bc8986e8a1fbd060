#include "server/session/SessionHandler.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/accounts/AccountRequests.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/accounts/PasswordGate.h"
#include "server/accounts/PasswordWorker.h"
#include "server/base/Log.h"
#include "server/base/NewsFile.h"
#include "server/base/Replies.h"
#include "server/net/PresenceHub.h"
#include "server/session/FeatureTable.h"
#include "server/session/LoginGate.h"
#include "server/storage/StorageError.h"

#ifndef TAVREND_VERSION
#define TAVREND_VERSION "0.0.0"
#endif

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;
using protocol::FieldAt;
using protocol::SplitFields;

namespace {

// Tells a login apart from a later login of the same account. The network thread is the only
// caller, but the counter costs nothing to make safe.
std::uint64_t nextSessionId() {
    static std::atomic<std::uint64_t> counter{0};
    return ++counter;
}

}  // namespace

SessionHandler::SessionHandler(const SessionServices& services, ClientLink& link,
                               std::weak_ptr<ClientLink> sharedLink)
    : services_(services), link_(link), sharedLink_(std::move(sharedLink)) {}

asio::awaitable<void> SessionHandler::handle(protocol::Frame frame) {
    try {
        co_await dispatch(frame);
    } catch (const StorageError& error) {
        Log::warn("storage failed while serving " + link_.peerAddress() + ": " + error.what());
        link_.send(replies::kNotice,
                   "The server could not complete your request. Please try again later.");
    } catch (const PasswordWorker::Skipped&) {
        // Nobody is waiting for the answer any more.
    } catch (const std::exception& error) {
        Log::warn("request from " + link_.peerAddress() + " failed: " + error.what());
    }
}

asio::awaitable<void> SessionHandler::dispatch(protocol::Frame& frame) {
    if (*ended_) {
        co_return;
    }
    const protocol::CodePair code = frame.code;
    switch (stage_) {
        case Stage::kAwaitingVersion:
            if (code == in::kVersionBeforeLogin || code == in::kVersionBeforeSignUp) {
                onVersion(frame);
            } else {
                drop(frame, "before the client's version");
            }
            co_return;
        case Stage::kAwaitingCredentials:
        case Stage::kSigningUp:
            if (code == in::kCredentials) {
                co_await onCredentials(frame.payload);
            } else if (code == in::kRegisterAccount && stage_ == Stage::kSigningUp) {
                co_await onSignUp(frame.payload);
            } else {
                drop(frame, "before login");
            }
            co_return;
        case Stage::kAwaitingOk:
            if (code == in::kAccountRefreshOk && frame.payload == replies::kOk) {
                onLoginConfirmed();
            } else {
                drop(frame, "while waiting for \"OK\"");
            }
            co_return;
        case Stage::kLoggedIn:
            break;
    }

    co_await dispatchLoggedIn(frame);
}

asio::awaitable<void> SessionHandler::dispatchLoggedIn(protocol::Frame& frame) {
    const protocol::CodePair code = frame.code;
    // The client sends typing status from its own timer too (text left standing in the box), so
    // it does not show that somebody is there.
    if (code != in::kTypingStatus) {
        services_.features.memberActive(*member_);
    }
    if (code == in::kAccountRefreshOk) {
        co_return;  // the client's answer to an account refresh; nothing follows from it
    }
    if (code == in::kCredentials || code == in::kVersionBeforeLogin ||
        code == in::kVersionBeforeSignUp || code == in::kRegisterAccount) {
        drop(frame, "after login");
        co_return;
    }
    if (FeatureHandler* feature = services_.features.find(code)) {
        co_await feature->handle(*member_, code, std::move(frame.payload));
    }
    // Anything else belongs to features this server does not offer yet and is ignored.
}

void SessionHandler::onVersion(const protocol::Frame& frame) {
    const auto version = VersionNumber::parse(frame.payload);
    const ServerConfig& config = services_.config;
    if (!version || *version < config.minimumVersion) {
        Log::info("refused client version " + Log::quoted(frame.payload) + " from " +
                  link_.peerAddress());
        std::string notice =
            "Your Tavren client is too old for this server. Please install version " +
            config.latestVersion.toString() + " or newer";
        notice += config.updateUrl.empty() ? "." : " from " + config.updateUrl + ".";
        link_.send(replies::kNotice, notice);
        link_.finish("client too old");
        return;
    }
    if (frame.code == in::kVersionBeforeSignUp) {
        // The client opens its sign-up dialog now; anything sent here would be taken for a hello
        // and answered with the "*new_user*" pseudo-account.
        stage_ = Stage::kSigningUp;
        return;
    }
    stage_ = Stage::kAwaitingCredentials;
    if (*version < config.latestVersion) {
        // The checksum is a third field: clients that know only two read past it.
        std::vector<std::string> notice{config.latestVersion.toString(), config.updateUrl};
        if (!config.updateSha256.empty()) {
            notice.push_back("sha256=" + config.updateSha256);
        }
        link_.send(out::kUpdateNotice, protocol::JoinFields(notice, protocol::kListSeparator));
    } else {
        link_.send(out::kHello, protocol::JoinFields({replies::kServerName, TAVREND_VERSION},
                                                     protocol::kListSeparator));
    }
}

asio::awaitable<void> SessionHandler::onCredentials(const std::string& payload) {
    if (services_.config.tls.required && !link_.encrypted()) {
        // Before any password work: the password crossed in clear, and nothing is done with it.
        Log::infoFrom(link_.addressGroup(), "plain login refused from " + link_.peerAddress());
        link_.send(replies::kLoginResult, replies::kEncryptionRequired);
        link_.finish("encryption required");
        co_return;
    }
    const auto fields = SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string name(FieldAt(fields, 0));
    const std::string password(FieldAt(fields, 1));
    // A name or password that breaks the rules cannot belong to any account; no need to look.
    if (!AccountRules::checkName(name).empty() || !AccountRules::checkPassword(password).empty()) {
        refuseLogin(name, "malformed name or password");
        co_return;
    }
    std::optional<Account> account = services_.accounts.findByName(name);
    const auto checked = co_await services_.passwords.checkLogin(
        link_.addressGroup(), name, account ? &account->passwordHash : nullptr, password, ended_);
    if (refusedForLoad(checked)) {
        co_return;
    }
    if (checked.kind != PasswordGate::Outcome::Kind::kAccepted) {
        refuseLogin(name, account ? "wrong password" : "unknown name");
        co_return;
    }
    if (services_.gate != nullptr) {
        // Said only to whoever knows the password, so it tells nobody else that the name exists.
        if (const std::string why = services_.gate->loginRefusal(*account, link_.peerAddress());
            !why.empty()) {
            Log::info("login refused for " + account->name + " from " + link_.peerAddress() + ": " +
                      why);
            link_.send(replies::kLoginResult, why);
            countFailure();
            co_return;
        }
    }
    link_.send(out::kAccountRefresh, AccountRequests::refreshPayload(*account));
    pendingAccount_ = std::move(account);
    stage_ = Stage::kAwaitingOk;
}

void SessionHandler::onLoginConfirmed() {
    stage_ = Stage::kLoggedIn;
    const RoomLimits& limits = services_.config.rooms;
    Member& member = member_.emplace(
        std::move(*pendingAccount_), link_, nextSessionId(), ended_,
        LineBucket(limits.floodLines, limits.floodInterval, LineBucket::Clock::now()));
    pendingAccount_.reset();
    const std::string& name = member.name();
    link_.send(out::kLoginAccepted, name);
    link_.send(out::kSessionSettings,
               protocol::JoinFields({name, replies::kDefaultRoom}, protocol::kListSeparator));
    if (auto self = sharedLink_.lock()) {
        // The online count reaches everyone, this member included, from the hub. The session it
        // replaces leaves every feature before this one can ask anything of them.
        if (auto previous = services_.presence.join(name, self)) {
            previous->send(replies::kNotice,
                           "You have been logged out: your account logged in from another place.");
            previous->finish("replaced by a new login of " + name);
        }
    }
    link_.send(out::kScore, std::to_string(member.account.score));
    services_.features.memberArrived(member);
    // With news, the client's news pane and news window start afresh, as they do for each
    // login, and the items follow the message of the day.
    if (services_.news != nullptr) {
        link_.send(out::kClearPane, "");
        link_.send(out::kClearOtherPane, "");
    }
    if (!services_.config.messageOfTheDay.empty()) {
        link_.send(replies::kMessageOfTheDay, services_.config.messageOfTheDay);
    }
    if (services_.news != nullptr) {
        for (const NewsItem& item : services_.news->current()) {
            link_.send(replies::kNewsItem, NewsFile::payload(item));
        }
    }
    Log::info(name + " logged in from " + link_.peerAddress());
}

asio::awaitable<void> SessionHandler::onSignUp(const std::string& payload) {
    if (services_.config.tls.required && !link_.encrypted()) {
        Log::infoFrom(link_.addressGroup(), "plain sign-up refused from " + link_.peerAddress());
        link_.send(replies::kSignUpResult, protocol::JoinFields({replies::kAccountCreationError,
                                                                 replies::kEncryptionRequired},
                                                                protocol::kFieldSeparator));
        link_.finish("encryption required");
        co_return;
    }
    if (accountCreated_) {
        refuseSignUp("", "One new account per connection.");
        co_return;
    }
    if (services_.gate != nullptr) {
        if (const std::string why = services_.gate->signUpRefusal(link_.peerAddress());
            !why.empty()) {
            refuseSignUp("", why);
            co_return;
        }
    }
    const auto fields = SplitFields(payload, protocol::kFieldSeparator, 3);
    Account account;
    account.name = FieldAt(fields, 0);
    const std::string password(FieldAt(fields, 1));
    account.email = FieldAt(fields, 2);
    for (const std::string& problem :
         {AccountRules::checkName(account.name), AccountRules::checkPassword(password),
          AccountRules::checkEmail(account.email)}) {
        if (!problem.empty()) {
            refuseSignUp(account.name, problem);
            co_return;
        }
    }
    // Every well-formed try costs one of the address's sign-ups, a taken name too: sign-up has to
    // say that a name is taken, and this keeps it from answering that question at full speed.
    if (!services_.passwords.takeSignUp(link_.addressGroup())) {
        refuseSignUp(account.name, "Too many sign-ups from your address. Please try again later.");
        co_return;
    }
    // Checked first so that a taken name costs no hashing; the store checks again on insert.
    if (services_.accounts.findByName(account.name)) {
        refuseSignUp(account.name, "That name is taken.");
        co_return;
    }
    std::optional<std::string> hashed =
        co_await services_.passwords.hash(link_.addressGroup(), password, ended_);
    if (!hashed) {
        refuseSignUp(account.name, "The server is busy. Please try again in a few seconds.");
        co_return;
    }
    account.passwordHash = std::move(*hashed);
    if (!services_.accounts.create(account)) {
        refuseSignUp(account.name, "That name is taken.");
        co_return;
    }
    accountCreated_ = true;
    Log::info("account " + account.name + " created from " + link_.peerAddress());
    link_.send(replies::kSignUpResult, replies::kRegistrationSuccess);
}

bool SessionHandler::refusedForLoad(const PasswordGate::Outcome& checked) {
    // Nothing was checked, so nothing is said about the name or password: the client is told to
    // come back later and the connection closes (a reconnect costs the server nothing).
    if (checked.kind == PasswordGate::Outcome::Kind::kBusy) {
        Log::infoFrom(link_.addressGroup(), "login from " + link_.peerAddress() +
                                                " refused: too many password checks waiting");
        link_.send(replies::kNotice,
                   "The server is busy checking other logins. Please try again in a few seconds.");
        link_.finish("password checks busy");
        return true;
    }
    if (checked.kind == PasswordGate::Outcome::Kind::kWait) {
        const auto seconds = std::chrono::ceil<std::chrono::seconds>(checked.wait).count();
        Log::infoFrom(link_.addressGroup(), "login from " + link_.peerAddress() +
                                                " refused: backing off after failed logins");
        link_.send(replies::kNotice, "Too many failed logins. Please wait " +
                                         std::to_string(seconds) + " seconds and try again.");
        link_.finish("backing off after failed logins");
        return true;
    }
    return false;
}

void SessionHandler::refuseLogin(std::string_view name, std::string_view why) {
    // The client hears the same text whatever went wrong, so that nobody can probe which names
    // exist; only the log says more.
    Log::infoFrom(link_.addressGroup(), "login refused for " + Log::quoted(name) + " from " +
                                            link_.peerAddress() + ": " + std::string(why));
    link_.send(replies::kLoginResult, replies::kNotRegistered);
    countFailure();
}

void SessionHandler::refuseSignUp(std::string_view name, std::string_view why) {
    Log::infoFrom(link_.addressGroup(), "sign-up refused for " + Log::quoted(name) + " from " +
                                            link_.peerAddress() + ": " + std::string(why));
    link_.send(replies::kSignUpResult, protocol::JoinFields({replies::kAccountCreationError, why},
                                                            protocol::kFieldSeparator));
    countFailure();
}

void SessionHandler::countFailure() {
    if (++failures_ >= services_.config.maxLoginAttempts) {
        link_.finish("too many failed attempts");
    }
}

void SessionHandler::disconnected() {
    if (*ended_) {
        return;
    }
    *ended_ = true;
    if (member_) {
        services_.features.memberLeft(*member_);
        services_.presence.leave(member_->name(), &link_);
        Log::info(member_->name() + " went offline");
    }
}

void SessionHandler::drop(const protocol::Frame& frame, std::string_view why) {
    Log::infoFrom(link_.addressGroup(), "dropped (" + std::to_string(frame.code.cmd1) + ", " +
                                            std::to_string(frame.code.cmd2) + ") from " +
                                            link_.peerAddress() + " " + std::string(why));
}

}  // namespace tavren::server
