#include "rooms/RoomInput.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavren {

namespace {

bool isPostalCode(const QString& text) {
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
}

}  // namespace

RoomInput RoomInput::classify(const QString& input) {
    using Kind = RoomInput::Kind;
    if (input.isEmpty()) {
        return {Kind::Nothing, {}};
    }
    const QString lower = input.toLower();
    if (lower.startsWith(QLatin1String("/join "))) {
        return {Kind::Join, input.mid(6)};
    }
    if (lower.startsWith(QLatin1String("/invite ")) && lower.contains(QLatin1Char(' '))) {
        return {Kind::Invite, input.mid(8)};
    }
    if (lower.startsWith(QLatin1String("/weather "))) {
        const QString code = input.mid(9);
        return isPostalCode(code) ? RoomInput{Kind::Weather, code}
                                  : RoomInput{Kind::KeepTyping, {}};
    }
    static const std::array<std::pair<const char*, Kind>, 7> kPrefixes = {{
        {"/radio", Kind::Radio},
        {"/editprofile", Kind::EditProfile},
        {"/news", Kind::News},
        {"/config", Kind::Config},
        {"/findchan", Kind::FindChannels},
        {"/format", Kind::Format},
        {"/about", Kind::About},
    }};
    for (const auto& [prefix, kind] : kPrefixes) {
        if (lower.startsWith(QLatin1String(prefix))) {
            return {kind, {}};
        }
    }
    if (lower == QLatin1String("/clear")) {
        return {Kind::Clear, {}};
    }
    if (lower == QLatin1String("/exit")) {
        return {Kind::Exit, {}};
    }
    if (lower == QLatin1String("/leave")) {
        return {Kind::Leave, {}};
    }
    return {Kind::ChannelLine, input};
}

}  // namespace tavren
