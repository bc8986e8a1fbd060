#include "core/ServerSession.h"

#include "config/Settings.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

namespace {
// Group 4 is notices; these are the message of the day and the news, which are not answers to
// anything.
constexpr std::int16_t kMessageOfTheDayCode = 2;
constexpr std::int16_t kNewsItemCode = 3;
}  // namespace

ServerSession::ServerSession(Settings& settings, Prompter& prompter,
                             const ConnectionOptions& options, QObject* parent)
    : QObject(parent),
      settings_(settings),
      options_(options),
      errorLog_(this),
      link_(floodMeters_, this),
      connection_(settings, prompter, errorLog_, link_, options_, this),
      accounts_(settings, this),
      login_(settings, prompter, link_, connection_, accounts_, options_, this),
      accountRequests_(link_, login_, accounts_, this),
      console_(prompter, link_, this) {
    link_.setFrameSink([this](const protocol::Frame& frame) {
        // A close after a notice is meant, and is not answered by reconnecting; a server too
        // busy to check the password asks for exactly that, so its notice does not count.
        const bool busy = frame.payload.rfind("The server is busy", 0) == 0;
        connection_.noteServerFrame(frame.code.cmd1 == protocol::kNoticeGroup && !busy);
        dispatcher_.DispatchServerFrame(frame);
    });
    routeCoreMessages();
    connect(&login_, &LoginFlow::onlineChanged, this, &ServerSession::onlineChanged);
    connect(&login_, &LoginFlow::captionChanged, this, &ServerSession::captionChanged);
    connect(&connection_, &ServerConnection::statusLine, &console_, &ServerConsole::addLine);
}

void ServerSession::routeCoreMessages() {
    using Message = const ServerMessage&;
    dispatcher_.route(in::kPing, [this](Message) {
        link_.SendPacket(QStringLiteral("Pong"), out::kPong);
        connection_.pingArrived();
    });
    dispatcher_.route(in::kHello, [this](Message m) { login_.onHello(m); });
    dispatcher_.route(in::kUpdateNotice, [this](Message m) { login_.onUpdateNotice(m); });
    dispatcher_.route(in::kAccountRefresh, [this](Message m) { login_.onAccountData(m); });
    dispatcher_.route(in::kLoginAccepted, [this](Message m) { login_.onLoginAccepted(m); });
    dispatcher_.route(in::kSessionSettings, [this](Message m) {
        login_.onSessionSettings(m);
        emit sessionSettingsArrived(m.payload.section(QLatin1Char(';'), 0, 0).trimmed(),
                                    m.payload.section(QLatin1Char(';'), 1, 1).trimmed());
    });
    dispatcher_.route(protocol::CodePair{protocol::kLoginResultGroup, 1},
                      [this](Message m) { login_.onLoginResult(m); });
    dispatcher_.route(protocol::CodePair{protocol::kNoticeGroup, 1}, [this](Message m) {
        if (m.code.cmd2 == kMessageOfTheDayCode) {
            // Not an answer to anything: it goes to the news pane, or nowhere when unwanted.
            if (!settings_.values().ignoreMotd) {
                emit messageOfTheDay(m.payload);
            }
            return;
        }
        if (m.code.cmd2 == kNewsItemCode) {
            emit newsItemArrived(m.payload);
            return;
        }
        emit noticeArrived(m.payload);
        accountRequests_.onNotice(m);
        console_.onNotice(m);
    });
    dispatcher_.route(in::kFloodMeters, [this](Message m) {
        bool maximumOk = false;
        bool intervalOk = false;
        const int maximum = m.payload.section(QLatin1Char(';'), 0, 0).toInt(&maximumOk);
        const int interval = m.payload.section(QLatin1Char(';'), 1, 1).toInt(&intervalOk);
        if (maximumOk && intervalOk && maximum > 0 && interval > 0) {
            emit floodLimitsChanged(maximum, interval);
        }
    });
    dispatcher_.route(in::kSuccessNotice, [this](Message m) {
        accountRequests_.onSuccessNotice(m);
        console_.onSuccessNotice(m);
    });
    dispatcher_.route(in::kListUpdate, [this](Message m) { console_.onListUpdate(m); });
    dispatcher_.route(in::kAccountInfo, [this](Message m) { accountRequests_.onAccountInfo(m); });
    dispatcher_.route(in::kOnlineCount, [this](Message m) {
        emit onlineCountChanged(QStringLiteral("Online: ") + m.payload);
    });
    dispatcher_.route(in::kScore, [this](Message m) {
        emit scoreChanged(QStringLiteral("Tavren Score: ") + m.payload);
    });
    dispatcher_.route(in::kClearPane, [this](Message) { emit paneClearRequested(); });
    dispatcher_.route(in::kClearOtherPane, [this](Message) { emit newsWindowClearRequested(); });
}

QString ServerSession::currentAccountText() const {
    if (!login_.online()) {
        return QStringLiteral("You are not logged in.");
    }
    return QStringLiteral("You are logged in as %1.").arg(login_.userName());
}

}  // namespace tavren
