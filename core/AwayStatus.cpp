#include "core/AwayStatus.h"

#include "contacts/AwayMessages.h"
#include "core/Prompter.h"
#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"

namespace tavren {

AwayStatus::AwayStatus(ServerLink& link, QObject* parent) : QObject(parent), link_(link) {}

void AwayStatus::goAway(const QString& text) {
    link_.SendPacket(QStringLiteral("/away ") + text, protocol::client_to_server::kAwayStatus);
}

void AwayStatus::comeBack() {
    link_.SendPacket(QStringLiteral("/back"), protocol::client_to_server::kAwayStatus);
}

namespace {

// A saved message is one line of a file whose fields are split at U+0001: control characters
// (line breaks, the separator) become blanks.
QString oneLine(QString text) {
    for (QChar& c : text) {
        if (c.unicode() < 0x20) {
            c = QLatin1Char(' ');
        }
    }
    return text.trimmed();
}

}  // namespace

bool AwayStatus::goAwayWithNew(const QString& rawName, const QString& rawText, bool keep,
                               AwayMessages& saved, Prompter& prompter) {
    const QString name = oneLine(rawName);
    const QString text = oneLine(rawText);
    if (name.isEmpty() || text.isEmpty()) {
        prompter.message(QStringLiteral("Please Enter a Name and check that the new away message "
                                        "is there..."),
                         QStringLiteral("Away Message..."), Prompter::Icon::Information);
        return false;
    }
    if (keep) {
        saved.add({name, text});
        if (!saved.save()) {
            prompter.message(QStringLiteral("The away message could not be saved to ") +
                                 saved.filePath() + QStringLiteral("."),
                             QStringLiteral("Away Message..."), Prompter::Icon::Warning);
        }
    }
    goAway(text);
    return true;
}

void AwayStatus::reset() {
    const bool wasAway = away_;
    away_ = false;
    message_.clear();
    if (wasAway) {
        emit changed(false);
    }
}

void AwayStatus::onAwayState(const ServerMessage& message) {
    const qsizetype separator = message.payload.indexOf(QLatin1Char(';'));
    const QString flag = separator < 0 ? message.payload : message.payload.left(separator);
    away_ = flag == QLatin1String(protocol::kTrueText.data(), protocol::kTrueText.size());
    message_ = separator < 0 ? QString() : message.payload.mid(separator + 1);
    emit changed(away_);
}

}  // namespace tavren
