#include "host/MessageForm.h"

#include "ui/cButton.h"
#include "ui/cThemeText.h"
#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

/// Bytes of a line's beginning that have room, at least one character.
int CountFitting(int font, const char* line, int length, float width) {
    const auto fits = [&](int count) { return cThemeText::Width(font, cStr(line, 0, count)) <= width; };
    if (fits(length)) {
        return length;
    }
    int whole = 0, word = 0;
    for (int at = 0; at < length;) {
        const int next = std::min(at + cStr::UTF8LengthOf(line[at]), length);
        if (line[at] == ' ' && at > 0 && line[at - 1] != ' ') {
            word = at;
        }
        if (whole > 0 && !fits(next)) {
            break;
        }
        at = whole = next;
    }
    return word > 0 ? word : whole;
}

} // namespace

MessageForm::MessageForm(const char* title, const char* text, std::initializer_list<const char*> buttons,
                         const cTheme* theme)
    : DialogForm(title, theme, true) {
    const float unit = theme->ButtonHeight / 23;
    m_Lines = Wrap(theme->LabelFont, text, std::min(420 * unit, GetBaseRect().Width() * 0.75f));
    for (const char* caption : buttons) {
        m_Captions.Add(caption);
    }
}

cList<cStr> MessageForm::Wrap(int font, const char* text, float width) {
    cList<cStr> lines;
    while (*text) {
        int length = int(std::strcspn(text, "\n"));
        const char* next = text + length + (text[length] == '\n');
        length -= length > 0 && text[length - 1] == '\r';
        do {
            const int count = CountFitting(font, text, length, width);
            lines.Add(cStr(text, 0, count));
            const int blanks = int(std::strspn(text + count, " "));
            const int skipped = std::min(count + blanks, length);
            text += skipped;
            length -= skipped;
        } while (length > 0);
        text = next;
    }
    return lines;
}

void MessageForm::Fill() {
    for (const cStr& line : m_Lines) {
        auto* text = new TextLine(this, line);
        AddChild(text, false);
        m_Texts.Add(text);
    }
    for (const cStr& caption : m_Captions) {
        auto* button = new Through<cButton>(this, caption, 0.0f, 0.0f, int(cRect::LeftTop), true, true);
        AddChild(button, false);
        m_Buttons.Add(button);
    }
}

cVec2 MessageForm::GetTextSize() const {
    float width = 0;
    for (const cStr& line : m_Lines) {
        width = std::max(width, std::ceil(cThemeText::Width(m_Theme->LabelFont, line)));
    }
    return {width, float(m_Lines.Count()) * TextLine::GetHeight(*m_Theme)};
}

cVec2 MessageForm::GetWish() const {
    const cVec2 text = GetTextSize();
    const float gap = GetGap();
    return {std::max(text.x, GetButtonsWidth(Buttons())) + 4 * gap, text.y + m_Theme->ButtonHeight + 4 * gap};
}

void MessageForm::LayOut(const cVec2& client) {
    const cVec2 text = GetTextSize();
    const float gap = GetGap(), line = TextLine::GetHeight(*m_Theme);
    const auto centered = [gap](float room, float size) { return std::max(std::floor((room - size) / 2), gap); };
    const float buttons = std::max(client.y - gap - m_Theme->ButtonHeight, text.y + 2 * gap);
    const float left = centered(client.x, text.x), top = centered(buttons, text.y);
    for (int i = 0; i < m_Texts.Count(); i++) {
        Put(m_Texts[i], left, top + float(i) * line, 0, 0);
    }
    PutButtons(Buttons(), centered(client.x, GetButtonsWidth(Buttons())), buttons);
}

void MessageForm::OnOpened() {
    SetFocus(m_Buttons[0]);
    ScrollToFocusedControl();
}

void MessageForm::MsgProc(int id, int msg, const void*, const void*) {
    const int button = m_Buttons.IndexOf(static_cast<cControl*>(cWidgets::GetWidget(id)));
    if (msg == cControl::Pressed && button != -1) {
        Answer(button);
    }
}

} // namespace trellis
