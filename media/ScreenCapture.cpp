#include "media/ScreenCapture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTimer>
#include <filesystem>

#include "core/Prompter.h"
#include "media/BmpFile.h"
#include "media/cJpeg.h"
#include "pm/ReceivedFileName.h"

namespace tavren {

ScreenCapture::ScreenCapture(const QString& dataRoot, Prompter& prompter, QObject* parent)
    : QObject(parent), dataRoot_(QDir::cleanPath(dataRoot)), prompter_(prompter) {}

ScreenCapture::~ScreenCapture() {
    if (!bitmapPath_.isEmpty()) {
        QFile::remove(bitmapPath_);
    }
}

QString ScreenCapture::downloadFolder() const {
    return dataRoot_ + QStringLiteral("/downloaded");
}

QString ScreenCapture::outputPath(const QString& folder, const QString& nickname) {
    const QString stem =
        QDir(folder).filePath(ReceivedFileName::safePart(nickname) + QStringLiteral("_ss"));
    for (qint64 n = 0;; ++n) {
        const QString candidate = stem + QString::number(n) + QStringLiteral(".jpg");
        if (!QFileInfo::exists(candidate) && !QFileInfo(candidate).isSymLink()) {
            return candidate;
        }
    }
}

void ScreenCapture::start(const QImage& screen, const QRect& area, const QString& nickname) {
    // Four bytes B, G, R, unused a pixel on the little-endian machines we build for: the form
    // the bitmap file and the encoder take as it is. A grab nearly always comes that way.
    const bool bgrx =
        screen.format() == QImage::Format_RGB32 || screen.format() == QImage::Format_ARGB32;
    screen_ = bgrx ? screen : screen.convertToFormat(QImage::Format_RGB32);
    area_ = area.intersected(screen.rect());
    nickname_ = nickname;
    outputPath_.clear();
    step_ = 1;
    scheduleNext();
}

void ScreenCapture::scheduleNext() {
    QTimer::singleShot(0, this, &ScreenCapture::runStep);
}

void ScreenCapture::runStep() {
    const QString safeName = ReceivedFileName::safePart(nickname_);
    try {
        switch (step_) {
            case 1: {
                if (area_.isEmpty()) {
                    step_ = 6;
                    break;
                }
                bitmapPath_ = dataRoot_ + QLatin1Char('/') + safeName + QStringLiteral("_ss") +
                              QString::number(QRandomGenerator::global()->bounded(99)) +
                              QStringLiteral(".bmp");
                QFile::remove(bitmapPath_);
                // The area's lines straight from the grab, no copy of the area first.
                BmpFile::WriteBgrx(std::filesystem::path(bitmapPath_.toStdU16String()),
                                   screen_.constScanLine(area_.top()) + 4 * area_.left(),
                                   screen_.bytesPerLine(), area_.width(), area_.height());
                screen_ = QImage();
                ++step_;
                break;
            }
            case 2: {
                const std::filesystem::path bitmap(bitmapPath_.toStdU16String());
                bitmapPath_.clear();
                try {
                    picture_ = BmpFile::Read(bitmap);
                } catch (...) {
                    std::error_code ignored;
                    std::filesystem::remove(bitmap, ignored);
                    throw;
                }
                std::error_code ignored;
                std::filesystem::remove(bitmap, ignored);
                ++step_;
                break;
            }
            case 3:
                encoder_ = std::make_unique<cJpeg>();
                encoder_->SetQuality(kQuality);
                encoder_->SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
                encoder_->SampleHDC(picture_, picture_.Width(), picture_.Height(), 0, 0);
                picture_ = cImage();
                ++step_;
                break;
            case 4:
                QDir().mkpath(downloadFolder());
                outputPath_ = outputPath(downloadFolder(), nickname_);
                ++step_;
                break;
            case 5:
                // The path in the system's own encoding, whatever the platform.
                encoder_->SaveFile(std::filesystem::path(outputPath_.toStdU16String()));
                encoder_.reset();
                ++step_;
                break;
            default:
                break;
        }
    } catch (const std::exception&) {
        step_ = 6;
    }
    if (step_ < 6) {
        scheduleNext();
        return;
    }
    step_ = 0;
    encoder_.reset();
    if (!bitmapPath_.isEmpty()) {
        QFile::remove(bitmapPath_);
        bitmapPath_.clear();
    }
    if (outputPath_.isEmpty() || !QFileInfo::exists(outputPath_)) {
        prompter_.message(QStringLiteral("Error Taking Screenshot"), QStringLiteral("Error"),
                          Prompter::Icon::Critical);
        emit failed();
        return;
    }
    emit captured(outputPath_);
}

}  // namespace tavren
