#pragma once

#include "base/assertion.h"
#include "base/log.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"

#include <QImage>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <mutex>

namespace vornic {

/// A cache folder, a display, a log and an assertion handler of the test's own.
class CaptureTest : public testing::Test
{
protected:
    CaptureTest()
    {
        qputenv("XDG_CACHE_HOME", m_cacheHome.path().toUtf8());
        setMainDisplay(m_display);
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(m_mutex);
            m_logged += line;
        });
        setAssertionHandler([this](const AssertionFailure &failure) {
            const std::lock_guard lock(m_mutex);
            m_failures.push_back(failure);
        });
    }
    ~CaptureTest() override
    {
        setAssertionHandler({});
        setLogSink({});
        setMainDisplay(nullptr);
    }

    [[nodiscard]] QStringList logged() const
    {
        const std::lock_guard lock(m_mutex);
        return m_logged;
    }

    /// What a grab of the whole display gives while it shows \a picture.
    [[nodiscard]] std::shared_ptr<const BitmapImage> grabOf(const QImage &picture)
    {
        m_display->setPicture(picture);
        return m_display->grab(QRect(QPoint(0, 0), picture.size()));
    }

    QTemporaryDir m_cacheHome;
    std::shared_ptr<FakeDisplay> m_display = std::make_shared<FakeDisplay>(QSize(320, 200));
    std::vector<AssertionFailure> m_failures;

private:
    mutable std::mutex m_mutex;
    QStringList m_logged;
};

/// A picture whose JPEG is exact to a few steps: a flat colour with a brighter box.
inline QImage boxPicture(QSize size, QRgb ground, const QRect &box, QRgb colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(ground);
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x)
            picture.setPixel(x, y, colour);
    return picture;
}

/// The largest difference of any channel of any pixel; 256 when the sizes differ.
inline int largestDifference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return 256;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max({ largest,
                                 std::abs(qRed(p) - qRed(q)),
                                 std::abs(qGreen(p) - qGreen(q)),
                                 std::abs(qBlue(p) - qBlue(q)) });
        }
    return largest;
}

} // namespace vornic
