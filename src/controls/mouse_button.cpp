#include "controls/mouse_button.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>

#include <vector>

namespace vornic {

namespace {

/// The widgets that show the mouse button as held down.
///
/// Made at the first such painting as a child of the application. The release reaches the widget under the
/// mouse or an open menu, which need not be any of these.
class ShownDown : public QObject
{
public:
    static ShownDown &shared()
    {
        static QPointer<ShownDown> instance;
        if (!instance)
            instance = new ShownDown(qApp);
        return *instance;
    }

    void add(QWidget &widget)
    {
        if (m_widgets.empty())
            qApp->installEventFilter(this);
        for (const auto &known : m_widgets)
            if (known == &widget)
                return;
        m_widgets.emplace_back(&widget);
    }

    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        if (event->type() != QEvent::MouseButtonRelease || primaryMouseButtonIsDown())
            return false;
        qApp->removeEventFilter(this);
        for (const auto &widget : std::exchange(m_widgets, {}))
            if (widget)
                widget->update();
        return false;
    }

private:
    explicit ShownDown(QObject *parent)
        : QObject(parent)
    {
    }

    std::vector<QPointer<QWidget>> m_widgets;
};

} // namespace

bool primaryMouseButtonIsDown()
{
    return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton);
}

bool paintsMouseButtonDown(QWidget &widget)
{
    const bool isDown = primaryMouseButtonIsDown();
    if (isDown)
        ShownDown::shared().add(widget);
    return isDown;
}

} // namespace vornic
