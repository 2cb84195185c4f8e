#pragma once

#include "pictures/picture.h"

class QMimeData;

namespace vornic {

/// Pictures in files that another program drags. Only names of files count, the first one alone; a null
/// \a pasteboard holds none.

/// Whether the file looks like a picture; its beginning is read.
[[nodiscard]] bool holdsPicture(const QMimeData *pasteboard);
/// The picture, upright; null when there is none or it is broken.
[[nodiscard]] Picture droppedPicture(const QMimeData *pasteboard);

} // namespace vornic
