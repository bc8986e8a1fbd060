#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>
#include <QtEndian>
#include <optional>

#include "assets/BundledAssets.h"

namespace tavren {
namespace {

struct WavFormat {
    int channels = 0;
    int sampleRate = 0;
    int bitsPerSample = 0;
    double seconds = 0;
    double peak = 0;       // 0..1 of full scale
    double firstLast = 0;  // the larger of the first and last sample, 0..1 of full scale
};

// Reads a RIFF/WAVE file the way a strict player would: every chunk must fit in the file.
std::optional<WavFormat> parseWav(const QByteArray& bytes) {
    auto u16 = [&](qsizetype at) { return qFromLittleEndian<quint16>(bytes.constData() + at); };
    auto u32 = [&](qsizetype at) { return qFromLittleEndian<quint32>(bytes.constData() + at); };
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE" ||
        u32(4) + 8 != quint32(bytes.size())) {
        return std::nullopt;
    }
    WavFormat format;
    bool haveFormat = false;
    for (qsizetype at = 12; at + 8 <= bytes.size();) {
        const QByteArray id = bytes.mid(at, 4);
        const qsizetype size = u32(at + 4);
        const qsizetype body = at + 8;
        if (body + size > bytes.size()) {
            return std::nullopt;
        }
        if (id == "fmt " && size >= 16) {
            if (u16(body) != 1) {  // PCM
                return std::nullopt;
            }
            format.channels = u16(body + 2);
            format.sampleRate = int(u32(body + 4));
            format.bitsPerSample = u16(body + 14);
            const int blockAlign = format.channels * format.bitsPerSample / 8;
            if (u16(body + 12) != blockAlign ||
                u32(body + 8) != quint32(format.sampleRate) * blockAlign) {
                return std::nullopt;
            }
            haveFormat = true;
        } else if (id == "data" && haveFormat && format.channels == 1 &&
                   format.bitsPerSample == 16) {
            const qsizetype samples = size / 2;
            if (samples == 0) {
                return std::nullopt;
            }
            format.seconds = double(samples) / format.sampleRate;
            auto sample = [&](qsizetype i) {
                return std::abs(qFromLittleEndian<qint16>(bytes.constData() + body + 2 * i)) /
                       32768.0;
            };
            for (qsizetype i = 0; i < samples; ++i) {
                format.peak = std::max(format.peak, sample(i));
            }
            format.firstLast = std::max(sample(0), sample(samples - 1));
            return format;
        }
        at = body + size + (size & 1);
    }
    return std::nullopt;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

TEST(BundledAssets, FreshDataRootGetsEveryPictureAndSoundInAUsableForm) {
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    // The default argument follows the data root, which tests point at their own folder.
    qputenv("TAVREN_HOME", root.path().toUtf8());

    const AssetInstallReport report = BundledAssets::install();
    EXPECT_TRUE(report.ok()) << report.failureSummary().toStdString();
    EXPECT_TRUE(report.failureSummary().isEmpty());
    EXPECT_EQ(report.written.size(), 53 + 15);

    QSet<QByteArray> distinctPictures;
    for (int number = 101; number <= 153; ++number) {
        const QString path = root.filePath(QStringLiteral("smiles/%1.gif").arg(number));
        EXPECT_TRUE(report.written.contains(QStringLiteral("smiles/%1.gif").arg(number)));
        const QImage picture(path, "GIF");
        ASSERT_FALSE(picture.isNull()) << number;
        EXPECT_GE(picture.width(), 16) << number;
        EXPECT_LE(picture.width(), 24) << number;
        EXPECT_GE(picture.height(), 16) << number;
        EXPECT_LE(picture.height(), 24) << number;
        // Smileys sit on the user's chosen pane colour, so each needs see-through pixels.
        const QImage argb = picture.convertToFormat(QImage::Format_ARGB32);
        EXPECT_EQ(qAlpha(argb.pixel(0, 0)), 0) << number;
        distinctPictures.insert(QCryptographicHash::hash(
            QByteArray(reinterpret_cast<const char*>(argb.constBits()), argb.sizeInBytes()),
            QCryptographicHash::Sha1));
    }
    EXPECT_EQ(distinctPictures.size(), 53) << "two smiley numbers share one picture";

    const QStringList sounds = BundledAssets::soundFileNames();
    ASSERT_EQ(sounds.size(), 15);
    for (const QString& name : sounds) {
        EXPECT_TRUE(report.written.contains(QStringLiteral("sounds/") + name));
        const auto wav = parseWav(readAll(root.filePath(QStringLiteral("sounds/") + name)));
        ASSERT_TRUE(wav.has_value()) << name.toStdString();
        EXPECT_EQ(wav->channels, 1) << name.toStdString();
        EXPECT_EQ(wav->bitsPerSample, 16) << name.toStdString();
        EXPECT_TRUE(wav->sampleRate == 22050 || wav->sampleRate == 44100) << name.toStdString();
        EXPECT_GE(wav->seconds, 0.1) << name.toStdString();
        EXPECT_LE(wav->seconds, 0.8) << name.toStdString();
        // Audible but modest, and faded at both ends so playback starts and stops without a click.
        EXPECT_GT(wav->peak, 0.1) << name.toStdString();
        EXPECT_LT(wav->peak, 0.7) << name.toStdString();
        EXPECT_LT(wav->firstLast, 0.01) << name.toStdString();
    }

    const SmileyCheck check = BundledAssets::checkSmileys();
    EXPECT_TRUE(check.complete());
    EXPECT_FALSE(check.custom);

    // A second start finds everything in place and writes nothing.
    const AssetInstallReport again = BundledAssets::install();
    EXPECT_TRUE(again.ok());
    EXPECT_TRUE(again.written.isEmpty());
}

TEST(BundledAssets, FilesTheUserAlreadyHasAreNeverReplaced) {
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("smiles")));
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("sounds")));
    const QString ownPicture = root.filePath(QStringLiteral("smiles/149.gif"));
    const QString ownSound = root.filePath(QStringLiteral("sounds/them_bet.wav"));
    ASSERT_TRUE(writeFile(ownPicture, "my own smile"));
    ASSERT_TRUE(writeFile(ownSound, ""));  // even an empty file is the user's choice

    const AssetInstallReport report = BundledAssets::install(root.path());

    EXPECT_TRUE(report.ok());
    EXPECT_EQ(report.written.size(), 53 + 15 - 2);
    EXPECT_FALSE(report.written.contains(QStringLiteral("smiles/149.gif")));
    EXPECT_FALSE(report.written.contains(QStringLiteral("sounds/them_bet.wav")));
    EXPECT_EQ(readAll(ownPicture), QByteArray("my own smile"));
    EXPECT_TRUE(readAll(ownSound).isEmpty());
    EXPECT_TRUE(QFile::exists(root.filePath(QStringLiteral("smiles/150.gif"))));

    // The check tells the start-up which of the user's files will not show.
    const SmileyCheck check = BundledAssets::checkSmileys(root.path());
    EXPECT_TRUE(check.missing.isEmpty());
    EXPECT_EQ(check.unreadable, QList<int>{149});
    EXPECT_FALSE(check.complete());
}

