// Direct connections on real loopback sockets: two links whose handshake the test relays as the
// server would, and raw peers for what a correct client never does (lying frames, hostile names,
// strangers, a peer that stops reading or goes away mid-file). The links encrypt unless a test
// turns that off, so the transfers here run inside TLS; strangers with certificates of their own
// show that only the announced one gets in.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <memory>

#include "connection/Wait.h"
#include "core/protocol/TransferFrame.h"
#include "pm/DirectLink.h"
#include "pm/FileSender.h"
#include "pm/PeerCertificate.h"
#include "pm/PeerServer.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

using test::runEventsFor;
using test::waitUntil;
using State = DirectLink::State;

QByteArray randomBytes(qint64 size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(static_cast<quint32>(size));
    for (char& byte : bytes) {
        byte = static_cast<char>(generator.bounded(256));
    }
    return bytes;
}

QString writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray frame(const std::string& name, const QByteArray& data) {
    const std::string start =
        *protocol::EncodeTransferStart(name, static_cast<quint64>(data.size()));
    return QByteArray(start.data(), static_cast<qsizetype>(start.size())) + data +
           QByteArray("</data>");
}

// One member's side: a link, its download folder, and everything it said and showed.
struct Side {
    Side(const QString& own, const QString& peer, int lowerPort)
        : link(peer, home.filePath(QStringLiteral("downloaded")), prompter) {
        QDir(home.path()).mkpath(QStringLiteral("downloaded"));
        DirectLink::Options options;
        options.ownName = own;
        options.lowerPort = lowerPort;
        options.upperPort = lowerPort + 200;
        link.setOptions(options);
        QObject::connect(&link, &DirectLink::line, &link,
                         [this](DirectLink::Speaker, const QString& text) { lines << text; });
        QObject::connect(&link, &DirectLink::fileShown, &link,
                         [this](const QString& name, const QString& path) {
                             shown << name;
                             shownPaths << path;
                         });
        QObject::connect(&link, &DirectLink::handshake, &link,
                         [this](int kind, const QString& argument) {
                             if (kind == DirectLink::kFingerprint) {
                                 announced << argument;
                                 return;
                             }
                             sent << QString::number(kind) + QLatin1Char(':') + argument;
                             // A fingerprint goes right before the request or accept it is for.
                             fingerprintWith << (announced.size() > announcedBefore);
                             announcedBefore = announced.size();
                         });
    }
    void setOption(bool DirectLink::Options::*option, bool value) {
        DirectLink::Options options = link.options();
        options.*option = value;
        link.setOptions(options);
    }
    QString downloaded(const QString& name) const {
        return QDir(home.filePath(QStringLiteral("downloaded"))).filePath(name);
    }
    QStringList downloadedFiles() const {
        return QDir(home.filePath(QStringLiteral("downloaded")))
            .entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    }
    bool said(const QString& text) const { return lines.contains(text); }
    bool waitSaid(const QString& text) const {
        return waitUntil([&] { return said(text); });
    }

    QTemporaryDir home;
    test::ScriptedPrompter prompter;
    DirectLink link;
    QStringList lines;
    QStringList shown;
    QStringList shownPaths;
    QStringList sent;
    QStringList announced;
    // For each of `sent`: whether a fingerprint came right before it.
    QList<bool> fingerprintWith;
    qsizetype announcedBefore = 0;
};

// A TLS socket of the test's own on the far side of a link, presenting `certificate` and trusting
// anything (the side under test is the one that must check).
void encryptWith(QSslSocket& socket, const PeerCertificate& certificate) {
    QSslConfiguration configuration = socket.sslConfiguration();
    configuration.setLocalCertificate(certificate.certificate());
    configuration.setPrivateKey(certificate.key());
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    socket.setSslConfiguration(configuration);
}

// The ports of each test's range, away from the defaults and from each other's tests.
int portsFor(int slot) {
    return 21000 + static_cast<int>(QCoreApplication::applicationPid() % 50) * 600 + slot * 200;
}

