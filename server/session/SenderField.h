#pragma once

#include <string>

namespace tavren::server {

struct Member;

// Who sent a line, as channel lines and private messages carry it: the member's name, then the
// member's nickname format after U+0001 when there is one. A format saved before ":" was refused
// would split the payload in the wrong place, so it is left out rather than sent.
std::string SenderField(const Member& sender);

}  // namespace tavren::server
