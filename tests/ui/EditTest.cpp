#include "tests/render/Allocations.h"
#include "tests/ui/UiFixture.h"
#include "ui/cEdit.h"

using namespace trellis;

namespace {

/// A field of the classic theme over (100, 379, 220, 400): its text starts at 104 and has room for 112.
class EditOf : public Ui {
protected:
    cEdit* Text(const char* text) {
        Value = text;
        return Add(Root, new cEdit(Root, &Value, "", 0, 0, 0, true, true));
    }
    /// Edit mode as in "ab[cd|]ef": the caret, and a selection with it at one end.
    void Enter(const std::string& state) {
        E->OnTabStop();
        E->m_Buffer = "";
        E->m_SelStart = E->m_SelLen = 0;
        for (const char c : state) {
            (c == '['   ? E->m_SelStart
             : c == ']' ? E->m_SelLen
             : c == '|' ? E->m_Caret
                        : Ignored) = E->m_Buffer.Length();
            if (!std::strchr("[]|", c)) {
                E->m_Buffer.Append(c);
            }
        }
        E->m_SelLen -= E->m_SelStart;
    }
    std::string State() const {
        std::string state = E->m_Buffer.Text();
        const int end = E->m_SelStart + E->m_SelLen;
        EXPECT_TRUE(E->m_SelLen > 0 ? E->m_Caret == E->m_SelStart || E->m_Caret == end : E->m_SelStart == 0);
        if (E->m_SelLen == 0) {
            return state.insert(size_t(E->m_Caret), "|");
        }
        state.insert(size_t(end), E->m_Caret == end ? "|]" : "]");
        return state.insert(size_t(E->m_SelStart), E->m_Caret == end ? "[" : "[|");
    }
    /// Keys as in "Left Shift+End Control+V", and 'x for a character.
    void Keys(const std::string& keys) {
        for (size_t at = 0; at < keys.size();) {
            const size_t end = std::min(keys.find(' ', at), keys.size());
            std::string key = keys.substr(at, end - at);
            at = end + 1;
            int held = -1;
            if (const size_t plus = key.find('+'); plus != std::string::npos) {
                Down(held = cInput::ToCode(key.substr(0, plus).c_str()));
                key = key.substr(plus + 1);
            }
            const int code = cInput::ToCode(key.c_str());
            if (key[0] == '\'') {
                Type(key.c_str() + 1);
            } else if (key == "Wheel") {
                Wheel(1);
            } else {
                ASSERT_NE(code, -1) << key;
                Press(code);
            }
            if (held != -1) {
                Up(held);
            }
        }
    }

    UiRoot* Root = NewRoot(&Classic);
    cEdit* E = nullptr;
    cStr Value;
    int Ignored = 0;
};

} // namespace

TEST_F(EditOf, KeyTable) {
    // State, keys, state then; and the clipboard where it changes.
    cList<cStr> rows;
    cStr::Split("abc|d Left = ab|cd; |abcd Left = |abcd; [abcd|] Right = abcd|; a[|bc]d Right = ab|cd; "
                "abc|d Shift+Left = ab[|c]d; abc|d Shift+Left Shift+Left = a[|bc]d; a[|bc]d Shift+Right = ab[|c]d; "
                "ab[|c]d Shift+Right = abc|d; abc|d Shift+Right Shift+Right = abc[d|]; "
                "a[bc|]d Shift+Left = a[b|]cd; a[bc|]d Home = |abcd; a[bc|]d End = abcd|; "
                "abc|d Shift+Home = [|abc]d; a[|bc]d Shift+End = abc[d|]; ab[cd|]e Shift+Home = [|ab]cde; "
                "a|bcd Control+A = [abcd|]; a[bc|]d A C X V Z = a[bc|]d; abc|d 'XY = abcXY|d; a[bc|]d 'X = aX|d; "
                "abc|d BackSpace = ab|d; |abcd BackSpace Control+Z = |abcd; a[|bc]d BackSpace = a|d; "
                "abc|d Delete = abc|; abcd| Delete Control+Z = abcd|; a[bc|]d Delete = a|d; "
                "a[bc|]d Control+C = a[bc|]d bc; abc|d Control+C = abc|d; a[bc|]d Control+X = a|d bc; "
                "abc|d Control+X Control+Z = abc|d; abc|d Control+V = abcPA|d; a[bc|]d Control+V = aPA|d; "
                "a[bc|]d Control+V Control+Z = a[bc|]d; a|bcd 'X Delete Control+Z = aX|bcd; "
                "a|bcd 'XY Control+Z Control+Z Control+Z = a|bcd; a|bcd Insert F1 Space = a|bcd",
                &rows, ";");
    E = Text("abcd");
    for (const cStr& text : rows) {
        SCOPED_TRACE(text.Text());
        const std::string row = text.Text() + (text[0] == ' ');
        const size_t keys = row.find(' ') + 1, then = row.find(" = ") + 3,
                     clip = std::min(row.find(' ', then), row.size());
        cIO::CopyToClipboard("PA");
        Enter(row.substr(0, keys - 1));
        Keys(row.substr(keys, then - 3 - keys));
        EXPECT_EQ(State(), row.substr(then, clip - then));
        cStr clipboard;
        cIO::CopyFromClipboard(&clipboard);
        EXPECT_EQ(clipboard, clip == row.size() ? "PA" : row.substr(clip + 1).c_str());
        Keys("Esc");
        EXPECT_EQ(E->m_Undo.Count(), 0);
    }
    EXPECT_EQ(Root->TakeMessages() + Value.Text(), "abcd") << "escaped from";
}

