#include "codec/frame_timeline.h"

#include "base/PKTimebase.h"
#include "codec/PKVideoFrame2.h"

#include <utility>

namespace vornic {

namespace {

/// How long the last frame is shown where it does not say itself.
constexpr std::int64_t defaultDuration = PKTimebase / 30;

/// How long equal frames become one at most. A player that seeks waits for a picture no longer than that, and the
/// encoder can make a still picture sharper step by step.
constexpr std::int64_t longestStill = PKTimebase / 2;

bool lastsOn(const FrameTimeline::Shown &shown, const FrameTimeline::Shown &next)
{
    return !next.isNew && next.end - shown.frame->timeStamp() <= longestStill;
}

} // namespace

FrameTimeline::FrameTimeline(Source source)
    : m_source(std::move(source))
{
}

/// The frame that is read next and later than those before: no two can be shown at one time, and of those of one time
/// the newest counts.
std::optional<FrameTimeline::Shown> FrameTimeline::nextFrame()
{
    if (!std::exchange(m_hasBegun, true))
        m_following = m_source();
    if (!m_following)
        return std::nullopt;
    Shown shown { .frame = std::exchange(m_following, nullptr) };
    while ((m_following = m_source()) && m_following->timeStamp() <= shown.frame->timeStamp()) {
        if (m_following->timeStamp() == shown.frame->timeStamp())
            shown.frame = m_following;
        ++m_framesSkipped;
    }
    const std::int64_t own = shown.frame->duration() > 0 ? shown.frame->duration() : defaultDuration;
    shown.end = m_following ? m_following->timeStamp() : shown.frame->timeStamp() + own;
    return shown;
}

std::optional<FrameTimeline::Shown> FrameTimeline::next()
{
    std::optional<Shown> shown = m_pending ? std::exchange(m_pending, std::nullopt) : nextFrame();
    while (shown && (m_pending = nextFrame())) {
        m_pending->isNew = !m_pending->frame->sharesPixelsWith(*shown->frame);
        if (!lastsOn(*shown, *m_pending))
            break;
        shown->end = m_pending->end;
        shown->frames += m_pending->frames;
    }
    return shown;
}

} // namespace vornic
