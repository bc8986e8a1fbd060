#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "server/contacts/Buddy.h"

namespace tavren::server {

// Who watches whom among the members online: for every member, the online members who have that
// member on their buddy list, and the folder each filed it under. It is kept up to date as
// members arrive, leave and change their lists, so that a presence change finds its watchers
// without looking at anybody else. Names are compared without regard to case.
class WatcherIndex {
  public:
    // The watchers who filed a member under one folder: they all get the same record.
    struct Audience {
        std::string folder;
        std::vector<std::string> watchers;
    };

    void watch(std::string_view watcher, const std::vector<Buddy>& buddies);
    void unwatch(std::string_view watcher, const std::vector<Buddy>& buddies);
    // The watchers of `name`, one audience per folder.
    std::vector<Audience> audienceOf(std::string_view name) const;
    std::size_t watcherCount(std::string_view name) const;

  private:
    struct Watch {
        std::string watcher;  // as spelled
        std::string folder;
    };
    // Lower-case buddy name -> lower-case watcher name -> how that watcher filed the buddy.
    std::unordered_map<std::string, std::unordered_map<std::string, Watch>> watchers_;
};

}  // namespace tavren::server