TEST_F(EditOf, EndsOfEditMode) {
    cList<cStr> rows;
    cStr::Split("Enter=8:a>b ;(A)=8:a>b ;Start=8:a>b ;Esc=;Wheel=8:a>b ;Up=8:a>b back ;LeftThumbUp=8:a>b back ;"
                "RightThumbUp=8:a>b back ;Tab=8:a>b tab ;Down=8:a>b tab ;LeftThumbDown=8:a>b tab ;"
                "RightThumbDown=8:a>b tab ",
                &rows, ";");
    for (const cStr& row : rows) {
        SCOPED_TRACE(row.Text());
        const int key = row.IndexOf("=");
        E = Text("a");
        E->OnTabStop();
        Keys("'b");
        if (row.IndexOf("RightThumb") == 0) { // while the left one is held, it does nothing
            s_Gamepad.IsDown[cInput::LeftThumbLeft - cInput::DpadUp] = true;
            Frame();
            Keys(std::string(row.Text(), size_t(key)));
            EXPECT_TRUE(cWidgets::IsCaptured(E));
            s_Gamepad = {};
            Frame();
        }
        Keys(std::string(row.Text(), size_t(key)));
        EXPECT_EQ(Root->TakeMessages(), row.Text() + key + 1);
        EXPECT_FALSE(cWidgets::IsCaptured());
        cWidgets::FreeWidget(E, false);
    }
    E = Text("a");
    E->OnTabStop();
    EXPECT_TRUE(E->OnButtonDown(cInput::Enter));
    E->OnTabStop();
    EXPECT_FALSE(E->OnButtonDown(cInput::Start)) << "goes on to others";
}

TEST_F(EditOf, Numbers) {
    const int min = 0, max = 10;
    const struct {
        int Value;
        const char* Typed;
        int Then;
        const char* Messages;
    } ints[] = {{3, "25", 10, "6:3>10 "}, {10, "25", 10, ""},     {3, "-4", 0, "6:3>0 "},
                {3, "abc", 3, ""},        {3, "7x", 7, "6:3>7 "}, {3, "", 3, ""}};
    for (const auto& row : ints) {
        SCOPED_TRACE(row.Typed);
        int value = row.Value;
        E = Add(Root, new cEdit(Root, &value, &min, &max, "", 0, 0, 0, true, true));
        Enter(std::string(row.Typed) + "|");
        Keys("Enter");
        EXPECT_EQ(value, row.Then);
        EXPECT_EQ(Root->TakeMessages(), row.Messages);
        EXPECT_EQ(E->m_Buffer, cStr::Format("%d", value));
        cWidgets::FreeWidget(E, false);
    }
    float value = 0.12345f;
    const float top = 2;
    E = Add(Root, new cEdit(Root, &value, nullptr, &top, "", 0, 0, 0, true, true));
    EXPECT_EQ(E->m_Buffer, "0.123");
    E->OnTabStop();
    Keys("Enter");
    EXPECT_EQ(Root->TakeMessages(), "7:0.12345>0.123 ") << "what is kept is what was seen";
    for (const char* typed : {"abc", "1e999"}) {
        Enter(std::string(typed) + "|");
        Keys("Enter");
        EXPECT_EQ(value, 0.123f);
    }
    Enter("2,5|");
    Keys("Enter");
    EXPECT_EQ(Root->TakeMessages(), "7:0.123>2 ");
    value = 3;
    E->Clamp();
    EXPECT_EQ(E->m_Buffer, "2.000");
    Enter("1|");
    E->Unbind();
    Keys("Enter");
    EXPECT_EQ(Root->TakeMessages(), "");
    EXPECT_EQ(value, 2);
}

