#pragma once

#include <QList>
#include <QSslCertificate>
#include <QSslError>
#include <QString>
#include <optional>

namespace tavren {

class Settings;

// Whether the server's certificate is taken. One that an authority the system trusts vouches
// for, for the server's name, needs nobody's word. Any other is known by its fingerprint: the
// member trusts it once (the first time, or again after it changed), and it is kept per host and
// port in the settings. Errors that no fingerprint can excuse (a broken signature, a revoked
// certificate, none at all) refuse the server outright.
class ServerTrust {
  public:
    enum class Verdict { Trusted, Unknown, Changed, Refused };
    struct Check {
        Verdict verdict = Verdict::Refused;
        QString fingerprint;  // the certificate's, as CertificateFingerprint writes it
        QString known;        // the one kept for this server, when there is one
        QString reasons;      // what the system found wrong, in its own words
    };

    explicit ServerTrust(Settings& settings) : settings_(settings) {}

    Check check(const QString& serverKey, const QSslCertificate& certificate,
                const QList<QSslError>& errors) const;
    void remember(const QString& serverKey, const QString& fingerprint);

    // "host:port", the key a server's fingerprint is kept under.
    static QString keyFor(const QString& host, quint16 port);
    static QString fingerprintOf(const QSslCertificate& certificate);
    // Reads "HOST:PORT=FINGERPRINT" (the form scripts hand the client for a server they
    // started) into a key and a fingerprint; false when it is not that.
    static bool parseTrusted(const QString& text, QString& key, QString& fingerprint);

  private:
    Settings& settings_;
};

}  // namespace tavren
