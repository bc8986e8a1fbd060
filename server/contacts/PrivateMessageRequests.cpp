#include "server/contacts/PrivateMessageRequests.h"

#include <span>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/ChannelRules.h"
#include "server/session/Member.h"
#include "server/session/SenderField.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

std::vector<protocol::CodePair> PrivateMessageRequests::requests() const {
    return {in::kPrivateMessage, in::kTypingStatus};
}

asio::awaitable<void> PrivateMessageRequests::handle(Member& member, protocol::CodePair code,
                                                     std::string payload) {
    if (code == in::kPrivateMessage) {
        message(member, payload);
    } else {
        typing(member, payload);
    }
    co_return;
}

void PrivateMessageRequests::message(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string recipient(protocol::FieldAt(fields, 0));
    const std::string_view text = protocol::FieldAt(fields, 1);
    if (text.empty()) {
        return;
    }
    if (text.size() > limits_.maxLine) {
        tell(member, recipient,
             "Your message was not sent: a message holds at most " +
                 std::to_string(limits_.maxLine) + " characters.");
        return;
    }
    if (!member.lines.take(LineBucket::Clock::now())) {
        tell(member, recipient,
             "You are sending messages too fast. Wait a moment, then try again.");
        return;
    }
    // A name that breaks the rules belongs to nobody; no need to look.
    const bool possibleName = AccountRules::checkName(recipient).empty();
    if (possibleName && hub_.isOnline(recipient)) {
        std::string relayed = SenderField(member);
        relayed += ':';
        relayed += text;
        hub_.sendTo(std::span(&recipient, 1), out::kPrivateMessage, relayed);
        return;
    }
    if (!possibleName || !accounts_.findByName(recipient)) {
        tell(member, recipient, "There is no member called " + ChannelRules::echo(recipient) + ".");
        return;
    }
    tell(member, recipient,
         ChannelRules::echo(recipient) + " is offline; your message was not delivered.");
}

void PrivateMessageRequests::typing(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string recipient(protocol::FieldAt(fields, 0));
    const std::string_view code = protocol::FieldAt(fields, 1);
    if (code.size() != 1 || code.front() < '1' || code.front() > '4' ||
        !AccountRules::checkName(recipient).empty()) {
        return;
    }
    // Members who are not online are skipped by the hub: nobody is waiting to see it.
    hub_.sendTo(std::span(&recipient, 1), out::kTypingStatus,
                member.name() + ":" + std::string(code));
}

void PrivateMessageRequests::tell(Member& member, std::string_view recipient,
                                  const std::string& text) {
    member.link.send(out::kPrivateNotice, ChannelRules::echo(recipient) + ":" + text);
}

}  // namespace tavren::server
