#include <gtest/gtest.h>

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>

#include "render/ChatLineFormatter.h"
#include "render/ChatPages.h"
#include "render/ui/ChatPane.h"
#include "render/ui/PaneReset.h"

namespace tavren {
namespace {

// Runs the event loop for a while, so that queued appends, layout and painting all happen.
void letEventsRun(int milliseconds = 50) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

// A paragraph of exactly `size` characters whose text starts with `marker`.
QString lineOfSize(const QString& marker, qsizetype size) {
    const QString open = "<p>" + marker + " ";
    return open + QString(size - open.size() - 4, 'x') + "</p>";
}

qreal documentHeight(const ChatPane& pane) {
    return pane.document()->documentLayout()->documentSize().height();
}

class ChatPaneTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        ASSERT_TRUE(QDir(root.path()).mkpath("smiles"));
        QImage smiley(19, 19, QImage::Format_ARGB32);
        smiley.fill(Qt::yellow);
        ASSERT_TRUE(smiley.save(root.path() + "/smiles/105.gif", "PNG"));
        pane.setDataRoot(root.path());
        pane.resize(400, 300);
        pane.show();
        ResetChatPane(pane, 0xFFFFFF);
    }

    QTemporaryDir root{QDir::tempPath() + "/tavren pane XXXXXX"};
    ChatPane pane;
};

TEST_F(ChatPaneTest, KeepsTheLastCharactersOnceTheBodyGrowsTooLong) {
    QString expected;
    for (int i = 0; i < 180; ++i) {
        const QString line = lineOfSize("line" + QString::number(i), 1000);
        pane.AddChat(line);
        expected += line;
    }
    EXPECT_EQ(pane.bodyHtml(), expected);
    pane.flush();
    // One character past the limit: cut to the last 125000 right after that append.
    pane.AddChat("y");
    expected += "y";
    ASSERT_EQ(expected.size(), ChatPane::TrimAbove + 1);
    EXPECT_EQ(pane.bodyHtml(), expected.right(ChatPane::TrimTo));
    pane.AddChat(lineOfSize("after", 500));
    letEventsRun();

    // The pane shows what is kept: the cut fell one character into line 55, so the rest of
    // its opening tag shows as text.
    const QString shown = pane.toPlainText();
    EXPECT_FALSE(shown.contains("line54 "));
    EXPECT_TRUE(shown.startsWith("p>line55 xxx"));
    EXPECT_TRUE(shown.contains("line179 "));
    EXPECT_TRUE(shown.contains("after "));

    // Long after many cuts the pane still shows exactly the kept lines, one block each.
    for (int i = 0; i < 2000; ++i) {
        pane.AddChat(lineOfSize("more" + QString::number(i), 300 + i % 50));
        if (i % 37 == 0) {
            letEventsRun(0);
        }
    }
    // A turn shows only what fits in its time budget; the rest follows in the next turns.
    QElapsedTimer patience;
    patience.start();
    while (!pane.isUpToDate() && patience.elapsed() < 10000) {
        letEventsRun(1);
    }
    ASSERT_TRUE(pane.isUpToDate());
    EXPECT_LE(pane.bodyHtml().size(), ChatPane::TrimAbove);
    const QString body = pane.bodyHtml();
    const qsizetype firstWhole = body.indexOf("<p>");
    const int wholeLines = int(body.count("<p>"));
    EXPECT_EQ(pane.document()->blockCount(), wholeLines + (firstWhole > 0 ? 1 : 0));
    EXPECT_TRUE(pane.document()->lastBlock().text().startsWith("more1999 "));
}

TEST_F(ChatPaneTest, FollowsNewLinesOnlyNearTheBottom) {
    const auto addLines = [&](int count) {
        for (int i = 0; i < count; ++i) {
            pane.AddChat("<p>line " + QString::number(i) + "</p>");
        }
        letEventsRun();
    };
    QScrollBar* bar = pane.verticalScrollBar();
    addLines(100);
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_GE(pane.scrollRatio(), 14);

    // Scrolled up by the reader: new lines leave the view alone.
    bar->setValue(bar->maximum() / 2);
    EXPECT_LT(pane.scrollRatio(), ChatPane::DefaultScrollThreshold);
    const int kept = bar->value();
    addLines(20);
    EXPECT_EQ(bar->value(), kept);
    EXPECT_LT(bar->value(), bar->maximum());

    // Back at the bottom it follows again; a stricter threshold stops it.
    bar->setValue(bar->maximum());
    addLines(20);
    EXPECT_EQ(bar->value(), bar->maximum());
    pane.setScrollThreshold(16);
    const int before = bar->value();
    addLines(20);
    EXPECT_EQ(bar->value(), before);
}

