#pragma once

#include <cstdint>
#include <string>

namespace tavren::server {

// One mail as an inbox keeps it. The sender is kept by name, as it was spelled when the mail was
// written, so a mail reads the same for as long as it is kept.
struct StoredMail {
    std::int64_t id = 0;  // unique in the whole store; names the mail in a delete
    std::string sender;
    std::string subject;
    std::string body;         // the sender's markup, line breaks written as "<br>"
    std::int64_t sentAt = 0;  // seconds since the Unix epoch
};

}  // namespace tavren::server
