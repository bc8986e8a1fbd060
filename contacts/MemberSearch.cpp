#include "contacts/MemberSearch.h"

#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace {
const QChar kFieldSeparator(1);
const QChar kRecordSeparator(2);
// The server says with the second code that it sent fewer members than it found.
constexpr std::int16_t kCutAnswer = 2;
}  // namespace

MemberSearch::MemberSearch(ServerSession& server, QObject* parent)
    : QObject(parent), server_(server) {
    server_.dispatcher().route(protocol::CodePair{protocol::kSearchGroup, 1},
                               [this](const ServerMessage& m) { onResults(m); });
    connect(&server_, &ServerSession::onlineChanged, this, [this](bool online) {
        // An answer that can no longer come must not leave the caption searching for ever.
        if (!online && searching_) {
            searching_ = false;
            emit finished(static_cast<int>(results_.size()));
        }
    });
}

QStringList MemberSearch::fields() {
    return {QStringLiteral("Name"), QStringLiteral("Email"), QStringLiteral("Profile")};
}

QStringList MemberSearch::columnTitles() {
    return {QStringLiteral("Name"),         QStringLiteral("Status"),  QStringLiteral("Channel"),
            QStringLiteral("Member Since"), QStringLiteral("Profile"), QStringLiteral("Link")};
}

QString MemberSearch::idleCaption() {
    return QStringLiteral("Tavren Member Search.");
}

QString MemberSearch::searchingCaption(int step) {
    return QStringLiteral("Tavren Member Search. (Searching") +
           QString(qBound(0, step, 3), QLatin1Char('.')) + QLatin1Char(')');
}

QString MemberSearch::doneCaption(int results) {
    return QStringLiteral("Tavren Member Search. (Done. ") + QString::number(results) +
           QStringLiteral(" Results.. )");
}

bool MemberSearch::search(const QString& field, const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || !server_.online()) {
        return false;
    }
    server_.link().SendPacket(field + kFieldSeparator + trimmed,
                              protocol::client_to_server::kMemberSearch);
    searching_ = true;
    emit started();
    return true;
}

void MemberSearch::onResults(const ServerMessage& message) {
    results_.clear();
    for (const QString& record : message.payload.split(kRecordSeparator, Qt::SkipEmptyParts)) {
        QStringList fields = record.split(kFieldSeparator);
        while (fields.size() > kMostFields) {
            fields[kMostFields - 1] += kFieldSeparator + fields.takeAt(kMostFields);
        }
        if (!fields.value(Name).isEmpty()) {
            results_.push_back(fields);
        }
    }
    cut_ = message.code.cmd2 == kCutAnswer;
    searching_ = false;
    emit finished(static_cast<int>(results_.size()));
}

}  // namespace tavren
