// Encryption through the real tavrend: one port for TLS and plain clients, the server's own
// certificate, a reload on SIGHUP, --require-tls, and handshakes that never finish.
#include <signal.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

#include "server/support/ServerFixture.h"
#include "tls/CertificateFingerprint.h"
#include "tls/SelfSignedCertificate.h"

namespace tavren::test {
namespace {

using namespace std::chrono_literals;

const std::string kEncryptionRequired =
    "This server accepts encrypted connections only. Turn on \"Encrypted connection (TLS)\" on "
    "the Server page of the settings window and connect again.";

class TlsServerTest : public ServerFixture {
  protected:
    std::string fingerprintFile(const std::filesystem::path& file) {
        std::ifstream in(file);
        std::stringstream text;
        text << in.rdbuf();
        return tls::CertificateFingerprint::ofPem(text.str()).value_or("");
    }
    // A private message from one member to another arrives: the link of each still works.
    void expectMessage(RawClient& from, RawClient& to, const std::string& toName,
                       const std::string& text) {
        from.send(in::kPrivateMessage, toName + ":" + text);
        const auto frame = to.next();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->code, out::kPrivateMessage);
        EXPECT_NE(frame->payload.find(text), std::string::npos) << frame->payload;
    }
    static void writeFile(const std::filesystem::path& file, const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
    }
};

// Encrypted and plain members share the one port and talk to each other; the certificate the
// encrypted one sees is the server's own, made at the first start with owner-only files, the
// one `tavrend fingerprint` names, and the same after a restart.
TEST_F(TlsServerTest, EncryptedAndPlainMembersShareThePortAndTheOwnCertificateStays) {
    addMembers({"alice", "bob"});
    startServer({"--flood-lines", "1000", "--frame-rate", "100000"});
    encryptClients_ = true;
    auto alice = member("alice", 4096);
    encryptClients_ = false;
    auto bob = member("bob");
    expectMessage(*alice, *bob, "bob", "from the encrypted side");
    expectMessage(*bob, *alice, "alice", "from the plain side");
    // More than the encrypted member's socket holds while it does not read: the server's
    // records wait for the socket and go on where they stopped, every byte in order.
    for (int i = 0; i < 300; ++i) {
        bob->send(in::kPrivateMessage, "alice:" + std::to_string(i) + std::string(2000, 'x'));
    }
    std::this_thread::sleep_for(300ms);
    for (int i = 0; i < 300; ++i) {
        const auto frame = alice->next();
        ASSERT_TRUE(frame) << "message " << i;
        EXPECT_EQ(frame->payload, "bob:" + std::to_string(i) + std::string(2000, 'x'));
    }

    const auto certificate = folder_ / "tls-certificate.pem";
    const auto key = folder_ / "tls-key.pem";
    struct stat keyInfo {};
    ASSERT_EQ(stat(key.c_str(), &keyInfo), 0);
    EXPECT_EQ(keyInfo.st_mode & 0777, 0600u);
    struct stat certificateInfo {};
    ASSERT_EQ(stat(certificate.c_str(), &certificateInfo), 0);
    EXPECT_EQ(certificateInfo.st_mode & 0077, 0u);

    const std::string own = fingerprintFile(certificate);
    auto probe = connect();
    const auto seen = probe->startTls();
    ASSERT_TRUE(seen);
    EXPECT_EQ(*seen, own);
    EXPECT_EQ(probe->tlsProtocol(), "TLSv1.3");
    const auto printed = TavrendProcess::runToEnd({"--db", database_.string(), "fingerprint"});
    EXPECT_EQ(printed.exitCode, 0);
    EXPECT_EQ(printed.output, own + "\n");

    probe.reset();
    alice.reset();
    bob.reset();
    ASSERT_EQ(server_->stop(), 0);
    startServer();
    auto again = connect();
    EXPECT_EQ(again->startTls(), own);
}

// The operator's own files are used; SIGHUP reads them again: members who are connected stay
// and keep talking, new connections get the new certificate, and a broken file leaves the one
// in use in place.
TEST_F(TlsServerTest, OperatorCertificateIsReloadedOnSighupWithoutDroppingAnyone) {
    const auto certificate = folder_ / "operator-cert.pem";
    const auto key = folder_ / "operator-key.pem";
    const auto first = tls::SelfSignedCertificate::generate("chat.example.org", 30);
    writeFile(certificate, first.certificatePem);
    writeFile(key, first.privateKeyPem);
    addMembers({"alice", "bob"});
    startServer({"--tls-cert", certificate.string(), "--tls-key", key.string()});
    encryptClients_ = true;
    auto alice = member("alice");
    auto bob = member("bob");
    auto probe = std::make_unique<RawClient>(server_->port());
    EXPECT_EQ(probe->startTls(), tls::CertificateFingerprint::ofPem(first.certificatePem));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "tls-certificate.pem"));

    const auto second = tls::SelfSignedCertificate::generate("chat.example.org", 30);
    writeFile(certificate, second.certificatePem);
    writeFile(key, second.privateKeyPem);
    kill(server_->pid(), SIGHUP);
    const auto expected = tls::CertificateFingerprint::ofPem(second.certificatePem);
    std::optional<std::string> seen;
    for (int i = 0; i < 50 && seen != expected; ++i) {
        std::this_thread::sleep_for(50ms);
        seen = RawClient(server_->port()).startTls();
    }
    EXPECT_EQ(seen, expected);
    expectMessage(*alice, *bob, "bob", "still here after the reload");

    writeFile(key, "not a key");
    kill(server_->pid(), SIGHUP);
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(RawClient(server_->port()).startTls(), expected);
    EXPECT_NE(server_->log().find("the old one stays"), std::string::npos);
    expectMessage(*bob, *alice, "alice", "and after a failed one");

    // Unusable files at start are a clear refusal to serve, not a server without encryption.
    alice.reset();
    bob.reset();
    probe.reset();
    ASSERT_EQ(server_->stop(), 0);
    server_.reset();
    const auto refused =
        TavrendProcess::runToEnd({"--db", database_.string(), "--tls-cert", certificate.string(),
                                  "--tls-key", key.string(), "fingerprint"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.output.find("operator-key.pem"), std::string::npos) << refused.output;
}

