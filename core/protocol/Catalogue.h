#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/protocol/CodePair.h"

// Every code pair in use, in both directions. The same pair means different things depending on
// who sends it ((2, 15) is the away menu from the server but direct-connection control from the
// client), so each direction has its own namespace. Call sites use these names, never bare numbers.
namespace tavren::protocol {

// Code groups (cmd1). Group 5 is unused. Groups 3, 4 and 6 from the server have a single handler
// each that reads the payload, whatever cmd2 says.
inline constexpr std::int16_t kSessionGroup = 1;      // session, account and mail
inline constexpr std::int16_t kRoomGroup = 2;         // rooms, users, buddies, private messages
inline constexpr std::int16_t kLoginResultGroup = 3;  // login and sign-up results
inline constexpr std::int16_t kNoticeGroup = 4;       // server notices ("Attention!")
inline constexpr std::int16_t kSearchGroup = 6;       // member search
inline constexpr std::int16_t kHoldemGroup = 7;       // Texas Hold'em tables and lobby
// The server's Hold'em messages are (7, 1) .. (7, kLastHoldemServerCode).
inline constexpr std::int16_t kLastHoldemServerCode = 16;

namespace server_to_client {
inline constexpr CodePair kSessionSettings{1, 1};  // nickname, default room, after login
inline constexpr CodePair kClearPane{1, 2};        // clear a browser pane
inline constexpr CodePair kOnlineCount{1, 3};      // "Online: " in the status bar
inline constexpr CodePair kHello{1, 4};            // answered with ClientToServer kCredentials
inline constexpr CodePair kAccountRefresh{1, 5};   // colours and status; answered "OK"
inline constexpr CodePair kLoginAccepted{1, 6};    // rejoin rooms, then ask for mail
inline constexpr CodePair kClearOtherPane{1, 7};   // clear a browser pane
inline constexpr CodePair kUpdateNotice{1, 8};     // a newer client exists; answered kCredentials
inline constexpr CodePair kAccountInfo{1, 9};
inline constexpr CodePair kPing{1, 10};  // answered with kPong "Pong"
inline constexpr CodePair kMailList{1, 11};
inline constexpr CodePair kMailSent{1, 12};
inline constexpr CodePair kScore{1, 13};    // "Tavren Score: "
inline constexpr CodePair kNewMail{1, 14};  // answered with kMailReceive "Mail-Recv"
inline constexpr CodePair kMailContents{1, 15};
inline constexpr CodePair kMailError{1, 16};
inline constexpr CodePair kListUpdate{1, 17};     // list for a secondary window
inline constexpr CodePair kSuccessNotice{1, 18};  // "Success!"
inline constexpr CodePair kRoomText{2, 1};        // text for the shared line-break procedure
inline constexpr CodePair kChannelDirectory{2, 2};
inline constexpr CodePair kRoomInvitation{2, 3};
inline constexpr CodePair kJoinedRoom{2, 4};
inline constexpr CodePair kMemberList{2, 5};
// (2, 6) is not sent by the server.
inline constexpr CodePair kChannelHostMessage{2, 7};
inline constexpr CodePair kPrivateMessage{2, 8};
inline constexpr CodePair kLocateResult{2, 9};
inline constexpr CodePair kUserInfo{2, 10};
inline constexpr CodePair kProfile{2, 11};
inline constexpr CodePair kBuddyList{2, 12};
inline constexpr CodePair kBuddyPresence{2, 13};
inline constexpr CodePair kBuddySettings{2, 14};
inline constexpr CodePair kAwayMenu{2, 15};  // "True"/"False" ";" rest
inline constexpr CodePair kFloodMeters{2, 16};
inline constexpr CodePair kDirectConnection{2, 17};  // relayed handshake, kinds "1".."5"
inline constexpr CodePair kPrivateNotice{2, 18};
inline constexpr CodePair kTypingStatus{2, 19};  // sub-codes "1".."4"
inline constexpr CodePair kRemovedFromRoom{2, 20};
}  // namespace server_to_client

namespace client_to_server {
inline constexpr CodePair kCredentials{1, 1};  // user name ":" password
inline constexpr CodePair kNicknameFormat{1, 2};
inline constexpr CodePair kChangePassword{1, 3};
inline constexpr CodePair kVersionBeforeSignUp{1, 4};  // "major.minor.revision"
inline constexpr CodePair kAccountRefreshOk{1, 5};     // "OK"
inline constexpr CodePair kVersionBeforeLogin{1, 6};   // "major.minor.revision"
inline constexpr CodePair kChangeEmail{1, 7};
inline constexpr CodePair kAskEmail{1, 8};
inline constexpr CodePair kRoomWindowRequest{1, 9};
inline constexpr CodePair kPong{1, 10};         // "Pong"
inline constexpr CodePair kMailReceive{1, 11};  // "Mail-Recv"
inline constexpr CodePair kSendMail{1, 12};
inline constexpr CodePair kDeleteMail{1, 13};
inline constexpr CodePair kAwayStatus{2, 1};  // "/away " text, or "/back"
inline constexpr CodePair kAskChannelDirectory{2, 2};
inline constexpr CodePair kInviteToRoom{2, 3};
inline constexpr CodePair kJoinRoom{2, 4};
inline constexpr CodePair kCreateRoom{2, 5};
inline constexpr CodePair kLeaveRoom{2, 6};  // the channel name
inline constexpr CodePair kRoomLine{2, 7};   // channel ":" text, commands included
inline constexpr CodePair kPrivateMessage{2, 8};
inline constexpr CodePair kLocateUser{2, 9};
inline constexpr CodePair kUpdateProfile{2, 10};
inline constexpr CodePair kViewProfile{2, 11};
// (2, 12) is not sent by the client.
inline constexpr CodePair kEditBuddyList{2, 13};
inline constexpr CodePair kAddBuddy{2, 14};
inline constexpr CodePair kDirectConnection{2, 15};  // user ":" kind ":" argument
inline constexpr CodePair kTypingStatus{2, 16};      // never counted by the flood meters
inline constexpr CodePair kRegisterAccount{3, 1};
inline constexpr CodePair kMemberSearch{6, 1};  // field U+0001 text
inline constexpr CodePair kCreateTable{7, 1};
inline constexpr CodePair kJoinTable{7, 2};
inline constexpr CodePair kLeaveTable{7, 3};
inline constexpr CodePair kAskTableList{7, 4};
inline constexpr CodePair kTableChat{7, 5};
inline constexpr CodePair kBettingAction{7, 6};
inline constexpr CodePair kTableRequest{7, 7};
inline constexpr CodePair kTurnAnswer{7, 8};
inline constexpr CodePair kInviteToTable{7, 9};
}  // namespace client_to_server

// One row of the catalogue, for logs, the server console and the protocol documentation.
struct CatalogueEntry {
    CodePair code;
    std::string_view name;  // the constant's name without its "k"
    std::string_view meaning;
};

// The named pairs of each direction in code order. The server's whole-group messages (groups 3,
// 4, 6 and Hold'em (7, 1..16)) are not listed pair by pair; see IsServerGroupMessage.
std::span<const CatalogueEntry> ServerToClientCatalogue();
std::span<const CatalogueEntry> ClientToServerCatalogue();

// The entry for a pair, or nullptr when the direction has no such named pair.
const CatalogueEntry* FindServerToClient(CodePair code);
const CatalogueEntry* FindClientToServer(CodePair code);

// True for a pair the server sends as part of a whole group: (3, any), (4, any), (6, any) and
// (7, 1..16).
bool IsServerGroupMessage(CodePair code);

}  // namespace tavren::protocol
