#include "app/allowed_edits.h"

#include "options/VNLogoContext.h"
#include "options/VNOption.h"

namespace vornic {

bool AllowedEdits::recordRegion() const
{
    return !isRecording && options && options->recordsRectangle();
}

bool AllowedEdits::logo() const
{
    return !isRecording && options && options->logoContext()->LogoValidate();
}

bool AllowedEdits::font() const
{
    return logo() && options->logoContext()->type() == LogoType::Text;
}

bool AllowedEdits::sound() const
{
    return audioRecord() && options && options->enableAudio();
}

bool AllowedEdits::systemLevel() const
{
    return sound() && options->recordsSystemSound();
}

bool AllowedEdits::stopAfter() const
{
    return !isRecording && options && options->stopsAfterTime();
}

} // namespace vornic
