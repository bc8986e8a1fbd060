#include "core/PlatformSteps.h"

#ifdef Q_OS_WIN
#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QUrl>

#include "core/Prompter.h"
#endif

namespace tavren {

#ifdef Q_OS_WIN

bool PlatformSteps::checkMediaPlayer(Prompter& prompter) {
    const QSettings machine(
        QStringLiteral("HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Active Setup\\Installed "
                       "Components\\{6BF52A52-394A-11d3-B153-00C04F79FAA6}"),
        QSettings::NativeFormat);
    if (machine.value(QStringLiteral("IsInstalled")).toString() == QLatin1String("1")) {
        return true;
    }
    const auto answer = prompter.askYesNo(
        QStringLiteral("Kestrium requires that you have a newer version of Windows Media Player "
                       "installed on your system in order to run. Would you like to be taken to "
                       "the Microsoft Windows Media Player download site now?"),
        QStringLiteral("Kestrium Error: 123"));
    if (answer == Prompter::Answer::Yes) {
        QDesktopServices::openUrl(
            QUrl(QStringLiteral("https://support.microsoft.com/windows/get-windows-media-player")));
    }
    return false;
}

void PlatformSteps::ensureVisualStylesManifest() {
    const QString manifestPath =
        QCoreApplication::applicationFilePath() + QStringLiteral(".MANIFEST");
    if (QFileInfo::exists(manifestPath)) {
        return;
    }
    QFile manifest(manifestPath);
    if (!manifest.open(QIODevice::WriteOnly | QIODevice::Text)) {
        return;  // a read-only install folder only costs the visual styles
    }
    manifest.write(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
        "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">\n"
        "  <assemblyIdentity version=\"1.0.0.0\" processorArchitecture=\"*\" "
        "name=\"Tavren.Client\" type=\"win32\"/>\n"
        "  <description>Tavren Chat Service</description>\n"
        "  <dependency>\n"
        "    <dependentAssembly>\n"
        "      <assemblyIdentity type=\"win32\" name=\"Microsoft.Windows.Common-Controls\" "
        "version=\"6.0.0.0\" processorArchitecture=\"*\" publicKeyToken=\"6595b64144ccf1df\" "
        "language=\"*\"/>\n"
        "    </dependentAssembly>\n"
        "  </dependency>\n"
        "</assembly>\n");
    QCoreApplication::processEvents();
}

#else

bool PlatformSteps::checkMediaPlayer(Prompter&) {
    return true;
}

void PlatformSteps::ensureVisualStylesManifest() {}

#endif

}  // namespace tavren
