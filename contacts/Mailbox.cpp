#include "contacts/Mailbox.h"

#include "contacts/MailText.h"
#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

namespace {

const QChar kFieldSeparator(1);
const QChar kRecordSeparator(2);
// Field positions of an inbox record, as the server writes them.
enum InboxField { Sender, Subject, SentTime, Body, Id };

}  // namespace

Mailbox::Mailbox(ServerSession& server, QObject* parent) : QObject(parent), server_(server) {
    using Message = const ServerMessage&;
    ServerDispatcher& dispatcher = server_.dispatcher();
    dispatcher.route(in::kMailList, [this](Message m) { onMailList(m); });
    dispatcher.route(in::kMailSent, [this](Message m) { onMailSent(m); });
    dispatcher.route(in::kNewMail, [this](Message m) { onNewMail(m); });
    dispatcher.route(in::kMailContents, [this](Message m) { onMailCount(m); });
    dispatcher.route(in::kMailError, [this](Message m) { onMailError(m); });
    // Mail belongs to the account that is online; offline there is none to show.
    connect(&server_, &ServerSession::onlineChanged, this, [this](bool online) {
        if (!online) {
            setRows({});
        }
    });
}

QString Mailbox::inboxCaption() const {
    return QStringLiteral("Inbox (") + QString::number(count()) + QLatin1Char(')');
}

QString Mailbox::menuCaption() const {
    return QStringLiteral("&Read Messages (") + QString::number(count()) + QStringLiteral(")..");
}

Mailbox::SendResult Mailbox::send(const QString& toField, const QString& subject,
                                  const QString& body) {
    const QStringList addressees = MailText::addressees(toField);
    if (addressees.isEmpty()) {
        return SendResult::NoAddressee;
    }
    if (MailText::bodyToWire(body).isEmpty() && MailText::subjectToWire(subject).isEmpty()) {
        return SendResult::Empty;
    }
    if (!server_.online()) {
        return SendResult::Offline;
    }
    server_.link().SendPacket(composePayload(addressees, subject, body), out::kSendMail);
    return SendResult::Sent;
}

QString Mailbox::composePayload(const QStringList& addressees, const QString& subject,
                                const QString& body) {
    const QString wireBody = MailText::bodyToWire(body);
    const QString wireSubject = MailText::subjectToWire(subject);
    QString payload;
    for (const QString& name : addressees) {
        payload +=
            name + kFieldSeparator + wireBody + kFieldSeparator + wireSubject + kRecordSeparator;
    }
    return payload;
}

void Mailbox::remove(const QList<int>& positions) {
    QString payload;
    QVector<MailRow> kept;
    for (int i = 0; i < rows_.size(); ++i) {
        if (positions.contains(i)) {
            payload += rows_[i].fields.join(kFieldSeparator) + kRecordSeparator;
        } else {
            kept.push_back(rows_[i]);
        }
    }
    if (payload.isEmpty()) {
        return;
    }
    server_.link().SendPacket(payload, out::kDeleteMail);
    setRows(std::move(kept));
}

void Mailbox::refresh() {
    server_.link().SendPacket(QStringLiteral("Mail-Recv"), out::kMailReceive);
}

void Mailbox::onMailList(const ServerMessage& message) {
    QVector<MailRow> rows;
    for (const QString& record : message.payload.split(kRecordSeparator, Qt::SkipEmptyParts)) {
        const QStringList fields = record.split(kFieldSeparator);
        MailRow row;
        row.fields = fields;
        row.sender = fields.value(Sender);
        row.subject = fields.value(Subject);
        row.sentTime = MailText::sentTime(fields.value(SentTime));
        row.body = fields.value(Body);
        row.id = fields.value(Id);
        // A record listed twice (in this answer, or already shown) is kept once, as it was.
        const auto known = std::find_if(rows_.cbegin(), rows_.cend(),
                                        [&](const MailRow& other) { return other.sameMail(row); });
        const bool twice = std::any_of(rows.cbegin(), rows.cend(),
                                       [&](const MailRow& other) { return other.sameMail(row); });
        if (!twice) {
            rows.push_back(known != rows_.cend() ? *known : row);
        }
    }
    setRows(std::move(rows));
}

void Mailbox::onMailSent(const ServerMessage& message) {
    emit sent(message.payload.split(QLatin1Char(';'), Qt::SkipEmptyParts));
}

void Mailbox::onNewMail(const ServerMessage& message) {
    refresh();
    emit newMail(message.payload);
}

void Mailbox::onMailCount(const ServerMessage& message) {
    bool ok = false;
    const int kept = message.payload.section(QLatin1Char(';'), 0, 0).toInt(&ok);
    // The server's word is final: a list that does not match it is fetched again.
    if (ok && kept != count()) {
        refresh();
    }
}

void Mailbox::onMailError(const ServerMessage& message) {
    emit refused(message.payload);
}

void Mailbox::setRows(QVector<MailRow> rows) {
    const int before = count();
    const bool same = rows.size() == rows_.size() &&
                      std::equal(rows.cbegin(), rows.cend(), rows_.cbegin(),
                                 [](const MailRow& a, const MailRow& b) { return a.sameMail(b); });
    rows_ = std::move(rows);
    if (!same) {
        emit inboxChanged();
    }
    if (count() != before) {
        emit countChanged(count());
    }
}

}  // namespace tavren
