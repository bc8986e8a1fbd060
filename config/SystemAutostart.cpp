#include "config/SystemAutostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>

namespace tavren {

namespace {

// Desktop-entry Exec quoting: an argument with reserved characters goes in double quotes, and
// inside them ", `, $ and \ are escaped with a backslash.
QString quoteExecArgument(const QString& argument) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`=%");
    bool needsQuotes = argument.isEmpty();
    for (const QChar c : argument) {
        needsQuotes = needsQuotes || reserved.contains(c);
    }
    if (!needsQuotes) {
        return argument;
    }
    QString quoted = QStringLiteral("\"");
    for (const QChar c : argument) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') ||
            c == QLatin1Char('\\')) {
            quoted += QLatin1Char('\\');
        }
        quoted += c;
    }
    quoted += QLatin1Char('"');
    // A literal percent sign is doubled in the Exec key, quoted or not.
    return quoted.replace(QLatin1Char('%'), QStringLiteral("%%"));
}

QString programPath() {
    return QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
}

#ifdef Q_OS_WIN
const QString runKey =
    QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run");
const QString runValueName = QStringLiteral("Tavren");
#endif

}  // namespace

SystemAutostart::SystemAutostart() {
#ifndef Q_OS_WIN
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (config.isEmpty()) {
        config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    }
    folder_ = config + QStringLiteral("/autostart");
#endif
}

SystemAutostart::SystemAutostart(const QString& autostartFolder) : folder_(autostartFolder) {}

QString SystemAutostart::entryPath() const {
    return folder_ + QStringLiteral("/tavren.desktop");
}

QString SystemAutostart::desktopEntry(const QString& program, const QString& dataRoot) {
    QString exec = quoteExecArgument(program);
    if (!dataRoot.isEmpty()) {
        exec = QStringLiteral("env ") +
               quoteExecArgument(QStringLiteral("TAVREN_HOME=") + dataRoot) + QLatin1Char(' ') +
               exec;
    }
    return QStringLiteral(
               "[Desktop Entry]\n"
               "Type=Application\n"
               "Name=Tavren Chat Client\n"
               "Comment=Start the Tavren Chat Client when you log in\n"
               "Exec=") +
           exec + QStringLiteral("\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
}

#ifdef Q_OS_WIN

bool SystemAutostart::setEnabled(bool enabled) {
    QSettings run(runKey, QSettings::NativeFormat);
    if (enabled) {
        QString command = QLatin1Char('"') + programPath() + QLatin1Char('"');
        run.setValue(runValueName, command);
    } else {
        run.remove(runValueName);
    }
    run.sync();
    return run.status() == QSettings::NoError;
}

bool SystemAutostart::isEnabled() const {
    QSettings run(runKey, QSettings::NativeFormat);
    return run.contains(runValueName);
}

#else

bool SystemAutostart::setEnabled(bool enabled) {
    if (!enabled) {
        return !QFile::exists(entryPath()) || QFile::remove(entryPath());
    }
    if (!QDir().mkpath(folder_)) {
        return false;
    }
    QSaveFile file(entryPath());
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(desktopEntry(programPath(), qEnvironmentVariable("TAVREN_HOME")).toUtf8());
    return file.commit();
}

bool SystemAutostart::isEnabled() const {
    return QFile::exists(entryPath());
}

#endif

}  // namespace tavren
