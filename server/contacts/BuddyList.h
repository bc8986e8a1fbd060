#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "server/contacts/Buddy.h"

namespace tavren::server {

// A member's buddy list as it travels: for every buddy, folder "." name ":", in the order of the
// client's tree ("Buddies.anna:Work.bob:"). The server sends the empty list as ":" alone, so
// that a list is always told apart from a presence record, which holds no ":".
//
// The rules, each worded to follow "Your buddy list was not saved: ": at most `maxBuddies`
// entries and `maxFolders` folders; a folder name is 1..32 printable characters without ":",
// ";" or "." (it is split off at the first "."); a buddy name follows the user-name rules. The
// same buddy twice (without regard to case) is kept once, in its first folder.
class BuddyList {
  public:
    static constexpr std::size_t kMaxFolderLength = 32;
    static constexpr std::string_view kDefaultFolder = "Buddies";

    struct Limits {
        std::size_t maxBuddies = 200;
        std::size_t maxFolders = 30;
    };

    // A list as a client sent it: the buddies in order, or what is wrong with it. The work is
    // bounded by the limits, not by the text: a megabyte of entries stops at the first one too
    // many.
    struct Parsed {
        std::vector<Buddy> buddies;
        std::string problem;  // empty when the list may be stored
    };
    static Parsed parse(std::string_view text, const Limits& limits);
    static std::string serialise(const std::vector<Buddy>& buddies);

    // Empty when acceptable, else the rule that was broken.
    static std::string checkFolder(std::string_view folder);
    static std::string checkName(std::string_view name);
    static std::string tooManyBuddies(std::size_t maxBuddies);
    static std::string tooManyFolders(std::size_t maxFolders);

    static bool contains(const std::vector<Buddy>& buddies, std::string_view name);
    static std::size_t folderCount(const std::vector<Buddy>& buddies);
    // Files `buddy` under its folder: after the last buddy already there, so that folders stay
    // together, or at the end when the folder is new.
    static void insert(std::vector<Buddy>& buddies, Buddy buddy);
};

}  // namespace tavren::server
