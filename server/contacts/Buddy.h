#pragma once

#include <cstdint>
#include <string>

namespace tavren::server {

// One entry of a member's buddy list: the folder it is filed under and the member it names.
struct Buddy {
    std::string folder;
    std::string name;  // the account's own spelling once stored; as sent while being checked
    std::int64_t accountId = 0;  // 0 until the name has been looked up

    friend bool operator==(const Buddy&, const Buddy&) = default;
};

}  // namespace tavren::server
