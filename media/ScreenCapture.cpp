#include "media/ScreenCapture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTimer>
#include <cstring>
#include <filesystem>

#include "core/Prompter.h"
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

cImage ScreenCapture::toImage(const QImage& image) {
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    cImage picture(rgb.width(), rgb.height());
    for (int y = 0; y < rgb.height(); ++y) {
        std::memcpy(picture.ScanLine(y), rgb.constScanLine(y), picture.BytesPerScanLine());
    }
    return picture;
}

void ScreenCapture::start(const QImage& screen, const QRect& area, const QString& nickname) {
    screen_ = screen;
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
                if (!screen_.copy(area_).save(bitmapPath_, "BMP")) {
                    step_ = 6;
                    break;
                }
                screen_ = QImage();
                ++step_;
                break;
            }
            case 2: {
                const QImage loaded(bitmapPath_);
                QFile::remove(bitmapPath_);
                bitmapPath_.clear();
                if (loaded.isNull()) {
                    step_ = 6;
                    break;
                }
                picture_ = toImage(loaded);
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