// Two members, their handshakes relayed as the server relays them: later, and with the sender's
// address added.
class DirectLinkTest : public ::testing::Test {
  protected:
    DirectLinkTest() : alice("alice", "bob", portsFor(0)), bob("bob", "alice", portsFor(1)) {
        relay(alice, bob);
        relay(bob, alice);
    }
    static void relay(Side& from, Side& to) {
        QObject::connect(&from.link, &DirectLink::handshake, &to.link,
                         [&to](int kind, const QString& argument) {
                             QTimer::singleShot(5, &to.link, [&to, kind, argument] {
                                 to.link.onHandshake(kind, argument, QStringLiteral("127.0.0.1"));
                             });
                         });
    }
    void connectBoth() {
        alice.link.request();
        ASSERT_EQ(alice.link.state(), State::Cancel);
        ASSERT_TRUE(waitUntil([&] { return bob.link.state() == State::Accept; }));
        bob.link.accept();
        ASSERT_TRUE(waitUntil([&] {
            return alice.link.state() == State::Close && bob.link.state() == State::Close;
        }));
    }

    Side alice;
    Side bob;
};

TEST_F(DirectLinkTest, TheHandshakeConnectsAndFilesGoBothWaysWhole) {
    alice.link.request();
    const quint16 port = alice.link.listeningPort();
    EXPECT_EQ(alice.sent, QStringList{QStringLiteral("1:") + QString::number(port)});
    EXPECT_TRUE(alice.said(QStringLiteral("** Requesting Direct Connection..  Port: [<b>") +
                           QString::number(port) + QStringLiteral("</b>] **")));
    EXPECT_EQ(alice.link.linkText(), QStringLiteral("- Cancel Direct Connection.."));
    ASSERT_TRUE(bob.waitSaid(QStringLiteral("** Would like to Directly Connect.. **")));
    EXPECT_EQ(bob.link.linkText(), QStringLiteral("- Accept Direct Connection.."));
    // The accept button blinks while the offer waits.
    EXPECT_EQ(bob.link.buttonCaption(), QStringLiteral("Accept"));
    bob.link.blink();
    EXPECT_EQ(bob.link.buttonCaption(), QStringLiteral("*Accept*"));
    bob.link.accept();
    EXPECT_EQ(bob.sent, QStringList{QStringLiteral("5:0")});
    EXPECT_TRUE(bob.said(QStringLiteral("** Establishing Connection..  Port: [<b>") +
                         QString::number(port) + QStringLiteral("</b>] **")));
    ASSERT_TRUE(alice.waitSaid(QStringLiteral("<b>Connection has been established!</b>")));
    ASSERT_TRUE(bob.waitSaid(QStringLiteral("<b>Connection Established!</b>")));
    EXPECT_TRUE(alice.said(QStringLiteral("  ** Attempting Direct Connection.. **")));
    EXPECT_EQ(alice.link.linkText(), QStringLiteral("- Abort Direct Connection.."));
    // Each announced a certificate right before its request or accept, so the connection is TLS
    // and both conversations say so.
    ASSERT_EQ(alice.announced.size(), 1);
    ASSERT_EQ(bob.announced.size(), 1);
    EXPECT_TRUE(PeerCertificate::isFingerprint(alice.announced.first()));
    EXPECT_NE(alice.announced.first(), bob.announced.first());
    EXPECT_EQ(alice.fingerprintWith, QList<bool>{true});
    EXPECT_EQ(bob.fingerprintWith, QList<bool>{true});
    EXPECT_TRUE(alice.said(QStringLiteral("** Direct connection encrypted (TLS 1.3) **")));
    EXPECT_TRUE(bob.said(QStringLiteral("** Direct connection encrypted (TLS 1.3) **")));
    EXPECT_EQ(bob.link.encryption(), QStringLiteral("TLS 1.3"));

    // A file of exactly one block, a picture, and a larger file the other way at the same time.
    const QByteArray block = randomBytes(2048);
    const QString exact = writeFile(alice.home.filePath(QStringLiteral("exact.bin")), block);
    const QString picture = alice.home.filePath(QStringLiteral("tall picture.png"));
    QImage(300, 500, QImage::Format_RGB32).save(picture);
    const QByteArray large = randomBytes(5 * 1024 * 1024 + 7);
    const QString back = writeFile(bob.home.filePath(QStringLiteral("back.tar.gz")), large);
    ASSERT_TRUE(alice.link.sendFile(exact));
    EXPECT_EQ(alice.link.buttonCaption(), QStringLiteral("Sending.."));
    EXPECT_EQ(alice.link.buttonToolTip(),
              QStringLiteral("Click to Cancel Current File Transfer.."));
    EXPECT_EQ(alice.link.outgoingLabel(), QStringLiteral("Filesize: 2 kb"));
    ASSERT_TRUE(alice.link.sendFile(picture));
    EXPECT_EQ(alice.link.waitingFiles(), 1);
    ASSERT_TRUE(bob.link.sendFile(back));

    ASSERT_TRUE(waitUntil([&] { return bob.shown.size() == 3 && alice.shown.size() == 3; }));
    EXPECT_TRUE(bob.shown.contains(QStringLiteral("exact.bin")));
    EXPECT_TRUE(bob.shown.contains(QStringLiteral("tall picture.png")));
    EXPECT_EQ(readFile(bob.downloaded(QStringLiteral("exact.bin"))), block);
    EXPECT_EQ(QImage(bob.downloaded(QStringLiteral("tall picture.png"))).size(), QSize(300, 500));
    EXPECT_EQ(readFile(alice.downloaded(QStringLiteral("back.tar.gz"))), large);
    // The sender shows its own files too, from where they are.
    EXPECT_TRUE(alice.shownPaths.contains(exact));
    EXPECT_TRUE(bob.shownPaths.contains(back));
    // No temporary file is left, and nothing else was written.
    EXPECT_EQ(bob.downloadedFiles(),
              (QStringList{QStringLiteral("exact.bin"), QStringLiteral("tall picture.png")}));
    EXPECT_EQ(alice.downloadedFiles(), QStringList{QStringLiteral("back.tar.gz")});
    EXPECT_EQ(alice.link.buttonCaption(), QStringLiteral("Send File"));
    EXPECT_EQ(alice.link.outgoing().done(), alice.link.outgoing().total());

    // Ending it: both sides are told, and either may ask again.
    alice.link.disconnectPeer();
    EXPECT_TRUE(alice.said(QStringLiteral("<b>Connection Has Been Lost..</b>")));
    ASSERT_TRUE(bob.waitSaid(QStringLiteral("<b>Connection Has Been Lost..</b>")));
    EXPECT_EQ(bob.link.state(), State::Connect);
    EXPECT_EQ(bob.link.linkText(), QStringLiteral("- Connect to Share Files/Pictures.."));
    EXPECT_EQ(alice.link.linkText(), QStringLiteral("- Connect to Send Files/Pictures.."));
}

