#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <cstdint>
#include <functional>

class QDialog;
class QLabel;
class QProgressBar;
class QWidget;

namespace vornic {

/// The sheet that shows how much of the movie is written, how fast, and how long it will take. It is minimised
/// together with its window, whose title begins with the percent meanwhile.
///
/// One for the life of the program, made at the first call of shareEncoderProgress(); main thread only.
class VNEncoderProgress : public QObject
{
    Q_OBJECT
    /// 0 to 100.
    Q_PROPERTY(double percent READ percent WRITE setPercent NOTIFY percentChanged)
public:
    [[nodiscard]] static VNEncoderProgress &shareEncoderProgress();

    [[nodiscard]] double percent() const { return m_percent; }
    void setPercent(double percent);

    /// \a frames: how many the movie will have. Without a \a window the sheet stands alone. \a later is called, once at
    /// most, when the user puts the movie off.
    void beginSheet(QWidget *window, std::uint64_t frames, std::function<void()> later = {});
    void endSheet();

signals:
    void percentChanged();

private:
    VNEncoderProgress() = default;
    void showFigures();
    void showInTitle();
    /// The window that stands in the task list.
    [[nodiscard]] QWidget *mainWindow() const;

    double m_percent = 0;
    std::uint64_t m_frames = 0;
    QElapsedTimer m_sinceBegin;
    QPointer<QDialog> m_window; ///< null while none is shown
    QPointer<QWidget> m_parent; ///< what the sheet stands on
    QString m_title;            ///< of mainWindow(), without the percent
    QProgressBar *m_bar = nullptr;
    QLabel *m_percentLabel = nullptr;
    QLabel *m_speedLabel = nullptr;
    QLabel *m_timeLeftLabel = nullptr;
};

} // namespace vornic
