#include "server/contacts/BuddyRequests.h"

#include <algorithm>
#include <unordered_map>

#include "core/protocol/Catalogue.h"
#include "server/base/AsciiText.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/contacts/BuddyList.h"
#include "server/contacts/BuddyStore.h"
#include "server/contacts/PresenceService.h"
#include "server/rooms/ChannelRules.h"
#include "server/session/Member.h"
#include "server/storage/StorageError.h"

namespace tavren::server {

namespace in = protocol::client_to_server;

std::vector<protocol::CodePair> BuddyRequests::requests() const {
    return {in::kEditBuddyList, in::kAddBuddy};
}

asio::awaitable<void> BuddyRequests::handle(Member& member, protocol::CodePair code,
                                            std::string payload) {
    if (code == in::kEditBuddyList) {
        edit(member, payload);
    } else {
        add(member, payload);
    }
    co_return;
}

void BuddyRequests::memberArrived(Member& member) {
    std::vector<Buddy> buddies;
    try {
        buddies = store_.listOf(member.account.id);
    } catch (const StorageError& error) {
        // The member is online all the same. No list is sent: an empty one would make the
        // client empty its tree, and its next edit would overwrite the stored list.
        Log::warn("cannot read the buddy list of " + member.name() + ": " + error.what());
        presence_.arrive(member, {}, false);
        return;
    }
    presence_.arrive(member, std::move(buddies));
}

void BuddyRequests::memberLeft(Member& member) {
    presence_.leave(member);
}

void BuddyRequests::memberActive(Member& member) {
    presence_.active(member);
}

void BuddyRequests::edit(Member& member, const std::string& payload) {
    BuddyList::Parsed parsed =
        BuddyList::parse(payload, {limits_.maxBuddies, limits_.maxBuddyFolders});
    if (!parsed.problem.empty()) {
        refuse(member, parsed.problem);
        return;
    }
    lookUp(member, parsed.buddies);
    leaveOutUnknown(member, parsed.buddies);
    save(member, std::move(parsed.buddies));
    presence_.sendList(member);
}

void BuddyRequests::add(Member& member, const std::string& payload) {
    const std::string name(AsciiText::trimBlanks(payload));
    if (const std::string problem = BuddyList::checkName(name); !problem.empty()) {
        refuse(member, problem);
        return;
    }
    std::vector<Buddy> buddies = presence_.buddiesOf(member);
    if (BuddyList::contains(buddies, name)) {
        presence_.sendList(member);
        return;
    }
    if (buddies.size() >= limits_.maxBuddies) {
        refuse(member, BuddyList::tooManyBuddies(limits_.maxBuddies));
        return;
    }
    Buddy added{std::string(BuddyList::kDefaultFolder), name, 0};
    const bool newFolder = std::none_of(buddies.begin(), buddies.end(), [&](const Buddy& buddy) {
        return buddy.folder == added.folder;
    });
    if (newFolder && BuddyList::folderCount(buddies) >= limits_.maxBuddyFolders) {
        refuse(member, BuddyList::tooManyFolders(limits_.maxBuddyFolders));
        return;
    }
    std::vector<Buddy> lookedUp{std::move(added)};
    store_.lookUp(lookedUp);
    leaveOutUnknown(member, lookedUp);
    if (!lookedUp.empty()) {
        BuddyList::insert(buddies, std::move(lookedUp.front()));
        save(member, std::move(buddies));
    }
    presence_.sendList(member);
}

void BuddyRequests::lookUp(const Member& member, std::vector<Buddy>& buddies) {
    // The client sends its whole list after every change, so most names are on the list already
    // and known to belong to an account: only the others are looked up.
    std::unordered_map<std::string, const Buddy*> known;
    for (const Buddy& buddy : presence_.buddiesOf(member)) {
        known.emplace(AsciiText::lower(buddy.name), &buddy);
    }
    std::vector<Buddy> unknown;
    std::vector<std::size_t> unknownAt;
    for (std::size_t i = 0; i < buddies.size(); ++i) {
        if (const auto found = known.find(AsciiText::lower(buddies[i].name));
            found != known.end()) {
            buddies[i].name = found->second->name;
            buddies[i].accountId = found->second->accountId;
        } else {
            unknown.push_back(buddies[i]);
            unknownAt.push_back(i);
        }
    }
    if (unknown.empty()) {
        return;
    }
    store_.lookUp(unknown);
    for (std::size_t i = 0; i < unknown.size(); ++i) {
        buddies[unknownAt[i]] = std::move(unknown[i]);
    }
}

void BuddyRequests::leaveOutUnknown(Member& member, std::vector<Buddy>& buddies) {
    const auto unknown = std::find_if(buddies.begin(), buddies.end(),
                                      [](const Buddy& buddy) { return buddy.accountId == 0; });
    if (unknown == buddies.end()) {
        return;
    }
    member.link.send(replies::kNotice, "There is no member called " +
                                           ChannelRules::echo(unknown->name) +
                                           "; it was left out of your buddy list.");
    std::erase_if(buddies, [](const Buddy& buddy) { return buddy.accountId == 0; });
}

void BuddyRequests::save(Member& member, std::vector<Buddy> buddies) {
    if (buddies == presence_.buddiesOf(member)) {
        return;  // the client sends its whole list after every change, often an unchanged one
    }
    store_.replace(member.account.id, buddies);
    Log::info(member.name() + " saved a buddy list of " + std::to_string(buddies.size()) +
              " buddies");
    presence_.replaceBuddies(member, std::move(buddies));
}

void BuddyRequests::refuse(Member& member, const std::string& problem) {
    member.link.send(replies::kNotice, "Your buddy list was not saved: " + problem);
    presence_.sendList(member);
}

}  // namespace tavren::server
