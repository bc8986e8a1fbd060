#include "core/ServerConsole.h"

#include <QTime>

#include "core/Prompter.h"
#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"

namespace tavren {

namespace {
// Entries of a list stand out under their heading line.
const QString kListIndent = QStringLiteral("    ");
}  // namespace

ServerConsole::ServerConsole(Prompter& prompter, ServerLink& link, QObject* parent)
    : QObject(parent), prompter_(prompter), link_(link) {
    // Answers to lines typed on an earlier connection will never come.
    connect(&link_, &ServerLink::connected, this, [this] { awaitingAnswers_ = 0; });
}

void ServerConsole::addLine(const QString& text) {
    const QTime now = QTime::currentTime();
    const int hour12 = now.hour() % 12 == 0 ? 12 : now.hour() % 12;
    const QString line = QStringLiteral("[%1:%2:%3 %4] ")
                             .arg(hour12)
                             .arg(now.minute(), 2, 10, QLatin1Char('0'))
                             .arg(now.second(), 2, 10, QLatin1Char('0'))
                             .arg(now.hour() < 12 ? QLatin1String("AM") : QLatin1String("PM")) +
                         text;
    addPlainLine(line);
}

void ServerConsole::addPlainLine(const QString& text) {
    lines_ << text;
    if (lines_.size() > kMaxLines) {
        lines_.remove(0, lines_.size() - kMaxLines);
    }
    emit lineAdded(text);
}

bool ServerConsole::answeredElsewhere(const QString& line) {
    const QString word = line.section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty).toLower();
    return word == QLatin1String("/away") || word == QLatin1String("/back");
}

bool ServerConsole::takeAnswer() {
    if (awaitingAnswers_ == 0) {
        return false;
    }
    --awaitingAnswers_;
    return true;
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
    if (!answeredElsewhere(trimmed)) {
        ++awaitingAnswers_;
    }
    return true;
}

void ServerConsole::clear() {
    lines_.clear();
    emit cleared();
}

void ServerConsole::onNotice(const ServerMessage& message) {
    addLine(QStringLiteral("Attention! ") + message.payload);
    if (!takeAnswer()) {
        prompter_.message(message.payload, QStringLiteral("Attention!"),
                          Prompter::Icon::Information);
    }
}

void ServerConsole::onSuccessNotice(const ServerMessage& message) {
    addLine(QStringLiteral("Success! ") + message.payload);
    if (!takeAnswer()) {
        prompter_.message(message.payload, QStringLiteral("Success!"), Prompter::Icon::Information);
    }
}

void ServerConsole::onListUpdate(const ServerMessage& message) {
    list_ = message.payload.split(QString::fromLatin1(protocol::kRecordFieldSeparator.data(),
                                                      protocol::kRecordFieldSeparator.size()),
                                  Qt::SkipEmptyParts);
    takeAnswer();
    if (list_.isEmpty()) {
        addLine(QStringLiteral("The server sent an empty list."));
    } else {
        addLine(list_.size() == 1
                    ? QStringLiteral("The server sent a list of 1 entry:")
                    : QStringLiteral("The server sent a list of %1 entries:").arg(list_.size()));
        for (const QString& entry : std::as_const(list_)) {
            addPlainLine(kListIndent + entry);
        }
    }
    emit listUpdated(list_);
}

}  // namespace tavren
