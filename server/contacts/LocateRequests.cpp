#include "server/contacts/LocateRequests.h"

#include <optional>

#include "core/protocol/Catalogue.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/AsciiText.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/ChannelRules.h"
#include "server/rooms/RoomService.h"
#include "server/session/Member.h"

namespace tavren::server {

std::vector<protocol::CodePair> LocateRequests::requests() const {
    return {protocol::client_to_server::kLocateUser};
}

asio::awaitable<void> LocateRequests::handle(Member& member, protocol::CodePair /*code*/,
                                             std::string payload) {
    member.link.send(protocol::server_to_client::kLocateResult,
                     answer(std::string(AsciiText::trimBlanks(payload))));
    co_return;
}

std::string LocateRequests::answer(const std::string& requestedName) {
    // A name that breaks the rules cannot belong to any account; no need to look.
    std::optional<Account> account;
    if (AccountRules::checkName(requestedName).empty()) {
        account = accounts_.findByName(requestedName);
    }
    if (!account) {
        return "There is no member called " + ChannelRules::echo(requestedName) + ".";
    }
    if (!hub_.isOnline(account->name)) {
        return account->name + " is Offline";
    }
    const std::vector<std::string> channels = rooms_.channelsOf(account->name);
    if (channels.empty()) {
        return account->name + " is Online but not in a channel";
    }
    std::string sentence = account->name + " is Online in channel(s): ";
    for (std::size_t i = 0; i < channels.size(); ++i) {
        sentence += i == 0 ? "" : ", ";
        sentence += channels[i];
    }
    return sentence;
}

}  // namespace tavren::server