// Behind a firewall the asker cannot be reached: it asks with port 0, the other side listens
// and names its port, and the asker connects out. A file picked before there is a connection
// asks for one and goes when it is up.
TEST_F(DirectLinkTest, BehindAFirewallTheSidesSwapAndAFileWaitsForTheConnection) {
    alice.setOption(&DirectLink::Options::tunnel, true);
    bob.setOption(&DirectLink::Options::autoAccept, true);
    const QByteArray bytes = randomBytes(100000);
    ASSERT_TRUE(
        alice.link.sendFile(writeFile(alice.home.filePath(QStringLiteral("w.dat")), bytes)));
    EXPECT_EQ(alice.sent, QStringList{QStringLiteral("1:0")});
    EXPECT_EQ(alice.link.listeningPort(), 0);
    ASSERT_TRUE(waitUntil([&] { return !bob.sent.isEmpty(); }));
    const quint16 bobsPort = bob.link.listeningPort();
    ASSERT_NE(bobsPort, 0);
    EXPECT_EQ(bob.sent, QStringList{QStringLiteral("5:") + QString::number(bobsPort)});
    ASSERT_TRUE(waitUntil([&] { return bob.shown.size() == 1; }));
    EXPECT_EQ(readFile(bob.downloaded(QStringLiteral("w.dat"))), bytes);
    EXPECT_TRUE(bob.said(QStringLiteral("<b>Connection has been established!</b>")));
    EXPECT_TRUE(alice.said(QStringLiteral("<b>Connection Established!</b>")));
    // Swapped roles, the same TLS: the listening side is the TLS server.
    EXPECT_EQ(alice.fingerprintWith, QList<bool>{true});
    EXPECT_EQ(bob.fingerprintWith, QList<bool>{true});
    EXPECT_TRUE(alice.said(QStringLiteral("** Direct connection encrypted (TLS 1.3) **")));
    EXPECT_TRUE(bob.said(QStringLiteral("** Direct connection encrypted (TLS 1.3) **")));
}

