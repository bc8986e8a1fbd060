// The updater: the checksum from the server's notice, the download with progress, cancel and a
// wrong checksum against a local HTTP server, and the window that shows it.
#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "core/ClientSession.h"
#include "core/UpdateDownload.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "core/ui/ChatUpdate.h"
#include "support/ScriptedPrompter.h"
#include "web/LocalHttpServer.h"

namespace tavren {
namespace {

QByteArray installerBytes() {
    QByteArray bytes;
    for (int i = 0; i < 256 * 1024; ++i) {
        bytes += char(i * 7 % 251);
    }
    return bytes;
}

QByteArray sha256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

// Everything in the updates folder, temporary files included.
QStringList leftInFolder(const QString& root) {
    return QDir(UpdateDownload::folder(root))
        .entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

TEST(UpdateDownloadTest, ChecksumsAndFileNamesAreReadSafely) {
    const QByteArray sum(64, 'a');
    EXPECT_EQ(UpdateDownload::parseChecksum(QStringLiteral("sha256=") + QString(64, 'A')), sum);
    EXPECT_EQ(UpdateDownload::parseChecksum(QString(64, 'a')), sum);
    for (const QString& bad :
         {QString(), QStringLiteral("sha256="), QString(63, 'a'), QString(65, 'a'),
          QStringLiteral("md5=") + QString(32, 'a'), QString(63, 'a') + QLatin1Char('g')}) {
        EXPECT_TRUE(UpdateDownload::parseChecksum(bad).isEmpty()) << bad.toStdString();
    }
    EXPECT_EQ(
        UpdateDownload::fileNameFor(QUrl("https://x.example/dl/tavren-setup-1.2.0.exe"), "1.2.0"),
        QStringLiteral("tavren-setup-1.2.0.exe"));
    EXPECT_EQ(UpdateDownload::fileNameFor(QUrl("https://x.example/dl/..%2F..%2Fevil.sh"), "1.2"),
              QStringLiteral("evil.sh"));
    EXPECT_EQ(UpdateDownload::fileNameFor(QUrl("https://x.example/"), "1.2.0"),
              QStringLiteral("tavren-setup-1.2.0"));
    EXPECT_EQ(UpdateDownload::fileNameFor(QUrl("https://x.example/.."), "../1"),
              QStringLiteral("tavren-setup-..1"));  // no separator survives
}

TEST(UpdateDownloadTest, TheNoticesChecksumReachesTheDownloadAndNoRemindsNoMore) {
    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                          ConnectionOptions::deployment(), prompter);
    QStringList wanted;
    QObject::connect(&session.server().login(), &LoginFlow::updateDownloadRequested,
                     [&](const QString& url, const QString& version, const QString& sum) {
                         wanted << url + QLatin1Char('|') + version + QLatin1Char('|') + sum;
                     });
    const auto notice = [&](const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{protocol::server_to_client::kUpdateNotice, WireText::toWire(payload)});
    };
    prompter.answers = {Prompter::Answer::Yes, Prompter::Answer::Yes, Prompter::Answer::No};
    notice(QStringLiteral("1.2.0;https://x.example/setup.exe;sha256=") + QString(64, 'B'));
    notice(QStringLiteral("1.2.0;https://x.example/setup.exe;sha256=nothex"));
    ASSERT_EQ(wanted.size(), 2);
    EXPECT_EQ(wanted[0], QStringLiteral("https://x.example/setup.exe|1.2.0|") + QString(64, 'b'));
    EXPECT_EQ(wanted[1], QStringLiteral("https://x.example/setup.exe|1.2.0|"));
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Upgrade to 1.2.0 Now"));
    // "No" is the don't-remind-me choice: "nag-1.2.0" is set and the version is not offered again.
    notice(QStringLiteral("1.2.0;https://x.example/setup.exe"));
    EXPECT_EQ(session.store().value(QStringLiteral("General"), QStringLiteral("nag-1.2.0")),
              QStringLiteral("1"));
    const auto questions = prompter.asked.size();
    notice(QStringLiteral("1.2.0;https://x.example/setup.exe"));
    EXPECT_EQ(prompter.asked.size(), questions);
    notice(QStringLiteral("1.3.0;https://x.example/setup.exe"));  // a newer one is offered
    EXPECT_EQ(prompter.asked.size(), questions + 1);
}

class DownloadFixture : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(root.isValid()); }

    // Runs a download to its end and returns (ok, error).
    std::pair<bool, QString> run(UpdateDownload& download, const QString& path,
                                 const QByteArray& sum) {
        QSignalSpy finished(&download, &UpdateDownload::finished);
        download.start(server.url(path), QStringLiteral("1.2.0"), sum);
        if (finished.isEmpty()) {
            EXPECT_TRUE(finished.wait(15000));
        }
        if (finished.isEmpty()) {
            return {false, QStringLiteral("no end")};
        }
        return {finished[0][0].toBool(), finished[0][1].toString()};
    }

    QTemporaryDir root;
    test::LocalHttpServer server;
    QNetworkAccessManager network;
};

