#pragma once

namespace vornic {

class VNRecorderWndCtrl;

/// What the overlay's controller asks the application; what is not overridden is no answer.
///
/// Implemented by the application's delegate; called on the main thread.
class VNRecorderWndCtrlDelegate
{
public:
    virtual ~VNRecorderWndCtrlDelegate() = default;

    /// Whether a recording runs now.
    virtual bool VNRecorderWndCtrlIsRecording(VNRecorderWndCtrl & /*controller*/) { return false; }
    /// Whether it is paused.
    virtual bool VNRecorderWndCtrlIsPaused(VNRecorderWndCtrl & /*controller*/) { return false; }
};

} // namespace vornic
