#pragma once

#include <QString>

namespace tavren {

// What a line typed into a channel asks for. A few slash commands are the client's own;
// everything else, other slash commands included, goes to the server as a channel line, which
// the server interprets. The tests run in a fixed order and the first match decides; the
// comparison ignores letter case, the argument keeps the capitals as typed.
struct RoomInput {
    enum class Kind {
        Nothing,       // empty input: nothing is sent, the box is emptied
        KeepTyping,    // "/weather " with a rest that is not a postal code: the box keeps it
        Join,          // "/join " channel
        Invite,        // "/invite " user
        Weather,       // "/weather " postal code
        Radio,         // "/radio"
        EditProfile,   // "/editprofile"
        News,          // "/news"
        Config,        // "/config"
        FindChannels,  // "/findchan"
        Format,        // "/format"
        About,         // "/about"
        Clear,         // exactly "/clear"
        Exit,          // exactly "/exit"
        Leave,         // exactly "/leave"
        ChannelLine,   // everything else, sent as typed
    };

    Kind kind = Kind::Nothing;
    QString argument;  // the channel, user or postal code; the whole input for ChannelLine

    static RoomInput classify(const QString& input);
};

}  // namespace tavren
