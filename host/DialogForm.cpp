#include "host/DialogForm.h"

#include "render/cRender.h"
#include "ui/cThemeText.h"
#include "ui/cWidgets.h"

#include <algorithm>
#include <bitset>
#include <cmath>

namespace trellis {

namespace {

using Parts = cTheme::Parts;

std::bitset<cInput::CodeCount> s_Held;

bool IsSizing(int part) {
    return part == Parts::FormGrip || (part >= Parts::SizeLeft && part <= Parts::SizeRightTop);
}

} // namespace

DialogForm::DialogForm(const char* title, const cTheme* theme, bool isFixed)
    : cForm(nullptr, title, cRect::Zero, theme), m_IsFixed(isFixed) {
    m_MiddlePan = false;
}

// ---- Running

int DialogForm::Run(std::unique_ptr<DialogForm> owned, const std::function<bool()>& frame) {
    DialogForm* form = owned.get();
    if (cWidgets::AddWidget(form, Layer) == -1) {
        return Cancelled;
    }
    owned.release(); // it is the manager's
    cWidgets::ReleaseCapture();
    KeepInput();
    form->Fill();
    form->CalcRects();
    for (cWnd* child : form->m_Children) {
        child->CalcRects();
    }
    form->OnOpened();

    const Guard guard(form);
    s_Open++;
    while (!guard.IsGone() && form->IsShown() && !form->m_Closed && form->m_Answer == Unanswered && frame()) {
    }
    s_Open--;
    if (guard.IsGone()) {
        return Cancelled;
    }
    const int answer = form->m_Answer == Unanswered ? int(Cancelled) : form->m_Answer;
    form->End();
    return answer;
}

/// Freed widgets may wait for their deletion, but are in no order any more.
bool DialogForm::IsShown() const {
    const int id = cWidgets::GetWidgetID(this);
    return id != -1 && cWidgets::GetLayerOrder(id >> 16).IndexOf(id & 0xFFFF) != -1;
}

/// The manager deletes a closed form by itself. It is not asked to: what it postpones goes by an id, which the next
/// dialog might have by then.
void DialogForm::End() {
    m_HasEnded = true;
    Close();
    OnNewParent(); // off the list of forms at once: the one before is active again
}

/// What is in the queue was meant for others, and would be typed into the dialog; only releases are still theirs.
void DialogForm::KeepInput() {
    cList<cInput::Event*> releases;
    while (cInput::Event* event = cInput::GetEvent()) {
        if (event->Type == cInput::ButtonEvent && !event->Down) {
            releases.Add(event);
        } else {
            delete event;
        }
    }
    for (cInput::Event* event : releases) {
        cInput::AddEvent(event);
    }
    for (int code = 0; code < cInput::CodeCount; code++) {
        s_Held[size_t(code)] = cInput::IsDown(code);
    }
}

bool DialogForm::IsHeld(int code) {
    return code >= 0 && code < cInput::CodeCount && s_Held[size_t(code)];
}

bool DialogForm::ForgetHeld(int code) {
    const bool was = IsHeld(code);
    if (was) {
        s_Held.reset(size_t(code));
    }
    return was;
}

void DialogForm::Answer(int answer) {
    if (m_Answer == Unanswered) {
        m_Answer = answer;
    }
}

// ---- Input

bool DialogForm::OnButtonDown(int code) {
    if (m_HasEnded) {
        return false;
    }
    if (m_Closed || m_Answer != Unanswered) {
        return true;
    }
    switch (code) {
    case cInput::Esc:
    case cInput::ButtonB:
        Cancel();
        return true;
    case cInput::Enter:
    case cInput::ButtonA:
        OnDefault();
        return true;
    case cInput::LeftButton:
        if (m_IsFixed && cInput::IsDoubleClick() && GetMouseOver() == Parts::FormTitleBar) {
            return true; // it would be maximised
        }
        break;
    }
    cForm::OnButtonDown(code);
    return true;
}

bool DialogForm::OnButtonUp(int code) {
    const bool wasHeld = ForgetHeld(code);
    return cForm::OnButtonUp(code) && !wasHeld;
}

bool DialogForm::OnMouseMove() {
    cForm::OnMouseMove();
    return !m_HasEnded;
}

bool DialogForm::OnChar(int c, int code) {
    if (m_HasEnded) {
        return false;
    }
    if (!m_Closed && !IsHeld(code)) {
        cForm::OnChar(c, code);
    }
    return true;
}

bool DialogForm::IsHot(bool covered) {
    cForm::IsHot(covered);
    return !covered && !m_HasEnded;
}

int DialogForm::GetMouseOver() {
    const int part = cForm::GetMouseOver();
    return m_IsFixed && IsSizing(part) ? int(Parts::None) : part;
}

// ---- Layout

void DialogForm::Place() {
    const cRect screen = GetBaseRect();
    const cRect& inset = m_Theme->FormClientInset;
    const cVec2 wish = GetWish(), min = m_Theme->FormMinSize;
    const float buttons = m_Theme->MinimizeButtonSize.x - m_Theme->MinimizeButtonOffset.x;
    const float title = cThemeText::Width(m_Theme->FormTitleFont, m_Title) + 2 * buttons;
    const float width = std::max({wish.x + inset.x0 - inset.x1, title, min.x});
    const float height = std::max(wish.y + inset.y0 - inset.y1, min.y);
    const cVec2 size(std::min(std::ceil(width), screen.Width()), std::min(std::ceil(height), screen.Height()));
    const cVec2 at = screen.Center() - size * 0.5f;
    m_Bounds = {std::floor(at.x), std::floor(at.y), std::floor(at.x) + size.x, std::floor(at.y) + size.y};
}

void DialogForm::CalcRects() {
    if (m_Closed) {
        return;
    }
    if (m_Align0 == -1) { // later it is docked, as any form
        Place();
    }
    cForm::CalcRects();
    if (m_Client.Size() != m_LaidOut) {
        m_LaidOut = m_Client.Size();
        LayOut(m_LaidOut);
        for (cWnd* child : m_Children) {
            child->CalcRelBounds();
        }
        cForm::CalcRects();
    }
    m_MinimizeRect = cRect::Empty; // nothing else could be done meanwhile
    if (m_IsFixed) {
        m_MaximizeRect = m_GripRect = cRect::Empty;
    }
}

float DialogForm::GetGap() const {
    return std::max(std::floor(m_Theme->ButtonHeight * 0.35f), m_Theme->ButtonHotGrow);
}

void DialogForm::Put(cControl* control, float x, float top, float width, float height) {
    control->m_Align = cRect::LeftTop;
    control->m_Pos = {x, -top};
    control->m_Size = {width, height};
}

float DialogForm::GetButtonsWidth(std::span<cControl* const> buttons) const {
    float widest = 0;
    for (const cControl* button : buttons) {
        const float text = cThemeText::Width(m_Theme->ButtonFont, button->m_Text);
        widest = std::max(widest, std::max(text, m_Theme->ButtonMinWidth) + 2 * m_Theme->ButtonPadding);
    }
    return float(buttons.size()) * (widest + GetGap()) - GetGap();
}

void DialogForm::PutButtons(std::span<cControl* const> buttons, float x, float top) const {
    const float all = GetButtonsWidth(buttons), gap = GetGap();
    const float each = (all + gap) / float(buttons.size()) - gap;
    for (cControl* button : buttons) {
        Put(button, std::floor(x), top, each, m_Theme->ButtonHeight);
        x += each + gap;
    }
}

// ---- Text

float TextLine::GetHeight(const cTheme& theme) {
    return std::ceil(cRender::MeasureStringCells(theme.LabelFont, "M").Height()) + 2;
}

void TextLine::CalcRelBounds() {
    const float text = std::ceil(cThemeText::Width(m_Theme->LabelFont, m_Text));
    const float width = m_Size.x > 0 ? std::min(text, m_Size.x) : text;
    m_RelLabel = m_RelBounds = {m_Pos.x, m_Pos.y - GetHeight(*m_Theme), m_Pos.x + width, m_Pos.y};
    m_RelValue = cRect::Empty;
}

bool TextLine::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = Parts::Label;
    return !m_Text.IsEmpty();
}

} // namespace trellis