// A client that announces nothing (an older one) gets the plain connection it speaks, and both
// conversations say that it is not encrypted. A fingerprint counts only for the handshake right
// after it, so a stray one earlier changes nothing.
TEST_F(DirectLinkTest, AnOlderPeerGetsAPlainConnectionAndBothConversationsSaySo) {
    alice.setOption(&DirectLink::Options::encrypt, false);
    const auto stray = PeerCertificate::make();
    ASSERT_NE(stray, nullptr);
    bob.link.onHandshake(DirectLink::kFingerprint, stray->fingerprint(),
                         QStringLiteral("127.0.0.1"));
    bob.link.onHandshake(DirectLink::kCancel, QStringLiteral("0"), QStringLiteral("127.0.0.1"));
    connectBoth();
    EXPECT_TRUE(alice.announced.isEmpty());
    EXPECT_EQ(bob.announced.size(), 1);
    EXPECT_TRUE(
        alice.said(QStringLiteral("** Direct connection NOT encrypted (encryption is off "
                                  "here) **")));
    EXPECT_TRUE(bob.said(
        QStringLiteral("** Direct connection NOT encrypted (alice's client is an older version) "
                       "**")));
    EXPECT_TRUE(bob.link.encryption().isEmpty());
    const QByteArray bytes = randomBytes(300000);
    ASSERT_TRUE(
        alice.link.sendFile(writeFile(alice.home.filePath(QStringLiteral("old.bin")), bytes)));
    ASSERT_TRUE(waitUntil([&] { return bob.shown.size() == 1; }));
    EXPECT_EQ(readFile(bob.downloaded(QStringLiteral("old.bin"))), bytes);
}

// Somebody behind the peer's own address who connects first, with a certificate of its own or
// speaking plain, is refused after its handshake, and the conversation says so; the port stays
// open for the peer, who then gets in.
TEST_F(DirectLinkTest, OnTheListeningPortOnlyTheAnnouncedCertificateGetsIn) {
    alice.link.request();
    const quint16 port = alice.link.listeningPort();
    ASSERT_TRUE(waitUntil([&] { return bob.link.state() == State::Accept; }));
    const auto other = PeerCertificate::make();
    ASSERT_NE(other, nullptr);
    QSslSocket impostor;
    encryptWith(impostor, *other);
    impostor.connectToHostEncrypted(QStringLiteral("127.0.0.1"), port);
    QTcpSocket plain;
    plain.connectToHost(QHostAddress::LocalHost, port);
    ASSERT_TRUE(plain.waitForConnected(5000));
    plain.write(frame("early.txt", "not encrypted"));
    runEventsFor(100);  // held until the accept says who may come

    bob.link.accept();
    ASSERT_TRUE(waitUntil(
        [&] { return alice.link.state() == State::Close && bob.link.state() == State::Close; }));
    ASSERT_TRUE(waitUntil([&] {
        return impostor.state() == QAbstractSocket::UnconnectedState &&
               plain.state() == QAbstractSocket::UnconnectedState;
    }));
    const QString refused =
        QStringLiteral("** Refused a connection from 127.0.0.1: it is not bob's client (");
    EXPECT_EQ(alice.lines.filter(refused).size(), 2) << alice.lines.join('\n').toStdString();
    EXPECT_TRUE(alice.lines.contains(
        refused + QStringLiteral("its certificate is not the one the server announced for this "
                                 "member) **")));
    EXPECT_TRUE(alice.said(QStringLiteral("** Direct connection encrypted (TLS 1.3) **")));
    const QByteArray bytes = randomBytes(70000);
    ASSERT_TRUE(bob.link.sendFile(writeFile(bob.home.filePath(QStringLiteral("real.bin")), bytes)));
    ASSERT_TRUE(waitUntil([&] { return alice.shown.size() == 1; }));
    EXPECT_EQ(readFile(alice.downloaded(QStringLiteral("real.bin"))), bytes);
    EXPECT_FALSE(QFile::exists(alice.downloaded(QStringLiteral("early.txt"))));
}