// With encryption required a plain client may still connect and say its version, but a login
// or a sign-up is answered with the reason and the connection closes, before any password work;
// encrypted members log in as usual.
TEST_F(TlsServerTest, RequiredEncryptionTurnsPlainLoginsAndSignUpsAway) {
    addMembers({"alice"});
    startServer({"--require-tls"});
    auto plain = greet();
    plain->send(in::kCredentials, "alice:secret1");
    EXPECT_EQ(plain->expect(kLoginResult).payload, kEncryptionRequired);
    EXPECT_TRUE(plain->waitClosed());

    auto signUp = connect();
    signUp->send(in::kVersionBeforeSignUp, "1.0.0");
    signUp->send(in::kRegisterAccount, "carol:secret1:carol@example.org");
    EXPECT_EQ(signUp->expect(kSignUpResult).payload,
              "Account Creation Error!:" + kEncryptionRequired);
    EXPECT_TRUE(signUp->waitClosed());

    encryptClients_ = true;
    auto alice = member("alice");
    alice->send(in::kAskEmail, "");
    alice->expect(out::kAccountInfo);
}

// A handshake that stalls, one that is garbage and one cut off are closed on their own, and
// they count against the address's connection limit like any connection; members already in,
// encrypted or not, notice nothing.
TEST_F(TlsServerTest, StalledAndGarbageHandshakesAreDroppedWhileMembersGoOn) {
    addMembers({"alice", "bob"});
    startServer({"--tls-handshake-time", "1", "--max-per-address", "2"});
    encryptClients_ = true;
    auto alice = member("alice");
    encryptClients_ = false;
    auto bob = member("bob");

    const std::string helloStart("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11);
    RawClient stalled(server_->port(), 0, "127.0.0.9");
    stalled.sendRaw(helloStart);
    RawClient silent(server_->port(), 0, "127.0.0.9");
    silent.sendRaw("\x16");
    RawClient full(server_->port(), 0, "127.0.0.9");
    const auto refusal = full.next();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->code, kNotice);
    EXPECT_NE(refusal->payload.find("Too many connections from your address"), std::string::npos);

    RawClient garbage(server_->port(), 0, "127.0.0.10");
    garbage.sendRaw(std::string("\x16\x03\x01\x00\x05", 5) + std::string(64, '\x7f'));
    expectMessage(*alice, *bob, "bob", "while strangers stall");
    EXPECT_TRUE(garbage.waitHangUp(3s));
    EXPECT_TRUE(stalled.waitHangUp(3s));
    EXPECT_TRUE(silent.waitHangUp(3s));
    {
        RawClient cutOff(server_->port(), 0, "127.0.0.9");
        cutOff.sendRaw(helloStart);
    }
    expectMessage(*bob, *alice, "alice", "and after they are gone");
    const std::string log = server_->log();
    EXPECT_NE(log.find("no TLS handshake in time"), std::string::npos) << log;
    EXPECT_NE(log.find("TLS handshake failed"), std::string::npos) << log;

    // The address has its connections back.
    RawClient later(server_->port(), 0, "127.0.0.9");
    EXPECT_TRUE(later.startTls());
}

}  // namespace
}  // namespace tavren::test
