// Placement, minimum sizes and translucency of every window, offscreen; the magnet on a real X
// server of the test's own.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <functional>
#include <memory>

#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "utils/ui/WindowKeeper.h"
#include "utils/ui/cMagneticWnd.h"

namespace tavren {
namespace {

bool waitUntil(const std::function<bool()>& done, int ms = 5000) {
    for (int waited = 0; waited < ms; waited += 20) {
        if (done()) {
            return true;
        }
        QTest::qWait(20);
    }
    return done();
}

// A window of ours with a layout, as every window of the client has.
std::unique_ptr<QWidget> probeWindow(const QString& name) {
    auto window = std::make_unique<QWidget>();
    window->setObjectName(name);
    auto* layout = new QVBoxLayout(window.get());
    layout->addWidget(new QLabel(QStringLiteral("A label wide enough to matter"), window.get()));
    return window;
}

class WindowKeeperTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        store = std::make_unique<SettingsStore>(dir.filePath(QStringLiteral("settings.ini")));
        settings = std::make_unique<Settings>(*store, dir.path(), nullptr);
        keeper = std::make_unique<WindowKeeper>(*settings, *store);
    }
    void place(const QString& window, int left, int top, int width, int height, int state = 0) {
        const QString sizes = QStringLiteral("Sizes");
        store->setValue(sizes, window + QStringLiteral(".left"), QString::number(left));
        store->setValue(sizes, window + QStringLiteral(".top"), QString::number(top));
        store->setValue(sizes, window + QStringLiteral(".width"), QString::number(width));
        store->setValue(sizes, window + QStringLiteral(".height"), QString::number(height));
        store->setValue(sizes, window + QStringLiteral(".WindowState"), QString::number(state));
    }
    QString stored(const QString& key) const { return store->value(QStringLiteral("Sizes"), key); }

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<WindowKeeper> keeper;
};

TEST_F(WindowKeeperTest, EveryWindowComesBackWhereItWasAndIsKeptWhenItCloses) {
    place(QStringLiteral("ChatProbe"), 30, 40, 320, 210);
    auto window = probeWindow(QStringLiteral("ChatProbe"));
    window->show();
    EXPECT_EQ(window->geometry(), QRect(30, 40, 320, 210));

    window->setGeometry(50, 60, 330, 220);
    window->close();
    EXPECT_EQ(stored(QStringLiteral("ChatProbe.left")), QStringLiteral("50"));
    EXPECT_EQ(stored(QStringLiteral("ChatProbe.top")), QStringLiteral("60"));
    EXPECT_EQ(stored(QStringLiteral("ChatProbe.width")), QStringLiteral("330"));
    EXPECT_EQ(stored(QStringLiteral("ChatProbe.height")), QStringLiteral("220"));
    EXPECT_EQ(stored(QStringLiteral("ChatProbe.WindowState")), QStringLiteral("0"));

    // Shown again in the same run it stays where the user had it; the store is read once.
    place(QStringLiteral("ChatProbe"), 0, 0, 400, 400);
    window->show();
    EXPECT_EQ(window->geometry(), QRect(50, 60, 330, 220));

    // A window without an object name is kept under its class name.
    QDialog unnamed;
    unnamed.show();
    unnamed.close();
    EXPECT_FALSE(stored(QStringLiteral("QDialog.width")).isEmpty());

    // Message boxes place themselves and are not remembered.
    QMessageBox box(QMessageBox::Information, QStringLiteral("t"), QStringLiteral("text"));
    box.setObjectName(QStringLiteral("SomeBox"));
    box.show();
    box.close();
    EXPECT_TRUE(stored(QStringLiteral("SomeBox.width")).isEmpty());
}

TEST_F(WindowKeeperTest, APlaceOnAScreenThatIsGoneLandsOnTheScreenThereIs) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    place(QStringLiteral("ChatFar"), screen.right() + 3000, screen.bottom() + 2000, 300, 200);
    auto far = probeWindow(QStringLiteral("ChatFar"));
    far->show();
    EXPECT_TRUE(screen.contains(far->geometry()))
        << far->geometry().x() << "," << far->geometry().y();
    EXPECT_EQ(far->size(), QSize(300, 200));

    // Damaged values are passed over: the window opens where it would have anyway.
    store->setValue(QStringLiteral("Sizes"), QStringLiteral("ChatBroken.left"),
                    QStringLiteral("x"));
    place(QStringLiteral("ChatTiny"), 10, 10, 3, 3);
    auto tiny = probeWindow(QStringLiteral("ChatTiny"));
    tiny->show();
    EXPECT_GE(tiny->width(), WindowKeeper::kSmallestWindow.width());
    EXPECT_GE(tiny->height(), WindowKeeper::kSmallestWindow.height());

    // Maximized comes back maximized.
    place(QStringLiteral("ChatBig"), 10, 10, 300, 200, 2);
    auto big = probeWindow(QStringLiteral("ChatBig"));
    big->show();
    EXPECT_TRUE(big->isMaximized());
}

