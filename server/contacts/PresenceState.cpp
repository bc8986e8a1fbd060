#include "server/contacts/PresenceState.h"

#include <algorithm>

#include "core/protocol/Fields.h"

namespace tavren::server {

std::string PresenceState::recordFor(std::string_view folder, std::string_view name) const {
    using protocol::TruthText;
    std::string record(folder);
    record += '.';
    record += name;
    for (const bool flag : {online, online && away, online && !channel.empty(), online && idle}) {
        record += ';';
        record += TruthText(flag);
    }
    record += ';';
    if (online) {
        record += channel;
    }
    record += ';';
    if (online && away) {
        std::string text = awayText;
        std::replace(text.begin(), text.end(), ':', '.');
        record += text;
    }
    return record;
}

}  // namespace tavren::server