// Connecting out to a port where somebody else answers with a certificate that is not the one
// announced: nothing is sent, the member is told, and so is the other member.
TEST_F(DirectLinkTest, ConnectingToACertificateOtherThanTheAnnouncedOneIsRefused) {
    const auto announced = PeerCertificate::make();
    const auto other = PeerCertificate::make();
    ASSERT_TRUE(announced != nullptr && other != nullptr);
    PeerServer squatter;
    ASSERT_TRUE(squatter.listen(QHostAddress::LocalHost, 0));
    QObject::connect(&squatter, &QTcpServer::newConnection, &squatter, [&] {
        while (QTcpSocket* next = squatter.nextPendingConnection()) {
            auto* socket = static_cast<QSslSocket*>(next);
            encryptWith(*socket, *other);
            socket->startServerEncryption();
        }
    });
    bob.link.onHandshake(DirectLink::kFingerprint, announced->fingerprint(),
                         QStringLiteral("127.0.0.1"));
    bob.link.onHandshake(DirectLink::kRequest, QString::number(squatter.serverPort()),
                         QStringLiteral("127.0.0.1"));
    const QString file = writeFile(bob.home.filePath(QStringLiteral("secret.txt")), "secret");
    ASSERT_TRUE(bob.link.sendFile(file));  // accepts the offer
    const QString reason = QStringLiteral(
        "the other side is not alice's client: its certificate is not the one the server "
        "announced for this member");
    ASSERT_TRUE(bob.waitSaid(QStringLiteral("** Error: You Could NOT Connect Because: (") + reason +
                             QStringLiteral(") **")))
        << bob.lines.join('\n').toStdString();
    EXPECT_EQ(bob.sent.last(), QStringLiteral("3:") + reason);
    EXPECT_EQ(bob.link.state(), State::Connect);
    EXPECT_EQ(bob.link.waitingFiles(), 0);
    EXPECT_TRUE(bob.shown.isEmpty());
}

// Both ask at once: the member whose name sorts first keeps the request, the other accepts it.
TEST_F(DirectLinkTest, TwoRequestsAtOnceBecomeOneConnection) {
    bob.setOption(&DirectLink::Options::autoAccept, true);
    alice.link.request();
    bob.link.request();
    ASSERT_TRUE(waitUntil(
        [&] { return alice.link.state() == State::Close && bob.link.state() == State::Close; }));
    EXPECT_EQ(bob.link.listeningPort(), 0);
}

TEST_F(DirectLinkTest, CancelRefusalsAndAnErrorEachReturnToConnect) {
    alice.link.request();
    ASSERT_TRUE(waitUntil([&] { return bob.link.state() == State::Accept; }));
    alice.link.cancel();
    EXPECT_TRUE(alice.said(QStringLiteral("** Direct Connection Canceled.. **")));
    EXPECT_EQ(alice.sent.last(), QStringLiteral("2:0"));
    ASSERT_TRUE(bob.waitSaid(QStringLiteral("** Canceled Direct Connection Request.. **")));
    EXPECT_EQ(bob.link.state(), State::Connect);

    // An accept that cannot connect says why, on both sides.
    bob.link.onHandshake(DirectLink::kRequest, QString::number(portsFor(2)),
                         QStringLiteral("127.0.0.1"));
    bob.link.accept();
    ASSERT_TRUE(alice.waitSaid(
        QStringLiteral("** Error: Your Buddy Could NOT Connect Because: (Connection refused) **")));
    EXPECT_TRUE(
        bob.said(QStringLiteral("** Error: You Could NOT Connect Because: (Connection "
                                "refused) **")));
    EXPECT_EQ(bob.link.state(), State::Connect);

    // Every port of the range taken: the member is told, nothing is asked of the other.
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::Any, 0));
    DirectLink::Options options = alice.link.options();
    options.lowerPort = options.upperPort = taken.serverPort();
    alice.link.setOptions(options);
    const int sentBefore = static_cast<int>(alice.sent.size());
    alice.link.request();
    ASSERT_FALSE(alice.prompter.asked.empty());
    EXPECT_EQ(
        alice.prompter.asked.back().text,
        QStringLiteral("Cannot find free port within Port Range, Check Configuration Settings"));
    EXPECT_EQ(alice.prompter.asked.back().title,
              QStringLiteral("No Free Port Found for Connection"));
    EXPECT_EQ(alice.sent.size(), sentBefore);
    EXPECT_EQ(alice.link.state(), State::Connect);
}

