#include "config/SchemeLibrary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "core/Prompter.h"

namespace tavren {

namespace {

// Far larger than any real scheme (14 numbers); a bigger file is not a scheme.
constexpr qint64 LargestSchemeFile = 4096;

}  // namespace

SchemeLibrary::SchemeLibrary(const QString& dataRoot)
    : folder_(dataRoot + QStringLiteral("/schemes")) {}

QString SchemeLibrary::safeName(const QString& name) {
    QString safe = name.trimmed();
    for (QChar& c : safe) {
        if (c.unicode() < 32 || QStringLiteral("/\\:*?\"<>|").contains(c)) {
            c = QLatin1Char('_');
        }
    }
    // Leading dots would hide the file or, as "." and "..", name a folder.
    for (qsizetype i = 0; i < safe.size() && safe[i] == QLatin1Char('.'); ++i) {
        safe[i] = QLatin1Char('_');
    }
    return safe;
}

QString SchemeLibrary::filePath(const QString& name) const {
    return folder_ + QLatin1Char('/') + safeName(name) + ColorScheme::extension();
}

QStringList SchemeLibrary::names() const {
    QDir dir(folder_);
    QStringList names;
    const auto files =
        dir.entryInfoList({QStringLiteral("*") + ColorScheme::extension()},
                          QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& info : files) {
        names << info.completeBaseName();
    }
    return names;
}

bool SchemeLibrary::exists(const QString& name) const {
    return QFileInfo(filePath(name)).isFile();
}

std::optional<ColorScheme> SchemeLibrary::read(const QString& name) const {
    if (safeName(name).isEmpty()) {
        return std::nullopt;
    }
    QFile file(filePath(name));
    if (!file.open(QIODevice::ReadOnly) || file.size() > LargestSchemeFile) {
        return std::nullopt;
    }
    return ColorScheme::parse(QString::fromLatin1(file.read(LargestSchemeFile)));
}

bool SchemeLibrary::write(const QString& name, const ColorScheme& scheme) const {
    if (safeName(name).isEmpty() || !QDir().mkpath(folder_)) {
        return false;
    }
    QSaveFile file(filePath(name));
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(scheme.toText().toLatin1());
    return file.commit();
}

bool SchemeLibrary::remove(const QString& name) const {
    return !safeName(name).isEmpty() && QFile::remove(filePath(name));
}

std::optional<QString> SchemeLibrary::saveAsking(Prompter& prompter,
                                                 const ColorScheme& scheme) const {
    QDir().mkpath(folder_);
    const auto typed = prompter.askText(QStringLiteral("Name of color scheme.."),
                                        QStringLiteral("Scheme Name"), QStringLiteral("Undefined"));
    if (!typed) {
        return std::nullopt;
    }
    const QString name = safeName(*typed);
    if (name.isEmpty()) {
        return std::nullopt;
    }
    if (exists(name)) {
        const auto answer = prompter.askYesNo(
            QStringLiteral("Scheme with that name already exists, Do you wish to overwrite?."),
            QStringLiteral("Scheme Already Exists!"));
        if (answer != Prompter::Answer::Yes) {
            return std::nullopt;
        }
        remove(name);
    }
    if (!write(name, scheme)) {
        return std::nullopt;
    }
    return name;
}

bool SchemeLibrary::removeAsking(Prompter& prompter, const QString& name) const {
    if (name.isEmpty()) {
        return false;
    }
    const auto answer =
        prompter.askYesNo(QStringLiteral("Do you wish to delete ") + name + QStringLiteral("?"),
                          QStringLiteral("Delete Scheme?"));
    return answer == Prompter::Answer::Yes && remove(name);
}

std::optional<ColorScheme> SchemeLibrary::applyAsking(Prompter& prompter,
                                                      const QString& name) const {
    if (!exists(name)) {
        return std::nullopt;
    }
    auto scheme = read(name);
    if (!scheme) {
        prompter.message(QStringLiteral("Improper Tavren Scheme"), QStringLiteral("Error"),
                         Prompter::Icon::Critical);
    }
    return scheme;
}

}  // namespace tavren
