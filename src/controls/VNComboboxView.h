#pragma once

#include "controls/target_action.h"

#include <QElapsedTimer>
#include <QFont>
#include <QRect>
#include <QWidget>

#include <vector>

class QAction;
class QMenu;

namespace vornic {

/// What a list view shows; enough to paint it without a widget.
struct ComboboxLook {
    QString title; ///< of the selected item, or the hint where there is none
    QFont font;
    bool isEnabled = true;
    bool mouseIsOverButton = false;
    bool mouseButtonIsDown = false;
    bool hasFocus = false;
};

[[nodiscard]] QString comboboxButtonPicture(const ComboboxLook &look);
void paintCombobox(QPainter &painter, const QRectF &bounds, const ComboboxLook &look);

/// A pop-up list drawn from pictures, 28 points high.
///
/// Made by whoever builds a window, as a child of it; main thread only. The arrow keys, Home, End, the wheel
/// and typing the beginning of a title choose at once, as in the toolkit's lists; Space, F4 and Alt+Down
/// open the menu.
class VNComboboxView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(
        qint64 indexOfSelected READ indexOfSelected WRITE setIndexOfSelected NOTIFY indexOfSelectedChanged)
    Q_PROPERTY(QString stringValue READ stringValue NOTIFY stringValueChanged)
public:
    explicit VNComboboxView(QWidget *parent = nullptr);
    explicit VNComboboxView(const QRect &frame, QWidget *parent = nullptr);
    ~VNComboboxView() override;

    /// The pop-up button's square at the right end of \a rectangle.
    [[nodiscard]] static QRectF getSettingPos(const QRectF &rectangle);
    void setFrame(const QRect &frame);
    /// Rectangles that repaint the view when the mouse enters or leaves them: the button's, now and before.
    [[nodiscard]] const std::vector<QRect> &trackingRects() const { return m_trackingRects; }

    void addMenuItem(const QString &title);
    void removeAllItems();
    [[nodiscard]] qint64 numberOfMenuItems() const;
    [[nodiscard]] QString titleOfItem(qint64 index) const;
    [[nodiscard]] QMenu &menu() { return *mPopupMenu; }

    /// -1: nothing is selected.
    [[nodiscard]] qint64 indexOfSelected() const { return m_indexOfSelected; }
    /// Any number; sends no action.
    void setIndexOfSelected(qint64 index);
    /// The selected title; null when there is none.
    [[nodiscard]] QString stringValue() const { return titleOfItem(m_indexOfSelected); }

    /// Shown in place of a title while there is no item; nobody can choose it, and it is no stringValue().
    void setPlaceholderText(const QString &text);
    [[nodiscard]] QString shownTitle() const;

    /// Borrowed; called when the user chooses.
    void setTarget(QObject *target) { m_action.setTarget(target); }
    /// The name of the function of the target that is called, with this view.
    void setSelector(const QByteArray &selector) { m_action.setSelector(selector); }

    void drawRect(QPainter &view);
    /// Wide enough for the longest title, within reason; of a longer one the middle is left out.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

public slots:
    /// Selects \a item of the menu and sends the action.
    void onMenuItemChanged(QAction *item);
    /// Opens the menu, its first item at the lower left corner of the view; nothing where there is no item.
    void popUp();

signals:
    void indexOfSelectedChanged();
    void stringValueChanged();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addTrackingRect(const QRect &rectangle);
    void trackMouse(QPoint position);
    void mouseEntered();
    void mouseExited();
    void shownTitleChanged(const QString &before);
    void choose(qint64 index);
    [[nodiscard]] bool chooseByKey(int key);
    void chooseByTyping(const QString &text);

    QMenu *mPopupMenu;
    QString m_placeholderText;
    qint64 m_indexOfSelected = -1;
    TargetAction m_action;

    std::vector<QRect> m_trackingRects;
    QPoint m_lastMouse { -1, -1 }; ///< in the view, of the last movement
    QString m_typed;               ///< what typing looks for
    QElapsedTimer m_sinceTyped;
    int m_wheelAngle = 0; ///< in eighths of a degree, less than one item
};

} // namespace vornic
