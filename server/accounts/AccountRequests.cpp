#include "server/accounts/AccountRequests.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/accounts/PasswordWorker.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;
using protocol::FieldAt;
using protocol::SplitFields;

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
    if (!co_await passwords_.verify(member.account.passwordHash, current, member.gone)) {
        member.link.send(replies::kNotice,
                         "Your password was not changed: the current password is wrong.");
        co_return;
    }
    std::string newHash = co_await passwords_.hash(replacement, member.gone);
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
    accounts_.setEmail(member.account.id, payload);
    member.account.email = payload;
    member.link.send(out::kSuccessNotice, "Your e-mail address has been changed.");
}

void AccountRequests::saveNicknameFormat(Member& member, const std::string& payload) {
    if (const std::string problem = AccountRules::checkNicknameFormat(payload); !problem.empty()) {
        member.link.send(replies::kNotice, "Your nickname format was not saved. " + problem);
        return;
    }
    accounts_.setNicknameFormat(member.account.id, payload);
    member.account.nicknameFormat = payload;
    member.link.send(out::kAccountRefresh, refreshPayload(member.account));
}

}  // namespace tavren::server
