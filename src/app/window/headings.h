#pragma once

class QWidget;

namespace vornic {

/// Makes the controls in \a window bold and bright whose interface file calls them a "heading".
void emboldenHeadings(const QWidget &window);

} // namespace vornic
