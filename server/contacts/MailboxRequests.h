#pragma once

#include <string>
#include <vector>

#include "server/base/ServerConfig.h"
#include "server/contacts/MailRecords.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class AccountStore;
class MailStore;
class PresenceHub;

// Offline mail. Each addressee's copy is kept in that member's inbox until the member deletes
// it; an addressee who is online hears of it at once (1, 14) and asks for the inbox again.
//
//   (1, 11) "Mail-Recv"  -> (1, 11) the inbox
//   (1, 12) mail         -> (1, 12) the addressees that got it, (1, 16) those that did not
//   (1, 13) rows         -> (1, 15) mails now kept ";" the most kept
//
// A full inbox refuses new mail instead of dropping its oldest: the sender is told, and the
// addressee keeps everything already there.
class MailboxRequests : public FeatureHandler {
  public:
    MailboxRequests(AccountStore& accounts, MailStore& mail, PresenceHub& hub,
                    const MailLimits& limits)
        : accounts_(accounts), mail_(mail), hub_(hub), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    void send(Member& member, const std::string& payload);
    void remove(Member& member, const std::string& payload);
    // Why the whole message is refused, or empty when it may go.
    std::string refusal(const std::vector<MailRecords::Outgoing>& mails) const;
    void refuse(Member& member, const std::string& reason);

    AccountStore& accounts_;
    MailStore& mail_;
    PresenceHub& hub_;
    const MailLimits& limits_;
};

}  // namespace tavren::server
