#pragma once

#include <QPointer>

class QWidget;

namespace vornic {

class MainWindow;

/// The main window, for who puts something on it; a plain value.
struct MainWindowLink {
    QPointer<MainWindow> window; ///< null before it is made and once it is gone

    /// The main window, or none while it is closed: what is asked then stands alone.
    [[nodiscard]] QWidget *visible() const;
};

} // namespace vornic
