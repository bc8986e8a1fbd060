#pragma once

namespace tavren {

class SettingsStore;

// How the buddy list behaves, chosen in "Buddy List Setup..": kept in the settings store's
// "General" section as "0"/"1" flags ("buddyshowoffline", "buddysounds", "buddynotify"), each
// on until the member switches it off.
struct BuddyListOptions {
    // Offline buddies stay in the tree, greyed; off, only buddies online are listed (the
    // folder captions still count everyone).
    bool showOffline = true;
    // The buddy sounds (a buddy comes online, goes offline); the main sound switch still rules.
    bool playSounds = true;
    // A tray notice when a buddy comes online.
    bool notifyOnline = true;

    static BuddyListOptions load(const SettingsStore& store);
    void save(SettingsStore& store) const;

    bool operator==(const BuddyListOptions& other) const = default;
};

}  // namespace tavren
