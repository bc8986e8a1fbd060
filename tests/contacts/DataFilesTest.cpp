#include <gtest/gtest.h>

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "contacts/DataFiles.h"

namespace tavren {

void PrintTo(const AwayMessage& message, std::ostream* out) {
    *out << '{' << message.name.toStdString() << " | " << message.text.toStdString() << '}';
}

namespace {

class DataFilesTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    void write(const char* name, const QByteArray& bytes) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray read(const char* name) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir dir;
    DataFiles files{dir.path()};
};

TEST_F(DataFilesTest, AwayLinesAreTrimmedStrippedOfTheirFirstCharacterAndSplit) {
    write("away.dat",
          "'Lunch\x01Out for lunch.\r\n"
          "   'Padded\x01 text keeps its inner blank   \n"
          "'No separator\n"
          "'Three\x01pieces\x01ignored rest\n"
          "xWrong prefix\x01still read\n"
          "\n"
          "'\n"
          "   \n"
          "'\x01Only text\n"
          "'Last line without break\x01"
          "end");
    files.load();
    const QList<AwayMessage> expected{
        {"Lunch", "Out for lunch."},
        {"Padded", " text keeps its inner blank"},
        {"No separator", ""},
        {"Three", "pieces"},
        {"Wrong prefix", "still read"},
        {"", "Only text"},
        {"Last line without break", "end"},
    };
    EXPECT_EQ(files.away().entries(), expected);
}

TEST_F(DataFilesTest, AnAwayListWithNoEntryGetsTheTwoStockMessages) {
    const QList<AwayMessage> stock{
        {"Default Away Message..", "I'm away from they computer."},
        {"Playing a Game..", "I'm playing a game right now."},
    };
    files.load();  // no file at all
    EXPECT_EQ(files.away().entries(), stock);
    for (const QByteArray& empty : {QByteArray(), QByteArray("\n\n'\n  '  \n")}) {
        write("away.dat", empty);
        files.load();
        EXPECT_EQ(files.away().entries(), stock);
    }
}

TEST_F(DataFilesTest, IgnoreLinesNeedMoreThanTheirApostrophe) {
    write("ignore.dat", "'mallory\r\n'  eve  \n'\nx\n' \n\n'Trent\n");
    files.load();
    EXPECT_EQ(files.ignore().names(), (QStringList{"mallory", "eve", "Trent"}));
    EXPECT_TRUE(files.ignore().contains("MALLORY"));
    EXPECT_FALSE(files.ignore().add("Eve"));
    EXPECT_TRUE(files.ignore().remove("trent"));
    EXPECT_FALSE(files.ignore().remove("trent"));
    EXPECT_FALSE(files.ignore().add("  "));
}

TEST_F(DataFilesTest, PerformLinesMustHoldASlashCommandAndLoadOnce) {
    write("perform.dat",
          "'/join Lobby\n"
          "'/JOIN lobby   \n"  // same command in other case with trailing blanks
          "'/join Lobby\r\n"
          "'join Lobby\n"    // no slash
          "' /msg bob hi\n"  // slash is not the second character
          "/\n"              // too short
          "'/away   gone  \n"
          "x/msg bob hi\n");  // any first character is dropped
    files.load();
    EXPECT_EQ(files.perform().commands(),
              (QStringList{"/join Lobby", "/away   gone", "/msg bob hi"}));
    EXPECT_FALSE(files.perform().add("  /AWAY   GONE "));
    EXPECT_FALSE(files.perform().add("hello"));
    EXPECT_TRUE(files.perform().add("/part Lobby"));
}

TEST_F(DataFilesTest, ListsAreWrittenWholeOneApostropheLinePerEntry) {
    files.away().setEntries({{"Gone", "Back soon"},
                             {"Two\nlines",
                              "a\x01"
                              "b"}});
    files.ignore().setNames({"mallory", "trent"});
    files.perform().setCommands({"/join Lobby"});
    ASSERT_TRUE(files.save());
    EXPECT_EQ(read("away.dat"), QByteArray("'Gone\x01"
                                           "Back soon\n'Two lines\x01"
                                           "a b\n"));
    EXPECT_EQ(read("ignore.dat"), QByteArray("'mallory\n'trent\n"));
    EXPECT_EQ(read("perform.dat"), QByteArray("'/join Lobby\n"));

    // Rewriting replaces the file rather than appending to it.
    files.ignore().remove("mallory");
    ASSERT_TRUE(files.save());
    EXPECT_EQ(read("ignore.dat"), QByteArray("'trent\n"));

    DataFiles again(dir.path());
    again.load();
    EXPECT_EQ(again.away().entries(),
              (QList<AwayMessage>{{"Gone", "Back soon"}, {"Two lines", "a b"}}));
    EXPECT_EQ(again.ignore().names(), QStringList{"trent"});
}

TEST_F(DataFilesTest, TextIsUtf8AndAnOlderCodePageFileStillReads) {
    files.ignore().setNames({QString::fromUtf8("Zoë"), QString::fromUtf8("Дмитрий")});
    ASSERT_TRUE(files.save());
    EXPECT_EQ(read("ignore.dat"),
              QByteArray("'Zo\xc3\xab\n'\xd0\x94\xd0\xbc\xd0\xb8\xd1\x82\xd1\x80"
                         "\xd0\xb8\xd0\xb9\n"));
    write("ignore.dat", "'Zo\xeb\n");  // a Windows code-page byte, not UTF-8
    files.load();
    EXPECT_EQ(files.ignore().names(), QStringList{QString::fromUtf8("Zoë")});
}

TEST_F(DataFilesTest, HostileFilesNeverCrashAndUnwritableFilesReportFailure) {
    QByteArray noise(64 * 1024, '\0');
    QRandomGenerator random(20240611);  // fixed seed: the same noise on every run
    for (char& byte : noise) {
        byte = char(random.bounded(256));
    }
    for (const char* name : {"away.dat", "ignore.dat", "perform.dat"}) {
        write(name, noise);
    }
    files.load();
    EXPECT_FALSE(files.away().entries().isEmpty());

    // A folder where the file should be cannot be replaced by a file.
    QDir(dir.path()).mkdir("blocked");
    DataFiles blocked(dir.filePath("blocked/inner"));
    QDir(dir.path()).mkpath("blocked/inner/ignore.dat");
    EXPECT_FALSE(blocked.ignore().save());
    EXPECT_TRUE(blocked.away().save());
    EXPECT_FALSE(blocked.save());
}

TEST_F(DataFilesTest, EveryListAnnouncesItsChanges) {
    int changes = 0;
    QObject::connect(&files.away(), &AwayMessages::changed, [&] { ++changes; });
    QObject::connect(&files.ignore(), &IgnoreList::changed, [&] { ++changes; });
    QObject::connect(&files.perform(), &PerformList::changed, [&] { ++changes; });
    files.load();
    EXPECT_EQ(changes, 3);
    files.ignore().add("x");
    files.ignore().add("X");  // refused: no announcement
    files.perform().add("/x");
    files.away().add({"n", "t"});
    EXPECT_EQ(changes, 6);
}

}  // namespace
}  // namespace tavren
