#include "server/contacts/ProfileRequests.h"

#include <optional>

#include "core/protocol/Catalogue.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/AsciiText.h"
#include "server/base/Replies.h"
#include "server/contacts/ProfilePages.h"
#include "server/contacts/ProfileStore.h"
#include "server/rooms/ChannelRules.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

std::vector<protocol::CodePair> ProfileRequests::requests() const {
    return {in::kUpdateProfile, in::kViewProfile};
}

asio::awaitable<void> ProfileRequests::handle(Member& member, protocol::CodePair code,
                                              std::string payload) {
    if (code == in::kUpdateProfile) {
        update(member, payload);
    } else {
        view(member, std::string(AsciiText::trimBlanks(payload)));
    }
    co_return;
}

void ProfileRequests::update(Member& member, const std::string& page) {
    if (page.size() > limits_.maxProfile) {
        member.link.send(replies::kNotice, "Your profile was not saved: a profile holds at most " +
                                               std::to_string(limits_.maxProfile) + " characters.");
        return;
    }
    if (page.empty()) {
        profiles_.remove(member.account.id);
    } else {
        profiles_.save(member.account.id, page, ProfilePages::firstWebLink(page));
    }
}

void ProfileRequests::view(Member& member, const std::string& requestedName) {
    // A name that breaks the rules cannot belong to any account; no need to look.
    std::optional<Account> account;
    if (AccountRules::checkName(requestedName).empty()) {
        account = accounts_.findByName(requestedName);
    }
    if (!account) {
        member.link.send(replies::kNotice,
                         "There is no member called " + ChannelRules::echo(requestedName) + ".");
        return;
    }
    const std::optional<std::string> page = profiles_.pageOf(account->id);
    member.link.send(out::kProfile,
                     account->name + ":" + (page ? *page : ProfilePages::defaultPage(*account)));
}

}  // namespace tavren::server
