#include "core/DataRoot.h"

#include <QDir>
#include <QStandardPaths>

namespace tavren {

QString DataRoot::path() {
    const QString fromEnvironment = qEnvironmentVariable("TAVREN_HOME");
    if (!fromEnvironment.isEmpty()) {
        return QDir::cleanPath(QDir(fromEnvironment).absolutePath());
    }
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

QString DataRoot::file(const QString& relative) {
    return path() + QLatin1Char('/') + relative;
}

}  // namespace tavren
