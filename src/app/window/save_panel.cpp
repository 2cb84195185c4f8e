#include "app/window/save_panel.h"

#include <QFileInfo>
#include <QLineEdit>

#include <utility>

namespace vornic {

SavePanel::SavePanel(QWidget *parent, QString type)
    : QFileDialog(parent)
    , m_type(std::move(type))
{
    // The desktop's own panel is not kept above the overlay.
    setOption(DontUseNativeDialog);
    setAcceptMode(AcceptSave);
}

/// The toolkit's own default suffix is for names without a dot only: "Talk v1.2" would stay without one.
void SavePanel::accept()
{
    auto *const field = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    const QString text = field ? field->text() : QString();
    const QString suffix = u'.' + m_type;
    // What names a folder leads into it.
    if (!text.isEmpty() && !text.endsWith(suffix, Qt::CaseInsensitive) && !namesFolder(text))
        field->setText(text + suffix);
    QFileDialog::accept();
}

bool SavePanel::namesFolder(const QString &text) const
{
    QString path = text;
    if (path == u'~' || path.startsWith(QStringLiteral("~/")))
        path.replace(0, 1, QDir::homePath());
    return path.endsWith(u'/') || QFileInfo(directory(), path).isDir();
}

} // namespace vornic
