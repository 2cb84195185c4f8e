#include "app/window/hyperlink.h"

namespace vornic {

QString hyperlinkFromString(const QString &text, const QUrl &url)
{
    return QStringLiteral(
               "<a href=\"%1\"><span style=\"color:#0000ff; text-decoration:underline\">%2</span></a>")
        .arg(url.toString(QUrl::FullyEncoded).toHtmlEscaped(), text.toHtmlEscaped());
}

} // namespace vornic
