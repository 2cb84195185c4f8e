#include "app/window/window_logo_panels.h"

#include "app/window/file_panel.h"
#include "app/window/main_window_link.h"

#include <QFileDialog>
#include <QFontDialog>
#include <QImageReader>

#include <utility>

namespace vornic {

WindowLogoPanels::WindowLogoPanels(const MainWindowLink &main)
    : m_main(main)
{
}

void WindowLogoPanels::chooseLogoImage(std::function<void(std::optional<QString>)> answer)
{
    auto *panel = new QFileDialog(m_main.visible(), tr("Choose the logo's picture"));
    panel->setFileMode(QFileDialog::ExistingFile);
    QStringList types;
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const QByteArray &type : formats)
        types += QStringLiteral("*.%1").arg(QString::fromLatin1(type));
    panel->setNameFilter(tr("Pictures (%1)").arg(types.join(u' ')));
    runFilePanel(*panel, std::move(answer));
}

void WindowLogoPanels::orderFrontFontPanel(const QFont &selected, std::function<void(const QFont &)> changed)
{
    if (!m_fontPanel) {
        m_fontPanel = new QFontDialog(m_main.visible());
        m_fontPanel->setAttribute(Qt::WA_DeleteOnClose);
        m_fontPanel->setOptions(QFontDialog::DontUseNativeDialog | QFontDialog::NoButtons);
        m_fontPanel->setWindowTitle(tr("The logo's font"));
        m_fontPanel->setCurrentFont(selected);
        QObject::connect(m_fontPanel, &QFontDialog::currentFontChanged, m_fontPanel, std::move(changed));
    }
    m_fontPanel->show();
    m_fontPanel->raise();
    m_fontPanel->activateWindow();
}

} // namespace vornic
