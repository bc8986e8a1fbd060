#pragma once

#include <QString>

#include "core/protocol/CodePair.h"

namespace tavren {

// One message from the server as handlers see it: the code pair and the payload already
// turned into text.
struct ServerMessage {
    protocol::CodePair code;
    QString payload;
};

}  // namespace tavren
