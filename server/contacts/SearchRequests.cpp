#include "server/contacts/SearchRequests.h"

#include <ctime>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/base/AsciiText.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/RoomService.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace {

constexpr protocol::CodePair kWholeResult{protocol::kSearchGroup, 1};
constexpr protocol::CodePair kCutResult{protocol::kSearchGroup, 2};

// Searching a page for a letter or two would match nearly every page.
constexpr std::size_t kShortestProfileText = 3;

std::string dayOf(std::int64_t unixSeconds) {
    const auto when = static_cast<std::time_t>(unixSeconds);
    std::tm utc{};
    gmtime_r(&when, &utc);
    char text[16];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d", &utc);
    return std::string(text, length);
}

}  // namespace

std::vector<protocol::CodePair> SearchRequests::requests() const {
    return {protocol::client_to_server::kMemberSearch};
}

asio::awaitable<void> SearchRequests::handle(Member& member, protocol::CodePair /*code*/,
                                             std::string payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kRecordFieldSeparator, 2);
    const std::string_view text = AsciiText::trimBlanks(protocol::FieldAt(fields, 1));
    // One more than is sent tells whether the answer had to be cut.
    std::vector<MemberCard> cards = find(AsciiText::trimBlanks(protocol::FieldAt(fields, 0)), text,
                                         limits_.maxSearchResults + 1);
    const bool cut = cards.size() > limits_.maxSearchResults;
    if (cut) {
        cards.resize(limits_.maxSearchResults);
    }
    std::vector<std::vector<std::string>> records;
    records.reserve(cards.size());
    for (const MemberCard& card : cards) {
        records.push_back(record(card));
    }
    member.link.send(cut ? kCutResult : kWholeResult, protocol::JoinRecords(records));
    co_return;
}

std::vector<MemberCard> SearchRequests::find(std::string_view field, std::string_view text,
                                             std::size_t limit) {
    if (text.empty()) {
        return {};
    }
    if (AsciiText::equalNoCase(field, "Name")) {
        return directory_.byNamePrefix(text, limit);
    }
    if (AsciiText::equalNoCase(field, "Email")) {
        return directory_.byEmail(text, limit);
    }
    if (AsciiText::equalNoCase(field, "Profile") && text.size() >= kShortestProfileText) {
        return directory_.byProfileText(text, limit);
    }
    return {};
}

std::vector<std::string> SearchRequests::record(const MemberCard& card) const {
    const bool online = hub_.isOnline(card.name);
    std::string channel;
    if (online) {
        if (const auto channels = rooms_.channelsOf(card.name); !channels.empty()) {
            channel = channels.front();
        }
    }
    return {card.name,
            online ? "Online" : "Offline",
            channel,
            dayOf(card.createdAt),
            card.hasProfile ? "Yes" : "No",
            card.link};
}

}  // namespace tavren::server
