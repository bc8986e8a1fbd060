#pragma once

#include <QString>
#include <QTextDocumentFragment>
#include <memory>

class QTextDocument;

namespace tavren {

// Parses one appended piece of chat markup for a pane (adapted by PaneMarkupForQt first).
//
// Qt's importer loads the pictures of `background` attributes and linked style sheets while it
// parses, and when nobody answers it reads any local file named there itself: a line with
// background=/dev/zero would read until memory runs out. This parser gives the importer a
// resource provider that answers every request with nothing.
class PaneMarkupParser {
  public:
    PaneMarkupParser();
    ~PaneMarkupParser();
    PaneMarkupParser(const PaneMarkupParser&) = delete;
    PaneMarkupParser& operator=(const PaneMarkupParser&) = delete;

    QTextDocumentFragment parse(const QString& html) const;

  private:
    std::unique_ptr<QTextDocument> provider_;
};

}  // namespace tavren