TEST_F(EditOf, SiblingsPushEachOther) {
    int ends[] = {2, 8};
    auto* lower = Add(Root, new cEdit(Root, &ends[0], nullptr, nullptr, "", 0, 0, 0, true, true));
    auto* upper = Add(Root, new cEdit(Root, &ends[1], nullptr, nullptr, "", 0, -50, 0, true, true));
    lower->m_UpperSibling = upper;
    upper->m_LowerSibling = lower;
    const auto set = [](cEdit* edit, const char* text) {
        edit->m_Buffer = text;
        edit->SetValueFromBuffer();
    };
    set(lower, "8");
    EXPECT_EQ(ends[1], 9);
    set(upper, "5");
    EXPECT_EQ(ends[0], 4);
    set(lower, "2147483647");
    EXPECT_EQ(ends[1], 2147483647);
    float floats[] = {0, 1};
    lower->m_IntValue = upper->m_IntValue = nullptr;
    lower->m_FloatValue = &floats[0];
    upper->m_FloatValue = &floats[1];
    set(lower, "3");
    EXPECT_EQ(floats[1], 3 + 0.001f);
    set(upper, "1");
    EXPECT_EQ(floats[0], 1 - 0.001f);
    cWidgets::FreeWidget(upper, false);
    EXPECT_EQ(lower->m_UpperSibling, nullptr);
}

TEST_F(EditOf, ReadOnly) {
    E = Text("abcd");
    E->m_ReadOnly = true;
    Enter("a[bc|]d");
    Keys("'x BackSpace Delete Control+V Control+X Control+Z Left Shift+Left");
    EXPECT_EQ(State(), "a[|b]cd") << "but it can be selected";
    Keys("Esc");
    E->m_ReadOnly = false;
    E->m_LockOnEdit = true;
    Enter("a|bcd");
    EXPECT_FALSE(E->m_ReadOnly);
    Keys("'x");
    EXPECT_TRUE(E->m_ReadOnly);
    EXPECT_EQ(State(), "a|bcd");
}

TEST_F(EditOf, Mouse) {
    E = Text("abcdef");
    auto* other = Add(Root, new cEdit(Root, &Value, "Name", 100, -50, 0, true, true)); // its caption is left of 200
    Click(116, 390, cInput::RightButton);
    EXPECT_TRUE(Root->Focus == E && !cWidgets::IsCaptured());
    Click(185, 340);
    EXPECT_TRUE(Root->Focus == other && !cWidgets::IsCaptured()) << "the caption";
    Root->Active = false;
    Click(116, 390);
    EXPECT_TRUE(Root->Active && Root->Focus == E && cWidgets::IsCaptured(E));
    EXPECT_EQ(State(), "[abcdef|]");
    MoveTo(115, 390); // 11 points: nearer to the second edge than to the first
    Down(cInput::LeftButton);
    EXPECT_EQ(E->m_Caret, 2);
    EXPECT_FLOAT_EQ(E->m_CaretTime, cTimer::GetSystemTimeSec());
    MoveTo(131, 300); // 4.5 characters: of the two edges the earlier
    Keys("'x Esc End");
    EXPECT_EQ(State(), "ab[cd|]ef");
    MoveTo(50, 300);
    Up(cInput::LeftButton);
    MoveTo(131, 300);
    EXPECT_EQ(State(), "[|ab]cdef");
    EXPECT_FALSE(E->IsHot(false)) << "away from the mouse it covers nobody";
    DoubleClick(110, 390);
    EXPECT_EQ(State(), "a|bcdef") << "only without a selection";
    DoubleClick(110, 390);
    EXPECT_EQ(State(), "[abcdef|]");
    Keys("'z");
    Click(210, 340); // commits, and goes on
    EXPECT_EQ(Root->TakeMessages(), "8:abcdef>z ");
    EXPECT_TRUE(cWidgets::IsCaptured(other));
    Root->State = 0;
    Click(50, 50);
    EXPECT_FALSE(cWidgets::IsCaptured());
    Click(116, 390);
    EXPECT_FALSE(cWidgets::IsCaptured()) << "minimised";
}

