#include "app/session/left_behind.h"

#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/stored_recordings.h"
#include "codec/part_file.h"

namespace vornic {

void cleanUpLeftBehind()
{
    const QStringList movieFolders = cleanUpStoredRecordings(VNBufferMgr::cachePath());
    for (const QString &folder : movieFolders)
        removeStalePartFiles(folder);
}

} // namespace vornic
