#include "server/SessionHandler.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/AccountRules.h"
#include "server/AccountStore.h"
#include "server/Log.h"
#include "server/PasswordWorker.h"
#include "server/PresenceHub.h"
#include "server/Replies.h"
#include "server/StatusCommand.h"
#include "server/StorageError.h"

#ifndef TAVREND_VERSION
#define TAVREND_VERSION "0.0.0"
#endif

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;
using protocol::FieldAt;
using protocol::SplitFields;

SessionHandler::SessionHandler(ServerContext& context, ClientLink& link)
    : context_(context), link_(link) {}

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

    if (code == in::kMailReceive) {
        // No mail is kept yet: the inbox is always empty.
        link_.send(out::kMailList, "");
    } else if (code == in::kAskEmail) {
        link_.send(out::kAccountInfo, account_->email);
    } else if (code == in::kChangeEmail) {
        onChangeEmail(frame.payload);
    } else if (code == in::kChangePassword) {
        co_await onChangePassword(frame.payload);
    } else if (code == in::kNicknameFormat) {
        onNicknameFormat(frame.payload);
    } else if (code == in::kAwayStatus) {
        onStatusCommand(frame.payload);
    } else if (code == in::kAccountRefreshOk) {
        // The client's answer to an account refresh; nothing follows from it.
    } else if (code == in::kCredentials || code == in::kVersionBeforeLogin ||
               code == in::kVersionBeforeSignUp || code == in::kRegisterAccount) {
        drop(frame, "after login");
    }
    // Anything else belongs to features this server does not offer yet and is ignored.
}

void SessionHandler::onVersion(const protocol::Frame& frame) {
    const auto version = VersionNumber::parse(frame.payload);
    const ServerConfig& config = context_.config;
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
        link_.send(out::kUpdateNotice,
                   protocol::JoinFields({config.latestVersion.toString(), config.updateUrl},
                                        protocol::kListSeparator));
    } else {
        link_.send(out::kHello, protocol::JoinFields({replies::kServerName, TAVREND_VERSION},
                                                     protocol::kListSeparator));
    }
}

asio::awaitable<void> SessionHandler::onCredentials(const std::string& payload) {
    const auto fields = SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string name(FieldAt(fields, 0));
    const std::string password(FieldAt(fields, 1));
    // A name or password that breaks the rules cannot belong to any account; no need to look.
    if (!AccountRules::checkName(name).empty() || !AccountRules::checkPassword(password).empty()) {
        refuseLogin(name, "malformed name or password");
        co_return;
    }
    std::optional<Account> account = context_.accounts.findByName(name);
    if (!account) {
        co_await context_.passwords.verifyAgainstDecoy(password, ended_);
        refuseLogin(name, "unknown name");
        co_return;
    }
    if (!co_await context_.passwords.verify(account->passwordHash, password, ended_)) {
        refuseLogin(name, "wrong password");
        co_return;
    }
    account_ = std::move(account);
    stage_ = Stage::kAwaitingOk;
    sendAccountData();
}

void SessionHandler::onLoginConfirmed() {
    stage_ = Stage::kLoggedIn;
    const std::string& name = account_->name;
    link_.send(out::kLoginAccepted, name);
    link_.send(out::kSessionSettings,
               protocol::JoinFields({name, replies::kDefaultRoom}, protocol::kListSeparator));
    if (auto self = sharedLink_.lock()) {
        // The online count reaches everyone, this member included, from the hub.
        if (auto previous = context_.presence.join(name, self)) {
            previous->send(replies::kNotice,
                           "You have been logged out: your account logged in from another place.");
            previous->finish("replaced by a new login of " + name);
        }
    }
    link_.send(out::kScore, std::to_string(account_->score));
    if (!context_.config.messageOfTheDay.empty()) {
        link_.send(replies::kNotice, context_.config.messageOfTheDay);
    }
    Log::info(name + " logged in from " + link_.peerAddress());
}

