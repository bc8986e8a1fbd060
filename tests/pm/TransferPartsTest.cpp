// The parts of direct connections that need no socket: the name rules for received files, the
// markup a transferred file gets in the pane, the progress label, the sender's reads, the peer's
// address from the server and the files a pane may show.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include "pm/FileSender.h"
#include "pm/PeerAddress.h"
#include "pm/ReceivedFileName.h"
#include "pm/ShownFiles.h"
#include "pm/TransferMarkup.h"
#include "pm/TransferProgress.h"

namespace tavren {
namespace {

TEST(TransferPartsTest, ReceivedNamesSplitAtTheFirstDotAndKeepWithinTheirBounds) {
    const auto check = [](const char* name) {
        return ReceivedFileName::check(QString::fromUtf8(name));
    };
    EXPECT_EQ(check("photo.jpg"), QStringLiteral("photo.jpg"));
    // Two dots: everything after the first is the extension.
    EXPECT_EQ(check("backup.tar.gz"), QStringLiteral("backup.tar.gz"));
    EXPECT_EQ(check("a.b.c.d"), QStringLiteral("a.b.c.d"));
    EXPECT_EQ(check("My Notes.txt"), QStringLiteral("My Notes.txt"));
    EXPECT_EQ(check("caf\xc3\xa9 (2).doc"), QStringLiteral("caf\u00e9 (2).doc"));
    EXPECT_FALSE(check("README"));                                     // no dot at all
    EXPECT_EQ(check("x.abcdefghij"), QStringLiteral("x.abcdefghij"));  // 10: the longest
    EXPECT_FALSE(check("x.abcdefghijk"));                              // 11 characters of extension
    EXPECT_FALSE(check(".bashrc"));                                    // no base
    EXPECT_FALSE(check("name."));                                      // no extension
    const std::string fifty(50, 'b');
    EXPECT_TRUE(check((fifty + ".txt").c_str()));
    EXPECT_FALSE(check((fifty + "b.txt").c_str()));
    EXPECT_FALSE(check((std::string(300, 'n') + ".txt").c_str()));
    EXPECT_FALSE(check((std::string(296, 'n') + ".t").c_str()));
}

// Names that would reach outside the download folder or name a device never pass.
TEST(TransferPartsTest, HostileReceivedNamesAreRefused) {
    for (const char* hostile : {"a/../../b.txt", "..\\x.exe",
                                "../x.txt",      "a/b.txt",
                                "a\\b.txt",      "/etc/passwd.txt",
                                "C:evil.txt",    "c:\\x.txt",
                                "con.txt",       "CON.tar.gz",
                                "nul.",          "aux.log",
                                "prn .txt",      "lpt1.log",
                                "COM9.bin",      "com\xc2\xb9.txt",
                                "conin$.txt",    "a..b",
                                "a.b..c",        "a.b.",
                                "a.txt ",        "bell\x07.txt",
                                "tab\t.txt",     "x.tx\x7f",
                                "what?.txt",     "star*.txt",
                                "pipe|.txt",     "quote\".txt",
                                "less<.txt",     "more>.txt",
                                " .txt"}) {
        EXPECT_FALSE(ReceivedFileName::check(QString::fromUtf8(hostile))) << hostile;
    }
    // Words that merely contain a device name are names like any other.
    EXPECT_TRUE(ReceivedFileName::check(QStringLiteral("console.txt")));
    EXPECT_TRUE(ReceivedFileName::check(QStringLiteral("com10.txt")));
    EXPECT_EQ(ReceivedFileName::safePart(QStringLiteral("../bob smith")),
              QStringLiteral("_.._bob_smith"));
}

TEST(TransferPartsTest, PicturesShowInlineWithinFourHundredPixelsAndOtherFilesAsLinks) {
    const QString path = QStringLiteral("/data/down loaded/a b.jpg");
    EXPECT_EQ(TransferMarkup::forFile(QStringLiteral("a b.jpg"), path, QSize(400, 400)),
              QStringLiteral("  <a id='image' title='a b.jpg' href='/data/down%20loaded/a%20b.jpg'>"
                             "<img border='0' src='file:////data/down%20loaded/a%20b.jpg'></a>"));
    EXPECT_EQ(TransferMarkup::imageTag(QSize(300, 500)),
              QStringLiteral("'><img border='1' height='400' src='"));
    EXPECT_EQ(TransferMarkup::imageTag(QSize(500, 300)),
              QStringLiteral("'><img border='1' width='400' src='"));
    EXPECT_EQ(TransferMarkup::imageTag(QSize(500, 900)),
              QStringLiteral("'><img border='1' width='400' src='"));
    EXPECT_EQ(TransferMarkup::shownSize(QSize(300, 500)), QSize(240, 400));
    EXPECT_EQ(TransferMarkup::shownSize(QSize(500, 300)), QSize(400, 240));
    EXPECT_EQ(TransferMarkup::shownSize(QSize(20, 30)), QSize(20, 30));
    // Any other file, and a picture that cannot be read, is a link (two blanks after "<a").
    EXPECT_EQ(
        TransferMarkup::forFile(QStringLiteral("notes.txt"), QStringLiteral("/d/notes.txt"),
                                QSize()),
        QStringLiteral("  <a  id='file' title='notes.txt' href='/d/notes.txt'>notes.txt</a>"));
    EXPECT_TRUE(
        TransferMarkup::forFile(QStringLiteral("x.PNG"), QStringLiteral("/d/x.PNG"), QSize())
            .startsWith(QStringLiteral("  <a  id='file'")));
    EXPECT_TRUE(
        TransferMarkup::forFile(QStringLiteral("x.JPEG"), QStringLiteral("/d/x.JPEG"), QSize(1, 1))
            .startsWith(QStringLiteral("  <a id='image'")));
    // Quotes cannot end an attribute; "%" survives the way back.
    EXPECT_EQ(
        TransferMarkup::forFile(QStringLiteral("it's <b>100%.txt"),
                                QStringLiteral("/d/it's <b>100%.txt"), QSize()),
        QStringLiteral("  <a  id='file' title='it&#39;s &lt;b&gt;100%.txt' "
                       "href='/d/it&#39;s%20&lt;b&gt;100%25.txt'>it&#39;s &lt;b&gt;100%.txt</a>"));
}

TEST(TransferPartsTest, TheProgressLabelReadsShareRateCountsAndTimeLeft) {
    EXPECT_EQ(TransferProgress::twoDigits(5.254), QStringLiteral("05.25"));
    EXPECT_EQ(TransferProgress::twoDigits(0), QStringLiteral("00.00"));
    EXPECT_EQ(TransferProgress::twoDigits(100), QStringLiteral("100.00"));
    EXPECT_EQ(TransferProgress::twoDigits(1234.5), QStringLiteral("1234.50"));
    EXPECT_EQ(TransferProgress::label(1048576, 20971520, 512 * 1024.0),
              QStringLiteral("05.00% ~ 512.00 KB/s ~ 1048576 of 20971520 (0:38)"));
    EXPECT_EQ(TransferProgress::label(0, 1000, 0),
              QStringLiteral("00.00% ~ 00.00 KB/s ~ 0 of 1000 (-:--)"));
    EXPECT_EQ(TransferProgress::timeLeft(3600 * 1024 + 1, 1024), QStringLiteral("1:00:01"));
    EXPECT_EQ(TransferProgress::timeLeft(0, 0), QStringLiteral("0:00"));

    TransferProgress progress;
    progress.start(10000, 0);
    progress.update(1000, 1000);
    progress.update(3000, 2000);
    EXPECT_DOUBLE_EQ(progress.bytesPerSecond(), 1500);
    // The rate follows the last few seconds, not the whole transfer.
    progress.update(3000, 6000);
    progress.update(3000, 9000);
    EXPECT_DOUBLE_EQ(progress.bytesPerSecond(), 0);
    // Once done, the rate is the whole transfer's.
    progress.finish(10000);
    EXPECT_EQ(progress.done(), 10000);
    EXPECT_DOUBLE_EQ(progress.bytesPerSecond(), 1000);
    EXPECT_EQ(progress.label(), QStringLiteral("100.00% ~ 00.98 KB/s ~ 10000 of 10000 (0:00)"));
}

TEST(TransferPartsTest, TheLastReadAsksForOneByteMoreThanIsLeft) {
    EXPECT_EQ(FileSender::blockReads(2048), (std::vector<qint64>{2049}));
    EXPECT_EQ(FileSender::blockReads(2049), (std::vector<qint64>{2048, 2}));
    EXPECT_EQ(FileSender::blockReads(4096), (std::vector<qint64>{2048, 2049}));
    EXPECT_EQ(FileSender::blockReads(1), (std::vector<qint64>{2}));
    EXPECT_TRUE(FileSender::blockReads(0).empty());
    // Characters the wire's code page has no byte for travel as "_".
    EXPECT_EQ(FileSender::wireName(QStringLiteral("/x/caf\u00e9 \u65e5\u672c.txt")),
              QStringLiteral("caf\u00e9 __.txt"));
}

TEST(TransferPartsTest, ThePeersAddressIsDottedTextIPv6OrAThirtyTwoBitNumber) {
    EXPECT_EQ(PeerAddress::parse(QStringLiteral("3232235777")),
              QHostAddress(QStringLiteral("192.168.1.1")));
    EXPECT_EQ(PeerAddress::parse(QStringLiteral("10.0.0.5")),
              QHostAddress(QStringLiteral("10.0.0.5")));
    EXPECT_EQ(PeerAddress::parse(QStringLiteral("2001:db8::1")),
              QHostAddress(QStringLiteral("2001:db8::1")));
    EXPECT_EQ(PeerAddress::parse(QStringLiteral("::ffff:10.0.0.5")),
              QHostAddress(QStringLiteral("10.0.0.5")));
    EXPECT_TRUE(PeerAddress::parse(QString()).isNull());
    EXPECT_TRUE(PeerAddress::parse(QStringLiteral("nowhere")).isNull());
    EXPECT_TRUE(PeerAddress::parse(QStringLiteral("99999999999")).isNull());
    EXPECT_TRUE(PeerAddress::same(QHostAddress(QStringLiteral("::ffff:127.0.0.1")),
                                  QHostAddress(QStringLiteral("127.0.0.1"))));
    EXPECT_FALSE(PeerAddress::same(QHostAddress(QStringLiteral("127.0.0.2")),
                                   QHostAddress(QStringLiteral("127.0.0.1"))));
    EXPECT_FALSE(PeerAddress::same(QHostAddress(), QHostAddress()));
}

// A pane shows and opens only the files a transfer put there, whatever other members write.
TEST(TransferPartsTest, OnlyTransferredFilesAreShownOrOpened) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString picture = dir.filePath(QStringLiteral("big picture.png"));
    QImage(1000, 500, QImage::Format_RGB32).save(picture);
    const QString other = dir.filePath(QStringLiteral("other.png"));
    QImage(10, 10, QImage::Format_RGB32).save(other);

    ShownFiles shown;
    shown.add(picture);
    const QString address = TransferMarkup::source(picture);
    // Read at the size it is shown at.
    EXPECT_EQ(shown.picture(address).size(), QSize(400, 200));
    EXPECT_EQ(shown.picture(QStringLiteral("file:") + picture).size(), QSize(400, 200));
    EXPECT_TRUE(shown.picture(TransferMarkup::source(other)).isNull());
    EXPECT_TRUE(shown.picture(QStringLiteral("http://example.org/x.png")).isNull());
    // The same file, however its address is written.
    EXPECT_FALSE(shown
                     .picture(QStringLiteral("file:///") + dir.path() +
                              QStringLiteral("/./big%20picture.png"))
                     .isNull());

    EXPECT_EQ(shown.fileFor(QUrl(TransferMarkup::href(picture).replace(QLatin1String("&#39;"),
                                                                       QLatin1String("'")))),
              QDir::cleanPath(picture));
    EXPECT_TRUE(shown.fileFor(QUrl::fromLocalFile(other)).isEmpty());
    EXPECT_TRUE(shown.fileFor(QUrl(QStringLiteral("http://example.org") + picture)).isEmpty());
}

}  // namespace
}  // namespace tavren
