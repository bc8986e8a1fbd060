#pragma once

#include <QString>

namespace tavren {

// The fifteen event-sound slots: which file each plays by default and how the settings window
// labels it. A slot holds a file path or `disabledText()`.
class SoundSlots {
  public:
    enum Slot {
        BuddyOnline = 0,
        BuddyOffline,
        ChannelMessage,
        ChannelHost,
        PrivateMessageNew,
        PrivateMessage,
        ServerLogin,
        ServerLogoff,
        ErrorMessage,
        HoldemDeal,
        HoldemBet,
        HoldemCheck,
        HoldemFold,
        HoldemYourTurn,
        HoldemChat,
    };
    static constexpr int Count = 15;

    static bool isValid(int slot) { return slot >= 0 && slot < Count; }
    // "buddy_online.wav" etc.; empty for an invalid slot.
    static QString fileName(int slot);
    static QString label(int slot);
    // "<data root>/sounds/<file name>".
    static QString defaultPath(const QString& dataRoot, int slot);
    // The store key of a slot: "sound_" followed by the slot number.
    static QString key(int slot) { return QStringLiteral("sound_") + QString::number(slot); }

    static QString disabledText() { return QStringLiteral("x-Disabled-x"); }
    static QString chooseFileText() { return QStringLiteral("*Choose File*"); }
};

}  // namespace tavren
