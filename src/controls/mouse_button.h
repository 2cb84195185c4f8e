#pragma once

class QWidget;

namespace vornic {

/// Whether the primary mouse button is held down, wherever the mouse is. Main thread only.
[[nodiscard]] bool primaryMouseButtonIsDown();

/// The same, for the painting of \a widget: when it is down, the widget is repainted once it is up again.
[[nodiscard]] bool paintsMouseButtonDown(QWidget &widget);

} // namespace vornic
