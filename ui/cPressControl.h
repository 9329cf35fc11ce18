// The press cycle of buttons: down captures, up over the control fires.
#pragma once

#include "ui/cControl.h"

namespace trellis {

/// A key fires wherever the mouse is. A release of the mouse elsewhere does nothing.
class cPressControl : public cControl {
public:
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnChar(int c, int code) override; ///< While it is held, no key is anyone else's.
    bool IsHot(bool covered) override { return TrackHot(covered); }

protected:
    cPressControl(cWnd* parent, const char* text, float x, float y, int align, bool visible, bool enabled);

    virtual void OnPressed() = 0; ///< It may free the control.
    virtual bool TakesFocus() const { return true; }
};

} // namespace trellis
