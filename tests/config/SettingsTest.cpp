#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QMap>

#include "SettingsFixture.h"
#include "config/ColumnWidths.h"
#include "config/SchemeLibrary.h"
#include "config/StoredValue.h"
#include "config/WindowPlacement.h"

namespace tavren {
namespace {

using test::SettingsFixture;

class SettingsTest : public SettingsFixture {};

// The stored text of every key after saving a fresh installation's values: the defaults as the
// rest of the client (and an older store) knows them.
TEST_F(SettingsTest, FreshStoreLoadsTheDefaultsAndSavesThemInTheirStoredForm) {
    auto store = openStore();
    Settings settings(*store, root(), &autostart);
    settings.load();

    const SettingsValues& v = settings.values();
    EXPECT_EQ(v, settings.defaults());
    EXPECT_EQ(v.serverHost, QStringLiteral("{default server #1}"));
    EXPECT_EQ(v.serverHostChoices.size(), 4);
    EXPECT_EQ(v.serverPort, QStringLiteral("{Default Port}"));
    EXPECT_EQ(settings.scrollThreshold(), 13);
    EXPECT_TRUE(settings.autoReconnectArmed());
    EXPECT_TRUE(settings.showAds());
    EXPECT_TRUE(settings.showTools());
    EXPECT_TRUE(settings.nickname().isEmpty());
    EXPECT_EQ(settings.soundFile(3), root() + QStringLiteral("/sounds/channel_chanhost.wav"));
    EXPECT_EQ(settings.soundFile(14), root() + QStringLiteral("/sounds/them_chat.wav"));

    ASSERT_TRUE(settings.save());
    const QMap<QString, QString> general{
        {"underline", "0"},
        {"bold", "1"},
        {"color5", "16744576"},
        {"color6", "16711680"},
        {"color7", "128"},
        {"color8", "255"},
        {"color9", "8421504"},
        {"color10", "0"},
        {"proxyport", "80"},
        {"proxyhost", ""},
        {"useproxy", "0"},
        {"Translevel", "20"},
        {"Trans", "0"},
        {"autologin", "0"},
        {"AutoScroll", "3"},
        {"timestamp", "1"},
        {"autoaccept", "0"},
        {"autojoin", "1"},
        {"autostart", "0"},
        {"Tunnel", "0"},
        {"serverhost", "{default server #1}"},
        {"serverport", "{Default Port}"},
        {"ignorepms", "0"},
        {"ignoremotd", "0"},
        {"smiles", "1"},
        {"autoreconnect", "1"},
        {"lower_range", "2000"},
        {"upper_range", "2100"},
        {"scheme", ""},
    };
    auto reread = openStore();
    for (auto it = general.cbegin(); it != general.cend(); ++it) {
        EXPECT_TRUE(reread->contains("General", it.key())) << it.key().toStdString();
        EXPECT_EQ(reread->value("General", it.key()), it.value()) << it.key().toStdString();
    }
    EXPECT_EQ(reread->value("Sounds", "Play"), "1");
    EXPECT_EQ(reread->value("Sounds", "sound_0"), root() + "/sounds/buddy_online.wav");
    EXPECT_EQ(autostart.requests, std::vector<bool>{false});
}

TEST_F(SettingsTest, EveryKeySurvivesASaveAndTheNextStart) {
    SettingsValues changed;
    {
        auto store = openStore();
        Settings settings(*store, root(), &autostart);
        settings.load();
        changed = settings.values();
        changed.underline = true;
        changed.bold = false;
        for (int f = 0; f < ColorScheme::FieldCount; ++f) {
            // Only the six message colours are keys; the others come from a scheme file.
            if (f >= ColorScheme::TheirNick) {
                changed.colors.setColor(ColorScheme::Field(f), WinColor(1000 + f * 77777));
            }
        }
        changed.proxyPort = "3128";
        changed.proxyHost = "proxy.example.net";
        changed.useProxy = true;
        changed.transLevel = 55;
        changed.trans = true;
        changed.autoLogin = true;
        changed.autoScroll = 9;
        changed.playSounds = false;
        changed.timestamp = false;
        changed.autoAccept = true;
        changed.autoJoin = false;
        changed.autoStart = true;
        changed.tunnel = true;
        changed.serverHostChoices << "chat.example.org";
        changed.serverHost = "chat.example.org";
        changed.serverPortChoices << "6000";
        changed.serverPort = "6000";
        changed.ignorePms = true;
        changed.ignoreMotd = true;
        changed.smiles = false;
        changed.autoReconnect = false;
        changed.lowerRange = 40000;
        changed.upperRange = 40100;
        changed.scheme = "NoSuchScheme";
        changed.sounds[0] = SoundSlots::disabledText();
        changed.sounds[7] = "/elsewhere/ding.wav";
        settings.setValues(changed);
        ASSERT_TRUE(settings.save());
        EXPECT_FALSE(settings.autoReconnectArmed());
        EXPECT_EQ(autostart.requests, std::vector<bool>{true});

        settings.setNickname("Alice");
        settings.setShowAds(false);
        settings.setShowTools(false);
        settings.setUserString("alice\x02secret");
        settings.suppressNag("1.2.3");
    }

    auto store = openStore();
    Settings next(*store, root(), nullptr);
    next.load();
    EXPECT_EQ(next.values(), changed);
    EXPECT_EQ(next.scrollThreshold(), 7);
    EXPECT_FALSE(next.autoReconnectArmed());
    EXPECT_EQ(next.nickname(), "Alice");
    EXPECT_FALSE(next.showAds());
    EXPECT_FALSE(next.showTools());
    EXPECT_EQ(next.userString(), "alice\x02secret");
    EXPECT_TRUE(next.isNagSuppressed("1.2.3"));
    EXPECT_FALSE(next.isNagSuppressed("1.2.4"));
}

TEST_F(SettingsTest, UnreadableValuesFallBackToTheirDefaultsWithoutStoppingTheLoad) {
    {
        auto store = openStore();
        for (const char* key : {"underline", "bold", "color5", "color10", "useproxy", "Translevel",
                                "Trans", "ShowAds", "autologin", "AutoScroll", "timestamp",
                                "autoreconnect", "lower_range", "upper_range", "smiles"}) {
            store->setValue("General", key, "not a number");
        }
        store->setValue("General", "color6", "99999999999");  // wider than 32 bits
        store->setValue("General", "autojoin", "");
        store->setValue("Sounds", "Play", "perhaps");
        // Good values among the bad ones still load.
        store->setValue("General", "ignorepms", "1");
        store->setValue("General", "color7", "-1");
        store->setValue("General", "ShowTools", "false");
        store->setValue("General", "Tunnel", "True");
    }
    auto store = openStore();
    Settings settings(*store, root(), nullptr);
    settings.load();

    SettingsValues expected = settings.defaults();
    expected.ignorePms = true;
    expected.tunnel = true;
    expected.colors.setColor(ColorScheme::HostNick, 0xFFFFFFFFu);
    EXPECT_EQ(settings.values(), expected);
    EXPECT_EQ(settings.scrollThreshold(), 13);
    EXPECT_TRUE(settings.showAds());
    EXPECT_FALSE(settings.showTools());
}

TEST_F(SettingsTest, StoredServerAndPortMatchTheDropDownIgnoringCase) {
    auto store = openStore();
    store->setValue("General", "serverhost", "{DEFAULT server #3}");
    store->setValue("General", "serverport", "{default port}");
    Settings settings(*store, root(), nullptr);
    settings.load();
    EXPECT_EQ(settings.values().serverHost, "{default server #3}");
    EXPECT_EQ(settings.values().serverHostChoices, SettingsValues::defaultServerHostChoices());
    EXPECT_EQ(settings.values().serverPort, "{Default Port}");
    EXPECT_EQ(settings.values().serverPortChoices.size(), 1);

    // An unknown server joins the drop-down once, and is selected.
    store->setValue("General", "serverhost", "Chat.Example.org");
    store->setValue("General", "serverport", "5999");
    settings.load();
    EXPECT_EQ(settings.values().serverHost, "Chat.Example.org");
    EXPECT_EQ(settings.values().serverHostChoices.size(), 5);
    EXPECT_EQ(settings.values().serverHostChoices.last(), "Chat.Example.org");
    EXPECT_EQ(settings.values().serverPort, "5999");

    QStringList choices{"One", "Two"};
    EXPECT_EQ(Settings::selectOrAdd(choices, "tWO"), "Two");
    EXPECT_EQ(Settings::selectOrAdd(choices, ""), "");
    EXPECT_EQ(choices.size(), 2);
}

TEST_F(SettingsTest, AutoScrollGivesTheScrollThresholdAndIsKeptOnTheSlider) {
    auto store = openStore();
    Settings settings(*store, root(), nullptr);
    const QList<QPair<QString, int>> cases{{"3", 13}, {"1", 15},  {"15", 1},
                                           {"40", 1}, {"-5", 15}, {"0", 15}};
    for (const auto& [stored, threshold] : cases) {
        store->setValue("General", "AutoScroll", stored);
        settings.load();
        EXPECT_EQ(settings.scrollThreshold(), threshold) << stored.toStdString();
    }
}

TEST_F(SettingsTest, TwoDataRootsInOneStoreKeepTheirOwnNicknames) {
    auto store = openStore();
    Settings first(*store, root() + "/first", nullptr);
    Settings second(*store, root() + "/second", nullptr);
    first.setNickname("Alice");
    second.setNickname("Bob");
    EXPECT_NE(first.nicknameKey(), second.nicknameKey());

    auto reread = openStore();
    Settings firstAgain(*reread, root() + "/first", nullptr);
    Settings secondAgain(*reread, root() + "/second", nullptr);
    firstAgain.load();
    secondAgain.load();
    EXPECT_EQ(firstAgain.nickname(), "Alice");
    EXPECT_EQ(secondAgain.nickname(), "Bob");
}

TEST_F(SettingsTest, StartUpRegistrationWaitsForAStoreThatTookEveryWrite) {
    writeFile("blocker", "a file where the settings folder should be");
    SettingsStore broken(dir.filePath("blocker/settings.ini"));
    Settings settings(broken, root(), &autostart);
    SettingsValues v = settings.defaults();
    v.autoStart = true;
    settings.setValues(v);
    EXPECT_FALSE(settings.save());
    EXPECT_TRUE(autostart.requests.empty());

    // A refused registration is reported like a failed write.
    auto store = openStore();
    Settings healthy(*store, root(), &autostart);
    autostart.succeed = false;
    EXPECT_FALSE(healthy.save());
    EXPECT_EQ(autostart.requests.size(), 1u);
}

TEST_F(SettingsTest, TheChosenSchemeFileOverridesTheStoredColoursAtLoad) {
    ColorScheme scheme = ColorScheme::defaults();
    scheme.setColor(ColorScheme::ChatPane, 123);
    scheme.setColor(ColorScheme::OwnText, 4567);
    ASSERT_TRUE(SchemeLibrary(root()).write("Night", scheme));
    writeFile("schemes/Broken.tvx",
              "1\x02"
              "2\x02"
              "3");

    auto store = openStore();
    store->setValue("General", "color10", "99");
    store->setValue("General", "scheme", "Night");
    Settings settings(*store, root(), nullptr);
    settings.load();
    EXPECT_EQ(settings.values().colors, scheme);
    EXPECT_EQ(settings.values().scheme, "Night");

    // A damaged or vanished scheme is passed over and the stored colours stand.
    for (const char* name : {"Broken", "Gone"}) {
        store->setValue("General", "scheme", name);
        settings.load();
        EXPECT_EQ(settings.values().color(ColorScheme::OwnText), 99u) << name;
        EXPECT_EQ(settings.values().color(ColorScheme::ChatPane),
                  ColorScheme::defaults().color(ColorScheme::ChatPane));
    }
}

TEST_F(SettingsTest, ChangedIsAnnouncedOnLoadAndOnNewValues) {
    auto store = openStore();
    Settings settings(*store, root(), nullptr);
    int changes = 0;
    QString nick;
    QObject::connect(&settings, &Settings::changed, [&] { ++changes; });
    QObject::connect(&settings, &Settings::nicknameChanged, [&](const QString& n) { nick = n; });
    settings.load();
    settings.setValues(settings.defaults());
    settings.setNickname("Carol");
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(nick, "Carol");
}

TEST_F(SettingsTest, WithTavrenHomeSetTheDefaultStoreIsTheFileUnderItReadableByItsOwnerOnly) {
    // The saved accounts' passwords are in this file.
    const auto othersMayTouch = [this] {
        const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                                                QFileDevice::ExeGroup | QFileDevice::ReadOther |
                                                QFileDevice::WriteOther | QFileDevice::ExeOther;
        return (QFile::permissions(iniPath()) & others) != 0;
    };
    const QFileDevice::Permissions ownerReadWrite =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    const QByteArray previous = qgetenv("TAVREN_HOME");
    qputenv("TAVREN_HOME", root().toUtf8());
    {
        SettingsStore store;
        EXPECT_EQ(QDir::cleanPath(store.location()), QDir::cleanPath(iniPath()));
        ASSERT_TRUE(QFile::exists(iniPath())) << "made private before the first write";
        EXPECT_FALSE(othersMayTouch());
        store.setValue("General", "bold", "0");
        store.setValue("Users", "UserString", "alice:secret;");
        EXPECT_TRUE(store.sync());
        EXPECT_FALSE(othersMayTouch());
        EXPECT_EQ(QFile::permissions(iniPath()) & ownerReadWrite, ownerReadWrite);
    }
    EXPECT_EQ(openStore()->value("General", "bold"), "0");

    // A file that was opened up (by hand, by an older client) is closed again.
    QFile::setPermissions(iniPath(),
                          ownerReadWrite | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    {
        SettingsStore store;
        EXPECT_FALSE(othersMayTouch());
        store.setValue("General", "bold", "1");
    }
    EXPECT_FALSE(othersMayTouch());
    EXPECT_EQ(openStore()->value("General", "bold"), "1");
    qputenv("TAVREN_HOME", previous);
}

TEST_F(SettingsTest, WindowPlacementAndColumnWidthsKeepTheirKeysAndRefuseDamage) {
    auto store = openStore();
    const WindowPlacement placed{10, -20, 640, 480, WindowPlacement::Maximized};
    placed.save(*store, "ChatMain");
    EXPECT_EQ(store->value("Sizes", "ChatMain.WindowState"), "2");
    EXPECT_EQ(WindowPlacement::load(*store, "ChatMain"), placed);
    EXPECT_FALSE(WindowPlacement::load(*store, "ChatRoom").has_value());
    store->setValue("Sizes", "ChatMain.width", "wide");
    EXPECT_FALSE(WindowPlacement::load(*store, "ChatMain").has_value());
    store->setValue("Sizes", "ChatMain.width", "640");
    store->setValue("Sizes", "ChatMain.WindowState", "7");
    EXPECT_EQ(WindowPlacement::load(*store, "ChatMain")->state, WindowPlacement::Normal);

    ColumnWidths::write(*store, ColumnWidths::Mail, 2, 150);
    EXPECT_EQ(store->value("General", "mailcolumn2"), "150");
    EXPECT_EQ(ColumnWidths::read(*store, ColumnWidths::Mail, 2, 80), 150);
    EXPECT_EQ(ColumnWidths::read(*store, ColumnWidths::Search, 0, 80), 80);
    store->setValue("General", "Joincolumn1", "x");
    EXPECT_EQ(ColumnWidths::read(*store, ColumnWidths::Join, 1, 80), 80);
}

TEST(StoredValueTest, ReadsBothSpellingsOfTruthAndRefusesJunk) {
    EXPECT_EQ(StoredValue::parseFlag("1"), true);
    EXPECT_EQ(StoredValue::parseFlag("0"), false);
    EXPECT_EQ(StoredValue::parseFlag(" TRUE "), true);
    EXPECT_EQ(StoredValue::parseFlag("False"), false);
    EXPECT_EQ(StoredValue::parseFlag("-1"), true);
    EXPECT_FALSE(StoredValue::parseFlag("yes").has_value());
    EXPECT_FALSE(StoredValue::parseInt("12abc", 0, 100).has_value());
    EXPECT_FALSE(StoredValue::parseInt("99999999999999999999", 0, 100).has_value());
    EXPECT_EQ(StoredValue::parseColor("-2147483648"), 0x80000000u);
    EXPECT_FALSE(StoredValue::parseColor("4294967296").has_value());
}

}  // namespace
}  // namespace tavren
