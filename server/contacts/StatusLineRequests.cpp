#include "server/contacts/StatusLineRequests.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/base/Replies.h"
#include "server/contacts/PresenceService.h"
#include "server/contacts/StatusCommand.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace out = protocol::server_to_client;

std::vector<protocol::CodePair> StatusLineRequests::requests() const {
    return {protocol::client_to_server::kAwayStatus};
}

asio::awaitable<void> StatusLineRequests::handle(Member& member, protocol::CodePair /*code*/,
                                                 std::string payload) {
    const StatusCommand command = StatusCommand::Parse(payload);
    switch (command.kind) {
        case StatusCommand::Kind::kHelp: {
            std::string list;
            for (const std::string& line : StatusCommand::HelpLines()) {
                list += line;
                list += protocol::kRecordFieldSeparator;
            }
            member.link.send(out::kListUpdate, list);
            break;
        }
        case StatusCommand::Kind::kAway:
            // Refused rather than cut: the client keeps its state until the server confirms.
            if (command.argument.size() > maxAwayText_) {
                member.link.send(replies::kNotice,
                                 "You were not set away: an away message holds at most " +
                                     std::to_string(maxAwayText_) + " characters.");
                break;
            }
            member.link.send(out::kAwayMenu,
                             protocol::JoinFields({protocol::kTrueText, command.argument},
                                                  protocol::kListSeparator));
            presence_.setAway(member, command.argument);
            break;
        case StatusCommand::Kind::kBack:
            member.link.send(out::kAwayMenu, protocol::JoinFields({protocol::kFalseText, ""},
                                                                  protocol::kListSeparator));
            presence_.setBack(member);
            break;
        case StatusCommand::Kind::kUnknown:
            member.link.send(replies::kNotice,
                             "Unknown command \"" + command.argument +
                                 "\". Type /help for the commands this server knows.");
            break;
    }
    co_return;
}

}  // namespace tavren::server
