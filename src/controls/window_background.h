#pragma once

#include "controls/VNPromptView.h"

namespace vornic {

/// What the controls of a window stand on: a VNPromptView under a shade, dark enough that the grey of the titles of
/// check boxes can be read on it.
///
/// Made by whoever builds a window, around its controls; main thread only.
class WindowBackground : public VNPromptView
{
    Q_OBJECT
public:
    using VNPromptView::VNPromptView;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace vornic
