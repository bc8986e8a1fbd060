#include "contacts/IgnoreList.h"

#include "contacts/LineFile.h"

namespace tavren {

IgnoreList::IgnoreList(const QString& filePath, QObject* parent)
    : QObject(parent), filePath_(filePath) {}

bool IgnoreList::contains(const QString& name) const {
    return names_.contains(name.trimmed(), Qt::CaseInsensitive);
}

std::optional<QString> IgnoreList::admissible(const QString& name, const QStringList& names) {
    const QString clean = LineFile::oneLine(name).trimmed();
    if (clean.isEmpty() || names.contains(clean, Qt::CaseInsensitive)) {
        return std::nullopt;
    }
    return clean;
}

void IgnoreList::setNames(const QStringList& names) {
    names_ = names;
    emit changed();
}

bool IgnoreList::add(const QString& name) {
    const auto clean = admissible(name, names_);
    if (!clean) {
        return false;
    }
    names_.append(*clean);
    emit changed();
    return true;
}

bool IgnoreList::remove(const QString& name) {
    const qsizetype before = names_.size();
    names_.removeIf([&](const QString& listed) {
        return listed.compare(name.trimmed(), Qt::CaseInsensitive) == 0;
    });
    if (names_.size() == before) {
        return false;
    }
    emit changed();
    return true;
}

// The length test comes before trimming: a line must hold more than its apostrophe.
std::optional<QString> IgnoreList::parseLine(const QString& line) {
    if (line.size() <= 1) {
        return std::nullopt;
    }
    const QString name = line.mid(1).trimmed();
    if (name.isEmpty()) {
        return std::nullopt;
    }
    return name;
}

void IgnoreList::load() {
    names_.clear();
    for (const QString& line : LineFile::readLines(filePath_)) {
        if (const auto name = parseLine(line)) {
            names_.append(*name);
        }
    }
    emit changed();
}

bool IgnoreList::save() const {
    QStringList lines;
    for (const QString& name : names_) {
        lines << QLatin1Char('\'') + LineFile::oneLine(name);
    }
    return LineFile::writeLines(filePath_, lines);
}

}  // namespace tavren
