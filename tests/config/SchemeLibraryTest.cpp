#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "config/SchemeLibrary.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

using Answer = Prompter::Answer;

class SchemeLibraryTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    void writeScheme(const QString& name, const QByteArray& bytes) {
        QDir().mkpath(library.folder());
        QFile file(library.folder() + "/" + name + ".tvx");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static QByteArray fields(int count) {
        QByteArrayList numbers;
        for (int i = 0; i < count; ++i) {
            numbers << QByteArray::number(100 + i);
        }
        return numbers.join('\x02');
    }

    QTemporaryDir dir;
    SchemeLibrary library{dir.path()};
    test::ScriptedPrompter prompter;
};

TEST_F(SchemeLibraryTest, OnlyExactlyFourteenColoursAreAScheme) {
    writeScheme("Thirteen", fields(13));
    writeScheme("Fifteen", fields(15));
    writeScheme("Word", fields(13) +
                            "\x02"
                            "blue");
    writeScheme("Trailing", fields(14) + "\x02");
    writeScheme("Empty", "");
    for (const char* name : {"Thirteen", "Fifteen", "Word", "Trailing", "Empty"}) {
        prompter.asked.clear();
        EXPECT_FALSE(library.applyAsking(prompter, name).has_value()) << name;
        ASSERT_EQ(prompter.asked.size(), 1u) << name;
        EXPECT_EQ(prompter.asked[0].text, "Improper Tavren Scheme");
        EXPECT_EQ(prompter.asked[0].title, "Error");
    }

    writeScheme("Good", fields(14) + "\r\n");  // a hand-edited file's line break is harmless
    prompter.asked.clear();
    const auto good = library.applyAsking(prompter, "Good");
    ASSERT_TRUE(good.has_value());
    EXPECT_TRUE(prompter.asked.empty());
    EXPECT_EQ(good->color(ColorScheme::TitleText), 100u);
    EXPECT_EQ(good->color(ColorScheme::TheirNick), 108u);
    EXPECT_EQ(good->color(ColorScheme::OwnText), 113u);

    // A file that has gone is not a damaged one: nothing to apply, nothing to say.
    EXPECT_FALSE(library.applyAsking(prompter, "Gone").has_value());
    EXPECT_TRUE(prompter.asked.empty());
}

TEST_F(SchemeLibraryTest, WrittenSchemeIsFourteenNumbersWithoutATrailingSeparator) {
    ColorScheme scheme = ColorScheme::defaults();
    scheme.setColor(ColorScheme::TitleText, 1);
    scheme.setColor(ColorScheme::OwnText, 4294967295u);
    ASSERT_TRUE(library.write("Mine", scheme));
    QFile file(library.folder() + "/Mine.tvx");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_EQ(text.count('\x02'), 13);
    EXPECT_TRUE(text.startsWith("1\x02"));
    EXPECT_TRUE(
        text.endsWith("\x02"
                      "4294967295"));
    EXPECT_EQ(library.read("Mine"), scheme);
    EXPECT_EQ(library.names(), QStringList{"Mine"});
}

TEST_F(SchemeLibraryTest, SavingAsksForANameAndBeforeOverwriting) {
    ColorScheme first = ColorScheme::defaults();
    prompter.texts = {QString("Night")};
    EXPECT_EQ(library.saveAsking(prompter, first), "Night");
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].text, "Name of color scheme..");
    EXPECT_EQ(prompter.asked[0].title, "Scheme Name");

    ColorScheme second = first;
    second.setColor(ColorScheme::ChatPane, 42);
    prompter.asked.clear();
    prompter.texts = {QString("Night")};
    prompter.answers = {Answer::No};
    EXPECT_FALSE(library.saveAsking(prompter, second).has_value());
    ASSERT_EQ(prompter.asked.size(), 2u);
    EXPECT_EQ(prompter.asked[1].text,
              "Scheme with that name already exists, Do you wish to overwrite?.");
    EXPECT_EQ(prompter.asked[1].title, "Scheme Already Exists!");
    EXPECT_EQ(library.read("Night"), first);

    prompter.texts = {QString("Night")};
    prompter.answers = {Answer::Yes};
    EXPECT_EQ(library.saveAsking(prompter, second), "Night");
    EXPECT_EQ(library.read("Night"), second);

    // Backing out of the name box, or an empty name, saves nothing.
    prompter.texts = {QString(), QString("   ")};  // a null text is Cancel
    EXPECT_FALSE(library.saveAsking(prompter, first).has_value());
    EXPECT_FALSE(library.saveAsking(prompter, first).has_value());
    EXPECT_EQ(library.names(), QStringList{"Night"});
}

TEST_F(SchemeLibraryTest, ANameCannotLeaveTheSchemesFolder) {
    prompter.texts = {QString("../../escape"), QString("..")};
    const auto escaped = library.saveAsking(prompter, ColorScheme::defaults());
    const auto dots = library.saveAsking(prompter, ColorScheme::defaults());
    ASSERT_TRUE(escaped && dots);
    EXPECT_FALSE(escaped->contains(QLatin1Char('/')));
    EXPECT_FALSE(escaped->startsWith(QLatin1Char('.')));
    EXPECT_EQ(*dots, "__");
    EXPECT_EQ(library.names().size(), 2);
    EXPECT_FALSE(QFile::exists(dir.path() + "/../escape.tvx"));
}

TEST_F(SchemeLibraryTest, RemovingAsksFirst) {
    ASSERT_TRUE(library.write("Day", ColorScheme::defaults()));
    prompter.answers = {Answer::No};
    EXPECT_FALSE(library.removeAsking(prompter, "Day"));
    EXPECT_TRUE(library.exists("Day"));
    EXPECT_EQ(prompter.asked[0].text, "Do you wish to delete Day?");
    EXPECT_EQ(prompter.asked[0].title, "Delete Scheme?");
    prompter.answers = {Answer::Yes};
    EXPECT_TRUE(library.removeAsking(prompter, "Day"));
    EXPECT_FALSE(library.exists("Day"));
}

}  // namespace
}  // namespace tavren
