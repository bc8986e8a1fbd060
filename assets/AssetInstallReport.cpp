#include "assets/AssetInstallReport.h"

namespace tavren {

QString AssetInstallReport::failureSummary() const {
    if (failures.isEmpty()) {
        return {};
    }
    const Failure& first = failures.first();
    QString text = QStringLiteral("Could not install %1: %2").arg(first.relativePath, first.reason);
    if (failures.size() > 1) {
        text += QStringLiteral(" (and %1 more)").arg(failures.size() - 1);
    }
    return text;
}

}  // namespace tavren
