#include "app/session/left_behind.h"

#include "app/session/output_check.h"
#include "base/log.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/stored_recordings.h"
#include "codec/part_file.h"

namespace vornic {

void cleanUpLeftBehind()
{
    if (const QString reason = whyCacheIsRefused(); !reason.isEmpty())
        logMessage(reason);
    const QStringList movieFolders = cleanUpStoredRecordings(VNBufferMgr::cachePath());
    for (const QString &folder : movieFolders)
        removeStalePartFiles(folder);
}

} // namespace vornic
