#include "codec/frame_timeline.h"

#include "base/PKTimebase.h"
#include "codec/PKVideoFrame2.h"

#include <utility>

namespace vornic {

namespace {

/// How long the last frame is shown where it does not say itself.
constexpr std::int64_t defaultDuration = PKTimebase / 30;

/// How long equal frames become one at most. A player that seeks waits for a picture no longer than that, and the
/// encoder makes a still picture sharper with each: soon after a change, while it can still be seen to get sharper, it
/// has shorter ones. The first lasts longer, as most pictures of a busy screen are no longer there behind it.
constexpr std::int64_t longestStill = PKTimebase / 2;
constexpr std::int64_t longestAtFirst = PKTimebase / 5;
constexpr std::int64_t longestWhileSettling = PKTimebase / 10;
constexpr std::int64_t settlingTime = PKTimebase / 2;

/// Of a frame that begins \a age ticks after the last change.
std::int64_t longestAt(std::int64_t age)
{
    if (age == 0)
        return longestAtFirst;
    return age < settlingTime ? longestWhileSettling : longestStill;
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
    if (shown && shown->isNew)
        m_changed = shown->frame->timeStamp();
    while (shown && (m_pending = nextFrame())) {
        m_pending->isNew = !m_pending->frame->sharesPixelsWith(*shown->frame);
        const std::int64_t begin = shown->frame->timeStamp();
        if (m_pending->isNew || m_pending->frame->isKey()
            || m_pending->end - begin > longestAt(begin - m_changed))
            break;
        shown->end = m_pending->end;
        shown->frames += m_pending->frames;
    }
    return shown;
}

} // namespace vornic