TEST_F(DirectLinkTest, EmptyTooLargeAndFolderFilesAreRefusedBeforeAnythingIsSent) {
    alice.link.sendFile(writeFile(alice.home.filePath(QStringLiteral("empty.txt")), QByteArray()));
    ASSERT_EQ(alice.prompter.asked.size(), 1u);
    EXPECT_EQ(alice.prompter.asked.back().text, QStringLiteral("The File is Empty..."));
    EXPECT_EQ(alice.prompter.asked.back().title, QStringLiteral("Error: Empty File.."));

    // A sparse file past what the 32-bit length can carry.
    QFile huge(alice.home.filePath(QStringLiteral("huge.iso")));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(qint64{1} << 32));
    huge.close();
    EXPECT_FALSE(alice.link.sendFile(huge.fileName()));
    EXPECT_EQ(alice.prompter.asked.back().title, QStringLiteral("Error: File Too Large.."));
    EXPECT_TRUE(alice.prompter.asked.back().text.contains(QStringLiteral("4294967238 bytes")))
        << alice.prompter.asked.back().text.toStdString();

    EXPECT_FALSE(alice.link.sendFile(alice.home.path()));
    EXPECT_EQ(alice.prompter.asked.back().text, QStringLiteral("Directories can't be transfered"));
    EXPECT_EQ(alice.prompter.asked.back().title, QStringLiteral("Transfer Error:"));
    EXPECT_TRUE(alice.sent.isEmpty());
    EXPECT_EQ(alice.link.state(), State::Connect);
}

TEST_F(DirectLinkTest, AnAbortedTransferEndsTheConnectionAndLeavesNoPartialFile) {
    connectBoth();
    const QString big = alice.home.filePath(QStringLiteral("movie.mkv"));
    QFile file(big);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64{1} << 30));
    file.close();
    ASSERT_TRUE(alice.link.sendFile(big));
    ASSERT_TRUE(waitUntil([&] { return bob.link.receiving() && bob.link.incoming().total() > 0; }));
    ASSERT_TRUE(
        waitUntil([&] { return QFile::exists(bob.downloaded(QStringLiteral("alice.dat"))); }));
    alice.link.pressButton();  // the button reads "Sending..": a click aborts
    EXPECT_TRUE(alice.said(QStringLiteral("** File Transfer Aborted **")));
    EXPECT_EQ(alice.sent.last(), QStringLiteral("4:0"));
    EXPECT_EQ(alice.link.state(), State::Connect);
    EXPECT_EQ(alice.link.buttonCaption(), QStringLiteral("Send File"));
    ASSERT_TRUE(bob.waitSaid(QStringLiteral("  ** File Transfer Aborted **")));
    ASSERT_TRUE(waitUntil([&] { return bob.link.state() == State::Connect; }));
    EXPECT_TRUE(bob.downloadedFiles().isEmpty()) << bob.downloadedFiles().join(' ').toStdString();
}

// Raw peers: a socket that speaks for the other member byte by byte.
class RawPeerTest : public ::testing::Test {
  protected:
    RawPeerTest() : alice("alice", "mallory", portsFor(3)) {}

    // Alice asks; `peer` connects to her port, and the server's accept names `address`.
    std::unique_ptr<QTcpSocket> connectRaw(const QString& from = QStringLiteral("127.0.0.1")) {
        auto peer = std::make_unique<QTcpSocket>();
        peer->bind(QHostAddress(from));
        peer->connectToHost(QHostAddress::LocalHost, alice.link.listeningPort());
        EXPECT_TRUE(peer->waitForConnected(5000));
        return peer;
    }
    void acceptFrom(const QString& address) {
        alice.link.onHandshake(DirectLink::kAccept, QStringLiteral("0"), address);
    }

    Side alice;
};

