#include "core/ServerTrust.h"

#include <QStringList>

#include "config/Settings.h"
#include "tls/CertificateFingerprint.h"

namespace tavren {

namespace {

// What a certificate of the server's own (or of an authority the system does not know) shows;
// the member's word for its fingerprint stands in for an authority's.
bool excusableByFingerprint(QSslError::SslError error) {
    switch (error) {
        case QSslError::SelfSignedCertificate:
        case QSslError::SelfSignedCertificateInChain:
        case QSslError::UnableToGetLocalIssuerCertificate:
        case QSslError::UnableToGetIssuerCertificate:
        case QSslError::UnableToVerifyFirstCertificate:
        case QSslError::CertificateUntrusted:
        case QSslError::HostNameMismatch:
        case QSslError::CertificateExpired:
        case QSslError::CertificateNotYetValid:
        case QSslError::InvalidPurpose:
            return true;
        default:
            return false;
    }
}

}  // namespace

QString ServerTrust::keyFor(const QString& host, quint16 port) {
    return host.toLower() + QLatin1Char(':') + QString::number(port);
}

QString ServerTrust::fingerprintOf(const QSslCertificate& certificate) {
    const QByteArray der = certificate.toDer();
    return QString::fromStdString(tls::CertificateFingerprint::ofDer(
        std::string_view(der.constData(), static_cast<std::size_t>(der.size()))));
}

ServerTrust::Check ServerTrust::check(const QString& serverKey, const QSslCertificate& certificate,
                                      const QList<QSslError>& errors) const {
    Check result;
    if (certificate.isNull()) {
        result.reasons = QStringLiteral("the server sent no certificate");
        return result;
    }
    result.fingerprint = fingerprintOf(certificate);
    result.known = settings_.knownServer(serverKey);
    QStringList reasons;
    bool excusable = true;
    for (const QSslError& error : errors) {
        reasons << error.errorString();
        excusable = excusable && excusableByFingerprint(error.error());
    }
    reasons.removeDuplicates();
    result.reasons = reasons.join(QStringLiteral("; "));
    if (errors.isEmpty()) {
        result.verdict = Verdict::Trusted;
    } else if (!excusable) {
        result.verdict = Verdict::Refused;
    } else if (result.known.isEmpty()) {
        result.verdict = Verdict::Unknown;
    } else {
        result.verdict = result.known == result.fingerprint ? Verdict::Trusted : Verdict::Changed;
    }
    return result;
}

bool ServerTrust::parseTrusted(const QString& text, QString& key, QString& fingerprint) {
    const qsizetype equals = text.indexOf(QLatin1Char('='));
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'), equals);
    if (equals < 0 || colon <= 0) {
        return false;
    }
    bool numeric = false;
    const uint port = text.mid(colon + 1, equals - colon - 1).toUInt(&numeric);
    const auto normalised =
        tls::CertificateFingerprint::normalise(text.mid(equals + 1).toStdString());
    if (!numeric || port == 0 || port > 65535 || !normalised) {
        return false;
    }
    key = keyFor(text.left(colon), static_cast<quint16>(port));
    fingerprint = QString::fromStdString(*normalised);
    return true;
}

void ServerTrust::remember(const QString& serverKey, const QString& fingerprint) {
    settings_.setKnownServer(serverKey, fingerprint);
}

}  // namespace tavren
