#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <vector>

#include "core/ClientSession.h"
#include "support/ScriptedPrompter.h"

namespace tavren::test {

// One whole client session (settings, data files, server session, rooms) with a data root and
// settings file of its own, so that several can talk to one server from one test.
class RoomClient {
  public:
    RoomClient();

    // Points at the server, selects the saved account and presses Login.
    void logIn(quint16 port, const QString& name, const QString& password);
    bool waitOnline();
    // Waits until the channel's tab is open and its member list names `members` (rank marks
    // removed, any order).
    bool waitForMembers(const QString& channel, const QStringList& members);
    // Waits for a line in the channel's pane that contains `text`.
    bool waitForLine(const QString& channel, const QString& text);
    int linesContaining(const QString& channel, const QString& text) const;
    QStringList linesOf(const QString& channel) const;
    // Types a line into the channel as the member would.
    void type(const QString& channel, const QString& input);

    RoomSession& rooms() { return session->rooms(); }

    QTemporaryDir dir;
    ScriptedPrompter prompter;
    std::unique_ptr<ClientSession> session;
    // Every line added to a pane, by pane index.
    std::vector<std::pair<int, QString>> lines;
};

}  // namespace tavren::test
