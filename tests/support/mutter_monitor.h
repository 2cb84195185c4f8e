#pragma once

#include "support/screen_painter.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QVariantList>

#include <cstdint>
#include <memory>

namespace vornic {
class CastGrabber;
class CastPicture;
class CastStream;
} // namespace vornic

namespace vornic::test {

/// The only monitor of a MutterSession, with a mouse, as a program for remote desktops has them.
///
/// Made by tests on the main thread. Points are device pixels.
class MutterMonitor : public QObject
{
    Q_OBJECT
public:
    /// Returns once the monitor shows something; null where it does not.
    [[nodiscard]] static std::unique_ptr<MutterMonitor> attach();
    ~MutterMonitor() override;

    /// What it shows, without the pointer, as far as the compositor has told; soon after a change that is all. Its last
    /// pixel is of no meaning.
    [[nodiscard]] QImage screen();
    /// To the middle of that pixel; returns once it is there.
    void moveTo(QPoint pixel);
    void press() { button(true); }
    void release() { button(false); }
    void click(QPoint pixel);
    /// Presses at \a from, goes to \a to by way of a point between, and releases.
    void drag(QPoint from, QPoint to);

private slots:
    void streamAdded(uint node) { m_node = node; }

private:
    MutterMonitor();
    [[nodiscard]] bool start();
    [[nodiscard]] bool openSession();
    /// The first value of the answer; invalid where there is none.
    QVariant call(const QString &service, // NOLINT(modernize-use-nodiscard)
                  const QString &path,
                  const QString &interface,
                  const QString &method,
                  const QVariantList &arguments = {}) const;
    void ask(const QString &method, const QVariantList &arguments) const;
    void button(bool isDown);
    void nudge();

    QDBusConnection m_bus;
    QString m_session;    ///< path of the remote desktop
    QString m_streamPath; ///< of its pictures
    std::uint32_t m_node = 0;
    std::shared_ptr<CastPicture> m_picture;
    std::unique_ptr<CastGrabber> m_grabber;
    std::unique_ptr<CastStream> m_stream;
    std::unique_ptr<ScreenPainter> m_painter;
    std::uint32_t m_nudge = 0; ///< a window of one pixel
    bool m_isNudgeLight = false;
    QElapsedTimer m_sinceNudge; ///< invalid: none yet
};

} // namespace vornic::test
