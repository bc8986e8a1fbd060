#include "core/ConnectTarget.h"

namespace tavren {

namespace {

quint16 numericPort(const QString& text) {
    bool ok = false;
    const uint port = text.trimmed().toUInt(&ok);
    return ok && port <= 65535 ? static_cast<quint16>(port) : 0;
}

}  // namespace

QString ConnectTarget::resolveHost(const QString& text, const ConnectionOptions& options) {
    const QString keyword = text.trimmed().toLower();
    for (int i = 0; i < options.defaultServers.size(); ++i) {
        if (keyword == QStringLiteral("{default server #%1}").arg(i + 1)) {
            return options.defaultServers.at(i);
        }
    }
    return text.trimmed();
}

quint16 ConnectTarget::resolvePort(const QString& text, const ConnectionOptions& options) {
    if (text.trimmed().toLower() == QLatin1String("{default port}")) {
        return options.defaultPort;
    }
    return numericPort(text);
}

ConnectTarget ConnectTarget::fromSettings(const SettingsValues& values,
                                          const ConnectionOptions& options) {
    ConnectTarget target;
    if (values.useProxy) {
        // The proxy decides nothing about the destination: the tunnel always asks for the
        // deployment's own server, so the server settings do not matter here.
        target.viaProxy = true;
        target.port = numericPort(values.proxyPort);
        target.host = values.proxyHost.trimmed();
        if (target.port == 0) {
            target.problem = QStringLiteral("Invalid Proxy Port Please Check Settings.");
        } else if (target.host.isEmpty()) {
            target.problem = QStringLiteral("Invalid Proxy Address Please Check Settings.");
        }
        return target;
    }
    target.host = resolveHost(values.serverHost, options);
    target.port = resolvePort(values.serverPort, options);
    if (target.port == 0) {
        target.problem = QStringLiteral("Invalid Server Port Please Check Settings.");
    } else if (target.host.isEmpty()) {
        target.problem = QStringLiteral("Invalid Server Address Please Check Settings.");
    }
    return target;
}

}  // namespace tavren
