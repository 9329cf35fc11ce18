// Box with a check mark and its caption at the right.
#pragma once

#include "ui/cPressControl.h"

namespace trellis {

/// Sends `Checked`. The message carries the value after the change.
class cCheckBox : public cPressControl {
public:
    cCheckBox(cWnd* parent, bool* value, const char* text, float x, float y, int align, bool visible, bool enabled);

    int GetType() const override { return CheckBoxType; }
    void CalcRelBounds() override;
    void Unbind() override { m_Value = nullptr; }

    bool* m_Value; ///< Not owned.

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
    void OnPressed() override;
};

} // namespace trellis
