#pragma once

#include "controls/level_ballistics.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

namespace vornic {

/// What a level meter shows; enough to paint it without a widget.
struct LevelLook {
    double level = LevelBallistics::lowest; ///< dBFS
    double held = LevelBallistics::lowest;  ///< dBFS
    bool isClipping = false;
    bool isListening = false; ///< the input is open
};

/// \a area in points; the scale ends at 0 dBFS, at the right.
void paintLevelMeter(QPainter &painter, const QRectF &area, const LevelLook &look);

/// A small meter of how loud a sound is: a bar for its peaks, a line where the highest of the last moments was, which is
/// told as a number too.
///
/// Made by whoever builds a window, as a child of it; main thread only. It takes no focus.
class LevelMeter : public QWidget
{
    Q_OBJECT
    /// In whole dBFS; what assistive programs read.
    Q_PROPERTY(int level READ level)
public:
    explicit LevelMeter(QWidget *parent = nullptr);

    /// Sound comes from here on, or no more: it shows that nobody listens.
    void setListening(bool isListening);
    [[nodiscard]] bool isListening() const { return m_isListening; }
    /// The loudest sample of a few hundredths of a second, as a share of the loudest that there is.
    void addPeak(double peak);
    /// Of the moment, and the highest of the last moments, in whole dBFS.
    [[nodiscard]] int level() const;
    [[nodiscard]] int held() const;
    /// \a seconds pass: what the meter's own timer does.
    void advance(double seconds);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isListening = false;
    double m_peak = 0; ///< since the last advance()
    LevelBallistics m_ballistics;
    QTimer m_timer;
    QElapsedTimer m_sinceAdvance;
};

} // namespace vornic
