#include "pm/PeerTlsHandshake.h"

#include <QSslConfiguration>
#include <QSslSocket>

#include "pm/PeerCertificate.h"

namespace tavren {

namespace {
const QString kNotThePeer =
    QStringLiteral("its certificate is not the one the server announced for this member");
}  // namespace

PeerTlsHandshake::PeerTlsHandshake(QSslSocket& socket, Role role,
                                   std::shared_ptr<const PeerCertificate> own,
                                   const QString& expectedFingerprint, QObject* parent)
    : QObject(parent),
      socket_(socket),
      role_(role),
      own_(std::move(own)),
      expected_(expectedFingerprint) {
    timeout_.setSingleShot(true);
    timeout_.setInterval(kTimeoutMs);
    connect(&timeout_, &QTimer::timeout, this,
            [this] { refuse(QStringLiteral("the encryption handshake took too long")); });
}

bool PeerTlsHandshake::forgivable(const QList<QSslError>& errors, const QSslCertificate& peer,
                                  const QString& expected) {
    if (peer.isNull() || expected.isEmpty() || PeerCertificate::fingerprintOf(peer) != expected) {
        return false;
    }
    for (const QSslError& error : errors) {
        switch (error.error()) {
            case QSslError::SelfSignedCertificate:
            case QSslError::SelfSignedCertificateInChain:
            case QSslError::CertificateUntrusted:
            case QSslError::UnableToGetLocalIssuerCertificate:
            case QSslError::UnableToVerifyFirstCertificate:
            case QSslError::HostNameMismatch:
                break;
            default:
                return false;
        }
    }
    return true;
}

void PeerTlsHandshake::start() {
    if (!own_ || expected_.isEmpty()) {
        refuse(QStringLiteral("there is no certificate to check"));
        return;
    }
    QSslConfiguration configuration = socket_.sslConfiguration();
    configuration.setLocalCertificate(own_->certificate());
    configuration.setPrivateKey(own_->key());
    // Trust comes from the relayed fingerprint alone, never from an authority.
    configuration.setCaCertificates({});
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    configuration.setBackendConfigurationOption(
        "Ciphersuites",
        QByteArrayLiteral(
            "TLS_AES_128_GCM_SHA256:TLS_AES_256_GCM_SHA384:TLS_CHACHA20_POLY1305_SHA256"));
    // The listening side asks for the connecting side's certificate too.
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    socket_.setSslConfiguration(configuration);

    connect(&socket_, &QSslSocket::sslErrors, this, [this](const QList<QSslError>& errors) {
        if (forgivable(errors, socket_.peerCertificate(), expected_)) {
            socket_.ignoreSslErrors();
        } else {
            refuse(kNotThePeer);
        }
    });
    connect(&socket_, &QSslSocket::encrypted, this, [this] {
        // Checked again here: a certificate some authority vouches for draws no complaint at all.
        if (PeerCertificate::fingerprintOf(socket_.peerCertificate()) != expected_) {
            refuse(kNotThePeer);
            return;
        }
        done_ = true;
        timeout_.stop();
        socket_.disconnect(this);
        emit secured();
    });
    connect(&socket_, &QAbstractSocket::errorOccurred, this, [this] {
        refuse(socket_.error() == QAbstractSocket::SslHandshakeFailedError
                   ? QStringLiteral("the encryption handshake failed: ") + socket_.errorString()
                   : socket_.errorString());
    });
    timeout_.start();
    if (role_ == Role::Client) {
        socket_.startClientEncryption();
    } else {
        socket_.startServerEncryption();
    }
}

void PeerTlsHandshake::refuse(const QString& reason) {
    if (done_) {
        return;
    }
    done_ = true;
    timeout_.stop();
    socket_.disconnect(this);
    emit refused(reason);
}

}  // namespace tavren
