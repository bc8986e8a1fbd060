// The screen capture: its steps (names, encoder settings, failures), the capture window's rubber
// band offscreen, and the whole of it on a real X server (Xvfb) in a child process.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QProcess>
#include <QRubberBand>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <algorithm>
#include <vector>

#include "connection/Wait.h"
#include "media/BmpFile.h"
#include "media/ScreenCapture.h"
#include "media/cJpeg.h"
#include "media/support/JpegInspector.h"
#include "media/ui/ChatCaptureRectangle.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

using test::waitUntil;

std::vector<std::uint8_t> bytesOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray all = file.readAll();
    return {all.begin(), all.end()};
}

QImage screenLike(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, qRgb((x * 3) % 256, (y * 5) % 256, x < width / 2 ? 40 : 220));
        }
    }
    return image;
}

class ScreenCaptureTest : public ::testing::Test {
  protected:
    ScreenCaptureTest() : capture(root.path(), prompter) {
        QDir(root.path()).mkpath(QStringLiteral("downloaded"));
    }
    // Runs the steps; the JPEG's path, or empty when they failed.
    QString run(const QImage& screen, const QRect& area, const QString& nickname) {
        QString result;
        bool done = false;
        QObject::connect(&capture, &ScreenCapture::captured, &capture,
                         [&](const QString& path) { result = path, done = true; });
        QObject::connect(&capture, &ScreenCapture::failed, &capture, [&] { done = true; });
        capture.start(screen, area, nickname);
        EXPECT_TRUE(capture.running());
        EXPECT_TRUE(waitUntil([&] { return done; }));
        capture.disconnect();
        return result;
    }
    QString downloaded(const QString& name) const {
        return QDir(root.filePath(QStringLiteral("downloaded"))).filePath(name);
    }

    QTemporaryDir root;
    test::ScriptedPrompter prompter;
    ScreenCapture capture;
};

TEST_F(ScreenCaptureTest, TheAreaBecomesAQuality65JpegNamedAfterTheNickname) {
    const QImage screen = screenLike(640, 480);
    const QString path = run(screen, QRect(17, 33, 301, 155), QStringLiteral("alice"));
    ASSERT_EQ(path, downloaded(QStringLiteral("alice_ss0.jpg")));
    const auto inspected = test::InspectJpeg(bytesOf(path));
    EXPECT_TRUE(inspected.error.empty()) << inspected.error;
    EXPECT_EQ(inspected.width, 301);
    EXPECT_EQ(inspected.height, 155);
    using Component = test::JpegInspection::Component;
    EXPECT_EQ(inspected.components, (std::vector<Component>{{2, 2, 0}, {1, 1, 1}, {1, 1, 1}}));
    // The tables of quality 65, as the encoder makes them.
    cJpeg reference;
    reference.SetQuality(65);
    cImage small(16, 16);
    reference.SampleHDC(small, 16, 16);
    const auto expected = test::InspectJpeg(reference.Encode());
    EXPECT_EQ(inspected.quantizationTables, expected.quantizationTables);
    // The picture is the area: its middle pixel is the screen's.
    const QImage decoded(path);
    const QColor got = decoded.pixelColor(150, 77);
    const QColor want = screen.pixelColor(17 + 150, 33 + 77);
    EXPECT_NEAR(got.red(), want.red(), 24);
    EXPECT_NEAR(got.green(), want.green(), 24);
    EXPECT_NEAR(got.blue(), want.blue(), 24);
    // Byte for byte what the encoder makes of the area's pixels given as R, G, B.
    const QImage area = screen.copy(17, 33, 301, 155).convertToFormat(QImage::Format_RGB888);
    cImage rgb(301, 155);
    for (int y = 0; y < 155; ++y) {
        std::copy_n(area.constScanLine(y), 3 * 301, rgb.ScanLine(y));
    }
    reference.SampleHDC(rgb, 301, 155);
    EXPECT_EQ(bytesOf(path), reference.Encode());
    // The temporary bitmap is gone.
    EXPECT_TRUE(QDir(root.path()).entryList({QStringLiteral("*.bmp")}, QDir::Files).isEmpty());
    EXPECT_TRUE(prompter.asked.empty());

    // The bitmap as the steps write it is one any program reads: here, Qt.
    const QString bitmap = root.filePath(QStringLiteral("check.bmp"));
    BmpFile::WriteBgrx(bitmap.toStdString(), screen.constScanLine(33) + 4 * 17,
                       screen.bytesPerLine(), 301, 155);
    EXPECT_EQ(QImage(bitmap).convertToFormat(QImage::Format_RGB888), area);
}

