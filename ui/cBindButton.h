// Button that shows the key of a binding, and takes the next one that is pressed.
#pragma once

#include "ui/cPressControl.h"

namespace trellis {

/// Sends `BindChanged`. `Esc` cannot be bound: it leaves the binding as it is.
class cBindButton : public cPressControl {
public:
    enum State : int {
        Idle,
        Held,
        WaitForKey,    ///< Captured.
        WaitForRelease ///< Captured until the new key goes up.
    };

    /// @param value  a `cInput::Code`, or -1 for none
    cBindButton(cWnd* parent, int* value, const char* text, float x, float y, int align, bool visible, bool enabled);

    int GetType() const override { return BindButtonType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    void CalcRelBounds() override;
    void Unbind() override { m_Value = nullptr; }

    int* m_Value; ///< Not owned.
    int m_State = Idle;

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
    void OnPressed() override;
};

} // namespace trellis
