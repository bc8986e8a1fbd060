#include "server/accounts/AccountRequests.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/accounts/PasswordGate.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;
using protocol::FieldAt;
using protocol::SplitFields;

namespace {

const std::string kPasswordBusy =
    "Your password was not changed: the server is busy. Please try again in a few seconds.";

}  // namespace

std::string AccountRequests::refreshPayload(const Account& account) {
    return protocol::JoinFields(
        {account.name, std::to_string(account.staffLevel), account.nicknameFormat},
        protocol::kListSeparator);
}

std::vector<protocol::CodePair> AccountRequests::requests() const {
    return {in::kChangePassword, in::kChangeEmail, in::kAskEmail, in::kNicknameFormat};
}

asio::awaitable<void> AccountRequests::handle(Member& member, protocol::CodePair code,
                                              std::string payload) {
    if (code == in::kChangePassword) {
        co_await changePassword(member, payload);
    } else if (code == in::kChangeEmail) {
        changeEmail(member, payload);
    } else if (code == in::kAskEmail) {
        member.link.send(out::kAccountInfo, member.account.email);
    } else if (code == in::kNicknameFormat) {
        saveNicknameFormat(member, payload);
    }
}

asio::awaitable<void> AccountRequests::changePassword(Member& member, const std::string& payload) {
    const auto fields = SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string current(FieldAt(fields, 0));
    const std::string replacement(FieldAt(fields, 1));
    if (const std::string problem = AccountRules::checkPassword(replacement); !problem.empty()) {
        member.link.send(replies::kNotice, "Your password was not changed. " + problem);
        co_return;
    }
    const std::string& group = member.link.addressGroup();
    const auto checked = co_await passwords_.checkCurrentPassword(
        group, member.name(), member.account.passwordHash, current, member.gone);
    if (checked.kind == PasswordGate::Outcome::Kind::kWait) {
        const auto seconds = std::chrono::ceil<std::chrono::seconds>(checked.wait).count();
        member.link.send(replies::kNotice,
                         "Your password was not changed: too many wrong passwords. Please wait " +
                             std::to_string(seconds) + " seconds and try again.");
        co_return;
    }
    if (checked.kind == PasswordGate::Outcome::Kind::kBusy) {
        member.link.send(replies::kNotice, kPasswordBusy);
        co_return;
    }
    if (checked.kind != PasswordGate::Outcome::Kind::kAccepted) {
        member.link.send(replies::kNotice,
                         "Your password was not changed: the current password is wrong.");
        co_return;
    }
    std::optional<std::string> hashed = co_await passwords_.hash(group, replacement, member.gone);
    if (!hashed) {
        member.link.send(replies::kNotice, kPasswordBusy);
        co_return;
    }
    std::string newHash = std::move(*hashed);
    accounts_.setPasswordHash(member.account.id, newHash);
    member.account.passwordHash = std::move(newHash);
    Log::info(member.name() + " changed the password");
    member.link.send(out::kSuccessNotice, "Your password has been changed.");
}

void AccountRequests::changeEmail(Member& member, const std::string& payload) {
    if (const std::string problem = AccountRules::checkEmail(payload); !problem.empty()) {
        member.link.send(replies::kNotice, "Your e-mail address was not changed. " + problem);
        return;
    }
    if (payload != member.account.email) {  // nothing is written without a change
        accounts_.setEmail(member.account.id, payload);
        member.account.email = payload;
    }
    member.link.send(out::kSuccessNotice, "Your e-mail address has been changed.");
}

void AccountRequests::saveNicknameFormat(Member& member, const std::string& payload) {
    if (const std::string problem = AccountRules::checkNicknameFormat(payload); !problem.empty()) {
        member.link.send(replies::kNotice, "Your nickname format was not saved. " + problem);
        return;
    }
    if (payload != member.account.nicknameFormat) {
        accounts_.setNicknameFormat(member.account.id, payload);
        member.account.nicknameFormat = payload;
    }
    member.link.send(out::kAccountRefresh, refreshPayload(member.account));
}

}  // namespace tavren::server
