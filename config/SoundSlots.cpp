#include "config/SoundSlots.h"

#include <array>

namespace tavren {

namespace {

struct SlotInfo {
    const char* fileName;
    const char* label;
};

constexpr std::array<SlotInfo, SoundSlots::Count> slotTable{{
    {"buddy_online.wav", "Buddy Online:"},
    {"buddy_offline.wav", "Buddy Offline:"},
    {"channel_message.wav", "Channel Message:"},
    {"channel_chanhost.wav", "ChanHost:"},
    {"private_message_new.wav", "PM (New):"},
    {"private_message.wav", "PM (Visible):"},
    {"server_login.wav", "Tavren Online:"},
    {"server_logoff.wav", "Tavren Offline:"},
    {"error_message.wav", "Error Message:"},
    {"them_deal.wav", "Holdem Cards:"},
    {"them_bet.wav", "Holdem Bet/Raise:"},
    {"them_check.wav", "Holdem Check/Call"},
    {"them_fold.wav", "Holdem Fold:"},
    {"them_turn.wav", "Holdem Your Turn:"},
    {"them_chat.wav", "Holdem Chat:"},
}};

}  // namespace

QString SoundSlots::fileName(int slot) {
    return isValid(slot) ? QString::fromLatin1(slotTable[std::size_t(slot)].fileName) : QString();
}

QString SoundSlots::label(int slot) {
    return isValid(slot) ? QString::fromLatin1(slotTable[std::size_t(slot)].label) : QString();
}

QString SoundSlots::defaultPath(const QString& dataRoot, int slot) {
    return dataRoot + QStringLiteral("/sounds/") + fileName(slot);
}

}  // namespace tavren