TEST_F(EditOf, ScrollsToTheCaret) {
    E = Text("0123456789012345678901234"); // 150 points in 112
    E->OnTabStop();
    Frame();
    EXPECT_EQ(E->m_ScrollX, -38);
    EXPECT_EQ(E->ToCarriagePos(104), 6); // 38 points on: edges at 36 and 42
    EXPECT_EQ(E->ToCarriagePos(500), 25);
    E->m_Transform = cMat4::ScalingAt({104.0f, 390.0f}, {2.0f, 2.0f});
    EXPECT_EQ(E->ToCarriagePos(116), 7) << "grown about the text's start";
    for (int i = 0; i < 18; i++) {
        Keys("Left");
    }
    EXPECT_EQ(E->m_ScrollX, -38);
    Keys("Left");
    EXPECT_EQ(E->m_ScrollX, -36);
    Keys("Home");
    EXPECT_EQ(E->m_ScrollX, 0);
    E->m_Caret = 20;
    E->Scroll();
    EXPECT_EQ(E->m_ScrollX, -8) << "no farther than the caret needs";
    const cTheme::DrawArgs* drawn = Classic.Find(cTheme::Parts::Edit);
    ASSERT_TRUE(drawn && drawn->Toggled);
    EXPECT_EQ(drawn->TextRect, cRect(104, 379, 216, 400));
    Classic.Recording = false;
    const int before = AllocationCount();
    E->OnRender();
    EXPECT_EQ(AllocationCount(), before);
    Keys("Esc");
    EXPECT_EQ(E->m_ScrollX, 0);
}

TEST_F(EditOf, CharactersOfManyBytes) {
    E = Text("a\xC3\xA9\xF0\x9F\x98\x80z"); // of 1, 2, 4, 1 bytes
    E->OnTabStop();
    EXPECT_EQ(E->m_SelLen, 4);
    Keys("Left Left Shift+Right");
    Frame();
    const cTheme::DrawArgs* drawn = Classic.Find(cTheme::Parts::Edit);
    EXPECT_TRUE(drawn->Caret == 4 && drawn->SelStart == 2 && drawn->SelLen == 2) << "a surrogate pair";
    Keys("Delete");
    EXPECT_EQ(E->m_Buffer, "a\xC3\xA9z");
    for (const int c : {0x1F600, 0x20AC, 0xD800, 0x110000, 8}) { // the last three are none
        E->OnChar(c, -1);
    }
    EXPECT_EQ(E->m_Buffer, "a\xC3\xA9\xF0\x9F\x98\x80\xE2\x82\xACz");
    EXPECT_EQ(E->m_Caret, 4);
    cIO::CopyToClipboard("p\n\xE2\x82\xACq\xFF"); // without a glyph
    Keys("Control+V");
    EXPECT_EQ(E->m_Buffer, "a\xC3\xA9\xF0\x9F\x98\x80\xE2\x82\xACpqz");
    Keys("Esc");

    Value = "ab\xE2\x82 c\xF0"; // a character cut short, and another
    E->OnTabStop();
    EXPECT_EQ(E->m_SelLen, 7);
    EXPECT_EQ(E->ToCarriagePos(500), 2) << "nothing behind it is shown";
    Keys("BackSpace");
    Keys("Esc");
    Enter("\xC3x|\xA9");
    Keys("BackSpace"); // the two halves meet
    EXPECT_EQ(E->m_Caret, 1);
    Keys("BackSpace");
    EXPECT_EQ(E->m_Buffer, "");
}

TEST_F(EditOf, FreedByItsOwnMessage) {
    static cEdit* s_Edit;
    for (const char* key : {"Enter", "Tab", "Wheel", "Esc"}) {
        s_Edit = E = Text("a");
        Root->OnMessage = [] { cWidgets::FreeWidget(std::exchange(s_Edit, nullptr), false); };
        E->OnTabStop();
        Keys("'b");
        const bool frees = std::string(key) != "Esc";
        Keys(key);
        EXPECT_EQ(Root->TakeMessages(), frees ? "8:a>b " : "");
        EXPECT_EQ(s_Edit == nullptr, frees);
        EXPECT_FALSE(cWidgets::IsCaptured());
    }
    s_Edit->OnTabStop();
    cWidgets::FreeWidget(s_Edit, false);
    EXPECT_FALSE(cWidgets::IsCaptured());
}
