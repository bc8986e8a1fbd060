// The client's encrypted connection to the real tavrend: trust on first use, a certificate that
// changed, a server that offers no encryption, and a server that demands it.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "TavrendProcess.h"
#include "Wait.h"
#include "core/ServerTrust.h"

namespace tavren {
namespace {

using test::waitUntil;

class TlsConnectionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(server.start({QStringLiteral("--ping-interval"), QStringLiteral("0.1")}))
            << server.log().toStdString();
        ASSERT_TRUE(server.addAccount(QStringLiteral("alice"), QStringLiteral("secret")));
        client.tlsWanted = true;
    }

    QString serverKey() const {
        return ServerTrust::keyFor(QStringLiteral("127.0.0.1"), server.port());
    }
    // The questions about certificates asked so far, by title.
    QStringList certificateQuestions() const {
        QStringList titles;
        for (const auto& asked : client.prompter.asked) {
            if (asked.kind == QLatin1String("yesno")) {
                titles << asked.title;
            }
        }
        return titles;
    }
    bool settled(int logins) {
        return waitUntil([&] {
            return client.loginsAccepted >= logins ||
                   client.session->login().button().kind == LoginButton::Kind::Login;
        });
    }

    QTemporaryDir dir;
    test::TavrendProcess server{dir.filePath(QStringLiteral("tavrend.db"))};
    test::ClientUnderTest client;
};

// The server's own certificate is unknown the first time: the member is shown its fingerprint;
// no keeps the client offline and remembers nothing, yes logs in encrypted and keeps it, and
// the next login asks nothing.
TEST_F(TlsConnectionTest, AnUnknownCertificateIsTrustedOnceWhenTheMemberSaysSo) {
    const QString fingerprint = server.fingerprint();
    ASSERT_EQ(fingerprint.size(), 95);

    client.prompter.answers = {Prompter::Answer::No};
    client.startLogin(server.port());
    ASSERT_TRUE(settled(1));
    EXPECT_EQ(client.loginsAccepted, 0);
    ASSERT_EQ(certificateQuestions(), QStringList{QStringLiteral("Unknown Server Certificate")});
    EXPECT_TRUE(client.prompter.asked.back().text.contains(fingerprint));
    EXPECT_TRUE(client.settings->knownServer(serverKey()).isEmpty());
    EXPECT_FALSE(client.session->online());

    client.prompter.answers = {Prompter::Answer::Yes};
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }))
        << client.errors().toStdString() << server.log().toStdString();
    EXPECT_EQ(certificateQuestions().size(), 2);
    EXPECT_EQ(client.settings->knownServer(serverKey()), fingerprint);
    const ServerConnection& connection = client.session->connection();
    EXPECT_TRUE(connection.encrypted());
    EXPECT_TRUE(connection.encryptionDetails().contains(QStringLiteral("TLS 1.3")));
    EXPECT_TRUE(connection.encryptionDetails().contains(fingerprint));

    client.session->login().logOff();
    EXPECT_FALSE(client.session->connection().encrypted());
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 2; }));
    EXPECT_EQ(certificateQuestions().size(), 2) << "a known certificate is not asked about";
    EXPECT_TRUE(client.messages().isEmpty()) << client.messages().join('\n').toStdString();
}

// A server whose certificate is not the one trusted before stops the connection with a warning
// naming both fingerprints; refusing keeps the old one, accepting replaces it and logs in.
TEST_F(TlsConnectionTest, AChangedCertificateIsAWarningWithBothFingerprints) {
    const QString old = QStringLiteral(
        "00:11:22:33:44:55:66:77:88:99:AA:BB:CC:DD:EE:FF:00:11:22:33:44:55:66:77:88:99:AA:BB:CC:"
        "DD:EE:FF");
    client.settings->setKnownServer(serverKey(), old);
    client.prompter.answers = {Prompter::Answer::No};
    client.startLogin(server.port());
    ASSERT_TRUE(settled(1));
    EXPECT_EQ(client.loginsAccepted, 0);
    ASSERT_EQ(certificateQuestions(), QStringList{QStringLiteral("Server Certificate Changed!")});
    const QString warning = client.prompter.asked.back().text;
    EXPECT_TRUE(warning.contains(old));
    EXPECT_TRUE(warning.contains(server.fingerprint()));
    EXPECT_EQ(client.settings->knownServer(serverKey()), old);

    client.prompter.answers = {Prompter::Answer::Yes};
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }));
    EXPECT_EQ(client.settings->knownServer(serverKey()), server.fingerprint());
    EXPECT_TRUE(client.session->connection().encrypted());
}