asio::awaitable<void> SessionHandler::onSignUp(const std::string& payload) {
    if (accountCreated_) {
        refuseSignUp("", "One new account per connection.");
        co_return;
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
    // Checked first so that a taken name costs no hashing; the store checks again on insert.
    if (context_.accounts.findByName(account.name)) {
        refuseSignUp(account.name, "That name is taken.");
        co_return;
    }
    account.passwordHash = co_await context_.passwords.hash(password, ended_);
    if (!context_.accounts.create(account)) {
        refuseSignUp(account.name, "That name is taken.");
        co_return;
    }
    accountCreated_ = true;
    Log::info("account " + account.name + " created from " + link_.peerAddress());
    link_.send(replies::kSignUpResult, replies::kRegistrationSuccess);
}

asio::awaitable<void> SessionHandler::onChangePassword(const std::string& payload) {
    const auto fields = SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string current(FieldAt(fields, 0));
    const std::string replacement(FieldAt(fields, 1));
    if (const std::string problem = AccountRules::checkPassword(replacement); !problem.empty()) {
        link_.send(replies::kNotice, "Your password was not changed. " + problem);
        co_return;
    }
    if (!co_await context_.passwords.verify(account_->passwordHash, current, ended_)) {
        link_.send(replies::kNotice,
                   "Your password was not changed: the current password is wrong.");
        co_return;
    }
    std::string newHash = co_await context_.passwords.hash(replacement, ended_);
    context_.accounts.setPasswordHash(account_->id, newHash);
    account_->passwordHash = std::move(newHash);
    Log::info(account_->name + " changed the password");
    link_.send(out::kSuccessNotice, "Your password has been changed.");
}

void SessionHandler::onChangeEmail(const std::string& payload) {
    if (const std::string problem = AccountRules::checkEmail(payload); !problem.empty()) {
        link_.send(replies::kNotice, "Your e-mail address was not changed. " + problem);
        return;
    }
    context_.accounts.setEmail(account_->id, payload);
    account_->email = payload;
    link_.send(out::kSuccessNotice, "Your e-mail address has been changed.");
}

void SessionHandler::onNicknameFormat(const std::string& payload) {
    if (const std::string problem = AccountRules::checkNicknameFormat(payload); !problem.empty()) {
        link_.send(replies::kNotice, "Your nickname format was not saved. " + problem);
        return;
    }
    context_.accounts.setNicknameFormat(account_->id, payload);
    account_->nicknameFormat = payload;
    sendAccountData();
}

void SessionHandler::sendAccountData() {
    link_.send(out::kAccountRefresh,
               protocol::JoinFields(
                   {account_->name, std::to_string(account_->staffLevel), account_->nicknameFormat},
                   protocol::kListSeparator));
}

void SessionHandler::refuseLogin(std::string_view name, std::string_view why) {
    // The client hears the same text whatever went wrong, so that nobody can probe which names
    // exist; only the log says more.
    Log::info("login refused for " + Log::quoted(name) + " from " + link_.peerAddress() + ": " +
              std::string(why));
    link_.send(replies::kLoginResult, replies::kNotRegistered);
    countFailure();
}

void SessionHandler::refuseSignUp(std::string_view name, std::string_view why) {
    Log::info("sign-up refused for " + Log::quoted(name) + " from " + link_.peerAddress() + ": " +
              std::string(why));
    link_.send(replies::kSignUpResult, protocol::JoinFields({replies::kAccountCreationError, why},
                                                            protocol::kFieldSeparator));
    countFailure();
}

void SessionHandler::countFailure() {
    if (++failures_ >= context_.config.maxLoginAttempts) {
        link_.finish("too many failed attempts");
    }
}

void SessionHandler::disconnected() {
    if (*ended_) {
        return;
    }
    *ended_ = true;
    if (stage_ == Stage::kLoggedIn) {
        context_.presence.leave(account_->name, &link_);
        Log::info(account_->name + " went offline");
    }
}

void SessionHandler::drop(const protocol::Frame& frame, std::string_view why) {
    Log::info("dropped (" + std::to_string(frame.code.cmd1) + ", " +
              std::to_string(frame.code.cmd2) + ") from " + link_.peerAddress() + " " +
              std::string(why));
}

void SessionHandler::onStatusCommand(const std::string& payload) {
    const StatusCommand command = StatusCommand::Parse(payload);
    switch (command.kind) {
        case StatusCommand::Kind::kHelp: {
            std::string list;
            for (const std::string& line : StatusCommand::HelpLines()) {
                list += line;
                list += protocol::kRecordFieldSeparator;
            }
            link_.send(out::kListUpdate, list);
            return;
        }
        case StatusCommand::Kind::kAway:
            link_.send(out::kAwayMenu, protocol::JoinFields({protocol::kTrueText, command.argument},
                                                            protocol::kListSeparator));
            return;
        case StatusCommand::Kind::kBack:
            link_.send(out::kAwayMenu,
                       protocol::JoinFields({protocol::kFalseText, ""}, protocol::kListSeparator));
            return;
        case StatusCommand::Kind::kUnknown:
            link_.send(replies::kNotice, "Unknown command \"" + command.argument +
                                             "\". Type /help for the commands this server knows.");
            return;
    }
}

}  // namespace tavren::server