TEST(BundledAssets, CustomSmileySetIsLeftAloneButSoundsStillArrive) {
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("smiles")));
    ASSERT_TRUE(writeFile(root.filePath(QStringLiteral("smiles/CUSTOM")), ""));
    QImage own(20, 20, QImage::Format_ARGB32);
    own.fill(Qt::transparent);
    ASSERT_TRUE(own.save(root.filePath(QStringLiteral("smiles/101.gif")), "PNG"));

    const AssetInstallReport report = BundledAssets::install(root.path());

    EXPECT_TRUE(report.ok());
    EXPECT_TRUE(report.customSmileys);
    EXPECT_EQ(report.written.size(), 15);
    for (const QString& written : report.written) {
        EXPECT_TRUE(written.startsWith(QStringLiteral("sounds/"))) << written.toStdString();
    }
    EXPECT_EQ(QDir(root.filePath(QStringLiteral("smiles"))).entryList(QDir::Files).size(), 2);

    const SmileyCheck check = BundledAssets::checkSmileys(root.path());
    EXPECT_TRUE(check.custom);
    EXPECT_EQ(check.missing.size(), 52);
    EXPECT_FALSE(check.missing.contains(101));
    // A picture in another format under a .gif name still shows in the pane, so it counts.
    EXPECT_TRUE(check.unreadable.isEmpty());
}

TEST(BundledAssets, UnwritableDataRootGivesAReportInsteadOfACrash) {
    QTemporaryDir scratch;
    ASSERT_TRUE(scratch.isValid());
    // A root below a plain file can never be created, not even by the administrator.
    const QString blocker = scratch.filePath(QStringLiteral("not-a-folder"));
    ASSERT_TRUE(writeFile(blocker, "x"));
    const AssetInstallReport blocked = BundledAssets::install(blocker + QStringLiteral("/root"));
    EXPECT_FALSE(blocked.ok());
    EXPECT_TRUE(blocked.written.isEmpty());
    ASSERT_EQ(blocked.failures.size(), 2);
    EXPECT_EQ(blocked.failures[0].relativePath, QStringLiteral("smiles/"));
    EXPECT_EQ(blocked.failures[1].relativePath, QStringLiteral("sounds/"));
    EXPECT_TRUE(blocked.failureSummary().startsWith(QStringLiteral("Could not install smiles/")));
    EXPECT_TRUE(blocked.failureSummary().contains(QStringLiteral("1 more")));

    const SmileyCheck nothing = BundledAssets::checkSmileys(blocker + QStringLiteral("/root"));
    EXPECT_EQ(nothing.missing.size(), 53);

    // One blocked folder does not stop the other.
    const QString root = scratch.filePath(QStringLiteral("half"));
    ASSERT_TRUE(QDir().mkpath(root));
    ASSERT_TRUE(writeFile(root + QStringLiteral("/smiles"), "a file where the folder belongs"));
    const AssetInstallReport half = BundledAssets::install(root);
    ASSERT_EQ(half.failures.size(), 1);
    EXPECT_EQ(half.failures[0].relativePath, QStringLiteral("smiles/"));
    EXPECT_EQ(half.written.size(), 15);

    // A read-only folder (only enforceable when the tests do not run as the administrator).
    const QString readOnly = scratch.filePath(QStringLiteral("read-only"));
    ASSERT_TRUE(QDir().mkpath(readOnly + QStringLiteral("/smiles")));
    ASSERT_TRUE(QDir().mkpath(readOnly + QStringLiteral("/sounds")));
    QFile::setPermissions(readOnly + QStringLiteral("/smiles"), QFile::ReadOwner | QFile::ExeOwner);
    if (!writeFile(readOnly + QStringLiteral("/smiles/probe"), "x")) {
        const AssetInstallReport denied = BundledAssets::install(readOnly);
        EXPECT_EQ(denied.failures.size(), 53);
        EXPECT_EQ(denied.written.size(), 15);
    }
    QFile::setPermissions(readOnly + QStringLiteral("/smiles"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

}  // namespace
}  // namespace tavren
