#include "server/app/CommandLine.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <map>

#include "server/app/DataFolder.h"
#include "server/base/AsciiText.h"
#include "server/rooms/ChannelRules.h"

namespace tavren::server {

namespace {

template <typename Number>
Number parseNumber(const std::string& option, const std::string& text, Number low, Number high) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !(value >= low) ||
        !(value <= high)) {
        throw CommandLineError(option + " wants a number from " + std::to_string(low) + " to " +
                               std::to_string(high) + ", not \"" + text + "\"");
    }
    return value;
}

// Intervals are given in seconds and may have a fraction, so tests can use short ones.
std::chrono::milliseconds parseSeconds(const std::string& option, const std::string& text) {
    const double seconds = parseNumber<double>(option, text, 0.01, 86400.0);
    return std::chrono::milliseconds(static_cast<std::int64_t>(std::llround(seconds * 1000.0)));
}

// 64 hex digits, kept in lower case.
std::string parseSha256(const std::string& option, const std::string& text) {
    std::string hex;
    for (const char c : text) {
        if (!std::isxdigit(static_cast<unsigned char>(c))) {
            throw CommandLineError(option + " wants a SHA-256 in hex, not \"" + text + "\"");
        }
        hex += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    if (hex.size() != 64) {
        throw CommandLineError(option + " wants a SHA-256 of 64 hex digits");
    }
    return hex;
}

VersionNumber parseVersion(const std::string& option, const std::string& text) {
    if (auto version = VersionNumber::parse(text)) {
        return *version;
    }
    throw CommandLineError(option + " wants a version like 1.2.3, not \"" + text + "\"");
}

// "host:port", "[v6-address]:port"; the port may be 0 to let the system choose one.
void parseListen(const std::string& text, ServerConfig& config) {
    std::string host;
    std::string port;
    if (!text.empty() && text.front() == '[') {
        const auto close = text.find("]:");
        if (close == std::string::npos) {
            throw CommandLineError("--listen wants HOST:PORT, not \"" + text + "\"");
        }
        host = text.substr(1, close - 1);
        port = text.substr(close + 2);
    } else {
        const auto colon = text.rfind(':');
        if (colon == std::string::npos) {
            throw CommandLineError("--listen wants HOST:PORT, not \"" + text + "\"");
        }
        host = text.substr(0, colon);
        port = text.substr(colon + 1);
    }
    if (host.empty()) {
        throw CommandLineError("--listen wants a host before the port");
    }
    config.listenHost = host;
    config.listenPort = parseNumber<std::uint16_t>("--listen", port, 0, 65535);
}

// "--channel NAME": one more official channel, named as the operator spells it.
void addOfficialChannel(const std::string& name, ServerConfig& config) {
    if (const std::string problem = ChannelRules::checkOfficialName(name); !problem.empty()) {
        throw CommandLineError("--channel \"" + name + "\": " + problem);
    }
    auto& official = config.rooms.officialChannels;
    const bool known = std::any_of(official.begin(), official.end(), [&](const std::string& other) {
        return AsciiText::equalNoCase(other, name);
    });
    if (!known) {
        official.push_back(name);
    }
}

using OptionHandler = std::function<void(CommandLine&, const std::string&)>;

const std::map<std::string, OptionHandler>& optionHandlers() {
    static const std::map<std::string, OptionHandler> handlers = {
        {"--listen", [](CommandLine& c, const std::string& v) { parseListen(v, c.config); }},
        {"--db", [](CommandLine& c, const std::string& v) { c.config.databasePath = v; }},
        {"--ping-interval",
         [](CommandLine& c, const std::string& v) {
             c.config.pingInterval = parseSeconds("--ping-interval", v);
         }},
        {"--ping-misses",
         [](CommandLine& c, const std::string& v) {
             c.config.pingMisses = parseNumber<int>("--ping-misses", v, 1, 1000);
         }},
        {"--login-timeout",
         [](CommandLine& c, const std::string& v) {
             c.config.loginTimeout = parseSeconds("--login-timeout", v);
         }},
        {"--max-payload",
         [](CommandLine& c, const std::string& v) {
             c.config.maxPayload =
                 parseNumber<std::uint32_t>("--max-payload", v, 64, protocol::kMaxPayloadLength);
         }},
        {"--frame-rate",
         [](CommandLine& c, const std::string& v) {
             c.config.framesPerSecond = parseNumber<double>("--frame-rate", v, 0.1, 1e6);
         }},
        {"--flood-limit",
         [](CommandLine& c, const std::string& v) {
             c.config.floodLimit = parseNumber<int>("--flood-limit", v, 1, 1000000);
         }},
        {"--max-per-address",
         [](CommandLine& c, const std::string& v) {
             c.config.maxConnectionsPerAddress =
                 parseNumber<int>("--max-per-address", v, 1, 100000);
         }},
        {"--queue-limit",
         [](CommandLine& c, const std::string& v) {
             c.config.outgoingQueueLimit = parseNumber<std::size_t>("--queue-limit", v, 1, 1000000);
         }},
        {"--send-buffer",
         [](CommandLine& c, const std::string& v) {
             c.config.socketSendBuffer = parseNumber<int>("--send-buffer", v, 0, 64 << 20);
         }},
        {"--max-login-attempts",
         [](CommandLine& c, const std::string& v) {
             c.config.maxLoginAttempts = parseNumber<int>("--max-login-attempts", v, 1, 1000);
         }},
        {"--max-connections",
         [](CommandLine& c, const std::string& v) {
             c.config.maxConnections =
                 parseNumber<std::size_t>("--max-connections", v, 1, 1000000);
         }},
        {"--connect-rate",
         [](CommandLine& c, const std::string& v) {
             c.config.connectsPerMinute = parseNumber<double>("--connect-rate", v, 0.1, 1e6);
         }},
        {"--connect-burst",
         [](CommandLine& c, const std::string& v) {
             c.config.connectBurst = parseNumber<double>("--connect-burst", v, 1, 1e6);
         }},
        {"--max-payload-before-login",
         [](CommandLine& c, const std::string& v) {
             // Room for the longest sign-up (name, password, e-mail) with some to spare.
             c.config.maxPayloadBeforeLogin = parseNumber<std::uint32_t>(
                 "--max-payload-before-login", v, 256, protocol::kMaxPayloadLength);
         }},
        {"--max-inbound",
         [](CommandLine& c, const std::string& v) {
             c.config.inboundByteLimit =
                 parseNumber<std::size_t>("--max-inbound", v, 1024, 1u << 30);
         }},
        {"--memory-budget",
         [](CommandLine& c, const std::string& v) {
             c.config.memoryBudget = parseNumber<std::size_t>("--memory-budget", v, 4, 1u << 20)
                                     << 20;
         }},
        {"--max-password-jobs",
         [](CommandLine& c, const std::string& v) {
             c.config.passwords.maxPending =
                 parseNumber<std::size_t>("--max-password-jobs", v, 1, 100000);
         }},
        {"--max-password-jobs-per-address",
         [](CommandLine& c, const std::string& v) {
             c.config.passwords.maxPendingPerAddress =
                 parseNumber<std::size_t>("--max-password-jobs-per-address", v, 1, 100000);
         }},
        {"--login-failures",
         [](CommandLine& c, const std::string& v) {
             c.config.passwords.failuresBeforeBackoff =
                 parseNumber<int>("--login-failures", v, 1, 1000000);
         }},
        {"--max-login-backoff",
         [](CommandLine& c, const std::string& v) {
             c.config.passwords.maxBackoff = parseSeconds("--max-login-backoff", v);
         }},
        {"--signups-per-hour",
         [](CommandLine& c, const std::string& v) {
             c.config.passwords.signUpsPerHour =
                 parseNumber<int>("--signups-per-hour", v, 1, 1000000);
         }},
        {"--checkpoint-interval",
         [](CommandLine& c, const std::string& v) {
             c.config.checkpointInterval = parseSeconds("--checkpoint-interval", v);
         }},
        {"--min-version",
         [](CommandLine& c, const std::string& v) {
             c.config.minimumVersion = parseVersion("--min-version", v);
         }},
        {"--latest-version",
         [](CommandLine& c, const std::string& v) {
             c.config.latestVersion = parseVersion("--latest-version", v);
         }},
        {"--update-url", [](CommandLine& c, const std::string& v) { c.config.updateUrl = v; }},
        {"--update-sha256",
         [](CommandLine& c, const std::string& v) {
             c.config.updateSha256 = parseSha256("--update-sha256", v);
         }},
        {"--news", [](CommandLine& c, const std::string& v) { c.config.newsFile = v; }},
        {"--tls-cert",
         [](CommandLine& c, const std::string& v) { c.config.tls.certificateFile = v; }},
        {"--tls-key", [](CommandLine& c, const std::string& v) { c.config.tls.keyFile = v; }},
        {"--tls-handshake-time",
         [](CommandLine& c, const std::string& v) {
             c.config.tls.handshakeTimeout = parseSeconds("--tls-handshake-time", v);
         }},
        {"--motd", [](CommandLine& c, const std::string& v) { c.config.messageOfTheDay = v; }},
        {"--channel",
         [](CommandLine& c, const std::string& v) { addOfficialChannel(v, c.config); }},
        {"--max-line",
         [](CommandLine& c, const std::string& v) {
             // A line must fit one payload with its channel and sender around it.
             c.config.rooms.maxLine = parseNumber<std::size_t>("--max-line", v, 1, 1000000);
         }},
        {"--max-topic",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.maxTopic = parseNumber<std::size_t>("--max-topic", v, 1, 10000);
         }},
        {"--max-channels-per-member",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.maxChannelsPerMember =
                 parseNumber<std::size_t>("--max-channels-per-member", v, 1, 1000);
         }},
        {"--max-channel-members",
         [](CommandLine& c, const std::string& v) {
             // The whole member list must fit one payload: 40,000 names of 20 bytes with their
             // marks and separators stay below 1 MiB.
             c.config.rooms.maxChannelMembers =
                 parseNumber<std::size_t>("--max-channel-members", v, 1, 40000);
         }},
        {"--max-hosted-channels",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.maxHostedChannels =
                 parseNumber<std::size_t>("--max-hosted-channels", v, 0, 1000);
         }},
        {"--channel-expiry-days",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.channelExpiryDays =
                 parseNumber<int>("--channel-expiry-days", v, 1, 36500);
         }},
        {"--flood-lines",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.floodLines = parseNumber<int>("--flood-lines", v, 1, 1000000);
         }},
        {"--flood-interval",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.floodInterval = parseSeconds("--flood-interval", v);
         }},
        {"--vote-time",
         [](CommandLine& c, const std::string& v) {
             c.config.rooms.voteTime = parseSeconds("--vote-time", v);
         }},
        {"--max-buddies",
         [](CommandLine& c, const std::string& v) {
             // Each buddy is one record in every answer to the list, so the bound stays modest.
             c.config.contacts.maxBuddies = parseNumber<std::size_t>("--max-buddies", v, 1, 5000);
         }},
        {"--max-buddy-folders",
         [](CommandLine& c, const std::string& v) {
             c.config.contacts.maxBuddyFolders =
                 parseNumber<std::size_t>("--max-buddy-folders", v, 1, 1000);
         }},
        {"--max-away",
         [](CommandLine& c, const std::string& v) {
             c.config.contacts.maxAwayText = parseNumber<std::size_t>("--max-away", v, 1, 10000);
         }},
        {"--idle-after",
         [](CommandLine& c, const std::string& v) {
             c.config.contacts.idleAfter = parseSeconds("--idle-after", v);
         }},
        {"--presence-interval",
         [](CommandLine& c, const std::string& v) {
             // 0 sends every change at once (for measuring the fan-out itself).
             const double seconds = parseNumber<double>("--presence-interval", v, 0.0, 86400.0);
             c.config.contacts.presenceInterval =
                 std::chrono::milliseconds(static_cast<std::int64_t>(std::llround(seconds * 1000)));
         }},
        {"--max-handshakes",
         [](CommandLine& c, const std::string& v) {
             c.config.contacts.handshakesPerMinute =
                 parseNumber<int>("--max-handshakes", v, 1, 6000);
         }},
        {"--max-mail-body",
         [](CommandLine& c, const std::string& v) {
             // A full inbox goes in one payload: kept mails times this must stay below 1 MiB.
             c.config.mail.maxBody = parseNumber<std::size_t>("--max-mail-body", v, 1, 8000);
         }},
        {"--max-mail-subject",
         [](CommandLine& c, const std::string& v) {
             c.config.mail.maxSubject = parseNumber<std::size_t>("--max-mail-subject", v, 1, 200);
         }},
        {"--max-mail-to",
         [](CommandLine& c, const std::string& v) {
             c.config.mail.maxAddressees = parseNumber<std::size_t>("--max-mail-to", v, 1, 200);
         }},
        {"--max-mails",
         [](CommandLine& c, const std::string& v) {
             c.config.mail.maxKept = parseNumber<std::size_t>("--max-mails", v, 1, 100);
         }},
        {"--max-profile",
         [](CommandLine& c, const std::string& v) {
             c.config.directory.maxProfile = parseNumber<std::size_t>("--max-profile", v, 1, 10000);
         }},
        {"--max-search-results",
         [](CommandLine& c, const std::string& v) {
             c.config.directory.maxSearchResults =
                 parseNumber<std::size_t>("--max-search-results", v, 1, 500);
         }},
        {"--holdem-turn-time",
         [](CommandLine& c, const std::string& v) {
             c.config.holdem.turnTime = parseSeconds("--holdem-turn-time", v);
         }},
        {"--holdem-pause",
         [](CommandLine& c, const std::string& v) {
             c.config.holdem.handPause = parseSeconds("--holdem-pause", v);
         }},
        {"--holdem-away",
         [](CommandLine& c, const std::string& v) {
             c.config.holdem.awayTime = parseSeconds("--holdem-away", v);
         }},
        {"--holdem-stake",
         [](CommandLine& c, const std::string& v) {
             c.config.holdem.startingStake =
                 parseNumber<std::int64_t>("--holdem-stake", v, 0, 1'000'000'000);
         }},
        {"--max-tables",
         [](CommandLine& c, const std::string& v) {
             c.config.holdem.maxTables = parseNumber<std::size_t>("--max-tables", v, 1, 100000);
         }},
        {"--staff",
         [](CommandLine& c, const std::string& v) {
             c.staffLevel = parseNumber<int>("--staff", v, 1, 3);
         }},
        {"--email", [](CommandLine& c, const std::string& v) { c.accountEmail = v; }},
    };
    return handlers;
}

}  // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& arguments) {
    CommandLine result;
    std::vector<std::string> words;
    bool staffOrEmailGiven = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            result.mode = Mode::kHelp;
            return result;
        }
        if (argument.rfind("--", 0) != 0) {
            words.push_back(argument);
            continue;
        }
        if (argument == "--require-tls") {  // the one option without a value
            result.config.tls.required = true;
            continue;
        }
        const auto handler = optionHandlers().find(argument);
        if (handler == optionHandlers().end()) {
            throw CommandLineError("unknown option " + argument);
        }
        if (i + 1 >= arguments.size()) {
            throw CommandLineError(argument + " wants a value");
        }
        handler->second(result, arguments[++i]);
        staffOrEmailGiven = staffOrEmailGiven || argument == "--staff" || argument == "--email";
    }

    if (words.size() == 1 && words[0] == "fingerprint") {
        result.mode = Mode::kFingerprint;
    } else if (!words.empty()) {
        if (words.size() != 4 || words[0] != "account" || words[1] != "add") {
            throw CommandLineError("the commands are: account add NAME PASSWORD, and fingerprint");
        }
        result.mode = Mode::kAccountAdd;
        result.accountName = words[2];
        result.accountPassword = words[3];
    } else if (staffOrEmailGiven) {
        throw CommandLineError("--staff and --email belong to: account add NAME PASSWORD");
    }
    if (result.config.tls.certificateFile.empty() != result.config.tls.keyFile.empty()) {
        throw CommandLineError("--tls-cert and --tls-key go together");
    }
    if (result.config.databasePath.empty()) {
        result.config.databasePath = DataFolder::defaultDatabasePath();
    }
    return result;
}

