#include "server/contacts/WatcherIndex.h"

#include "server/base/AsciiText.h"

namespace tavren::server {

void WatcherIndex::watch(std::string_view watcher, const std::vector<Buddy>& buddies) {
    const std::string watcherKey = AsciiText::lower(watcher);
    for (const Buddy& buddy : buddies) {
        watchers_[AsciiText::lower(buddy.name)][watcherKey] =
            Watch{std::string(watcher), buddy.folder};
    }
}

void WatcherIndex::unwatch(std::string_view watcher, const std::vector<Buddy>& buddies) {
    const std::string watcherKey = AsciiText::lower(watcher);
    for (const Buddy& buddy : buddies) {
        const auto watched = watchers_.find(AsciiText::lower(buddy.name));
        if (watched == watchers_.end()) {
            continue;
        }
        watched->second.erase(watcherKey);
        if (watched->second.empty()) {
            watchers_.erase(watched);
        }
    }
}

std::vector<WatcherIndex::Audience> WatcherIndex::audienceOf(std::string_view name) const {
    std::vector<Audience> audiences;
    const auto watched = watchers_.find(AsciiText::lower(name));
    if (watched == watchers_.end()) {
        return audiences;
    }
    std::unordered_map<std::string_view, std::size_t> byFolder;
    for (const auto& [key, watch] : watched->second) {
        const auto [slot, added] = byFolder.try_emplace(watch.folder, audiences.size());
        if (added) {
            audiences.push_back({watch.folder, {}});
        }
        audiences[slot->second].watchers.push_back(watch.watcher);
    }
    return audiences;
}

std::size_t WatcherIndex::watcherCount(std::string_view name) const {
    const auto watched = watchers_.find(AsciiText::lower(name));
    return watched == watchers_.end() ? 0 : watched->second.size();
}

}  // namespace tavren::server
