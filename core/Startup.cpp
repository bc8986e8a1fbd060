#include "core/Startup.h"

#include <QDir>

#include "assets/BundledAssets.h"
#include "core/ClientSession.h"
#include "core/PlatformSteps.h"
#include "core/Prompter.h"

namespace tavren {

Startup::Startup(const QString& dataRoot, Prompter& prompter)
    : dataRoot_(dataRoot), prompter_(prompter), guard_(dataRoot) {}

bool Startup::claimProcess() {
    if (!PlatformSteps::checkMediaPlayer(prompter_)) {
        return false;
    }
    PlatformSteps::ensureVisualStylesManifest();
    if (guard_.acquire()) {
        return true;
    }
    const auto answer =
        prompter_.askYesNo(QStringLiteral("Would you like to open another Tavren Chat Client?\n"
                                          "Tavren Chat Client is already running..."),
                           QStringLiteral("Tavren Client Already running!"));
    return answer == Prompter::Answer::Yes;
}

QString Startup::loadUserData(ClientSession& session) {
    // Folder creation failures are not reported by themselves: whatever then fails to be
    // written shows up in the asset report below.
    QDir root(dataRoot_);
    root.mkpath(QStringLiteral("smiles"));
    root.mkpath(QStringLiteral("downloaded"));

    session.settings().load();
    const AssetInstallReport assets = BundledAssets::install(dataRoot_);

    session.dataFiles().load();
    return assets.failureSummary();
}

}  // namespace tavren
