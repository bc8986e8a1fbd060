#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "core/protocol/Frame.h"
#include "server/base/VersionNumber.h"

namespace tavren::server {

// The bounds of channels. Each is a command-line option; the defaults are the documented ones.
struct RoomLimits {
    // Always there, whoever is in them; "--channel NAME" adds more.
    std::vector<std::string> officialChannels{"General", "Tavren General Chat"};
    std::size_t maxLine = 2048;  // bytes of one channel line
    std::size_t maxTopic = 200;  // bytes
    std::size_t maxChannelsPerMember = 20;
    // Caps the member list too: 40,000 names with their marks still fit one payload.
    std::size_t maxChannelMembers = 2000;
    std::size_t maxHostedChannels = 5;  // member channels one account may host
    int channelExpiryDays = 30;         // a member channel empty this long is removed
    // The line bucket each member has, and the meter the client is told about: this many lines
    // in hand, one more per interval.
    int floodLines = 10;
    std::chrono::milliseconds floodInterval{1000};
    // A vote in a channel ends when everybody in it has answered, or after this long.
    std::chrono::milliseconds voteTime{60000};
};

// The bounds of private messages, buddy lists and presence. Private messages share the line
// length and the line bucket with channels (RoomLimits).
struct ContactLimits {
    std::size_t maxBuddies = 200;      // entries of one buddy list
    std::size_t maxBuddyFolders = 30;  // folders of one buddy list
    std::size_t maxAwayText = 200;     // bytes of an away message, which goes to every watcher
    // A member with nothing but pings' answers and typing status for this long is idle.
    std::chrono::milliseconds idleAfter{600000};
    // A member's presence goes to the watchers at most once per interval; changes within it go
    // out as one record at its end, so that nobody can make the server flood their watchers.
    std::chrono::milliseconds presenceInterval{1000};
    // Direct-connection handshakes (2, 15) one member may send a minute: a burst of this many,
    // then one more every 60/N seconds.
    int handshakesPerMinute = 30;
};

// The bounds of offline mail. Every inbox goes whole in one payload, so the kept mails times the
// body length stay far below the largest payload (100 x 4000 bytes by default).
struct MailLimits {
    std::size_t maxBody = 4000;      // bytes of one message's body
    std::size_t maxSubject = 100;    // bytes of its subject
    std::size_t maxAddressees = 20;  // members one message goes to
    std::size_t maxKept = 100;       // mails one inbox holds; a full box refuses more
};

// The bounds of profiles and member search.
struct DirectoryLimits {
    std::size_t maxProfile = 10000;     // bytes of one profile page
    std::size_t maxSearchResults = 50;  // members one search answers with
};

// What keeps password work (argon2id, tens of milliseconds and 64 MiB each) from being a lever
// for anyone: jobs waiting per address group and in total, and a back-off after failed logins per
// address group and per account name. Each is a command-line option.
struct PasswordLimits {
    // Checks queued or running for one address group: a household or office behind one NAT
    // whose clients all reconnect at once after a server restart must not be turned away.
    std::size_t maxPendingPerAddress = 8;
    std::size_t maxPending = 128;  // checks queued or running in all
    // Failed logins (or password changes) allowed before each further try has to wait; the wait
    // doubles with every failure from one second up to `maxBackoff`.
    int failuresBeforeBackoff = 5;
    std::chrono::milliseconds maxBackoff{300000};
    // A source that fails no more for this long starts afresh.
    std::chrono::milliseconds forgetFailuresAfter{900000};
    // New accounts one address group may create per hour.
    int signUpsPerHour = 3;
};

// The Hold'em tables: how long a player may think, the pause between hands, how long a dropped
// player's seat is kept, and the stake a member with an empty bank is given to sit down with.
struct HoldemLimits {
    std::chrono::milliseconds turnTime{30000};
    std::chrono::milliseconds handPause{4000};
    std::chrono::milliseconds awayTime{300000};
    std::int64_t startingStake = 10000;
    std::size_t maxTables = 500;
};

// Encryption: the one listening port serves TLS (a connection whose first byte opens a TLS
// handshake) and the plain protocol alike.
struct TlsSettings {
    // PEM files (the certificate file may hold a chain). Both empty: the server's own
    // certificate, made at the first start and kept beside the database.
    std::filesystem::path certificateFile;
    std::filesystem::path keyFile;
    // A plain connection that tries to log in or sign up is told to turn encryption on.
    bool required = false;
    // From the connection's start: an encrypted connection must have finished its handshake by
    // then, or it is closed.
    std::chrono::milliseconds handshakeTimeout{5000};
};

// Everything an operator (or a test) can tune. The defaults suit a small community on one machine;
// tests shrink the intervals so that time-outs happen in a fraction of a second.
struct ServerConfig {
    std::string listenHost = "127.0.0.1";
    std::uint16_t listenPort = 5678;
    std::filesystem::path databasePath;

