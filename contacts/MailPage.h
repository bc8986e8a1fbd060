#pragma once

#include <QString>

#include "config/WinColor.h"
#include "contacts/MailRow.h"

namespace tavren {

// The reading pane's pages: a mail laid out as a header of three rows (from, sent, subject)
// above its body, and the empty page on the scheme's background. The sender's subject and body
// are markup and go in as they came; the pane that shows them runs no script and fetches
// nothing.
class MailPage {
  public:
    static QString reading(const MailRow& row);
    static QString empty(WinColor background);
};

}  // namespace tavren
