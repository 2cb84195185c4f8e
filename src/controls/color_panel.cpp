#include "controls/color_panel.h"

#include "controls/beside_window.h"
#include "controls/dialog_skin.h"

#include <QApplication>

namespace vornic {

namespace {

QPointer<ColorPanel> sharedPanel;

} // namespace

ColorPanel &ColorPanel::shared()
{
    if (!sharedPanel)
        sharedPanel = new ColorPanel;
    return *sharedPanel;
}

ColorPanel::ColorPanel()
{
    setOptions(QColorDialog::NoButtons | QColorDialog::DontUseNativeDialog);
    setWindowTitle(tr("Colour"));
    addCloseButton(*this);
    dressDialog(*this);
    connect(this, &QColorDialog::currentColorChanged, this, [this] {
        if (m_target)
            m_target->changeColor(*this);
    });
}

void ColorPanel::setTarget(VNColorWell &target)
{
    m_target = nullptr;
    setCurrentColor(target.color());
    m_target = &target;
}

void ColorPanel::orderFront()
{
    if (!m_target)
        return;
    QWidget *window = m_target->window();
    const Qt::WindowFlags above = window->windowFlags() & Qt::WindowStaysOnTopHint;
    if (parentWidget() != window || (windowFlags() & Qt::WindowStaysOnTopHint) != above)
        setParent(window, Qt::Dialog | above);
    if (!isVisible())
        placeBeside(*this, *window);
    show();
    raise();
    activateWindow();
}

} // namespace vornic
