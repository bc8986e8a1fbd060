#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace tavren::test {

// The real server, started from the build's bin folder ($TAVREN_BIN_DIR) on a loopback port
// with its own database, and stopped (SIGTERM) when the test is done with it.
class TavrendProcess {
  public:
    explicit TavrendProcess(QString databasePath);
    ~TavrendProcess();

    static QString binary();

    // Starts serving on `port` (0: any free port) and waits for the "listening on" line.
    bool start(const QStringList& options = {}, quint16 port = 0);
    void stop();
    quint16 port() const { return port_; }
    // `tavrend --db FILE account add NAME PASSWORD`
    bool addAccount(const QString& name, const QString& password);
    // `tavrend --db FILE fingerprint`: the SHA-256 of the server's own certificate.
    QString fingerprint() const;
    // Everything the server wrote to stderr so far.
    QString log();

    // A helper process must not outlive a test binary that crashed.
    static void endWithParent(QProcess& process);

  private:
    QString databasePath_;
    QProcess process_;
    quint16 port_ = 0;
    QString log_;
};

}  // namespace tavren::test
