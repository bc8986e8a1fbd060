#include "contacts/MailPage.h"

#include "render/ColorText.h"

namespace tavren {

QString MailPage::reading(const MailRow& row) {
    return QLatin1String("<html>") +
           QLatin1String(
               "<table border='0' cellpadding='0' cellspacing='0' width='100%' height='100%' "
               "align='left' id='table1'><tr><td height='25' bgcolor='#DADADA'><table "
               "border='0' cellspacing='0' width='100%' height='100%' align='left' "
               "id='table2'><tr><td width='70' align='right' bgcolor='#DADADA'><font "
               "face='Verdana' size='2'>From:</font></td><td bgcolor='#DADADA'><b><font "
               "face='Verdana' size='2'>") +
           row.sender +
           QLatin1String(
               "</font></b></td></tr><tr><td width='70' align='right' bgcolor='#E8E8E8'><font "
               "face='Verdana' size='2'>Sent:</font></td><td bgcolor='#E8E8E8'><b><font "
               "face='Verdana' size='2'>") +
           row.sentTime +
           QLatin1String(
               "</font></b></td></tr><tr><td width='70' align='right' bgcolor='#F4F4F4'><font "
               "face='Verdana' size='2'>Subject:</font></td><td bgcolor='#F4F4F4'><b><font "
               "face='Verdana' size='2'>") +
           row.subject +
           QLatin1String(
               "</font></b></td></tr></table></td></tr><tr><td valign='top'><font "
               "face='Verdana' size='2'>") +
           row.body + QLatin1String("</font></td></tr></table>") + QLatin1String("</html>");
}

QString MailPage::empty(WinColor background) {
    return QLatin1String("about:<body bgcolor='") + ColorToHtml(background) +
           QLatin1String("' topmargin='2' leftmargin='2' rightmargin='2' bottommargin='2'></body>");
}

}  // namespace tavren
