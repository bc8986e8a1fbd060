#pragma once

#include <vector>

#include "server/base/ServerConfig.h"
#include "server/contacts/Buddy.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class BuddyStore;
class PresenceService;

// The buddy list: (2, 13) replaces the whole list, (2, 14) files one more member under
// "Buddies". Each is checked against the list rules and answered with the list as stored and a
// presence record for every buddy; a list that breaks a rule is not stored, and the member is
// told which rule with a notice before the list as it was. A member who arrives gets the stored
// list the same way and is online to its watchers from then on; one who leaves is offline.
class BuddyRequests : public FeatureHandler {
  public:
    BuddyRequests(BuddyStore& store, PresenceService& presence, const ContactLimits& limits)
        : store_(store), presence_(presence), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
    void memberArrived(Member& member) override;
    void memberLeft(Member& member) override;
    void memberActive(Member& member) override;

  private:
    void edit(Member& member, const std::string& payload);
    void add(Member& member, const std::string& payload);
    // Sets the account id and spelling of every buddy whose name belongs to an account.
    void lookUp(const Member& member, std::vector<Buddy>& buddies);
    // Drops the names that belong to no account, telling the member of the first one.
    void leaveOutUnknown(Member& member, std::vector<Buddy>& buddies);
    void save(Member& member, std::vector<Buddy> buddies);
    void refuse(Member& member, const std::string& problem);

    BuddyStore& store_;
    PresenceService& presence_;
    const ContactLimits& limits_;
};

}  // namespace tavren::server
