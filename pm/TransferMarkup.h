#pragma once

#include <QSize>
#include <QString>

namespace tavren {

// What a conversation pane shows for a file that came in or went out: a picture inline, any
// other file as a link, both opening the file when clicked.
//
//   picture: "  <a id='image' title='" name "' href='" path "'><img border='0' src='" source
//   "'></a>" file:    "  <a  id='file' title='" name "' href='" path "'>" name "</a>"
//
// A picture at most 400 wide and 400 high is shown as it is (border 0); a taller one at height
// 400 and a wider one at width 400 (border 1, the other side in proportion). The path has its
// blanks as "%20" (and a "%" as "%25"); the source is "file:///" + that path. The name and path
// come from the other member, so quotes and angle brackets in them are written as entities: they
// cannot end the attribute they stand in.
class TransferMarkup {
  public:
    static constexpr int kMaxSide = 400;

    // `pictureSize` is the picture's size when `name` is a picture's and the file could be read
    // as one; otherwise invalid, and the file is shown as a link.
    static QString forFile(const QString& name, const QString& path, QSize pictureSize);
    static QString imageTag(QSize pictureSize);
    // The size a picture of `natural` size is shown at.
    static QSize shownSize(QSize natural);
    static QString href(const QString& path);
    static QString source(const QString& path);
    static QString escaped(const QString& text);
};

}  // namespace tavren
