#pragma once

#include <QList>
#include <QObject>
#include <QSslError>
#include <QString>
#include <QTimer>
#include <memory>

class QSslSocket;

namespace tavren {

class PeerCertificate;

// The TLS handshake of a direct connection, on a socket that is connected already. The side that
// connected is the TLS client, the listening side the TLS server; both present their throwaway
// certificate, and each takes the other only when its certificate has exactly the fingerprint
// the chat server relayed for the other member. Nobody vouches for such certificates, so the
// usual complaints about them (self-signed, untrusted, not for this host name) are ignored, and
// only for a certificate with that fingerprint; anything else ends the handshake.
//
// TLS 1.2 at least; both our sides offer 1.3, so that is what they speak.
class PeerTlsHandshake : public QObject {
    Q_OBJECT
  public:
    enum class Role { Client, Server };
    // A handshake that has not finished by then is given up (a peer that connected and went
    // silent, or speaks something else).
    static constexpr int kTimeoutMs = 10000;

    PeerTlsHandshake(QSslSocket& socket, Role role, std::shared_ptr<const PeerCertificate> own,
                     const QString& expectedFingerprint, QObject* parent = nullptr);

    void start();
    QSslSocket& socket() const { return socket_; }

    // Whether `errors` are only those a certificate nobody vouches for draws, about a certificate
    // with the fingerprint `expected`.
    static bool forgivable(const QList<QSslError>& errors, const QSslCertificate& peer,
                           const QString& expected);

  signals:
    // The connection is encrypted and the other side is who the server named.
    void secured();
    // It is not: `reason` says why, in a member's words.
    void refused(const QString& reason);

  private:
    void refuse(const QString& reason);

    QSslSocket& socket_;
    Role role_;
    std::shared_ptr<const PeerCertificate> own_;
    QString expected_;
    QTimer timeout_;
    bool done_ = false;
};

}  // namespace tavren
