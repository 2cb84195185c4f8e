#pragma once

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <functional>

class QDialog;
class QWidget;

namespace vornic {

/// How much is free for a recording, and where.
struct RecordingSpace {
    std::uint64_t freeBytes = 0;
    QString folder;
    double pixels = 0; ///< of the display
};

/// The same for the user, with how long it will do.
[[nodiscard]] QString spaceText(const RecordingSpace &space);

/// The sheet that asks, with too little free disk space, whether to record all the same.
///
/// One for the life of the program, made at the first call of shareAlertFreeSpace(); main thread only.
class VNAlertFreeSpace : public QObject
{
    Q_OBJECT
public:
    [[nodiscard]] static VNAlertFreeSpace &shareAlertFreeSpace();

    /// \a handler gets true to go on. Modal to the whole program.
    void beginSheetForWindow(QWidget *window, std::function<void(bool goOn)> handler);
    /// Closes the sheet and calls the handler, once.
    void endWithContinue(bool goOn);

public slots:
    void continueAction() { endWithContinue(true); }
    void cancelAction() { endWithContinue(false); }

private:
    VNAlertFreeSpace() = default;

    std::function<void(bool)> m_handler;
    QPointer<QDialog> m_window; ///< null while none is shown
};

} // namespace vornic
