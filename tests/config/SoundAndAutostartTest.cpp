#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "SettingsFixture.h"
#include "config/OperatingSystemName.h"
#include "config/SoundPlayer.h"
#include "config/SystemAutostart.h"

namespace tavren {
namespace {

class SoundPlayerTest : public test::SettingsFixture {};

TEST_F(SoundPlayerTest, ASlotPlaysOnlyWhenSwitchedOnAndItsFileExists) {
    QDir().mkpath(root() + "/sounds");
    writeFile("sounds/buddy_online.wav", "RIFF");
    auto store = openStore();
    Settings settings(*store, root(), nullptr);
    settings.load();
    SoundPlayer player(settings);

    EXPECT_EQ(player.fileFor(SoundSlots::BuddyOnline), root() + "/sounds/buddy_online.wav");
    // Not installed: silent, and no error.
    EXPECT_FALSE(player.fileFor(SoundSlots::BuddyOffline).has_value());
    EXPECT_FALSE(player.play(SoundSlots::BuddyOffline));
    EXPECT_FALSE(player.fileFor(-1).has_value());
    EXPECT_FALSE(player.fileFor(SoundSlots::Count).has_value());

    SettingsValues v = settings.values();
    v.sounds[SoundSlots::BuddyOnline] = SoundSlots::disabledText();
    settings.setValues(v);
    EXPECT_FALSE(player.fileFor(SoundSlots::BuddyOnline).has_value());

    v = settings.defaults();
    v.playSounds = false;
    settings.setValues(v);
    EXPECT_FALSE(player.fileFor(SoundSlots::BuddyOnline).has_value());
}

TEST(SoundSlotsTest, DefaultFilesAndLabelsOfTheFifteenSlots) {
    EXPECT_EQ(SoundSlots::defaultPath("/root", SoundSlots::PrivateMessageNew),
              "/root/sounds/private_message_new.wav");
    EXPECT_EQ(SoundSlots::fileName(SoundSlots::HoldemYourTurn), "them_turn.wav");
    EXPECT_EQ(SoundSlots::label(SoundSlots::HoldemCheck), "Holdem Check/Call");
    EXPECT_EQ(SoundSlots::label(SoundSlots::ServerLogin), "Tavren Online:");
    EXPECT_TRUE(SoundSlots::fileName(SoundSlots::Count).isEmpty());
    EXPECT_EQ(SoundSlots::key(14), "sound_14");
}

TEST(SystemAutostartTest, WritesAndRemovesTheDesktopEntryInItsFolder) {
#ifdef Q_OS_WIN
    GTEST_SKIP() << "the Run key is the user's own; not touched by tests";
#else
    QTemporaryDir dir;
    SystemAutostart autostart(dir.path() + "/autostart");
    EXPECT_FALSE(autostart.isEnabled());
    ASSERT_TRUE(autostart.setEnabled(true));
    EXPECT_TRUE(autostart.isEnabled());
    QFile entry(dir.path() + "/autostart/tavren.desktop");
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(entry.readAll());
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n"));
    EXPECT_TRUE(text.contains("\nExec="));
    entry.close();
    ASSERT_TRUE(autostart.setEnabled(false));
    EXPECT_FALSE(autostart.isEnabled());
    EXPECT_TRUE(autostart.setEnabled(false));  // already off is not a failure
#endif
}

TEST(SystemAutostartTest, ExecLineQuotesPathsAndCarriesTheDataRoot) {
    EXPECT_TRUE(
        SystemAutostart::desktopEntry("/usr/bin/tavren", "").contains("\nExec=/usr/bin/tavren\n"));
    const QString entry =
        SystemAutostart::desktopEntry("/opt/My Apps/tavren", "/home/u/100% \"chat\"");
    EXPECT_TRUE(entry.contains(
        "\nExec=env \"TAVREN_HOME=/home/u/100%% \\\"chat\\\"\" \"/opt/My Apps/tavren\"\n"))
        << entry.toStdString();
}

TEST(OperatingSystemNameTest, OldWindowsByReleaseNameOtherSystemsByTheirOwnName) {
    using V = OperatingSystemName::Version;
    EXPECT_EQ(OperatingSystemName::of(V{true, false, 5, 1, "5.1", ""}), "Windows XP");
    EXPECT_EQ(OperatingSystemName::of(V{true, false, 3, 51, "3.51", ""}), "Windows NT 351");
    EXPECT_EQ(OperatingSystemName::of(V{true, true, 4, 90, "4.90", ""}), "Windows ME");
    EXPECT_EQ(OperatingSystemName::of(V{true, false, 10, 0, "10", "Windows 10 Version 2009"}),
              "Unknown: 10");
    // Elsewhere the system's own name says more than a bare number; without one, the number.
    EXPECT_EQ(OperatingSystemName::of(V{false, false, 12, 0, "12", "Debian GNU/Linux 12"}),
              "Debian GNU/Linux 12");
    EXPECT_EQ(OperatingSystemName::of(V{false, false, 12, 0, "12", ""}), "Unknown: 12");
}

}  // namespace
}  // namespace tavren
