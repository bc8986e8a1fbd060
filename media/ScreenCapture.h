#pragma once

#include <QImage>
#include <QObject>
#include <QRect>
#include <QString>
#include <memory>

#include "media/cImage.h"

namespace tavren {

class Prompter;
class cJpeg;

// Turns a rectangle of the frozen screen into a JPEG picture in the download folder, in the
// capture's fixed steps, one step per turn of the event loop so the interface stays alive:
//
//   1. save the area as a bitmap "<data root>/<nickname>_ss<0..98>.bmp" (a file of that name
//      goes first), 32 bits a pixel straight from the grab;
//   2. read the bitmap back into a cImage (in its own 32-bit form, nothing converted), then
//      delete it, so it never outlives the capture;
//   3. set up cJpeg: quality 65, sampling 2,2,1,1,1,1, and sample the whole picture;
//   4. pick the name "<nickname>_ss<n>.jpg" for the first n = 0, 1, 2, .. not taken in the
//      download folder;
//   5. write the file;
//   6. if the file is not there, "Error Taking Screenshot"; else hand its path on.
//
// Whatever fails on the way ends in step 6.
class ScreenCapture : public QObject {
    Q_OBJECT
  public:
    static constexpr int kQuality = 65;

    ScreenCapture(const QString& dataRoot, Prompter& prompter, QObject* parent = nullptr);
    ~ScreenCapture() override;

    // Starts the steps on `area` of `screen`; the result comes as captured() or failed().
    void start(const QImage& screen, const QRect& area, const QString& nickname);
    bool running() const { return step_ != 0; }

    QString downloadFolder() const;
    // "<nickname>_ss<n>.jpg" with the first free n in `folder`.
    static QString outputPath(const QString& folder, const QString& nickname);

  signals:
    void captured(const QString& path);
    void failed();

  private:
    void runStep();
    void scheduleNext();

    QString dataRoot_;
    Prompter& prompter_;
    QImage screen_;
    QRect area_;
    QString nickname_;
    QString bitmapPath_;
    QString outputPath_;
    cImage picture_;
    std::unique_ptr<cJpeg> encoder_;
    int step_ = 0;
};

}  // namespace tavren
