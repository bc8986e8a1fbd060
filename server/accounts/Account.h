#pragma once

#include <cstdint>
#include <string>

namespace tavren::server {

// One member account as the store keeps it.
struct Account {
    std::int64_t id = 0;
    std::string name;  // spelled as at sign-up; compared without regard to case
    std::string passwordHash;
    std::string email;
    int staffLevel = 0;  // 0 = member, 1..3 = the staff ranks shown as "@¹", "@²", "@³"
    std::int64_t score = 0;
    std::int64_t createdAt = 0;  // seconds since the Unix epoch
    std::string nicknameFormat;  // the client's own format text, empty until it sets one
};

}  // namespace tavren::server
