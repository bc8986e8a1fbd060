#include "render/ui/PaneReset.h"

#include "render/ChatPages.h"
#include "render/ui/ChatPane.h"

namespace tavren {

void ResetChatPane(ChatPane& pane, WinColor background) {
    pane.navigate(ChatPageHtml(background));
}

void ResetTablePane(ChatPane& pane, WinColor color) {
    pane.navigate(TablePageHtml(color));
}

}  // namespace tavren
