#pragma once

#include <QList>
#include <QObject>
#include <QRect>

#include <functional>

class QDialog;

namespace vornic {

/// Moves each of our dialogs, when it is shown, off what is recorded, where there is room for it.
///
/// Made by the program with its window, after the application object, and kept for the program's life; main
/// thread. A dialog that covers nothing is left where the toolkit puts it.
class DialogPlacement : public QObject
{
    Q_OBJECT
public:
    /// \a areas tells, each time a dialog is shown, what it must not cover: logical coordinates.
    DialogPlacement(std::function<QList<QRect>()> areas, QObject *parent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place(QDialog &dialog) const;

    std::function<QList<QRect>()> m_areas;
};

} // namespace vornic