TEST_F(DownloadFixture, TheInstallerArrivesWithProgressAndOnlyWhenItsChecksumIsRight) {
    const QByteArray installer = installerBytes();
    test::LocalHttpServer::Answer slow =
        test::LocalHttpServer::reply(200, installer, "application/octet-stream");
    slow.pieceBytes = 32 * 1024;
    slow.pieceDelayMs = 20;
    server.answer("/setup-1.2.0.exe", slow);

    UpdateDownload download(network, root.path());
    QSignalSpy progressed(&download, &UpdateDownload::progressed);
    const auto [ok, error] = run(download, "/setup-1.2.0.exe", sha256(installer));
    EXPECT_TRUE(ok) << error.toStdString();
    EXPECT_EQ(download.state(), UpdateDownload::State::Done);
    EXPECT_GE(progressed.count(), 4);  // it came in pieces, and each was told
    EXPECT_EQ(progressed.last()[0].toLongLong(), installer.size());
    EXPECT_EQ(progressed.last()[1].toLongLong(), installer.size());
    QFile file(download.path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), installer);
    EXPECT_EQ(leftInFolder(root.path()), QStringList{QStringLiteral("setup-1.2.0.exe")});

    // The same bytes against another checksum: refused, and nothing is left of them.
    server.answer("/other.exe", test::LocalHttpServer::reply(200, installer));
    UpdateDownload wrong(network, root.path());
    const auto [wrongOk, wrongError] = run(wrong, "/other.exe", QByteArray(64, 'a'));
    EXPECT_FALSE(wrongOk);
    EXPECT_TRUE(wrongError.contains(QStringLiteral("checksum differs")))
        << wrongError.toStdString();
    EXPECT_EQ(leftInFolder(root.path()), QStringList{QStringLiteral("setup-1.2.0.exe")});
}

TEST_F(DownloadFixture, CancelStallsErrorsAndRefusalsLeaveNothingHalfWritten) {
    const QByteArray installer = installerBytes();
    test::LocalHttpServer::Answer slow = test::LocalHttpServer::reply(200, installer);
    slow.pieceBytes = 8 * 1024;
    slow.pieceDelayMs = 50;
    server.answer("/slow.exe", slow);
    UpdateDownload download(network, root.path());
    QSignalSpy progressed(&download, &UpdateDownload::progressed);
    QSignalSpy finished(&download, &UpdateDownload::finished);
    download.start(server.url("/slow.exe"), QStringLiteral("1.2.0"), sha256(installer));
    ASSERT_TRUE(progressed.wait(5000));
    download.cancel();
    ASSERT_EQ(finished.count(), 1);
    EXPECT_FALSE(finished[0][0].toBool());
    EXPECT_EQ(download.state(), UpdateDownload::State::Cancelled);
    EXPECT_TRUE(leftInFolder(root.path()).isEmpty())
        << leftInFolder(root.path()).join(",").toStdString();

    // Half the file, then silence.
    test::LocalHttpServer::Answer stalled = test::LocalHttpServer::reply(200, installer);
    stalled.stopAfter = 1000;
    server.answer("/stalled.exe", stalled);
    UpdateDownload stalling(network, root.path());
    stalling.setStallTimeout(500);
    auto [ok, error] = run(stalling, "/stalled.exe", sha256(installer));
    EXPECT_FALSE(ok);
    EXPECT_TRUE(error.contains(QStringLiteral("stalled"))) << error.toStdString();

    UpdateDownload missing(network, root.path());
    std::tie(ok, error) = run(missing, "/gone.exe", sha256(installer));
    EXPECT_FALSE(ok);
    EXPECT_TRUE(error.contains(QStringLiteral("404"))) << error.toStdString();

    UpdateDownload noSum(network, root.path());
    std::tie(ok, error) = run(noSum, "/slow.exe", QByteArray());
    EXPECT_FALSE(ok);
    EXPECT_TRUE(error.contains(QStringLiteral("no checksum"))) << error.toStdString();
    EXPECT_EQ(server.requests("/gone.exe"), 1);
    EXPECT_TRUE(leftInFolder(root.path()).isEmpty());
}

TEST_F(DownloadFixture, TheWindowShowsTheDownloadAndOpensTheCheckedInstaller) {
    const QByteArray installer = installerBytes();
    test::LocalHttpServer::Answer slow = test::LocalHttpServer::reply(200, installer);
    slow.pieceBytes = 16 * 1024;
    slow.pieceDelayMs = 20;
    server.answer("/setup.exe", slow);
    ChatUpdate window(root.path());
    QStringList opened;
    window.setOpener([&](const QString& path) {
        opened << path;
        return true;
    });
    window.show();
    QSignalSpy finished(&window.download(), &UpdateDownload::finished);
    QSignalSpy progressed(&window.download(), &UpdateDownload::progressed);
    window.start(server.url("/setup.exe").toString(), QStringLiteral("1.2.0"),
                 QString::fromLatin1(sha256(installer)));
    EXPECT_EQ(window.statusText(), QStringLiteral("Downloading Tavren 1.2.0.."));
    ASSERT_TRUE(progressed.wait(5000));
    EXPECT_TRUE(window.detailText().contains(QStringLiteral(" of ")))
        << window.detailText().toStdString();
    ASSERT_TRUE(finished.wait(15000));
    EXPECT_EQ(window.statusText(), QStringLiteral("Downloaded and checked."));
    ASSERT_EQ(opened.size(), 1);
    EXPECT_TRUE(opened[0].endsWith(QStringLiteral("updates/setup.exe"))) << opened[0].toStdString();
    EXPECT_EQ(window.findChild<QPushButton*>(QStringLiteral("cancel"))->text(),
              QStringLiteral("&Close"));
}

}  // namespace
}  // namespace tavren
