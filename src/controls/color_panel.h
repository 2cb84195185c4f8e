#pragma once

#include "controls/VNColorWell.h"

#include <QColorDialog>
#include <QPointer>

namespace vornic {

/// The program's only colour panel, a dialog that blocks nothing; its target shows each chosen colour at once.
///
/// Made at the first call of shared(), and again after the window that it was shown above, its parent, has been
/// destroyed; main thread only.
class ColorPanel : public QColorDialog
{
    Q_OBJECT
public:
    [[nodiscard]] static ColorPanel &shared();

    [[nodiscard]] VNColorWell *target() const { return m_target; }
    /// Shows the colour of \a target and changes it from now on; the one before keeps what it has.
    void setTarget(VNColorWell &target);
    /// Above the target's window and no other, and beside it where there is room.
    void orderFront();

private:
    ColorPanel();

    QPointer<VNColorWell> m_target;
};

} // namespace vornic
