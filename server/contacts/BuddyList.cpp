#include "server/contacts/BuddyList.h"

#include <algorithm>
#include <unordered_set>

#include "server/accounts/AccountRules.h"
#include "server/base/AsciiText.h"

namespace tavren::server {

namespace {

constexpr char kEntryEnd = ':';
constexpr char kFolderEnd = '.';

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    // Below 32 (U+0001 and U+0002 among them), 127, and the bytes Windows-1252 leaves undefined,
    // which come out as control characters.
    return byte < 32 || byte == 127 || byte == 0x81 || byte == 0x8D || byte == 0x8F ||
           byte == 0x90 || byte == 0x9D;
}

}  // namespace

BuddyList::Parsed BuddyList::parse(std::string_view text, const Limits& limits) {
    Parsed parsed;
    std::unordered_set<std::string> seen;  // lower-case names
    std::vector<std::string_view> folders;
    std::size_t entries = 0;
    while (!text.empty()) {
        const std::size_t end = text.find(kEntryEnd);
        const std::string_view entry = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (entry.empty()) {
            continue;  // the empty list ":", or "::" between entries
        }
        if (++entries > limits.maxBuddies) {
            return {{}, tooManyBuddies(limits.maxBuddies)};
        }
        // An entry without a folder goes where the client files a buddy without one.
        const std::size_t dot = entry.find(kFolderEnd);
        const std::string_view folder =
            dot == std::string_view::npos ? kDefaultFolder : entry.substr(0, dot);
        const std::string_view name = dot == std::string_view::npos ? entry : entry.substr(dot + 1);
        for (std::string problem : {checkFolder(folder), checkName(name)}) {
            if (!problem.empty()) {
                return {{}, std::move(problem)};
            }
        }
        if (!seen.insert(AsciiText::lower(name)).second) {
            continue;  // kept in its first folder
        }
        if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
            if (folders.size() >= limits.maxFolders) {
                return {{}, tooManyFolders(limits.maxFolders)};
            }
            folders.push_back(folder);
        }
        parsed.buddies.push_back({std::string(folder), std::string(name), 0});
    }
    return parsed;
}

std::string BuddyList::serialise(const std::vector<Buddy>& buddies) {
    if (buddies.empty()) {
        return std::string(1, kEntryEnd);
    }
    std::string text;
    for (const Buddy& buddy : buddies) {
        text += buddy.folder;
        text += kFolderEnd;
        text += buddy.name;
        text += kEntryEnd;
    }
    return text;
}

std::string BuddyList::checkFolder(std::string_view folder) {
    const bool goodChars = std::none_of(folder.begin(), folder.end(), [](char c) {
        return isControl(c) || c == ':' || c == ';' || c == kFolderEnd;
    });
    if (!folder.empty() && folder.size() <= kMaxFolderLength && goodChars) {
        return {};
    }
    return "a folder name has 1 to 32 characters and no ':', ';', '.' or control characters.";
}

std::string BuddyList::checkName(std::string_view name) {
    if (AccountRules::checkName(name).empty()) {
        return {};
    }
    return "a buddy name has 2 to 20 letters, digits, '_', '-' or '.', and starts with a letter.";
}

std::string BuddyList::tooManyBuddies(std::size_t maxBuddies) {
    return "a buddy list holds at most " + std::to_string(maxBuddies) + " buddies.";
}

std::string BuddyList::tooManyFolders(std::size_t maxFolders) {
    return "a buddy list holds at most " + std::to_string(maxFolders) + " folders.";
}

bool BuddyList::contains(const std::vector<Buddy>& buddies, std::string_view name) {
    return std::any_of(buddies.begin(), buddies.end(), [&](const Buddy& buddy) {
        return AsciiText::equalNoCase(buddy.name, name);
    });
}

std::size_t BuddyList::folderCount(const std::vector<Buddy>& buddies) {
    std::vector<std::string_view> folders;
    for (const Buddy& buddy : buddies) {
        if (std::find(folders.begin(), folders.end(), buddy.folder) == folders.end()) {
            folders.push_back(buddy.folder);
        }
    }
    return folders.size();
}

void BuddyList::insert(std::vector<Buddy>& buddies, Buddy buddy) {
    const auto last = std::find_if(buddies.rbegin(), buddies.rend(), [&](const Buddy& other) {
        return other.folder == buddy.folder;
    });
    buddies.insert(last == buddies.rend() ? buddies.end() : last.base(), std::move(buddy));
}

}  // namespace tavren::server
