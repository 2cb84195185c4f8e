#pragma once

namespace vornic {

class VNRecoderView;

/// What the overlay's view asks and tells; what is not overridden answers no, or does nothing.
///
/// Implemented by the overlay's controller; called on the main thread.
class VNRecoderViewDelegate
{
public:
    virtual ~VNRecoderViewDelegate() = default;

    /// Dragging has moved or resized the window.
    virtual void VNRecorderViewWindowFrameDidChanged(VNRecoderView & /*view*/) { }
    virtual bool VNRecorderViewWindowIsRecording(VNRecoderView & /*view*/) { return false; }
    /// A recording that runs keeps no pictures now.
    virtual bool VNRecorderViewWindowIsPaused(VNRecoderView & /*view*/) { return false; }
    virtual bool VNRecorderViewWindowIsRecordFullScreen(VNRecoderView & /*view*/) { return false; }
};

} // namespace vornic
