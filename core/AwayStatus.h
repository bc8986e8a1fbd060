#pragma once

#include <QObject>
#include <QString>

#include "core/ServerMessage.h"

namespace tavren {

class AwayMessages;
class Prompter;
class ServerLink;

// Whether the member is away, as the server last said it (2, 15), and the two requests that
// change it. The away menu of the main window follows `changed`.
class AwayStatus : public QObject {
    Q_OBJECT
  public:
    explicit AwayStatus(ServerLink& link, QObject* parent = nullptr);

    bool away() const { return away_; }
    QString message() const { return message_; }

    void goAway(const QString& text);  // (2, 1) "/away " + text
    void comeBack();                   // (2, 1) "/back"
    // The new-away dialog's OK: goes away with `text`, first adding the message to the saved
    // list when `keep` is set. False, after telling the user, when the name or text is missing.
    bool goAwayWithNew(const QString& name, const QString& text, bool keep, AwayMessages& saved,
                       Prompter& prompter);
    // Back is the state of every new session.
    void reset();

    // The server's away-state message: "True" or "False", ";", the rest.
    void onAwayState(const ServerMessage& message);

  signals:
    void changed(bool away);

  private:
    ServerLink& link_;
    bool away_ = false;
    QString message_;
};

}  // namespace tavren
