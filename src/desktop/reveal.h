#pragma once

#include <QString>
#include <QUrl>

#include <functional>

namespace vornic {

/// Opens a folder, given as a file URL. Runs on the main thread, up to some seconds after it was given.
using FolderOpener = std::function<void(const QUrl &)>;

/// Shows the file at \a path, selected in its folder, in the desktop's file manager, which is started if it
/// does not run. Where there is none, or it does not answer within seconds, \a openFolder gets the folder;
/// empty: the default application for folders does. To be called on the main thread; returns at once.
/// With \a activationToken, where there is one, the window may come to the front.
void revealInFileManager(const QString &path,
                         const QString &activationToken = {},
                         const FolderOpener &openFolder = {});

} // namespace vornic
