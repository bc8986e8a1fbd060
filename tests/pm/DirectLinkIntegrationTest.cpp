// Two members send each other files over a direct connection whose handshake the real tavrend
// relays: the offer opens the other's conversation, the connection is TLS with the certificates
// the server relayed (plain with a client that announces none), pictures show inline, a transfer
// cancelled midway leaves nothing behind, and an offer to somebody offline gets the server's
// notice.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "pm/DirectLinks.h"
#include "pm/PrivateChats.h"
#include "rooms/RoomClient.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;

class LinkClient : public RoomClient {
  public:
    LinkClient() {
        QObject::connect(&chats(), &PrivateChats::lineAdded, session.get(),
                         [this](int index, const QString& html) {
                             pmLines.push_back({index, html});
                         });
        links().setFileOpener([this](const QString& path) { opened << path; });
    }
    PrivateChats& chats() { return session->privateChats(); }
    DirectLinks& links() { return session->directLinks(); }
    DirectLink* link(const QString& user) { return links().link(chats().positionOf(user)); }
    QString downloaded(const QString& name) const {
        return QDir(dir.filePath(QStringLiteral("downloaded"))).filePath(name);
    }

    QStringList linesWith(const QString& user) {
        QStringList found;
        const int position = chats().positionOf(user);
        if (position >= 0) {
            for (const auto& [index, html] : pmLines) {
                if (index == chats().conversation(position).index) {
                    found << html;
                }
            }
        }
        return found;
    }
    bool waitForLineWith(const QString& user, const QString& text) {
        return waitUntil([&] { return !linesWith(user).filter(text).isEmpty(); });
    }
    void useOwnPorts(int lower) {
        SettingsValues values = session->settings().values();
        values.lowerRange = lower;
        values.upperRange = lower + 100;
        session->settings().setValues(values);
    }

    std::vector<std::pair<int, QString>> pmLines;
    QStringList opened;
};

class DirectLinkIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        for (const char* name : {"alice", "bob", "carol"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
        ASSERT_TRUE(server->start({QStringLiteral("--ping-interval"), QStringLiteral("1")}));
        const int base = 30000 + static_cast<int>(QCoreApplication::applicationPid() % 100) * 200;
        alice.useOwnPorts(base);
        bob.useOwnPorts(base + 100);
        logIn(alice, "alice");
        logIn(bob, "bob");
    }
    void logIn(LinkClient& client, const char* name) {
        client.logIn(server->port(), QString::fromLatin1(name), QStringLiteral("secret"));
        ASSERT_TRUE(client.waitOnline()) << server->log().toStdString();
    }
    QString write(const QString& name, qint64 size) {
        QFile file(QDir(root.path()).filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        QByteArray chunk(64 * 1024, Qt::Uninitialized);
        for (qsizetype i = 0; i < chunk.size(); ++i) {
            chunk[i] = static_cast<char>(i * 7 + size);
        }
        for (qint64 left = size; left > 0; left -= chunk.size()) {
            file.write(chunk.constData(), qMin<qint64>(left, chunk.size()));
        }
        return file.fileName();
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
    LinkClient alice;
    LinkClient bob;
};

TEST_F(DirectLinkIntegrationTest, AFileAndAPictureCrossThroughTheRelayedHandshake) {
    const QString aliceName = QStringLiteral("alice");
    const QString bobName = QStringLiteral("bob");
    const int atBob = alice.chats().openConversation(bobName);
    // Picking a file asks for the connection; the offer opens Bob's conversation.
    const QString file = write(QStringLiteral("report.tar.gz"), 3 * 1024 * 1024 + 11);
    ASSERT_TRUE(alice.links().sendFile(atBob, file));
    ASSERT_TRUE(
        bob.waitForLineWith(aliceName, QStringLiteral("** Would like to Directly Connect.. **")))
        << server->log().toStdString();
    EXPECT_EQ(bob.link(aliceName)->state(), DirectLink::State::Accept);
    bob.links().activateLink(bob.chats().positionOf(aliceName));
    ASSERT_TRUE(
        alice.waitForLineWith(bobName, QStringLiteral("** Attempting Direct Connection.. **")));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("Connection Established!")));
    // The fingerprints came through the server with the offer and the accept: TLS, and both
    // conversations say so.
    const QString encrypted = QStringLiteral("** Direct connection encrypted (TLS 1.3) **");
    EXPECT_TRUE(bob.waitForLineWith(aliceName, encrypted));
    EXPECT_TRUE(alice.waitForLineWith(bobName, encrypted));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("id='file' title='report.tar.gz'")));
    EXPECT_EQ(QFileInfo(bob.downloaded(QStringLiteral("report.tar.gz"))).size(),
              3 * 1024 * 1024 + 11);
    QFile sent(file);
    QFile got(bob.downloaded(QStringLiteral("report.tar.gz")));
    ASSERT_TRUE(sent.open(QIODevice::ReadOnly) && got.open(QIODevice::ReadOnly));
    EXPECT_TRUE(sent.readAll() == got.readAll());

    // A picture goes the other way and shows inline, held to 400 pixels, on both sides.
    const QString picture = QDir(root.path()).filePath(QStringLiteral("wide.png"));
    QImage wide(500, 300, QImage::Format_RGB32);
    wide.fill(Qt::darkCyan);
    ASSERT_TRUE(wide.save(picture));
    ASSERT_TRUE(bob.links().sendFile(bob.chats().positionOf(aliceName), picture));
    ASSERT_TRUE(alice.waitForLineWith(bobName, QStringLiteral("<img border='1' width='400'")));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("<img border='1' width='400'")));
    const QString shown = alice.downloaded(QStringLiteral("wide.png"));
    EXPECT_EQ(alice.links().shownFiles().picture(QStringLiteral("file:///") + shown).size(),
              QSize(400, 240));
    // Clicking it opens the file; once it is gone, the member is told.
    EXPECT_TRUE(alice.links().openLink(QUrl::fromLocalFile(shown)));
    EXPECT_EQ(alice.opened, QStringList{shown});
    QFile::remove(shown);
    EXPECT_TRUE(alice.links().openLink(QUrl::fromLocalFile(shown)));
    ASSERT_FALSE(alice.prompter.asked.empty());
    EXPECT_EQ(alice.prompter.asked.back().title, QStringLiteral("Error: File Not Found!"));
    // A file no transfer showed is not opened, whatever a link says.
    EXPECT_FALSE(alice.links().openLink(
        QUrl::fromLocalFile(QDir(root.path()).filePath(QStringLiteral("tavrend.db")))));
    // The sender's own file is shown where it is, and opens from there.
    EXPECT_TRUE(alice.links().openLink(QUrl::fromLocalFile(file)));
}

