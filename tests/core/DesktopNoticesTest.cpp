#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "core/ui/DesktopNotices.h"

namespace tavren {
namespace {

// Notices appear only when wanted and only while nothing of ours is in front; clicking one
// asks for the conversation with the member it was about.
TEST(DesktopNoticesTest, ShownOnlyWhenWantedAndInTheBackground) {
    QTemporaryDir dir;
    SettingsStore store(dir.filePath(QStringLiteral("settings.ini")));
    Settings settings(store, dir.path(), nullptr);
    bool inFront = false;
    DesktopNotices notices(settings, nullptr, [&] { return inFront; });
    QStringList shown;
    notices.setShower([&](const QString& title, const QString& text) {
        shown << title + QLatin1Char('|') + text;
    });
    QStringList wanted;
    QObject::connect(&notices, &DesktopNotices::conversationWanted,
                     [&](const QString& user) { wanted << user; });

    notices.clicked();
    EXPECT_TRUE(wanted.isEmpty());

    notices.privateMessage(QStringLiteral("bob"),
                           QStringLiteral("<b>hi</b> <img src='x'> there\r\nfriend"));
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0], QStringLiteral("Private message from bob|hi there friend"));

    inFront = true;
    notices.buddyOnline(QStringLiteral("carol"));
    EXPECT_EQ(shown.size(), 1);
    inFront = false;
    notices.buddyOnline(QStringLiteral("carol"));
    ASSERT_EQ(shown.size(), 2);
    EXPECT_TRUE(shown[1].startsWith(QStringLiteral("carol is online|")));
    notices.clicked();
    EXPECT_EQ(wanted, QStringList(QStringLiteral("carol")));

    SettingsValues values = settings.values();
    values.notify = false;
    settings.setValues(values);
    notices.privateMessage(QStringLiteral("bob"), QStringLiteral("quiet"));
    EXPECT_EQ(shown.size(), 2);

    const QString longText(500, QLatin1Char('x'));
    EXPECT_EQ(DesktopNotices::plainText(longText).size(), 160);
}

}  // namespace
}  // namespace tavren
