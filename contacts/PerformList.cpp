#include "contacts/PerformList.h"

#include <algorithm>

#include "contacts/LineFile.h"

namespace tavren {

namespace {

QString comparable(const QString& command) {
    return command.trimmed().toLower();
}

bool listed(const QStringList& commands, const QString& command) {
    const QString wanted = comparable(command);
    return std::any_of(commands.begin(), commands.end(),
                       [&](const QString& each) { return comparable(each) == wanted; });
}

}  // namespace

PerformList::PerformList(const QString& filePath, QObject* parent)
    : QObject(parent), filePath_(filePath) {}

void PerformList::setCommands(const QStringList& commands) {
    commands_ = commands;
    emit changed();
}

bool PerformList::contains(const QString& command) const {
    return listed(commands_, command);
}

std::optional<QString> PerformList::admissible(const QString& command,
                                               const QStringList& commands) {
    const QString clean = LineFile::oneLine(command).trimmed();
    if (!clean.startsWith(QLatin1Char('/')) || listed(commands, clean)) {
        return std::nullopt;
    }
    return clean;
}

bool PerformList::add(const QString& command) {
    const auto clean = admissible(command, commands_);
    if (!clean) {
        return false;
    }
    commands_.append(*clean);
    emit changed();
    return true;
}

// Only a line whose second character is "/" holds a command; the rest of the line, trimmed, is
// the command.
std::optional<QString> PerformList::parseLine(const QString& line) {
    if (line.size() < 2 || line.at(1) != QLatin1Char('/')) {
        return std::nullopt;
    }
    return line.mid(1).trimmed();
}

void PerformList::load() {
    commands_.clear();
    for (const QString& line : LineFile::readLines(filePath_)) {
        const auto command = parseLine(line);
        if (command && !contains(*command)) {
            commands_.append(*command);
        }
    }
    emit changed();
}

bool PerformList::save() const {
    QStringList lines;
    for (const QString& command : commands_) {
        lines << QLatin1Char('\'') + LineFile::oneLine(command);
    }
    return LineFile::writeLines(filePath_, lines);
}

}  // namespace tavren
