// Base of the dialogs: a form that keeps all input from what is beneath it, and runs the program's frames until it has
// been answered.
#pragma once

#include "ui/cControl.h"
#include "ui/cForm.h"

#include <functional>
#include <memory>
#include <span>

namespace trellis {

/// A dialog may be opened by another. What is beneath still hears of keys and buttons that are let go, since it may
/// have seen them go down.
class DialogForm : public cForm {
public:
    static constexpr int Cancelled = -1;
    static constexpr int Layer = 6; ///< In front of forms, pop-ups and the tool tip.

    /// @param isFixed  the form is as large as its contents; else the user may size it
    DialogForm(const char* title, const cTheme* theme, bool isFixed);

    /// Releases the capture, shows the form, and returns when it has been answered or closed, when it is no longer
    /// among the widgets, or when a frame says that the program ends.
    ///
    /// @return what `Answer` was called with, or `Cancelled`
    static int Run(std::unique_ptr<DialogForm> form, const std::function<bool()>& frame);

    static int CountOpen() { return s_Open; }

    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    bool OnChar(int c, int code) override;
    bool IsHot(bool covered) override; ///< Wherever the mouse is.
    int GetMouseOver() override;
    void CalcRects() override;

    /// Whether the key or button has been down since before the dialog opened; what it types is not for the dialog.
    static bool IsHeld(int code);
    static bool ForgetHeld(int code); ///< @return whether it was

protected:
    /// Adds the controls; called once, when the form is in its layer.
    virtual void Fill() = 0;
    /// @return the client that the controls would like
    virtual cVec2 GetWish() const = 0;
    /// Places the controls in a client of that size.
    virtual void LayOut(const cVec2& client) = 0;
    virtual void OnOpened() = 0;  ///< The controls are laid out: time for the first focus.
    virtual void OnDefault() = 0; ///< Enter, when no control has taken it.
    void Answer(int answer);      ///< Zero or above. What is left of the frame's input is still kept from others.
    void Cancel() { Answer(Cancelled); }

    float GetGap() const; ///< Between controls.
    static void Put(cControl* control, float x, float top, float width, float height);
    /// Beside each other, and all as wide as the widest.
    void PutButtons(std::span<cControl* const> buttons, float x, float top) const;
    float GetButtonsWidth(std::span<cControl* const> buttons) const;

private:
    void Place();
    void End();
    bool IsShown() const;
    static void KeepInput();

    static constexpr int Unanswered = -2;
    static inline int s_Open = 0;

    bool m_IsFixed;
    bool m_HasEnded = false;
    int m_Answer = Unanswered;
    cVec2 m_LaidOut{-1, -1};
};

/// A control of a dialog that passes on the end of what was held before.
template <class Base> class Through : public Base {
public:
    using Base::Base;
    bool OnButtonUp(int code) override { return Base::OnButtonUp(code) && !DialogForm::ForgetHeld(code); }
};

/// A line of text that is only read.
class TextLine : public cControl {
public:
    TextLine(cWnd* parent, const char* text) : cControl(parent, text, 0, 0, cRect::LeftTop, true, true) {}

    /// As wide as the text, but no wider than `m_Size.x` where that is not 0.
    void CalcRelBounds() override;

    static float GetHeight(const cTheme& theme);

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
};

} // namespace trellis
