#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include "core/ServerMessage.h"

namespace tavren {

class Prompter;
class ServerLink;

// The server console: a running log of what the server announced (notices, success notices,
// lists) and a command line whose text goes to the server as a status request (2, 1), so that
// staff can use the server's slash commands without joining a room.
//
// The server answers every typed line. An answer belongs in the log, under the line that asked
// for it: a message box would take the keyboard from the member, who is still typing. Only
// notices nobody here asked for are also shown in a box.
class ServerConsole : public QObject {
    Q_OBJECT
  public:
    static constexpr int kMaxLines = 500;

    ServerConsole(Prompter& prompter, ServerLink& link, QObject* parent = nullptr);

    QStringList lines() const { return lines_; }
    // The latest list sent for a secondary window (1, 17), one entry per item.
    QStringList list() const { return list_; }

    // Sends the typed line; false when there was nothing to send or no connection.
    bool submit(const QString& text);
    void clear();

    // Server messages, routed here by the dispatcher.
    void onNotice(const ServerMessage& message);         // group 4: "Attention!"
    void onSuccessNotice(const ServerMessage& message);  // (1, 18): "Success!"
    void onListUpdate(const ServerMessage& message);     // (1, 17): items split at U+0001

    // Local lines (connection events) for the log only.
    void addLine(const QString& text);
    // Typed lines whose answer has not come yet.
    int awaitingAnswers() const { return awaitingAnswers_; }

  signals:
    void lineAdded(const QString& line);
    void cleared();
    void listUpdated(const QStringList& items);

  private:
    // Appends a line as it is, without a time stamp (the entries of a list under its heading).
    void addPlainLine(const QString& text);
    // Counts an answer to a typed line; false when nothing typed was waiting for one.
    bool takeAnswer();
    // "/away" and "/back" are answered with the away state, which the away status follows;
    // no notice or list will come for them.
    static bool answeredElsewhere(const QString& line);

    Prompter& prompter_;
    ServerLink& link_;
    QStringList lines_;
    QStringList list_;
    int awaitingAnswers_ = 0;
};

}  // namespace tavren
