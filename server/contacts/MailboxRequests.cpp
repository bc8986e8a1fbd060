#include "server/contacts/MailboxRequests.h"

#include <chrono>
#include <optional>

#include "core/protocol/Catalogue.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/AsciiText.h"
#include "server/contacts/MailStore.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/ChannelRules.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

namespace {

// A delete names at most this many rows; more than an inbox can hold, so that a client whose
// list is out of date still gets every row it shows removed.
constexpr std::size_t kMostDeletedAtOnce = 1000;

bool hasControl(std::string_view text, bool lineBreaksAllowed) {
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (lineBreaksAllowed && (c == '\r' || c == '\n' || c == '\t')) {
            continue;
        }
        if (byte < 32 || byte == 127) {
            return true;
        }
    }
    return false;
}

std::string joined(const std::vector<std::string>& names, std::string_view separator) {
    std::string text;
    for (const std::string& name : names) {
        if (!text.empty()) {
            text += separator;
        }
        text += name;
    }
    return text;
}

// The same mail to several members: kept in one transaction.
struct Delivery {
    StoredMail mail;
    std::vector<std::int64_t> owners;
    std::vector<std::string> names;
};

}  // namespace

std::vector<protocol::CodePair> MailboxRequests::requests() const {
    return {in::kMailReceive, in::kSendMail, in::kDeleteMail};
}

asio::awaitable<void> MailboxRequests::handle(Member& member, protocol::CodePair code,
                                              std::string payload) {
    if (code == in::kMailReceive) {
        member.link.send(out::kMailList, MailRecords::inbox(mail_.inboxOf(member.account.id)));
    } else if (code == in::kSendMail) {
        send(member, payload);
    } else {
        remove(member, payload);
    }
    co_return;
}

void MailboxRequests::send(Member& member, const std::string& payload) {
    // One record per addressee; the same member named twice gets the mail once.
    std::vector<MailRecords::Outgoing> mails;
    for (MailRecords::Outgoing& mail : MailRecords::parseSent(payload)) {
        mail.addressee = std::string(AsciiText::trimBlanks(mail.addressee));
        if (mail.addressee.empty()) {
            continue;
        }
        bool named = false;
        for (const MailRecords::Outgoing& earlier : mails) {
            named = named || AsciiText::equalNoCase(earlier.addressee, mail.addressee);
        }
        if (!named) {
            mails.push_back(std::move(mail));
        }
        // One more than allowed is enough to refuse it; the rest is not even looked at.
        if (mails.size() > limits_.maxAddressees) {
            break;
        }
    }
    if (const std::string reason = refusal(mails); !reason.empty()) {
        refuse(member, "Your message was not sent: " + reason);
        return;
    }
    if (!member.lines.take(LineBucket::Clock::now())) {
        refuse(member, "You are sending messages too fast. Wait a moment, then try again.");
        return;
    }

    const std::int64_t now = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::system_clock::now().time_since_epoch())
                                 .count();
    std::vector<std::string> unknown;
    std::vector<std::string> full;
    std::vector<Delivery> deliveries;
    for (const MailRecords::Outgoing& outgoing : mails) {
        std::optional<Account> addressee;
        if (AccountRules::checkName(outgoing.addressee).empty()) {
            addressee = accounts_.findByName(outgoing.addressee);
        }
        if (!addressee) {
            unknown.push_back(ChannelRules::echo(outgoing.addressee));
            continue;
        }
        if (mail_.countOf(addressee->id) >= limits_.maxKept) {
            full.push_back(addressee->name);
            continue;
        }
        if (deliveries.empty() || deliveries.back().mail.body != outgoing.body ||
            deliveries.back().mail.subject != outgoing.subject) {
            deliveries.push_back(
                {StoredMail{0, member.name(), outgoing.subject, outgoing.body, now}, {}, {}});
        }
        deliveries.back().owners.push_back(addressee->id);
        deliveries.back().names.push_back(addressee->name);
    }

    std::vector<std::string> delivered;
    for (const Delivery& delivery : deliveries) {
        mail_.deliver(delivery.mail, delivery.owners);
        delivered.insert(delivered.end(), delivery.names.begin(), delivery.names.end());
    }
    if (!delivered.empty()) {
        member.link.send(out::kMailSent, joined(delivered, ";"));
    }
    // Addressees who are online ask for their inbox again when told; the others find the mail
    // at their next login.
    hub_.sendTo(delivered, out::kNewMail, member.name());
    std::vector<std::string> problems;
    if (!unknown.empty()) {
        problems.push_back("Your message was not delivered to " + joined(unknown, ", ") +
                           ": no such member.");
    }
    if (!full.empty()) {
        problems.push_back("Your message was not delivered to " + joined(full, ", ") +
                           ": the inbox is full (it keeps " + std::to_string(limits_.maxKept) +
                           " messages).");
    }
    if (!problems.empty()) {
        refuse(member, joined(problems, " "));
    }
}

std::string MailboxRequests::refusal(const std::vector<MailRecords::Outgoing>& mails) const {
    if (mails.empty()) {
        return "it has no addressee.";
    }
    if (mails.size() > limits_.maxAddressees) {
        return "a message goes to at most " + std::to_string(limits_.maxAddressees) + " members.";
    }
    for (const MailRecords::Outgoing& mail : mails) {
        if (mail.body.empty() && mail.subject.empty()) {
            return "it is empty.";
        }
        if (mail.body.size() > limits_.maxBody) {
            return "a message holds at most " + std::to_string(limits_.maxBody) + " characters.";
        }
        if (mail.subject.size() > limits_.maxSubject) {
            return "a subject holds at most " + std::to_string(limits_.maxSubject) + " characters.";
        }
        if (hasControl(mail.subject, false)) {
            return "a subject holds no control characters.";
        }
        if (hasControl(mail.body, true)) {
            return "a message holds no control characters but line breaks.";
        }
    }
    return {};
}

void MailboxRequests::remove(Member& member, const std::string& payload) {
    const std::vector<std::int64_t> ids = MailRecords::parseDeleted(payload, kMostDeletedAtOnce);
    if (!ids.empty()) {
        mail_.remove(member.account.id, ids);
    }
    member.link.send(out::kMailContents, std::to_string(mail_.countOf(member.account.id)) + ";" +
                                             std::to_string(limits_.maxKept));
}

void MailboxRequests::refuse(Member& member, const std::string& reason) {
    member.link.send(out::kMailError, reason);
}

}  // namespace tavren::server
