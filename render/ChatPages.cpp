#include "render/ChatPages.h"

#include "render/ColorText.h"

namespace tavren {

namespace {

QString emptyBody(WinColor background) {
    return QLatin1String("<body bgcolor='") + ColorToHtml(background) +
           QLatin1String(
               "' topmargin='0' leftmargin='0' "
               "style='width:100%;overflow-x:hidden'></body>");
}

}  // namespace

QString ChatPageHtml(WinColor background) {
    return QLatin1String("about:") + emptyBody(background);
}

QString TablePageHtml(WinColor background) {
    return QLatin1String(
               "about:<style type='text/css'>body {scrollbar-arrow-color: "
               "white;scrollbar-base-color: black;scrollbar-dark-shadow-color: "
               "white;scrollbar-track-color: white;scrollbar-face-color: "
               "'#445038';scrollbar-shadow-color: white;scrollbar-highlight-color: "
               "silver;scrollbar-3d-light-color: black;}</style>") +
           emptyBody(background);
}

}  // namespace tavren