TEST_F(WindowKeeperTest, EveryWindowHasAMinimumItsControlsFitIn) {
    QWidget bare;  // no layout, no minimum of its own
    bare.setObjectName(QStringLiteral("ChatBare"));
    bare.show();
    EXPECT_EQ(bare.minimumSize(), WindowKeeper::kSmallestWindow);

    auto window = probeWindow(QStringLiteral("ChatLaidOut"));
    auto* wide = new QLabel(QString(80, QLatin1Char('W')), window.get());
    window->layout()->addWidget(wide);
    window->show();
    EXPECT_GE(window->minimumWidth(), wide->minimumSizeHint().width());
    window->resize(10, 10);
    EXPECT_GE(window->width(), wide->minimumSizeHint().width());
}

TEST_F(WindowKeeperTest, TranslucencyFollowsTheSettingsAndTheirPreview) {
    auto window = probeWindow(QStringLiteral("ChatSeeThrough"));
    window->show();
    EXPECT_DOUBLE_EQ(window->windowOpacity(), 1.0);

    SettingsValues values = settings->values();
    values.trans = true;
    values.transLevel = 40;
    settings->setValues(values);
    EXPECT_NEAR(window->windowOpacity(), 0.6, 0.01);

    // A window opened later takes the same.
    auto later = probeWindow(QStringLiteral("ChatLater"));
    later->show();
    EXPECT_NEAR(later->windowOpacity(), 0.6, 0.01);

    keeper->previewOpacity(0.8);
    EXPECT_NEAR(window->windowOpacity(), 0.8, 0.01);
    EXPECT_NEAR(later->windowOpacity(), 0.8, 0.01);

    values.trans = false;
    settings->setValues(values);
    EXPECT_DOUBLE_EQ(window->windowOpacity(), 1.0);
}

// Runs only as the child of the test below, on the X server it started (no window manager, so
// frames are the windows themselves and moves land exactly where they are asked to).
TEST(MagnetX11Child, WindowsSnapAndFollowTheMainWindow) {
    if (qEnvironmentVariableIsEmpty("TAVREN_X11_CHILD")) {
        GTEST_SKIP() << "runs inside MagnetX11Test only";
    }
    ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb"));
    ASSERT_TRUE(cMagneticWnd::supported());
    auto main = probeWindow(QStringLiteral("ChatMain"));
    auto other = probeWindow(QStringLiteral("ChatRoom"));
    auto loose = probeWindow(QStringLiteral("ChatPM"));
    cMagneticWnd magnet(main.get());
    main->setGeometry(100, 100, 200, 300);
    other->setGeometry(400, 100, 200, 150);
    loose->setGeometry(360, 450, 150, 100);
    for (QWidget* w : {main.get(), other.get(), loose.get()}) {
        w->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(w));
    }

    // Moved from outside (as a person dragging it would) to 7 px right of the main window.
    const bool xdotool = !QStandardPaths::findExecutable(QStringLiteral("xdotool")).isEmpty();
    const auto moveFromOutside = [&](QWidget* w, int x, int y) {
        if (xdotool) {
            QProcess::execute(QStringLiteral("xdotool"),
                              {QStringLiteral("windowmove"), QString::number(w->winId()),
                               QString::number(x), QString::number(y)});
        } else {
            w->move(x, y);
        }
    };
    // (The main window is as wide as its label needs, maybe more than asked for.)
    const int mainRight = main->frameGeometry().x() + main->frameGeometry().width();
    moveFromOutside(other.get(), mainRight + 7, 108);
    ASSERT_TRUE(waitUntil([&] {
        return other->frameGeometry().topLeft() == QPoint(mainRight, 100);
    })) << other->frameGeometry().x()
        << "," << other->frameGeometry().y();

    // The main window moves: the docked window comes along, the loose one stays.
    moveFromOutside(main.get(), 140, 130);
    ASSERT_TRUE(waitUntil([&] {
        return other->frameGeometry().topLeft() == QPoint(mainRight + 40, 130);
    })) << other->frameGeometry().x()
        << "," << other->frameGeometry().y();
    EXPECT_EQ(loose->frameGeometry().topLeft(), QPoint(360, 450));

    // Let go 9 px from the screen's left edge: it goes onto the edge.
    moveFromOutside(loose.get(), 9, 200);
    EXPECT_TRUE(waitUntil([&] { return loose->frameGeometry().topLeft() == QPoint(0, 200); }))
        << loose->frameGeometry().x() << "," << loose->frameGeometry().y();
}

// Under X11: an Xvfb of its own on a free display, and the child test above run on it.
TEST(MagnetX11Test, WorksWithRealWindowMoves) {
    if (!qEnvironmentVariableIsEmpty("TAVREN_X11_CHILD")) {
        GTEST_SKIP();
    }
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty()) {
        GTEST_SKIP() << "Xvfb is not installed";
    }
    int display = 0;
    for (int candidate = 190 + static_cast<int>(QCoreApplication::applicationPid() % 50);
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
                QStringLiteral("800x600x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
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
                {QStringLiteral("--gtest_filter=MagnetX11Child.*")});
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