TEST_F(ChatPaneTest, ShowsEachAppendAsItsOwnParagraphInQtTerms) {
    ChatLineFormatter formatter(LineOptions{true, true, false, true, root.path()});
    QString text = "hi ;5 www.example.org";
    pane.AddChat(
        formatter.formatLine(ChatLineFormatter::Variant::Room, "Alice:", text, 255, 0, false, 2));
    pane.AddChat("<b>unclosed bold");
    pane.AddChat("plain");
    letEventsRun();
    ASSERT_EQ(pane.document()->blockCount(), 3);

    const QTextBlock line = pane.document()->firstBlock();
    EXPECT_EQ(line.blockFormat().textIndent(), -20);
    EXPECT_EQ(line.blockFormat().leftMargin(), 22);
    bool sawName = false;
    bool sawLink = false;
    bool sawSmiley = false;
    for (auto it = line.begin(); !it.atEnd(); ++it) {
        const QTextCharFormat format = it.fragment().charFormat();
        if (it.fragment().text() == "Alice:") {
            sawName = true;
            EXPECT_EQ(format.foreground().color(), QColor(255, 0, 0));  // "FF0000" got its "#"
        }
        if (format.isAnchor()) {
            sawLink = true;
            // The unquoted, blank-surrounded attributes are read as meant.
            EXPECT_EQ(format.anchorHref(), "http://www.example.org");
            EXPECT_EQ(it.fragment().text(), "www.example.org");
        }
        if (format.isImageFormat()) {
            sawSmiley = true;
        }
    }
    EXPECT_TRUE(sawName);
    EXPECT_TRUE(sawLink);
    EXPECT_TRUE(sawSmiley);
    // A tag left open by one sender ends with that sender's line.
    const QTextBlock last = pane.document()->lastBlock();
    EXPECT_EQ(last.text(), "plain");
    EXPECT_NE(last.begin().fragment().charFormat().fontWeight(), QFont::Bold);
}

TEST_F(ChatPaneTest, OpensOnlyWebAndMailLinksAndNeverNavigates) {
    QList<QUrl> opened;
    pane.setLinkOpener([&](const QUrl& url) { opened.append(url); });
    pane.AddChat("<a href=http://example.org/x>x</a>");
    letEventsRun();
    for (const char* address :
         {"http://a.example", "HTTPS://b.example", "ftp://c.example", "mailto:d@example.org",
          "file:///etc/passwd", "javascript:alert(1)", "about:blank", "smiles/105.gif"}) {
        emit pane.anchorClicked(QUrl(address));
    }
    ASSERT_EQ(opened.size(), 4);
    EXPECT_EQ(opened.at(1), QUrl("HTTPS://b.example"));
    EXPECT_EQ(pane.source(), QUrl());
    EXPECT_EQ(pane.toPlainText(), "x");
}

