#include "core/ConnectionOptions.h"

#include "core/DefaultServers.h"

namespace tavren {

ConnectionOptions ConnectionOptions::deployment() {
    ConnectionOptions options;
    for (const char* host : deployment::kDefaultServers) {
        options.defaultServers << QString::fromUtf8(host);
    }
    options.defaultPort = deployment::kDefaultPort;
    options.tunnelHost = QString::fromUtf8(deployment::kTunnelAddress);
    options.tunnelPort = deployment::kTunnelPort;
    return options;
}

}  // namespace tavren
