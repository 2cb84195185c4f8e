#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace vornic {

class GlobalKey;
class WindowOnTop;

/// The seconds until a recording begins, large in the middle of the screen, above every other window.
///
/// Made by WindowQuestions for each start; main thread only. Escape, from whatever program, and a click cancel it.
class Countdown : public QWidget
{
    Q_OBJECT
public:
    /// Shows itself. \a ended is called once, with false where it was cancelled, when the window is hidden already; by
    /// then it may be deleted.
    Countdown(int seconds, std::function<void(bool goOn)> ended);
    ~Countdown() override;

    void cancel() { end(false); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void tick();
    void end(bool goOn);

    int m_seconds;
    std::function<void(bool)> m_ended; ///< empty once it was called
    QTimer m_timer;
    std::unique_ptr<GlobalKey> m_escape;
    bool m_hearsEscape = false;
    std::unique_ptr<WindowOnTop> m_onTop;
};

} // namespace vornic
