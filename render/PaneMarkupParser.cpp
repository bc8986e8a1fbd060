#include "render/PaneMarkupParser.h"

#include <QTextDocument>

#include "render/PaneMarkup.h"

namespace tavren {

namespace {

class NothingToLoad final : public QTextDocument {
  protected:
    // An empty answer rather than none: on none, QTextDocument would look for a local file.
    QVariant loadResource(int, const QUrl&) override { return QVariant(QByteArray()); }
};

}  // namespace

PaneMarkupParser::PaneMarkupParser() : provider_(std::make_unique<NothingToLoad>()) {}

PaneMarkupParser::~PaneMarkupParser() = default;

QTextDocumentFragment PaneMarkupParser::parse(const QString& html) const {
    return QTextDocumentFragment::fromHtml(PaneMarkupForQt(html), provider_.get());
}

}  // namespace tavren
