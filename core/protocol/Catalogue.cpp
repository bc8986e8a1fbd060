#include "core/protocol/Catalogue.h"

#include <algorithm>

namespace tavren::protocol {
namespace {

constexpr CatalogueEntry kServerToClient[] = {
    {server_to_client::kSessionSettings, "SessionSettings",
     "session settings after login (nickname, default room)"},
    {server_to_client::kClearPane, "ClearPane", "clear a browser pane"},
    {server_to_client::kOnlineCount, "OnlineCount", "online count for the status bar"},
    {server_to_client::kHello, "Hello", "server hello; answered with the user name and password"},
    {server_to_client::kAccountRefresh, "AccountRefresh",
     "account colours and status refresh; answered \"OK\""},
    {server_to_client::kLoginAccepted, "LoginAccepted",
     "login accepted: rejoin the open rooms, then ask for mail"},
    {server_to_client::kClearOtherPane, "ClearOtherPane", "clear a browser pane"},
    {server_to_client::kUpdateNotice, "UpdateNotice",
     "client-update notice; answered with the user name and password"},
    {server_to_client::kAccountInfo, "AccountInfo", "account information"},
    {server_to_client::kPing, "Ping", "ping; answered \"Pong\""},
    {server_to_client::kMailList, "MailList", "mail list"},
    {server_to_client::kMailSent, "MailSent", "mail sent"},
    {server_to_client::kScore, "Score", "score of the user"},
    {server_to_client::kNewMail, "NewMail", "new mail; answered \"Mail-Recv\""},
    {server_to_client::kMailContents, "MailContents", "mail contents"},
    {server_to_client::kMailError, "MailError", "mail error"},
    {server_to_client::kListUpdate, "ListUpdate", "list update for a secondary window"},
    {server_to_client::kSuccessNotice, "SuccessNotice", "server success notice"},
    {server_to_client::kRoomText, "RoomText", "text for the shared line-break procedure"},
    {server_to_client::kChannelDirectory, "ChannelDirectory", "channel directory"},
    {server_to_client::kRoomInvitation, "RoomInvitation", "room invitation"},
    {server_to_client::kJoinedRoom, "JoinedRoom", "joined a room"},
    {server_to_client::kMemberList, "MemberList", "room member list"},
    {server_to_client::kChannelHostMessage, "ChannelHostMessage", "channel host message"},
    {server_to_client::kPrivateMessage, "PrivateMessage", "private message text"},
    {server_to_client::kLocateResult, "LocateResult", "locate-user answer"},
    {server_to_client::kUserInfo, "UserInfo", "user information text"},
    {server_to_client::kProfile, "Profile", "profile"},
    {server_to_client::kBuddyList, "BuddyList", "buddy list"},
    {server_to_client::kBuddyPresence, "BuddyPresence", "buddy presence change"},
    {server_to_client::kBuddySettings, "BuddySettings", "buddy list settings"},
    {server_to_client::kAwayMenu, "AwayMenu", "away state and away-message menu"},
    {server_to_client::kFloodMeters, "FloodMeters",
     "flood meter values for room and private windows"},
    {server_to_client::kDirectConnection, "DirectConnection",
     "direct-connection control, relayed from the peer"},
    {server_to_client::kPrivateNotice, "PrivateNotice", "private conversation notice"},
    {server_to_client::kTypingStatus, "TypingStatus", "typing status"},
    {server_to_client::kRemovedFromRoom, "RemovedFromRoom", "removed from a room"},
};

constexpr CatalogueEntry kClientToServer[] = {
    {client_to_server::kCredentials, "Credentials", "user name \":\" password"},
    {client_to_server::kNicknameFormat, "NicknameFormat", "nickname format"},
    {client_to_server::kChangePassword, "ChangePassword", "change password"},
    {client_to_server::kVersionBeforeSignUp, "VersionBeforeSignUp",
     "client version before sign-up"},
    {client_to_server::kAccountRefreshOk, "AccountRefreshOk", "\"OK\" to an account refresh"},
    {client_to_server::kVersionBeforeLogin, "VersionBeforeLogin", "client version before login"},
    {client_to_server::kChangeEmail, "ChangeEmail", "change e-mail address"},
    {client_to_server::kAskEmail, "AskEmail", "ask for the e-mail address to edit"},
    {client_to_server::kRoomWindowRequest, "RoomWindowRequest", "room window request"},
    {client_to_server::kPong, "Pong", "\"Pong\" to a ping"},
    {client_to_server::kMailReceive, "MailReceive", "\"Mail-Recv\": ask for the mail list"},
    {client_to_server::kSendMail, "SendMail", "send mail"},
    {client_to_server::kDeleteMail, "DeleteMail", "delete mail"},
    {client_to_server::kAwayStatus, "AwayStatus", "away message or status"},
    {client_to_server::kAskChannelDirectory, "AskChannelDirectory",
     "ask for the channel directory"},
    {client_to_server::kInviteToRoom, "InviteToRoom", "invite a user to a room"},
    {client_to_server::kJoinRoom, "JoinRoom", "join a room"},
    {client_to_server::kCreateRoom, "CreateRoom", "create a room"},
    {client_to_server::kLeaveRoom, "LeaveRoom", "leave a room"},
    {client_to_server::kRoomLine, "RoomLine",
     "room line: channel \":\" text, server-side commands included"},
    {client_to_server::kPrivateMessage, "PrivateMessage", "private message text"},
    {client_to_server::kLocateUser, "LocateUser", "locate a user"},
    {client_to_server::kUpdateProfile, "UpdateProfile", "update own profile"},
    {client_to_server::kViewProfile, "ViewProfile", "view a profile"},
    {client_to_server::kEditBuddyList, "EditBuddyList", "edit the buddy list"},
    {client_to_server::kAddBuddy, "AddBuddy", "add a buddy"},
    {client_to_server::kDirectConnection, "DirectConnection",
     "direct-connection and transfer control"},
    {client_to_server::kTypingStatus, "TypingStatus", "typing status"},
    {client_to_server::kRegisterAccount, "RegisterAccount", "register a new account"},
    {client_to_server::kMemberSearch, "MemberSearch", "member search"},
    {client_to_server::kCreateTable, "CreateTable", "create a table"},
    {client_to_server::kJoinTable, "JoinTable", "join a table"},
    {client_to_server::kLeaveTable, "LeaveTable", "leave a table"},
    {client_to_server::kAskTableList, "AskTableList", "ask for the table list"},
    {client_to_server::kTableChat, "TableChat", "table chat"},
    {client_to_server::kBettingAction, "BettingAction", "betting action"},
    {client_to_server::kTableRequest, "TableRequest", "table request from the table window"},
    {client_to_server::kTurnAnswer, "TurnAnswer", "turn and option answers"},
    {client_to_server::kInviteToTable, "InviteToTable", "invite a user to a table"},
};

const CatalogueEntry* Find(std::span<const CatalogueEntry> entries, CodePair code) {
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), code,
        [](const CatalogueEntry& entry, CodePair wanted) { return entry.code < wanted; });
    return found != entries.end() && found->code == code ? &*found : nullptr;
}

}  // namespace

std::span<const CatalogueEntry> ServerToClientCatalogue() {
    return kServerToClient;
}
std::span<const CatalogueEntry> ClientToServerCatalogue() {
    return kClientToServer;
}

const CatalogueEntry* FindServerToClient(CodePair code) {
    return Find(kServerToClient, code);
}
const CatalogueEntry* FindClientToServer(CodePair code) {
    return Find(kClientToServer, code);
}

bool IsServerGroupMessage(CodePair code) {
    switch (code.cmd1) {
        case kLoginResultGroup:
        case kNoticeGroup:
        case kSearchGroup:
            return true;
        case kHoldemGroup:
            return code.cmd2 >= 1 && code.cmd2 <= kLastHoldemServerCode;
        default:
            return false;
    }
}

}  // namespace tavren::protocol