// A later capture never overwrites an earlier one: the number counts up to the first free name.
TEST_F(ScreenCaptureTest, TheNumberCountsUpPastFilesThatExist) {
    const QImage screen = screenLike(64, 64);
    EXPECT_EQ(run(screen, QRect(0, 0, 10, 10), QStringLiteral("bob")),
              downloaded(QStringLiteral("bob_ss0.jpg")));
    EXPECT_EQ(run(screen, QRect(0, 0, 10, 10), QStringLiteral("bob")),
              downloaded(QStringLiteral("bob_ss1.jpg")));
    for (const char* taken : {"bob_ss2.jpg", "bob_ss3.jpg", "bob_ss5.jpg"}) {
        QFile file(downloaded(QString::fromLatin1(taken)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    EXPECT_EQ(run(screen, QRect(0, 0, 10, 10), QStringLiteral("bob")),
              downloaded(QStringLiteral("bob_ss4.jpg")));
    EXPECT_EQ(QFileInfo(downloaded(QStringLiteral("bob_ss2.jpg"))).size(), 0);
    // Another member's captures count on their own; a nickname cannot leave the folder.
    EXPECT_EQ(run(screen, QRect(0, 0, 10, 10), QStringLiteral("../x")),
              downloaded(QStringLiteral("_.._x_ss0.jpg")));
}

TEST_F(ScreenCaptureTest, AFailedCaptureSaysSoAndLeavesNothing) {
    EXPECT_TRUE(run(screenLike(64, 64), QRect(70, 70, 10, 10), QStringLiteral("carol")).isEmpty());
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Error Taking Screenshot"));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Error"));
    // A download folder that cannot be written to.
    QDir(root.filePath(QStringLiteral("downloaded"))).removeRecursively();
    QFile blocker(root.filePath(QStringLiteral("downloaded")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EXPECT_TRUE(run(screenLike(64, 64), QRect(0, 0, 10, 10), QStringLiteral("carol")).isEmpty());
    EXPECT_EQ(prompter.asked.size(), 2u);
    EXPECT_EQ(QDir(root.path()).entryList(QDir::Files), QStringList{QStringLiteral("downloaded")});
}

// The rubber band follows the pointer in any direction; a click picks nothing; Enter picks the
// whole screen; Esc picks nothing and closes.
TEST(ChatCaptureRectangleTest, TheRubberBandPicksTheRectangleDraggedInAnyDirection) {
    const QImage frozen = screenLike(320, 240);
    auto* window = new ChatCaptureRectangle(frozen);
    QSignalSpy selected(window, &ChatCaptureRectangle::selected);
    window->open();
    auto* picture = window->findChild<QLabel*>(QStringLiteral("Picture1"));
    auto* band = window->findChild<QRubberBand*>(QStringLiteral("picRectangle"));
    ASSERT_NE(picture, nullptr);
    ASSERT_NE(band, nullptr);

    QTest::mouseClick(picture, Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_EQ(selected.count(), 0) << "a click without a drag";
    EXPECT_FALSE(band->isVisible());

    // From the bottom right towards the top left.
    QTest::mousePress(picture, Qt::LeftButton, {}, QPoint(200, 150));
    QTest::mouseMove(picture, QPoint(120, 90));
    EXPECT_TRUE(band->isVisible());
    EXPECT_EQ(band->geometry(), QRect(120, 90, 80, 60));
    QTest::mouseRelease(picture, Qt::LeftButton, {}, QPoint(60, 40));
    ASSERT_EQ(selected.count(), 1);
    EXPECT_EQ(selected.at(0).at(0).toRect(), QRect(60, 40, 140, 110));

    auto* whole = new ChatCaptureRectangle(frozen);
    QSignalSpy wholeSelected(whole, &ChatCaptureRectangle::selected);
    whole->open();
    QTest::keyClick(whole, Qt::Key_Return);
    ASSERT_EQ(wholeSelected.count(), 1);
    EXPECT_EQ(wholeSelected.at(0).at(0).toRect(), QRect(0, 0, 320, 240));

    auto* canceled = new ChatCaptureRectangle(frozen);
    QSignalSpy canceledSpy(canceled, &ChatCaptureRectangle::canceled);
    QSignalSpy none(canceled, &ChatCaptureRectangle::selected);
    canceled->open();
    QTest::keyClick(canceled, Qt::Key_Escape);
    EXPECT_EQ(canceledSpy.count(), 1);
    EXPECT_EQ(none.count(), 0);
}

// Runs only as the child of the test below, on the X server it started.
TEST(ScreenCaptureX11Child, GrabsTheRealScreenAndCapturesFromIt) {
    if (qEnvironmentVariableIsEmpty("TAVREN_X11_CHILD")) {
        GTEST_SKIP() << "runs inside ScreenCaptureX11Test only";
    }
    ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb"));
    QWidget marker;
    marker.setWindowFlags(Qt::FramelessWindowHint);
    marker.setStyleSheet(QStringLiteral("background: rgb(255, 0, 0);"));
    marker.setAutoFillBackground(true);
    QPalette red = marker.palette();
    red.setColor(QPalette::Window, Qt::red);
    marker.setPalette(red);
    marker.setGeometry(100, 100, 200, 150);
    marker.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&marker));
    QTest::qWait(300);
    const QImage screen = ChatCaptureRectangle::grabScreen(nullptr);
    ASSERT_EQ(screen.size(), QSize(640, 480));
    EXPECT_EQ(QColor(screen.pixel(200, 175)), QColor(Qt::red));

    QTemporaryDir root;
    QDir(root.path()).mkpath(QStringLiteral("downloaded"));
    test::ScriptedPrompter prompter;
    ScreenCapture capture(root.path(), prompter);
    QString path;
    QObject::connect(&capture, &ScreenCapture::captured, [&](const QString& p) { path = p; });
    auto* window = new ChatCaptureRectangle(screen);
    QObject::connect(window, &ChatCaptureRectangle::selected, [&](const QRect& area) {
        capture.start(screen, area, QStringLiteral("xuser"));
    });
    window->open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    auto* picture = window->findChild<QLabel*>(QStringLiteral("Picture1"));
    QTest::mousePress(picture, Qt::LeftButton, {}, QPoint(150, 120));
    QTest::mouseMove(picture, QPoint(250, 200));
    QTest::mouseRelease(picture, Qt::LeftButton, {}, QPoint(250, 200));
    ASSERT_TRUE(waitUntil([&] { return !path.isEmpty(); }));
    const QImage jpeg(path);
    EXPECT_EQ(jpeg.size(), QSize(100, 80));
    const QColor middle = jpeg.pixelColor(50, 40);
    EXPECT_GT(middle.red(), 200);
    EXPECT_LT(middle.green(), 60);
}

// Under X11: an Xvfb of its own on a free display, and the child test above run on it.
TEST(ScreenCaptureX11Test, WorksOnARealXServer) {
    if (!qEnvironmentVariableIsEmpty("TAVREN_X11_CHILD")) {
        GTEST_SKIP();
    }
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty()) {
        GTEST_SKIP() << "Xvfb is not installed";
    }
    int display = 0;
    for (int candidate = 140 + static_cast<int>(QCoreApplication::applicationPid() % 50);
         candidate < 400; candidate += 7) {
        if (!QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(candidate)) &&
            !QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(candidate))) {
            display = candidate;
            break;
        }
    }
    ASSERT_NE(display, 0);
    QProcess xvfb;
    xvfb.start(QStringLiteral("Xvfb"),
               {QStringLiteral(":%1").arg(display), QStringLiteral("-screen"), QStringLiteral("0"),
                QStringLiteral("640x480x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    ASSERT_TRUE(xvfb.waitForStarted());
    ASSERT_TRUE(waitUntil(
        [&] { return QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(display)); }));

    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TAVREN_X11_CHILD"), QStringLiteral("1"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":%1").arg(display));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--gtest_filter=ScreenCaptureX11Child.*")});
    const bool finished = child.waitForFinished(60000);
    const QByteArray output = child.readAll();
    xvfb.terminate();
    xvfb.waitForFinished(5000);
    ASSERT_TRUE(finished) << output.toStdString();
    EXPECT_EQ(child.exitCode(), 0) << output.toStdString();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test")) << output.toStdString();
}

}  // namespace
}  // namespace tavren
