#pragma once

#include "controls/button_painting.h"

#include <QColor>
#include <QPalette>

namespace vornic {

/// What the controls are painted with beside their pictures, by role.

[[nodiscard]] inline QColor calibratedWhite(double white)
{
    const auto level = static_cast<float>(white);
    return QColor::fromRgbF(level, level, level);
}

namespace skin {

/// Of check boxes and radio buttons, of hints in fields and wells.
[[nodiscard]] inline QColor title()
{
    return calibratedWhite(0.62);
}
/// Of labels that name a control or explain something: brighter than the value of a control that cannot be used.
[[nodiscard]] inline QColor label()
{
    return calibratedWhite(0.76);
}
/// Of labels above a group of controls, and at the top of a sheet.
[[nodiscard]] inline QColor heading()
{
    return calibratedWhite(0.95);
}
/// Of labels and buttons; the titles of check boxes and radio buttons keep their grey.
[[nodiscard]] inline QColor disabledTitle()
{
    return calibratedWhite(0.42);
}
[[nodiscard]] inline QColor value()
{
    return calibratedWhite(1);
}
[[nodiscard]] inline QColor disabledValue()
{
    return calibratedWhite(0.62);
}
[[nodiscard]] inline QColor textShadow()
{
    return calibratedWhite(0);
}
[[nodiscard]] inline QColor promptTop()
{
    return calibratedWhite(0.2275);
}
[[nodiscard]] inline QColor promptBottom()
{
    return calibratedWhite(0.1804);
}
/// Over the background of windows: without it, title() at the top of a window has a contrast of 4.2, which is hard to
/// read.
[[nodiscard]] inline QColor windowShade()
{
    return QColor::fromRgbF(0, 0, 0, 0.14F);
}
/// Around what has the keyboard focus; of links, too.
[[nodiscard]] inline QColor focus()
{
    return { 0x66, 0xc2, 0xf2 };
}
/// Behind what is selected.
[[nodiscard]] inline QColor selection()
{
    return { 0x1a, 0x77, 0xa9 };
}
/// Of lists, menus and empty wells, like the inside of text fields.
[[nodiscard]] inline QColor recess()
{
    return { 0x1b, 0x1b, 0x1d };
}
[[nodiscard]] inline QColor recessEdge()
{
    return { 0x8c, 0x8c, 0x91 };
}
[[nodiscard]] inline QColor disabledEdge()
{
    return { 0x5a, 0x5a, 0x5e };
}
/// Beside what has failed.
[[nodiscard]] inline QColor warning()
{
    return { 0xf0, 0xb4, 0x29 };
}
/// Around an image well that takes what is dragged over it.
[[nodiscard]] inline QColor dropTarget()
{
    return calibratedWhite(0.5);
}

/// Of push buttons, as the pictures of list buttons have them.
[[nodiscard]] inline ButtonFace face()
{
    return { { 0x52, 0x52, 0x57 }, { 0x43, 0x43, 0x47 }, { 0x5e, 0x5e, 0x63 } };
}
[[nodiscard]] inline ButtonFace faceOver()
{
    return { { 0x62, 0x62, 0x68 }, { 0x52, 0x52, 0x57 }, { 0x70, 0x70, 0x76 } };
}
[[nodiscard]] inline ButtonFace faceDown()
{
    return { { 0x38, 0x38, 0x3b }, { 0x3e, 0x3e, 0x42 }, { 0x58, 0x58, 0x5d } };
}
[[nodiscard]] inline ButtonFace disabledFace()
{
    return { { 0x34, 0x34, 0x36 }, { 0x31, 0x31, 0x33 }, { 0x3f, 0x3f, 0x42 } };
}
[[nodiscard]] inline ButtonFace defaultFace()
{
    return { { 0x1a, 0x76, 0xa7 }, { 0x15, 0x63, 0x8d }, { 0x2a, 0x92, 0xc8 } };
}
[[nodiscard]] inline ButtonFace defaultFaceOver()
{
    return { { 0x1b, 0x7c, 0xb0 }, { 0x1a, 0x76, 0xa6 }, { 0x5a, 0xbb, 0xec } };
}
[[nodiscard]] inline ButtonFace defaultFaceDown()
{
    return { { 0x12, 0x56, 0x7c }, { 0x15, 0x62, 0x8c }, { 0x1d, 0x7f, 0xb3 } };
}
/// Of the button that starts a recording: the red of the stop item.
[[nodiscard]] inline ButtonFace recordFace()
{
    return { { 0xcb, 0x32, 0x2a }, { 0xb5, 0x26, 0x1f }, { 0xe2, 0x5a, 0x52 } };
}
[[nodiscard]] inline ButtonFace recordFaceOver()
{
    return { { 0xd9, 0x3a, 0x31 }, { 0xcc, 0x31, 0x29 }, { 0xf0, 0x86, 0x7f } };
}
[[nodiscard]] inline ButtonFace recordFaceDown()
{
    return { { 0xa1, 0x20, 0x1a }, { 0xac, 0x26, 0x1f }, { 0xc4, 0x3a, 0x33 } };
}

} // namespace skin

/// The colours for what the toolkit paints itself: labels, text that is being edited, lists, menus, dialogs.
[[nodiscard]] QPalette skinPalette();

} // namespace vornic
