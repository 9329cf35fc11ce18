// Dialog of a text and a row of buttons.
#pragma once

#include "foundation/cList.h"
#include "host/DialogForm.h"

#include <initializer_list>

namespace trellis {

/// Answers with the index of the button. The first one is the default.
class MessageForm : public DialogForm {
public:
    /// @param text  of any number of lines; long ones are wrapped
    MessageForm(const char* title, const char* text, std::initializer_list<const char*> buttons, const cTheme* theme);

    void MsgProc(int id, int msg, const void* before, const void* after) override;

    /// The text in lines no wider than `width`, cut between words, or within those that are wider themselves.
    static cList<cStr> Wrap(int font, const char* text, float width);

protected:
    void Fill() override;
    cVec2 GetWish() const override;
    void LayOut(const cVec2& client) override;
    void OnOpened() override;
    void OnDefault() override { Answer(0); }

private:
    cVec2 GetTextSize() const;
    std::span<cControl* const> Buttons() const { return {m_Buttons.Data(), size_t(m_Buttons.Count())}; }

    cList<cStr> m_Lines, m_Captions;
    cList<cControl*> m_Texts, m_Buttons;
};

} // namespace trellis
