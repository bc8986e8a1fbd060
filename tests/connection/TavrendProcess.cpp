#include "TavrendProcess.h"

#include <QDir>
#include <QRegularExpression>

#include "Wait.h"

#ifdef Q_OS_LINUX
#include <sys/prctl.h>

#include <csignal>
#endif

namespace tavren::test {

TavrendProcess::TavrendProcess(QString databasePath) : databasePath_(std::move(databasePath)) {
    endWithParent(process_);
}

void TavrendProcess::endWithParent(QProcess& process) {
#ifdef Q_OS_LINUX
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
#else
    (void)process;
#endif
}

TavrendProcess::~TavrendProcess() {
    stop();
}

QString TavrendProcess::binary() {
    return QDir(qEnvironmentVariable("TAVREN_BIN_DIR")).filePath(QStringLiteral("tavrend"));
}

bool TavrendProcess::start(const QStringList& options, quint16 port) {
    process_.start(binary(),
                   QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:%1").arg(port),
                               QStringLiteral("--db"), databasePath_} +
                       options);
    static const QRegularExpression listening(QStringLiteral("listening on [^\\s:]+:(\\d+)"));
    QString output;
    port_ = 0;
    waitUntil([&] {
        output += QString::fromUtf8(process_.readAllStandardOutput());
        port_ = static_cast<quint16>(listening.match(output).captured(1).toUInt());
        return port_ != 0 || process_.state() == QProcess::NotRunning;
    });
    log_ += QString::fromUtf8(process_.readAllStandardError());
    return port_ != 0;
}

void TavrendProcess::stop() {
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.terminate();
    if (!process_.waitForFinished(10000)) {
        process_.kill();
        process_.waitForFinished(5000);
    }
    log_ += QString::fromUtf8(process_.readAllStandardError());
}

QString TavrendProcess::log() {
    log_ += QString::fromUtf8(process_.readAllStandardError());
    return log_;
}

bool TavrendProcess::addAccount(const QString& name, const QString& password) {
    QProcess add;
    add.start(binary(), {QStringLiteral("--db"), databasePath_, QStringLiteral("account"),
                         QStringLiteral("add"), name, password});
    return add.waitForFinished(30000) && add.exitStatus() == QProcess::NormalExit &&
           add.exitCode() == 0;
}

QString TavrendProcess::fingerprint() const {
    QProcess print;
    print.start(binary(), {QStringLiteral("--db"), databasePath_, QStringLiteral("fingerprint")});
    if (!print.waitForFinished(30000) || print.exitCode() != 0) {
        return QString();
    }
    return QString::fromLatin1(print.readAllStandardOutput()).trimmed();
}

}  // namespace tavren::test
