#include "RoomClient.h"

#include "connection/ClientUnderTest.h"
#include "connection/Wait.h"
#include "render/RankMarks.h"
#include "rooms/RoomCommandHost.h"
#include "rooms/RoomCommands.h"

namespace tavren::test {

namespace {
class NoWindows : public RoomCommandHost {
  public:
    void openSettings() override {}
    void openNicknameFormat() override {}
    void openAbout() override {}
    void closeRoomWindow() override {}
};
}  // namespace

RoomClient::RoomClient()
    : session(std::make_unique<ClientSession>(dir.path(),
                                              dir.filePath(QStringLiteral("settings.ini")),
                                              ClientUnderTest::fastOptions(), prompter)) {
    QObject::connect(&session->rooms(), &RoomSession::lineAdded, session.get(),
                     [this](int pane, const QString& html) {
                         lines.push_back({pane, html});
                     });
}

void RoomClient::logIn(quint16 port, const QString& name, const QString& password) {
    SettingsValues values = session->settings().values();
    values.serverHost = QStringLiteral("127.0.0.1");
    values.serverPort = QString::number(port);
    values.tls = false;  // plain: encryption is tested on its own
    session->settings().setValues(values);
    SavedAccounts& accounts = session->server().accounts();
    const int row = accounts.findRow(name);
    session->server().login().select(row < 0 ? accounts.add(name, password)
                                             : accounts.modify(row, name, password));
    session->server().login().clickLoginButton();
}

bool RoomClient::waitOnline() {
    return waitUntil([this] { return session->server().online(); });
}

bool RoomClient::waitForMembers(const QString& channel, const QStringList& members) {
    QStringList wanted;
    for (const QString& name : members) {
        wanted << name.toLower();
    }
    wanted.sort();
    return waitUntil([&] {
        const int index = rooms().roomIndex(channel);
        if (index < 0) {
            return false;
        }
        QStringList listed;
        for (const QString& name : rooms().room(index).members) {
            listed << StripRankMarks(name).toLower();
        }
        listed.sort();
        return listed == wanted;
    });
}

QStringList RoomClient::linesOf(const QString& channel) const {
    QStringList found;
    const int index = session->rooms().roomIndex(channel);
    if (index < 0) {
        return found;
    }
    const int pane = session->rooms().room(index).paneIndex;
    for (const auto& [linePane, html] : lines) {
        if (linePane == pane) {
            found << html;
        }
    }
    return found;
}

int RoomClient::linesContaining(const QString& channel, const QString& text) const {
    int count = 0;
    for (const QString& html : linesOf(channel)) {
        count += html.contains(text) ? 1 : 0;
    }
    return count;
}

bool RoomClient::waitForLine(const QString& channel, const QString& text) {
    return waitUntil([&] { return linesContaining(channel, text) > 0; });
}

void RoomClient::type(const QString& channel, const QString& input) {
    NoWindows host;
    RoomCommands commands(rooms(), session->server().link(), host);
    commands.submit(rooms().roomIndex(channel), input);
}

}  // namespace tavren::test
