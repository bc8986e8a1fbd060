#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include "contacts/MailRow.h"
#include "core/ServerMessage.h"

namespace tavren {

class ServerSession;

// The member's offline mail: the inbox as the server last sent it, and the requests that send,
// fetch and delete mail. The server keeps the mail; this keeps the copy the mail window and the
// main window's captions show. Nothing here needs a widget.
//
// The server sends the whole inbox (1, 11) when asked ("Mail-Recv", after login and whenever it
// says new mail has come (1, 14)); rows already listed stay as they are rather than being
// listed twice. Deleted rows leave the list at once; the server's count (1, 15) that answers a
// delete corrects it if the two ever disagree.
class Mailbox : public QObject {
    Q_OBJECT
  public:
    enum class SendResult { Sent, NoAddressee, Empty, Offline };

    explicit Mailbox(ServerSession& server, QObject* parent = nullptr);

    const QVector<MailRow>& rows() const { return rows_; }
    int count() const { return static_cast<int>(rows_.size()); }
    // "Inbox (n)" for the mail window, "&Read Messages (n).." for the main menu.
    QString inboxCaption() const;
    QString menuCaption() const;

    // One record per addressee of the address field, all in one request (1, 12).
    SendResult send(const QString& toField, const QString& subject, const QString& body);
    // The payload of that request, for the same input.
    static QString composePayload(const QStringList& addressees, const QString& subject,
                                  const QString& body);
    // Deletes the rows at these positions (1, 13): they leave the list at once.
    void remove(const QList<int>& positions);
    // Asks for the whole inbox again.
    void refresh();

    void onMailList(const ServerMessage& message);
    void onMailSent(const ServerMessage& message);
    void onNewMail(const ServerMessage& message);
    void onMailCount(const ServerMessage& message);
    void onMailError(const ServerMessage& message);

  signals:
    // Rows came or went; the list is rebuilt.
    void inboxChanged();
    void countChanged(int count);
    // The server kept the mail for these members ("Your Message(s) have been sent!").
    void sent(const QStringList& addressees);
    // The server refused the mail, or some addressees of it, and says why.
    void refused(const QString& reason);
    // New mail came in while online (the inbox has been asked for again).
    void newMail(const QString& sender);

  private:
    void setRows(QVector<MailRow> rows);

    ServerSession& server_;
    QVector<MailRow> rows_;
};

}  // namespace tavren
