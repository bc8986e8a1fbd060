#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "server/contacts/Mail.h"

namespace tavren::server {

// Mail on the wire: records of fields separated by U+0001, each record ended by U+0002.
//
//   sent   (1, 12)  addressee, body, subject            (one record per addressee)
//   inbox  (1, 11)  sender, subject, sent time, body, id (newest first)
//   delete (1, 13)  the inbox records the member chose, as they came; only the id is read
class MailRecords {
  public:
    struct Outgoing {
        std::string addressee;
        std::string body;
        std::string subject;
    };

    static std::vector<Outgoing> parseSent(std::string_view payload);
    static std::string inbox(const std::vector<StoredMail>& mails);
    // The ids named by a delete request, at most `limit` of them; records whose id field is
    // not a positive decimal number are skipped.
    static std::vector<std::int64_t> parseDeleted(std::string_view payload, std::size_t limit);
    // "month/day/year - hour/minute" in UTC, unpadded, on a 24-hour clock: "3/7/2026 - 14/5".
    // The client splits it at " - " and "/" and shows it in its own time zone.
    static std::string sentTime(std::int64_t unixSeconds);
};

}  // namespace tavren::server
