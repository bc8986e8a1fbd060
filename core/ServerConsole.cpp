#include "core/ServerConsole.h"

#include <QTime>

#include "core/Prompter.h"
#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"

namespace tavren {

ServerConsole::ServerConsole(Prompter& prompter, ServerLink& link, QObject* parent)
    : QObject(parent), prompter_(prompter), link_(link) {}

void ServerConsole::addLine(const QString& text) {
    const QTime now = QTime::currentTime();
    const int hour12 = now.hour() % 12 == 0 ? 12 : now.hour() % 12;
    const QString line = QStringLiteral("[%1:%2:%3 %4] ")
                             .arg(hour12)
                             .arg(now.minute(), 2, 10, QLatin1Char('0'))
                             .arg(now.second(), 2, 10, QLatin1Char('0'))
                             .arg(now.hour() < 12 ? QLatin1String("AM") : QLatin1String("PM")) +
                         text;
    lines_ << line;
    if (lines_.size() > kMaxLines) {
        lines_.remove(0, lines_.size() - kMaxLines);
    }
    emit lineAdded(line);
}

bool ServerConsole::submit(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        return false;
    }
    if (!link_.isConnected()) {
        addLine(QStringLiteral("Not connected: \"%1\" was not sent.").arg(trimmed));
        return false;
    }
    addLine(QStringLiteral("> ") + trimmed);
    link_.SendPacket(trimmed, protocol::client_to_server::kAwayStatus);
    return true;
}

void ServerConsole::clear() {
    lines_.clear();
    emit cleared();
}

void ServerConsole::onNotice(const ServerMessage& message) {
    addLine(QStringLiteral("Attention! ") + message.payload);
    prompter_.message(message.payload, QStringLiteral("Attention!"), Prompter::Icon::Information);
}

void ServerConsole::onSuccessNotice(const ServerMessage& message) {
    addLine(QStringLiteral("Success! ") + message.payload);
    prompter_.message(message.payload, QStringLiteral("Success!"), Prompter::Icon::Information);
}

void ServerConsole::onListUpdate(const ServerMessage& message) {
    list_ = message.payload.split(QString::fromLatin1(protocol::kRecordFieldSeparator.data(),
                                                      protocol::kRecordFieldSeparator.size()),
                                  Qt::SkipEmptyParts);
    addLine(QStringLiteral("List updated (%1 entries).").arg(list_.size()));
    emit listUpdated(list_);
}

}  // namespace tavren