TEST_F(ChatPaneTest, NeverFetchesAnythingButLocalSmileys) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const QString web = "http://127.0.0.1:" + QString::number(server.serverPort());
    QImage big(300, 300, QImage::Format_ARGB32);
    big.fill(Qt::red);
    const QString outside = root.path() + "/big.png";
    ASSERT_TRUE(big.save(outside, "PNG"));

    pane.AddChat("<link rel=stylesheet href=" + web + "/s.css><img src='" + web +
                 "/x.png'><table background='" + web + "/b.png'><tr><td background=" + web +
                 "/c.png>cell</td></tr></table><p style=\"background-image: url(" + web +
                 "/d.png)\">p</p>");
    // Local files other than smileys: neither the picture nor a device that never ends.
    pane.AddChat("<img src='" + outside + "'><img src='file://" + outside +
                 "'><table background=/dev/zero><tr><td>z</td></tr></table>"
                 "<link rel=stylesheet href=/dev/zero>");
    letEventsRun(200);
    pane.grab();
    letEventsRun(100);
    EXPECT_FALSE(server.hasPendingConnections());
    EXPECT_LT(documentHeight(pane), 200);

    const QVariant remote = pane.loadResource(QTextDocument::ImageResource, QUrl(web + "/x.png"));
    EXPECT_TRUE(remote.value<QImage>().isNull());
    EXPECT_TRUE(remote.toByteArray().isEmpty());
    EXPECT_TRUE(pane.loadResource(QTextDocument::ImageResource, QUrl::fromLocalFile(outside))
                    .value<QImage>()
                    .isNull());
    EXPECT_TRUE(pane.loadResource(QTextDocument::StyleSheetResource, QUrl(web + "/s.css"))
                    .toByteArray()
                    .isEmpty());

    // The smiley a line names is loaded, by the address the formatter writes.
    ChatLineFormatter formatter(LineOptions{true, true, false, true, root.path()});
    const QVariant smiley =
        pane.loadResource(QTextDocument::ImageResource, QUrl(formatter.smileyUrl(5)));
    EXPECT_EQ(smiley.value<QImage>().size(), QSize(19, 19));
    ResetChatPane(pane, 0xFFFFFF);
    pane.AddChat("<img src='" + formatter.smileyUrl(5) + "'>");
    pane.AddChat("<img src='" + formatter.smileyUrl(6) + "'>");  // no such file: a broken box
    letEventsRun();
    const QTextBlock first = pane.document()->firstBlock();
    ASSERT_TRUE(first.layout() != nullptr && first.layout()->lineCount() == 1);
    EXPECT_GE(first.layout()->lineAt(0).height(), 19);
}

TEST_F(ChatPaneTest, DeeplyNestedTablesDoNotFreezeThePane) {
    // Qt's table layout doubles in time with every level; such a line is defused.
    QString nested;
    for (int i = 0; i < 60; ++i) {
        nested += "<table><tr><td>";
    }
    pane.AddChat(nested + "deep");
    pane.AddChat("after");
    letEventsRun();
    EXPECT_TRUE(pane.toPlainText().contains("deep"));
    EXPECT_EQ(pane.document()->lastBlock().text(), "after");
}

TEST_F(ChatPaneTest, OddMarkupNeverPutsThePaneOutOfStep) {
    // Stray cells, tables, lists, breaks and cut tags, appended in bursts across many trims:
    // the pane must always end up showing the kept markup, the last line last.
    const QStringList pieces = {"<td>",     "</td>", "<tr>", "<table>", "</table>",
                                "<ul><li>", "</li>", "<br>", "<p>",     "</p>",
                                "<hr>",     "<div>", "<b>",  "<pre>",   "x y",
                                "&amp;",    "&",     "<",    ">",       "<img src=nothing>",
                                "\r\n",     " "};
    QRandomGenerator random(99);
    for (int i = 0; i < 1500; ++i) {
        QString line;
        for (int k = random.bounded(12); k > 0; --k) {
            line += pieces.at(random.bounded(pieces.size()));
        }
        pane.AddChat(line + QString(random.bounded(400), 'z') + "<p>end" + QString::number(i) +
                     "</p>");
        if (random.bounded(20) == 0) {
            letEventsRun(0);
        }
    }
    pane.flush();
    EXPECT_TRUE(pane.isUpToDate());
    EXPECT_LE(pane.bodyHtml().size(), ChatPane::TrimAbove);
    EXPECT_TRUE(pane.toPlainText().endsWith("end1499"));
}

TEST_F(ChatPaneTest, PagesSetTheBackgroundAndEmptyThePane) {
    pane.AddChat("<p>old</p>");
    letEventsRun();
    ResetTablePane(pane, 0x00336699);
    EXPECT_TRUE(pane.bodyHtml().isEmpty());
    EXPECT_TRUE(pane.toPlainText().isEmpty());
    EXPECT_EQ(pane.palette().color(QPalette::Base), QColor("#996633"));
    EXPECT_TRUE(pane.verticalScrollBar()->styleSheet().contains("#445038"));
    EXPECT_EQ(pane.document()->documentMargin(), 0);
    pane.navigate(ChatPageHtml(0x000000FF));
    EXPECT_EQ(pane.palette().color(QPalette::Base), QColor("#FF0000"));
    EXPECT_TRUE(pane.verticalScrollBar()->styleSheet().isEmpty());
    pane.AddChat("<p>new</p>");
    letEventsRun();
    EXPECT_EQ(pane.bodyHtml(), "<p>new</p>");
    EXPECT_EQ(pane.toPlainText(), "new");
}

}  // namespace
}  // namespace tavren
