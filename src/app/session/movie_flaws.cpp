#include "app/session/movie_flaws.h"

#include "app/session/recording.h"
#include "app/session/recording_counts.h"

#include <QCoreApplication>
#include <QStringList>

namespace vornic {

QString movieFlaws(const Recording &recording, const RecordingCounts &counts)
{
    QStringList flaws;
    if (recording.hasSound && counts.audioSeconds <= 0)
        flaws += QCoreApplication::translate("vornic", "No sound came: the movie has none.");
    else if (recording.soundWasLost)
        flaws += QCoreApplication::translate(
            "vornic", "The audio input was gone for a time: the movie has no sound of it.");
    else if (const QString &name = recording.soundLostOfTwo; !name.isEmpty())
        flaws += QCoreApplication::translate("vornic",
                                             "“%1” was gone for a time: the movie has no sound of it.")
                     .arg(name);
    if (counts.framesSkipped > 0)
        flaws += QCoreApplication::translate("vornic",
                                             "Pictures or pieces of sound that could not be used: %1.")
                     .arg(counts.framesSkipped);
    return flaws.join(u' ');
}

} // namespace vornic
