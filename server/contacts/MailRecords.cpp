#include "server/contacts/MailRecords.h"

#include <charconv>
#include <ctime>

#include "core/protocol/Fields.h"

namespace tavren::server {

namespace {
// Field positions of an inbox record; a delete names the mail by the last one.
constexpr std::size_t kIdField = 4;
}  // namespace

std::vector<MailRecords::Outgoing> MailRecords::parseSent(std::string_view payload) {
    std::vector<Outgoing> mails;
    for (const auto& record : protocol::SplitRecords(payload, 3)) {
        mails.push_back({std::string(protocol::FieldAt(record, 0)),
                         std::string(protocol::FieldAt(record, 1)),
                         std::string(protocol::FieldAt(record, 2))});
    }
    return mails;
}

std::string MailRecords::inbox(const std::vector<StoredMail>& mails) {
    std::vector<std::vector<std::string>> records;
    records.reserve(mails.size());
    for (const StoredMail& mail : mails) {
        records.push_back(
            {mail.sender, mail.subject, sentTime(mail.sentAt), mail.body, std::to_string(mail.id)});
    }
    return protocol::JoinRecords(records);
}

std::vector<std::int64_t> MailRecords::parseDeleted(std::string_view payload, std::size_t limit) {
    std::vector<std::int64_t> ids;
    for (const auto& record : protocol::SplitRecords(payload)) {
        if (ids.size() >= limit) {
            break;
        }
        const std::string_view text = protocol::FieldAt(record, kIdField);
        std::int64_t id = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
        if (error == std::errc{} && end == text.data() + text.size() && id > 0) {
            ids.push_back(id);
        }
    }
    return ids;
}

std::string MailRecords::sentTime(std::int64_t unixSeconds) {
    const auto when = static_cast<std::time_t>(unixSeconds);
    std::tm utc{};
    gmtime_r(&when, &utc);
    return std::to_string(utc.tm_mon + 1) + "/" + std::to_string(utc.tm_mday) + "/" +
           std::to_string(utc.tm_year + 1900) + " - " + std::to_string(utc.tm_hour) + "/" +
           std::to_string(utc.tm_min);
}

}  // namespace tavren::server
