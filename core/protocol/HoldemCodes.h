#pragma once

#include "core/protocol/CodePair.h"

// The server's Hold'em messages, (7, 1) .. (7, 11) of the group the catalogue leaves to the
// tables and the lobby; the client's requests (7, 1) .. (7, 9) are in the catalogue itself.
// docs/protocol.md, "Hold'em tables", gives every payload.
namespace tavren::protocol::holdem_to_client {
inline constexpr CodePair kTableList{7, 1};
inline constexpr CodePair kSeated{7, 2};
inline constexpr CodePair kLeftTable{7, 3};
inline constexpr CodePair kTableState{7, 4};
inline constexpr CodePair kTableChat{7, 5};
inline constexpr CodePair kTableEvent{7, 6};
inline constexpr CodePair kYourTurn{7, 7};
inline constexpr CodePair kTableInvitation{7, 9};
inline constexpr CodePair kTableNotice{7, 10};
inline constexpr CodePair kTablePassword{7, 11};
}  // namespace tavren::protocol::holdem_to_client
