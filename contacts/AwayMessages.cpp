#include "contacts/AwayMessages.h"

#include "contacts/LineFile.h"

namespace tavren {

namespace {

const QChar fieldSeparator(1);

}  // namespace

AwayMessages::AwayMessages(const QString& filePath, QObject* parent)
    : QObject(parent), filePath_(filePath), entries_(defaults()) {}

QList<AwayMessage> AwayMessages::defaults() {
    // "they" is how the stock message has always read; people expect it word for word.
    return {
        {QStringLiteral("Default Away Message.."), QStringLiteral("I'm away from they computer.")},
        {QStringLiteral("Playing a Game.."), QStringLiteral("I'm playing a game right now.")}};
}

void AwayMessages::setEntries(const QList<AwayMessage>& entries) {
    entries_ = entries;
    emit changed();
}

void AwayMessages::add(const AwayMessage& message) {
    entries_.append(message);
    emit changed();
}

// The line is trimmed before its leading apostrophe is dropped; the rest splits at every U+0001
// and only the first two pieces count.
std::optional<AwayMessage> AwayMessages::parseLine(const QString& line) {
    const QString entry = line.trimmed().mid(1);
    if (entry.isEmpty()) {
        return std::nullopt;
    }
    const QStringList pieces = entry.split(fieldSeparator);
    return AwayMessage{pieces.value(0), pieces.value(1)};
}

QString AwayMessages::formatLine(const AwayMessage& message) {
    // A separator inside either field would move or cut text on the next read.
    QString name = LineFile::oneLine(message.name).replace(fieldSeparator, QLatin1Char(' '));
    QString text = LineFile::oneLine(message.text).replace(fieldSeparator, QLatin1Char(' '));
    return QLatin1Char('\'') + name + fieldSeparator + text;
}

void AwayMessages::load() {
    entries_.clear();
    for (const QString& line : LineFile::readLines(filePath_)) {
        if (const auto message = parseLine(line)) {
            entries_.append(*message);
        }
    }
    if (entries_.isEmpty()) {
        entries_ = defaults();
    }
    emit changed();
}

bool AwayMessages::save() const {
    QStringList lines;
    for (const AwayMessage& message : entries_) {
        lines << formatLine(message);
    }
    return LineFile::writeLines(filePath_, lines);
}

}  // namespace tavren