// A server that speaks only the plain protocol (it hangs up on the handshake) gives a message
// that says how to connect without encryption; nothing is ever sent in the clear by itself.
TEST_F(TlsConnectionTest, AServerWithoutEncryptionIsReportedNeverFallenBackFrom) {
    test::FakePeer old;
    old.setRawOnly(true);
    client.startLogin(old.port());
    ASSERT_TRUE(waitUntil([&] { return !old.raw().isEmpty(); }));
    EXPECT_EQ(old.raw().at(0), '\x16') << "the first byte opens a TLS handshake";
    old.closeCurrent();
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    const QString message = client.messages().front();
    EXPECT_TRUE(message.contains(QStringLiteral("Could not make an encrypted connection")));
    EXPECT_TRUE(message.contains(QStringLiteral("Encrypted connection (TLS)")));
    test::runEventsFor(500);
    EXPECT_EQ(old.connections(), 1) << "no second, plain attempt";
    EXPECT_EQ(client.session->login().button().kind, LoginButton::Kind::Login);
}

// The form scripts use to vouch for a server, and what is not that form.
TEST_F(TlsConnectionTest, TrustedServerArgumentsAreReadStrictly) {
    QString key;
    QString fingerprint;
    const QString hex = server.fingerprint();
    ASSERT_TRUE(ServerTrust::parseTrusted(
        QStringLiteral("Chat.Example.org:5678=") + hex.toLower().remove(QLatin1Char(':')), key,
        fingerprint));
    EXPECT_EQ(key, QStringLiteral("chat.example.org:5678"));
    EXPECT_EQ(fingerprint, hex);
    for (const QString& bad :
         {QStringLiteral("host=") + hex, QStringLiteral("host:0=") + hex,
          QStringLiteral("host:70000=") + hex, QStringLiteral("host:5678=AB:CD"),
          QStringLiteral("host:5678"), QStringLiteral(":5678=") + hex}) {
        EXPECT_FALSE(ServerTrust::parseTrusted(bad, key, fingerprint)) << bad.toStdString();
    }
}

// With encryption required, a member whose client connects in the clear is told what to turn
// on; with it on, the same member logs in.
TEST(TlsRequiredTest, APlainLoginIsToldToTurnEncryptionOn) {
    QTemporaryDir dir;
    test::TavrendProcess server(dir.filePath(QStringLiteral("tavrend.db")));
    ASSERT_TRUE(server.start({QStringLiteral("--require-tls")}));
    ASSERT_TRUE(server.addAccount(QStringLiteral("alice"), QStringLiteral("secret")));
    test::ClientUnderTest client;
    client.startLogin(server.port());
    ASSERT_TRUE(waitUntil([&] {
        return (client.messages() + QStringList{client.errors()})
            .join(QLatin1Char('\n'))
            .contains(QStringLiteral("encrypted connections only"));
    })) << client.messages().join('\n').toStdString()
        << client.errors().toStdString();
    EXPECT_EQ(client.loginsAccepted, 0);

    client.settings->setKnownServer(ServerTrust::keyFor(QStringLiteral("127.0.0.1"), server.port()),
                                    server.fingerprint());
    client.tlsWanted = true;
    client.session->login().logOff();
    client.startLogin(server.port());
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }))
        << client.errors().toStdString();
}

}  // namespace
}  // namespace tavren
