// What a step of dragging or setting the logo costs on a display of 3840 x 2160: the logo where it was and
// where it is painted anew, beside painting the whole view. The aim for the logo is 8 ms.

#include "geometry/y_up.h"
#include "options/VNLogoContext.h"
#include "overlay/overlay_painting.h"

#include <QGuiApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <utility>

namespace {

using namespace vornic;

constexpr QRectF bounds(0, 0, 3856, 2176);

void useText(VNLogoContext &logo)
{
    logo.setLogoText(QStringLiteral("Recorded by a person with a rather long name"));
    logo.setLogoScale(4);
}

void usePicture(VNLogoContext &logo, QSize size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(200, 120, 40, 180));
    logo.setLogoType(1);
    logo.setNSImage(picture);
}

/// One move of the logo by a few pixels, as the view paints it. \a isTranslucent: with a compositing manager.
void moveLogo(benchmark::State &state, VNLogoContext &logo, bool isTranslucent)
{
    logo.setLogoValidate(true);
    QImage view(bounds.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    const OverlayLook look { .bounds = bounds, .isTranslucent = isTranslucent };
    QRect shown = logoPixels(&logo, bounds);
    double x = 400;
    for ([[maybe_unused]] auto step : state) {
        logo.setLogoPosition({ x, 700 });
        x = x > 500 ? 400 : x + 7;
        const QRect before = std::exchange(shown, logoPixels(&logo, bounds));
        QPainter painter(&view);
        painter.setClipRegion(QRegion(before) + shown);
        if (isTranslucent) {
            flipPainter(painter, bounds.height());
            paintOverlay(painter, look, &logo);
        } else {
            const LogoStencil stencil = stencilOf(&logo, bounds);
            benchmark::DoNotOptimize(overlayShape(look, stencil));
            paintShapedOverlay(painter, look, stencil);
        }
    }
}

void textLogo(benchmark::State &state, qint64 rotation, bool isTranslucent)
{
    VNLogoContext logo;
    useText(logo);
    logo.setLogoRotation(rotation);
    moveLogo(state, logo, isTranslucent);
}

void pictureLogo(benchmark::State &state, qint64 rotation, bool isTranslucent)
{
    VNLogoContext logo;
    usePicture(logo, { 640, 480 });
    logo.setLogoTransparency(128);
    logo.setLogoRotation(rotation);
    moveLogo(state, logo, isTranslucent);
}

void wholeView(benchmark::State &state)
{
    VNLogoContext logo;
    useText(logo);
    logo.setLogoValidate(true);
    QImage view(bounds.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto step : state) {
        QPainter painter(&view);
        flipPainter(painter, bounds.height());
        paintOverlay(painter, { bounds }, &logo);
    }
}

BENCHMARK_CAPTURE(textLogo, straight, 0, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(textLogo, turned_by_30, 30, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(textLogo, turned_by_30_not_composited, 30, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pictureLogo, straight, 0, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pictureLogo, turned_by_30, 30, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pictureLogo, turned_by_30_not_composited, 30, false)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeView)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
