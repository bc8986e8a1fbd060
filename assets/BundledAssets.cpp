#include "assets/BundledAssets.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QSaveFile>

// The resources live in a static library; registering them by name keeps them reachable even
// when the linker would otherwise drop their initialiser. Registering twice is harmless.
static void registerBundledResources() {
    Q_INIT_RESOURCE(tavren_assets);
}

namespace tavren {

namespace {

const QString kSmilesFolder = QStringLiteral("smiles");
const QString kSoundsFolder = QStringLiteral("sounds");

QStringList smileyFileNames() {
    QStringList names;
    for (int number = BundledAssets::kFirstSmiley; number <= BundledAssets::kLastSmiley; ++number) {
        names << BundledAssets::smileyFileName(number);
    }
    return names;
}

// A dangling symbolic link counts as present: writing through it would land somewhere else.
bool isPresent(const QString& path) {
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

// Copies one embedded file to `target` in one step: a full disk leaves no half-written file.
// Returns the reason on failure, an empty string on success.
QString writeBundledFile(const QString& resource, const QString& target) {
    QFile source(resource);
    if (!source.open(QIODevice::ReadOnly)) {
        return QStringLiteral("not bundled with this build");
    }
    const QByteArray bytes = source.readAll();
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly)) {
        return out.errorString();
    }
    if (out.write(bytes) != bytes.size()) {
        const QString reason = out.errorString();
        out.cancelWriting();
        return reason;
    }
    if (!out.commit()) {
        return out.errorString();
    }
    return {};
}

void installFolder(const QDir& root, const QString& folder, const QStringList& names,
                   AssetInstallReport& report) {
    const QString folderPath = root.filePath(folder);
    QStringList lacking;
    for (const QString& name : names) {
        if (!isPresent(folderPath + QLatin1Char('/') + name)) {
            lacking << name;
        }
    }
    if (lacking.isEmpty()) {
        return;  // a complete folder needs no write access at all
    }
    if (!QDir().mkpath(folderPath) || !QFileInfo(folderPath).isDir()) {
        report.failures.append(
            {folder + QLatin1Char('/'), QStringLiteral("the folder could not be created")});
        return;
    }
    for (const QString& name : lacking) {
        const QString relative = folder + QLatin1Char('/') + name;
        const QString reason = writeBundledFile(BundledAssets::resourcePath(relative),
                                                folderPath + QLatin1Char('/') + name);
        if (reason.isEmpty()) {
            report.written << relative;
        } else {
            report.failures.append({relative, reason});
        }
    }
}

bool loadsAsPicture(const QString& path) {
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    return !reader.read().isNull();
}

}  // namespace

QString BundledAssets::smileyFileName(int number) {
    return QString::number(number) + QStringLiteral(".gif");
}

QStringList BundledAssets::soundFileNames() {
    return {
        QStringLiteral("buddy_online.wav"),
        QStringLiteral("buddy_offline.wav"),
        QStringLiteral("channel_message.wav"),
        QStringLiteral("channel_chanhost.wav"),
        QStringLiteral("private_message_new.wav"),
        QStringLiteral("private_message.wav"),
        QStringLiteral("server_login.wav"),
        QStringLiteral("server_logoff.wav"),
        QStringLiteral("error_message.wav"),
        QStringLiteral("them_deal.wav"),
        QStringLiteral("them_bet.wav"),
        QStringLiteral("them_check.wav"),
        QStringLiteral("them_fold.wav"),
        QStringLiteral("them_turn.wav"),
        QStringLiteral("them_chat.wav"),
    };
}

QString BundledAssets::customMarkerName() {
    return QStringLiteral("CUSTOM");
}

QString BundledAssets::resourcePath(const QString& relativePath) {
    static const bool registered = (registerBundledResources(), true);
    Q_UNUSED(registered);
    return QStringLiteral(":/tavren/") + relativePath;
}

AssetInstallReport BundledAssets::install(const QString& dataRoot) {
    AssetInstallReport report;
    const QDir root(dataRoot);
    report.customSmileys =
        isPresent(root.filePath(kSmilesFolder + QLatin1Char('/') + customMarkerName()));
    if (!report.customSmileys) {
        installFolder(root, kSmilesFolder, smileyFileNames(), report);
    }
    installFolder(root, kSoundsFolder, soundFileNames(), report);
    return report;
}

SmileyCheck BundledAssets::checkSmileys(const QString& dataRoot) {
    SmileyCheck check;
    const QString folder = QDir(dataRoot).filePath(kSmilesFolder) + QLatin1Char('/');
    check.custom = isPresent(folder + customMarkerName());
    for (int number = kFirstSmiley; number <= kLastSmiley; ++number) {
        const QFileInfo info(folder + smileyFileName(number));
        if (!info.exists()) {
            check.missing << number;
        } else if (!info.isFile() || !loadsAsPicture(info.filePath())) {
            check.unreadable << number;
        }
    }
    return check;
}

}  // namespace tavren
