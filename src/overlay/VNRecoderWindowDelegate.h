#pragma once

namespace vornic {

class VNRecoderWindow;

/// What could be asked for the overlay's window. The window itself never asks.
///
/// Implemented by the overlay's controller; called on the main thread.
class VNRecoderWindowDelegate
{
public:
    virtual ~VNRecoderWindowDelegate() = default;

    virtual bool VNRecoderWindowCanBecameKeyWindow(VNRecoderWindow & /*window*/) { return false; }
};

} // namespace vornic
