// Base of controls: a caption beside a value that belongs to the caller, growth under the mouse, one way to draw.
//
//     caption  |padding|  value          m_Pos is where the anchor `m_Align` of the value stands; the caption extends
//                                        to its left, so that the values of a column are flush
//
// On a tool bar the caption starts at `m_Pos`. A control owns no value, and bears a null pointer in its place.
#pragma once

#include "foundation/cStr.h"
#include "math/cMat4.h"
#include "ui/cTheme.h"
#include "ui/cWnd.h"

namespace trellis {

/// What it does not override is that of a passive control: it takes no input and is never hot.
class cControl : public cWnd {
public:
    /// Ids of the messages that go to `MsgProc`, with what its two last arguments point to.
    enum Msg : int {
        Pressed,        ///< null, null
        BindChanged,    ///< const int* former code, const int* value
        Checked,        ///< const bool* value after the change, null
        Selected,       ///< const int* former index, const int* value
        FloatSlid,      ///< const float* former value, const float* value
        IntSlid,        ///< const int*, const int*
        IntCommitted,   ///< const int*, const int*
        FloatCommitted, ///< const float*, const float*
        TextCommitted,  ///< const char*, const char*
        PanelToggled,   ///< null, null
        FileChosen      ///< const char*, const char*
    };

    cRect GetRelBounds() override { return m_RelBounds; }
    float GetWithinToolBarWidth() override; ///< Caption and value, with the insets of a row.
    bool GetTabStop() const override { return m_TabStop; }
    void SetTabStop(bool isStop) override { m_TabStop = isStop; }
    bool OnButtonDown(int) override { return false; }
    bool OnButtonUp(int) override { return false; }
    bool OnMouseMove() override { return false; }
    bool IsHot(bool) override { return false; }
    void CalcRects() override;
    void OnRender() override;

    /// The control no longer touches the value, which is about to go.
    virtual void Unbind() {}

    cStr m_Text;                           ///< The caption; may be empty.
    cRect m_RelBounds = cRect::Empty;      ///< Of caption and value, relative to the parent's scrolled client.
    cVec2 m_Size{0, 0};                    ///< Of the value, where the theme's does not fit; 0: the theme's.
    float m_CurGrow = 0, m_TargetGrow = 0; ///< Points on each side.
    int m_PressCode = -1;                  ///< The button or key held.
    Amount m_Hot;
    bool m_TabStop = false;
    bool m_Grows = false; ///< Under the mouse and while pressed.

    // On the screen, before growth.
    cRect m_BaseBounds = cRect::Empty;
    cRect m_LabelRect = cRect::Empty;
    cRect m_ValueRect = cRect::Empty;
    cMat4 m_Transform{}; ///< The growth, about the centre of `m_BaseBounds`.

protected:
    /// @param align  a `cRect::Align`: the point of the value that stands at (x, y)
    cControl(cWnd* parent, const char* text, float x, float y, int align, bool visible, bool enabled);

    // For `CalcRelBounds`. A component of `m_Size` that is not 0 goes before that of `valueSize`.
    void LayOut(const cVec2& valueSize);                          ///< Without a caption.
    void LayOut(int font, float padding, const cVec2& valueSize); ///< The caption at the left of the value.

    /// For `OnRender`. What all parts need is set, and may be set anew. @return whether there is something to draw
    virtual bool FillDrawArgs(cTheme::DrawArgs* args) {
        (void)args;
        return false;
    }

    void Send(Msg msg, const void* before, const void* after); ///< To the parent; it may free the control.
    bool TrackHot(bool covered); ///< `IsHot` of a control that takes input: growth, focus under the mouse.
    bool IsLive();               ///< Seen and enabled with all ancestors, in a client, in a form that is not minimised.
    bool IsMouseInside() const;  ///< Of what the mouse can touch.
    bool Capture(int code);      ///< And activates the form. @return false: someone else has the capture, or the
                                 ///< control is gone
    bool IsPressKey(int code);   ///< A key that presses the control which has the focus.
    static int StepOf(int code); ///< -1 or 1 for a key or thumb stick to the left or right, else 0.

    cRect m_RelLabel = cRect::Empty;
    cRect m_RelValue = cRect::Empty;

private:
    cVec2 m_TookFocusAt{cMath::FloatMaxValue, cMath::FloatMaxValue}; // of the mouse
};

} // namespace trellis