// Bob's client announces no certificate, as an older one does not: the connection is plain, the
// file arrives all the same, and each conversation says that it is not encrypted.
TEST_F(DirectLinkIntegrationTest, AClientThatAnnouncesNoCertificateGetsThePlainTransfer) {
    const QString aliceName = QStringLiteral("alice");
    const QString bobName = QStringLiteral("bob");
    bob.links().setEncrypting(false);
    SettingsValues values = bob.session->settings().values();
    values.autoAccept = true;
    bob.session->settings().setValues(values);
    const QString file = write(QStringLiteral("plain.bin"), 1024 * 1024 + 3);
    ASSERT_TRUE(alice.links().sendFile(alice.chats().openConversation(bobName), file));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("id='file' title='plain.bin'")))
        << server->log().toStdString();
    QFile sent(file);
    QFile got(bob.downloaded(QStringLiteral("plain.bin")));
    ASSERT_TRUE(sent.open(QIODevice::ReadOnly) && got.open(QIODevice::ReadOnly));
    EXPECT_TRUE(sent.readAll() == got.readAll());
    EXPECT_FALSE(
        alice.linesWith(bobName)
            .filter(QStringLiteral(
                "** Direct connection NOT encrypted (bob's client is an older version) **"))
            .isEmpty());
    EXPECT_FALSE(bob.linesWith(aliceName)
                     .filter(QStringLiteral(
                         "** Direct connection NOT encrypted (encryption is off here) **"))
                     .isEmpty());
    EXPECT_TRUE(alice.linesWith(bobName).filter(QStringLiteral("connection encrypted")).isEmpty());
}

TEST_F(DirectLinkIntegrationTest, ATransferCancelledMidwayLeavesBothConversationsAndNoFile) {
    const QString aliceName = QStringLiteral("alice");
    const QString bobName = QStringLiteral("bob");
    SettingsValues values = bob.session->settings().values();
    values.autoAccept = true;
    bob.session->settings().setValues(values);
    const int atBob = alice.chats().openConversation(bobName);
    QFile big(QDir(root.path()).filePath(QStringLiteral("big.iso")));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) && big.resize(qint64{2} << 30));
    big.close();
    ASSERT_TRUE(alice.links().sendFile(atBob, big.fileName()));
    ASSERT_TRUE(waitUntil([&] {
        DirectLink* link = bob.link(aliceName);
        return link != nullptr && link->receiving() && link->incoming().total() > 0;
    }));
    alice.links().pressButton(alice.chats().positionOf(bobName));
    ASSERT_TRUE(alice.waitForLineWith(bobName, QStringLiteral("** File Transfer Aborted **")));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("  ** File Transfer Aborted **")));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("Connection Has Been Lost..")));
    EXPECT_TRUE(QDir(bob.dir.filePath(QStringLiteral("downloaded")))
                    .entryList(QDir::Files | QDir::NoDotAndDotDot)
                    .isEmpty());
    // The conversation goes on.
    bob.chats().submit(bob.chats().positionOf(aliceName), QStringLiteral("still here"));
    EXPECT_TRUE(alice.waitForLineWith(bobName, QStringLiteral("still here")));
}

TEST_F(DirectLinkIntegrationTest, AnOfferToSomebodyOfflineIsAnsweredByTheServer) {
    const int atCarol = alice.chats().openConversation(QStringLiteral("carol"));
    alice.links().activateLink(atCarol);
    EXPECT_TRUE(alice.waitForLineWith(
        QStringLiteral("carol"),
        QStringLiteral("carol is offline; the direct connection was not set up.")));
    // Nobody connects with themselves.
    const int atSelf = alice.chats().openConversation(QStringLiteral("alice"));
    alice.links().activateLink(atSelf);
    ASSERT_FALSE(alice.prompter.asked.empty());
    EXPECT_EQ(alice.prompter.asked.back().text,
              QStringLiteral("You may not connect with yourself!"));
}

}  // namespace
}  // namespace tavren