    // The server pings every interval; a client that leaves `pingMisses` pings in a row without a
    // "Pong" is dropped. The client's own watchdog gives up after five silent ticks, so the
    // interval must stay well below five of its ticks.
    std::chrono::milliseconds pingInterval{5000};
    int pingMisses = 3;

    // A connection that has not finished logging in by then is closed. Generous, because the
    // sign-up dialog is filled in while the connection waits.
    std::chrono::milliseconds loginTimeout{120000};

    // Incoming frames: the largest payload accepted, and a sustained rate per connection. Frames
    // beyond the rate are delayed; a client that keeps `floodLimit` frames in a row waiting is
    // abusing the link and is dropped.
    std::uint32_t maxPayload = protocol::kMaxPayloadLength;
    double framesPerSecond = 20.0;
    int floodLimit = 60;

    // Connections open at once from one address group (an IPv4 address, an IPv6 /64).
    int maxConnectionsPerAddress = 8;
    // Connections open at once in all; never more than the open-file limit leaves room for.
    std::size_t maxConnections = 30000;
    // New connections per address group: a burst, then this many a minute.
    double connectsPerMinute = 60.0;
    double connectBurst = 20.0;
    // Until the password has been accepted a client sends only short requests (version,
    // credentials, sign-up), so its frames are held to this many payload bytes.
    std::uint32_t maxPayloadBeforeLogin = 4096;
    // Bytes of requests read but not yet handled, per connection (at least one frame is taken).
    std::size_t inboundByteLimit = 1u << 20;
    // Bytes all connections together may hold in read buffers and queues.
    std::size_t memoryBudget = std::size_t{1} << 30;
    // How often the database's log is synced and moved into the database file, off the network
    // thread: what a power cut can take at most.
    std::chrono::milliseconds checkpointInterval{1000};

    // Frames waiting to be written to one client; a client that does not read is dropped when its
    // queue is full instead of making anyone wait.
    std::size_t outgoingQueueLimit = 1024;
    // Kernel send buffer per connection in bytes; 0 leaves the system default.
    int socketSendBuffer = 0;

    // Failed logins allowed on one connection before it is closed.
    int maxLoginAttempts = 3;

    // Clients older than `minimumVersion` are refused with a notice; clients older than
    // `latestVersion` are offered the update and may still log in.
    VersionNumber minimumVersion{1, 0, 0};
    VersionNumber latestVersion{1, 0, 0};
    std::string updateUrl;
    // The SHA-256 of the file at `updateUrl` (64 hex digits, lower case), sent with the update
    // notice so that the client can check what it downloaded; empty when not given.
    std::string updateSha256;

    // Shown to every member after login when not empty, and on "/motd".
    std::string messageOfTheDay;
    // The news file sent after login (see NewsFile); none when empty.
    std::filesystem::path newsFile;

    TlsSettings tls;
    PasswordLimits passwords;
    RoomLimits rooms;
    ContactLimits contacts;
    MailLimits mail;
    DirectoryLimits directory;
    HoldemLimits holdem;
};

}  // namespace tavren::server
