#include "pm/PeerCertificate.h"

#include <QSslSocket>
#include <stdexcept>

#include "tls/CertificateFingerprint.h"
#include "tls/SelfSignedCertificate.h"

namespace tavren {

namespace {
// Long enough for any transfer, short enough that a key nobody keeps is also worthless on paper.
constexpr int kValidDays = 7;
}  // namespace

std::shared_ptr<const PeerCertificate> PeerCertificate::make() {
    if (!QSslSocket::supportsSsl()) {
        return nullptr;
    }
    tls::SelfSignedCertificate made;
    try {
        made = tls::SelfSignedCertificate::generate("tavren-peer", kValidDays);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
    auto result = std::make_shared<PeerCertificate>();
    result->certificate_ = QSslCertificate(
        QByteArray(made.certificatePem.data(), static_cast<qsizetype>(made.certificatePem.size())),
        QSsl::Pem);
    result->key_ = QSslKey(
        QByteArray(made.privateKeyPem.data(), static_cast<qsizetype>(made.privateKeyPem.size())),
        QSsl::Ec, QSsl::Pem, QSsl::PrivateKey);
    if (result->certificate_.isNull() || result->key_.isNull()) {
        return nullptr;
    }
    result->fingerprint_ = fingerprintOf(result->certificate_);
    return result;
}

QString PeerCertificate::fingerprintOf(const QSslCertificate& certificate) {
    if (certificate.isNull()) {
        return {};
    }
    const QByteArray der = certificate.toDer();
    return QString::fromStdString(
        tls::CertificateFingerprint::ofDer(std::string_view(der.constData(), der.size())));
}

bool PeerCertificate::isFingerprint(const QString& text) {
    if (text.size() != 95) {
        return false;
    }
    const std::string latin = text.toStdString();
    const auto normal = tls::CertificateFingerprint::normalise(latin);
    return normal && *normal == latin;
}

}  // namespace tavren