std::string CommandLine::usage() {
    return R"(usage:
  tavrend [--listen HOST:PORT] [--db FILE] [options]
  tavrend [--db FILE] account add NAME PASSWORD [--staff 1|2|3] [--email ADDRESS]
  tavrend [--db FILE] [--tls-cert FILE --tls-key FILE] fingerprint
                              prints the SHA-256 fingerprint of the server's certificate (its
                              own is made first when there is none yet)

Serves the Tavren chat protocol in the foreground and logs to stderr; SIGINT or SIGTERM stop it.
  --listen HOST:PORT          address to listen on (default 127.0.0.1:5678; port 0 picks a free
                              one and prints "listening on HOST:PORT")
  --db FILE                   account database (default $TAVREN_HOME/tavrend.db, else
                              $XDG_DATA_HOME/tavren/tavrend.db or ~/.local/share/tavren/tavrend.db)
  --ping-interval SECONDS     time between pings (default 5)
  --ping-misses N             unanswered pings in a row before a client is dropped (default 3)
  --login-timeout SECONDS     time allowed to log in or sign up (default 120)
  --max-payload BYTES         largest payload accepted (default and highest 1048576)
  --frame-rate N              frames per second a client may send before it is slowed (default 20)
  --flood-limit N             frames in a row a client may have slowed before it is dropped
                              (default 60)
  --max-per-address N         connections open at once from one address (default 8)
  --queue-limit N             frames waiting for a client that does not read (default 1024)
  --send-buffer BYTES         kernel send buffer per connection (default: the system's)
  --max-login-attempts N      failed logins on one connection before it is closed (default 3)
  --min-version X.Y.Z         older clients are refused (default 1.0.0)
  --latest-version X.Y.Z      older clients are offered the update (default 1.0.0)
  --update-url URL            where the update is downloaded from
  --update-sha256 HEX         SHA-256 of that file, sent with the update notice; clients
                              download and run the update only when it matches
  --news FILE                 news sent after login: "# title" lines, each followed by its
                              text; read again whenever the file changes
  --motd TEXT                 message of the day, shown after login and on /motd

Encryption (the one port serves TLS and plain connections alike):
  --tls-cert FILE             the server's certificate, PEM (a chain allowed); with --tls-key.
                              Without them the server makes its own at the first start and keeps
                              it beside the database (tls-certificate.pem, tls-key.pem, owner
                              only). SIGHUP reads the files again without dropping anyone
  --tls-key FILE              its private key, PEM
  --require-tls               a plain connection that tries to log in or sign up is told to turn
                              encryption on and is closed
  --tls-handshake-time SECONDS
                              an encrypted connection must finish its handshake this soon after
                              connecting (default 5)

Load and abuse (an address group is an IPv4 address or an IPv6 /64):
  --max-connections N         connections open at once in all (default 30000; lowered to what the
                              open-file limit allows, which is raised at start as far as it can)
  --connect-rate N            new connections per minute from one address group (default 60)
  --connect-burst N           new connections at once before that rate applies (default 20)
  --max-payload-before-login BYTES
                              largest payload before the password is accepted (default 4096)
  --max-inbound BYTES         requests read but not yet handled, per connection (default 1048576)
  --memory-budget MIB         read buffers and queues of all connections together (default 1024)
  --max-password-jobs N       password checks waiting or running in all (default 128)
  --max-password-jobs-per-address N
                              password checks waiting or running per address group (default 8)
  --login-failures N          failed logins from one address group before each further try waits
                              1 s, doubling (default 5; twice as many for one account name)
  --max-login-backoff SECONDS longest such wait (default 300)
  --signups-per-hour N        sign-up tries per address group and hour (default 3)
  --checkpoint-interval SECONDS
                              the database is synced this often, on a thread of its own; a power
                              cut may lose the changes since (default 1; a killed server loses none)

Channels ("General" and "Tavren General Chat" always exist):
  --channel NAME              one more official channel (repeatable)
  --max-line BYTES            longest channel line (default 2048)
  --max-topic BYTES           longest topic (default 200)
  --max-channels-per-member N channels one member may be in at once (default 20)
  --max-channel-members N     members in one channel (default 2000, highest 40000)
  --max-hosted-channels N     member channels one member may host (default 5)
  --channel-expiry-days N     an empty member channel is removed after this long (default 30)
  --flood-lines N             lines a member may send in a burst (default 10)
  --flood-interval SECONDS    time in which one more line is earned back (default 1)
  --vote-time SECONDS         a channel vote's result comes after this long at the latest
                              (default 60)

Private messages share the line length and the line meter with channels. Buddies and presence:
  --max-buddies N             buddies in one buddy list (default 200)
  --max-buddy-folders N       folders in one buddy list (default 30)
  --max-away BYTES            longest away message (default 200)
  --idle-after SECONDS        a member with no request but typing status for this long is idle
                              (default 600)
  --presence-interval SECONDS a member's presence goes to the watchers at most this often; changes
                              in between go out together at its end (default 1; 0: at once)
  --max-handshakes N          direct-connection handshakes one member may send a minute
                              (default 30)

Offline mail, profiles and member search:
  --max-mail-body BYTES       longest mail body (default 4000, highest 8000)
  --max-mail-subject BYTES    longest mail subject (default 100)
  --max-mail-to N             members one mail goes to (default 20)
  --max-mails N               mails one inbox keeps; a full inbox refuses more (default and
                              highest 100)
  --max-profile BYTES         longest profile page (default and highest 10000)
  --max-search-results N      members one search answers with (default 50)

Hold'em tables (a member's chips are the score; see docs/protocol.md):
  --holdem-turn-time SECONDS  time a player has to act before checking or folding (default 30)
  --holdem-pause SECONDS      pause between two hands (default 4)
  --holdem-away SECONDS       a dropped player's seat is kept this long (default 300)
  --holdem-stake N            chips a member with too few to buy in, and none on a table, is
                              given (default 10000)
  --max-tables N              tables open at once (default 500)
)";
}

}  // namespace tavren::server