TEST_F(RawPeerTest, HostileNamesAreRefusedAndNothingIsWrittenOutsideTheDownloadFolder) {
    alice.link.request();
    auto peer = connectRaw();
    acceptFrom(QStringLiteral("127.0.0.1"));
    ASSERT_TRUE(waitUntil([&] { return alice.link.state() == State::Close; }));

    const std::vector<std::string> hostile = {"a/../../b.txt", "..\\x.exe",
                                              "con.txt",       std::string(300, 'n') + ".txt",
                                              "README",        "x.abcdefghijk"};
    QByteArray stream;
    for (const std::string& name : hostile) {
        stream += frame(name, "evil");
    }
    stream += frame("ok.tar.gz", "fine");
    peer->write(stream);
    ASSERT_TRUE(waitUntil([&] { return alice.shown.size() == 1; }));
    EXPECT_EQ(alice.lines.count(QStringLiteral("  Bad Filename Recieved..")),
              static_cast<qsizetype>(hostile.size()));
    EXPECT_EQ(alice.downloadedFiles(), QStringList{QStringLiteral("ok.tar.gz")});
    EXPECT_EQ(readFile(alice.downloaded(QStringLiteral("ok.tar.gz"))), QByteArray("fine"));
    // The data root beside the folder holds only what it held.
    EXPECT_EQ(QDir(alice.home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("downloaded")});

    // A file called like the temporary file would be overwritten by the next one: refused.
    peer->write(frame("mallory.dat", "named like the temporary file") + frame("next.txt", "n"));
    ASSERT_TRUE(waitUntil([&] { return alice.shown.size() == 2; }));
    EXPECT_EQ(alice.lines.count(QStringLiteral("  Bad Filename Recieved..")),
              static_cast<qsizetype>(hostile.size() + 1));
    EXPECT_FALSE(QFile::exists(alice.downloaded(QStringLiteral("mallory.dat"))));

    // A frame whose length disagrees with its size: the stream cannot be followed any further.
    QByteArray lying = frame("lie.txt", "0123456789");
    lying[5] = static_cast<char>(lying[5] + 3);
    peer->write(lying);
    ASSERT_TRUE(alice.waitSaid(QStringLiteral(
        "** Error: The file could not be received: (the transfer's length disagrees with its "
        "size) **")));
    EXPECT_EQ(alice.link.state(), State::Connect);
    EXPECT_TRUE(waitUntil([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_FALSE(QFile::exists(alice.downloaded(QStringLiteral("lie.txt"))));
}

TEST_F(RawPeerTest, APeerClosingMidFileLeavesNoTemporaryFileAndTheLinkCanAskAgain) {
    alice.link.request();
    acceptFrom(QStringLiteral("127.0.0.1"));
    auto peer = connectRaw();
    ASSERT_TRUE(waitUntil([&] { return alice.link.state() == State::Close; }));
    const QByteArray whole = frame("half.bin", randomBytes(1000000));
    peer->write(whole.left(600000));
    const QString temporary = alice.downloaded(QStringLiteral("mallory.dat"));
    ASSERT_TRUE(waitUntil([&] { return QFileInfo(temporary).size() > 100000; }));
    peer->close();
    ASSERT_TRUE(alice.waitSaid(QStringLiteral("<b>Connection Has Been Lost..</b>")));
    EXPECT_FALSE(QFile::exists(temporary));
    EXPECT_TRUE(alice.downloadedFiles().isEmpty());
    EXPECT_EQ(alice.link.state(), State::Connect);
    alice.link.request();
    EXPECT_EQ(alice.link.state(), State::Cancel);
}

// Only the address the server relayed gets in; a stranger is closed at once, whether it comes
// before the accept (held a moment, then refused) or after.
TEST_F(RawPeerTest, AStrangerConnectingToTheListeningPortIsClosedAtOnce) {
    alice.link.request();
    auto early = connectRaw(QStringLiteral("127.0.0.2"));
    runEventsFor(100);
    EXPECT_EQ(early->state(), QAbstractSocket::ConnectedState) << "held until the accept";
    acceptFrom(QStringLiteral("127.0.0.1"));
    ASSERT_TRUE(waitUntil([&] {
        early->waitForReadyRead(10);
        return early->state() == QAbstractSocket::UnconnectedState;
    }));
    auto late = connectRaw(QStringLiteral("127.0.0.3"));
    ASSERT_TRUE(waitUntil([&] {
        late->waitForReadyRead(10);
        return late->state() == QAbstractSocket::UnconnectedState;
    }));
    EXPECT_EQ(alice.link.state(), State::Cancel);
    auto real = connectRaw(QStringLiteral("127.0.0.1"));
    ASSERT_TRUE(waitUntil([&] { return alice.link.state() == State::Close; }));
    real->write(frame("hello.txt", "hi"));
    ASSERT_TRUE(waitUntil([&] { return alice.shown.size() == 1; }));
}

// A peer that stops reading: after the stall time the send is given up and the connection ends.
TEST_F(RawPeerTest, ASendThatStallsIsGivenUp) {
    QTcpServer mute;
    ASSERT_TRUE(mute.listen(QHostAddress::LocalHost, 0));
    alice.link.onHandshake(DirectLink::kRequest, QString::number(mute.serverPort()),
                           QStringLiteral("127.0.0.1"));
    alice.link.setStallTimeout(300);
    alice.link.accept();
    ASSERT_TRUE(waitUntil([&] { return alice.link.state() == State::Close; }));
    ASSERT_TRUE(mute.hasPendingConnections() || mute.waitForNewConnection(5000));
    QTcpSocket* deaf = mute.nextPendingConnection();
    deaf->setReadBufferSize(1);
    QFile file(alice.home.filePath(QStringLiteral("big.bin")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(256 * 1024 * 1024));
    file.close();
    ASSERT_TRUE(alice.link.sendFile(file.fileName()));
    ASSERT_TRUE(alice.waitSaid(QStringLiteral("<b>Connection Has Been Lost..</b>")));
    EXPECT_FALSE(alice.link.sending());
    EXPECT_EQ(alice.link.state(), State::Connect);
}

// What goes on the wire for a file of exactly one block: the frame, byte for byte.
TEST_F(RawPeerTest, AOneBlockFileIsTheFrameByteForByte) {
    QTcpServer receiver;
    ASSERT_TRUE(receiver.listen(QHostAddress::LocalHost, 0));
    alice.link.onHandshake(DirectLink::kRequest, QString::number(receiver.serverPort()),
                           QStringLiteral("127.0.0.1"));
    alice.link.accept();
    ASSERT_TRUE(waitUntil([&] { return alice.link.state() == State::Close; }));
    ASSERT_TRUE(receiver.hasPendingConnections() || receiver.waitForNewConnection(5000));
    QTcpSocket* wire = receiver.nextPendingConnection();
    const QByteArray block = randomBytes(2048);
    ASSERT_TRUE(
        alice.link.sendFile(writeFile(alice.home.filePath(QStringLiteral("one.blk")), block)));
    const QByteArray expected = frame("one.blk", block);
    QByteArray got;
    ASSERT_TRUE(waitUntil([&] {
        got += wire->readAll();
        return got.size() >= expected.size();
    }));
    EXPECT_EQ(got, expected);
    ASSERT_TRUE(waitUntil([&] { return alice.shown.size() == 1; }));
}

// Inside TLS the socket takes the plain bytes into its engine at once and keeps the encrypted
// records until they leave. Those count against the window too: a peer that stops reading holds
// the file up after a few MiB instead of the whole file piling up encrypted in memory.
TEST(FileSenderTlsTest, APeerThatStopsReadingHoldsTheFileUpInsideTls) {
    QTemporaryDir home;
    const auto mine = PeerCertificate::make();
    const auto theirs = PeerCertificate::make();
    ASSERT_TRUE(mine != nullptr && theirs != nullptr);
    PeerServer listener;
    ASSERT_TRUE(listener.listen(QHostAddress::LocalHost, 0));
    QSslSocket* deaf = nullptr;
    QObject::connect(&listener, &QTcpServer::newConnection, &listener, [&] {
        deaf = static_cast<QSslSocket*>(listener.nextPendingConnection());
        encryptWith(*deaf, *theirs);
        deaf->startServerEncryption();
    });
    QSslSocket socket;
    encryptWith(socket, *mine);
    socket.connectToHostEncrypted(QStringLiteral("127.0.0.1"), listener.serverPort());
    ASSERT_TRUE(waitUntil([&] { return socket.isEncrypted() && deaf && deaf->isEncrypted(); }));
    deaf->setReadBufferSize(1);

    QFile file(home.filePath(QStringLiteral("big.bin")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(qint64{256} << 20));
    file.close();
    FileSender sender(socket);
    sender.setStallTimeout(300);
    bool stalled = false;
    QObject::connect(&sender, &FileSender::failed, &sender, [&](FileSender::Failure failure) {
        stalled = failure == FileSender::Failure::Stalled;
    });
    ASSERT_EQ(sender.start(file.fileName()), FileSender::Refusal::None);
    ASSERT_TRUE(waitUntil([&] { return stalled; }));
    EXPECT_LT(socket.bytesToWrite() + socket.encryptedBytesToWrite(), 2 * FileSender::kWindow);
    EXPECT_LT(sender.written(), qint64{64} << 20);
}

}  // namespace
}  // namespace tavren
