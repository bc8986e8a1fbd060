#include "server/contacts/MailboxRequests.h"

#include "core/protocol/Catalogue.h"
#include "server/session/Member.h"

namespace tavren::server {

std::vector<protocol::CodePair> MailboxRequests::requests() const {
    return {protocol::client_to_server::kMailReceive};
}

asio::awaitable<void> MailboxRequests::handle(Member& member, protocol::CodePair /*code*/,
                                              std::string /*payload*/) {
    member.link.send(protocol::server_to_client::kMailList, "");
    co_return;
}

}  // namespace tavren::server
