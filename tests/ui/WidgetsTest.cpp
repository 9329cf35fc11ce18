#include "foundation/cTimer.h"
#include "tests/foundation/FakeClock.h"
#include "ui/cTheme.h"
#include "ui/cWidget.h"
#include "ui/cWidgets.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

using namespace trellis;

namespace {

std::string s_Log; // "a:down93 b:down93 ..."

/// Tells what it is called with, and does what a test has given it.
class Probe : public cWidget {
public:
    explicit Probe(char name) : m_Name(name) { s_Alive++; }
    ~Probe() override { s_Alive--; }

    bool OnButtonDown(int code) override { return Tell("down" + std::to_string(code)); }
    bool OnButtonUp(int code) override { return Tell("up" + std::to_string(code)); }
    bool OnMouseMove() override { return Tell("move"); }
    bool OnChar(int c, int code) override { return Tell("char" + std::to_string(c) + "," + std::to_string(code)); }
    void OnMultitouchDown(int id) override { Tell("tdown" + std::to_string(id)); }
    void OnMultitouchUp(int id) override { Tell("tup" + std::to_string(id)); }
    void OnMultitouchMove(int id) override { Tell("tmove" + std::to_string(id)); }
    void OnGestureDown(cGestureType::Enum type, const cVec2&) override { Tell("gdown" + std::to_string(type)); }
    void OnGestureMove(const cVec2&, const cVec2&, float scale, float) override {
        Tell("gmove" + std::to_string(int(scale)));
    }
    void OnGestureUp() override { Tell("gup"); }
    void OnRender() override { Tell("render"); }
    bool IsDead() override { return Dead; }
    bool IsHot(bool covered) override {
        HotCalls += covered ? "c" : "-";
        if (ActInHot) {
            ActInHot();
        }
        return Hot;
    }
    bool OnSetCursor(cInput::Cursor::Enum* cursor) override {
        *cursor = cInput::Cursor::Hand;
        return Hot;
    }
    bool OnSetToolTip(cStr* text, const cTheme** theme) override {
        *text = Tip;
        *theme = TipTheme;
        return !Tip.IsEmpty();
    }
    void OnBringToFront() override { s_Log += std::string(1, m_Name) + ":front "; }

    bool Dead = false, Hot = false, Consumes = false;
    std::string HotCalls;
    cStr Tip;
    const cTheme* TipTheme = nullptr;
    std::function<void()> Act, ActInHot; ///< In any event or drawing; when asked whether it is hot.
    static inline int s_Alive = 0;

private:
    bool Tell(const std::string& what) {
        s_Log += std::string(1, m_Name) + ":" + what + " ";
        const bool consumes = Consumes; // it may free this widget at once
        if (const auto act = Act) {
            act();
        }
        return consumes;
    }
    char m_Name;
};

class TipTheme : public cTheme {
public:
    void Draw(const DrawArgs& args) const override {
        Drawn +=
            cStr::Format("%d %s %g,%g ", args.Part, args.Text.Text(), double(args.Position.x), double(args.Position.y))
                .Text();
    }
    mutable std::string Drawn;
};

class Widgets : public testing::Test {
protected:
    ~Widgets() override {
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll();
        cInput::FreeEvents();
        EXPECT_EQ(Probe::s_Alive, 0);
    }

    /// Adds a widget; its id is in `Ids`.
    Probe* Add(char name, int layer) {
        auto* probe = new Probe(name);
        Ids[name] = cWidgets::AddWidget(probe, layer);
        return probe;
    }

    static void Push(int type, int code, bool down = true) {
        auto* e = new cInput::Event;
        e->Type = type;
        e->Code = code;
        e->Down = down;
        cInput::AddEvent(e);
    }
    /// The calls of one frame.
    static std::string Frame() {
        s_Log.clear();
        cWidgets::HandleInputEvents();
        return std::exchange(s_Log, {});
    }
    static std::string Press(int code = 93, bool down = true) {
        Push(cInput::ButtonEvent, code, down);
        return Frame();
    }

    std::map<char, int> Ids;
};

} // namespace

TEST_F(Widgets, IdsSlotsAndOrder) {
    Probe* a = Add('a', 3);
    Add('b', 3);
    Add('c', 3);
    EXPECT_EQ(Ids['b'], (3 << 16) + 1);
    EXPECT_EQ(cWidgets::GetWidgetID(a), Ids['a']);
    EXPECT_EQ(cWidgets::GetWidgetLayer(a), 3);
    cWidgets::FreeWidget(Ids['b'], true);
    EXPECT_EQ(cWidgets::GetWidget(Ids['b']), nullptr);
    EXPECT_EQ(cWidgets::GetLayer(3).Count(), 3) << "slots stay";
    EXPECT_EQ(cWidgets::GetLayerFreeSlots(3).Count(), 1);
    Add('d', 3);
    EXPECT_EQ(Ids['d'], Ids['b']) << "the slot is used again";
    EXPECT_EQ(Press(), "d:down93 c:down93 a:down93 ") << "but the widget is in front";
    cWidgets::BringToFront(a);
    EXPECT_EQ(Press(), "a:down93 d:down93 c:down93 ");
    Add('x', 0);
    Add('y', 32);
    EXPECT_EQ(Press(), "y:down93 a:down93 d:down93 c:down93 x:down93 ");
    s_Log.clear();
    cWidgets::Render(-1);
    EXPECT_EQ(s_Log, "x:render c:render d:render a:render y:render ");
    s_Log.clear();
    cWidgets::Render(3);
    EXPECT_EQ(s_Log, "c:render d:render a:render ");

    const Probe loose('l');
    for (int layer : {-1, 33}) {
        auto* refused = new Probe('r');
        EXPECT_EQ(cWidgets::AddWidget(refused, layer), -1);
        delete refused;
        EXPECT_EQ(&cWidgets::GetLayer(layer), &cWidgets::GetLayer(0));
        EXPECT_EQ(&cWidgets::GetLayerOrder(layer), &cWidgets::GetLayerOrder(0));
    }
    EXPECT_EQ(cWidgets::AddWidget(nullptr, 3), -1);
    for (int id : {-1, 33 << 16, (3 << 16) + 100, (2 << 16)}) {
        EXPECT_EQ(cWidgets::GetWidget(id), nullptr);
        cWidgets::FreeWidget(id, true);
        cWidgets::BringToFront(id);
    }
    EXPECT_EQ(cWidgets::GetWidgetID(&loose), -1);
    cWidgets::FreeWidget(&loose, true);
    EXPECT_EQ(Probe::s_Alive, 6);
}

TEST_F(Widgets, EventsGoToTheCapturedThenFromTheFront) {
    Probe* a = Add('a', 1);
    Probe* b = Add('b', 2);
    Add('c', 3);
    b->Consumes = true;
    EXPECT_EQ(Press(5, false), "c:up5 b:up5 ");
    cWidgets::SetCapture(a);
    EXPECT_TRUE(cWidgets::IsCaptured());
    EXPECT_TRUE(cWidgets::IsCaptured(a));
    EXPECT_FALSE(cWidgets::IsCaptured(b));
    EXPECT_FALSE(cWidgets::IsCaptured(-1));
    cWidgets::SetCapture(b);
    EXPECT_TRUE(cWidgets::IsCaptured(Ids['a'])) << "the first one keeps it";
    EXPECT_EQ(Press(5, false), "a:up5 c:up5 b:up5 ") << "nobody is called twice";
    Push(cInput::MouseMoveEvent, -1);
    Push(cInput::CharEvent, 38);
    EXPECT_EQ(Frame(), "a:move c:move b:move a:char-1,38 c:char-1,38 b:char-1,38 ");
    a->Consumes = true;
    EXPECT_EQ(Press(), "a:down93 ");

    // Released in an event: gone for the next one, but not for this one.
    a->Consumes = false;
    a->Act = [] { cWidgets::ReleaseCapture(); };
    Push(cInput::ButtonEvent, 1);
    Push(cInput::ButtonEvent, 2);
    EXPECT_EQ(Frame(), "a:down1 c:down1 b:down1 c:down2 b:down2 ");

    // The widget that is being called takes it.
    b->Act = [] { cWidgets::SetCapture(); };
    Press();
    EXPECT_TRUE(cWidgets::IsCaptured(b));
    cWidgets::FreeWidget(b, false);
    EXPECT_FALSE(cWidgets::IsCaptured()) << "freed with its capture";
    EXPECT_FALSE(cWidgets::IsCaptured(static_cast<cWidget*>(nullptr)));
}

TEST_F(Widgets, TouchesAndGesturesGoToAll) {
    Probe* a = Add('a', 1);
    Add('b', 2);
    a->Consumes = true;
    cWidgets::SetCapture(a);
    const auto touch = [](bool down, float dx) {
        auto* e = new cInput::Event;
        e->Type = cInput::TouchEvent;
        e->Id = 7;
        e->Down = down;
        e->Delta = {dx, 0};
        cInput::AddEvent(e);
    };
    touch(true, 0);
    touch(true, 0.001f);
    touch(true, -0.002f);
    touch(false, 0);
    EXPECT_EQ(Frame(), "b:tdown7 a:tdown7 b:tdown7 a:tdown7 b:tmove7 a:tmove7 b:tup7 a:tup7 ");
    for (int stage = 0; stage <= 4; stage++) {
        auto* e = new cInput::Event;
        e->Type = cInput::GestureEvent;
        e->Stage = stage;
        e->Gesture = cGestureType::Pinch;
        e->Values[0] = 3;
        cInput::AddEvent(e);
    }
    EXPECT_EQ(Frame(), "b:gdown2 a:gdown2 b:gmove3 a:gmove3 b:gup a:gup ");
}

TEST_F(Widgets, WhatIsFreedInACallWaits) {
    Probe* a = Add('a', 1);
    Probe* b = Add('b', 2);
    b->Act = [&] {
        cWidgets::FreeWidget(b, true);
        cWidgets::FreeWidget(a, true);
        cWidgets::BringToFront(a);
    };
    EXPECT_EQ(Press(), "b:down93 a:down93 ");
    EXPECT_EQ(Probe::s_Alive, 0);

    Probe* c = Add('c', 1);
    Probe* d = Add('d', 1);
    c->Act = [&] { cWidgets::BringToFront(c); };
    s_Log.clear();
    cWidgets::Render(1);
    EXPECT_EQ(s_Log, "c:render d:render c:front ");
    EXPECT_EQ(cWidgets::GetLayerOrder(1)[1], Ids['c'] & 0xFFFF);

    // At once: the others are still reached, and nothing is touched that has gone.
    c->Act = nullptr;
    Add('e', 1);
    d->Act = [&] {
        cWidgets::FreeWidget(Ids['e'], false);
        cWidgets::FreeWidget(Ids['d'], false);
    };
    Press();
    EXPECT_EQ(Probe::s_Alive, 1);
    cWidgets::SetCapture(c);
    c->Act = [&] { cWidgets::FreeWidget(Ids['c'], false); };
    EXPECT_EQ(Press(), "c:down93 ");
    EXPECT_EQ(Probe::s_Alive, 0);
    EXPECT_FALSE(cWidgets::IsCaptured());
}

TEST_F(Widgets, NobodyIsCalledTwiceWhenTheOrderChanges) {
    Add('a', 3);
    Probe* b = Add('b', 3);
    Probe* c = Add('c', 3);
    c->Act = [&] { cWidgets::FreeWidget(Ids['a'], false); };
    EXPECT_EQ(Press(), "c:down93 b:down93 ");
    c->Act = nullptr;
    c->Hot = true;
    c->HotCalls = b->HotCalls = "";
    c->ActInHot = [&] { cWidgets::BringToFront(b); };
    Frame();
    EXPECT_EQ(c->HotCalls + b->HotCalls, "-c");
}

TEST_F(Widgets, TheDeadGoAheadOfTheEvents) {
    Probe* a = Add('a', 1);
    Add('b', 1);
    a->Dead = true;
    cWidgets::SetCapture(a);
    EXPECT_EQ(Press(), "b:down93 ");
    EXPECT_TRUE(cWidgets::IsCaptured()) << "a dead widget must have released it";
    EXPECT_TRUE(cWidgets::IsCaptured(static_cast<cWidget*>(nullptr))) << "a stale id is null's";
    EXPECT_EQ(Press(), "b:down93 ");
}

TEST_F(Widgets, EveryoneIsAskedOnceWhetherItIsHot) {
    Probe* a = Add('a', 1);
    Probe* b = Add('b', 2);
    Probe* c = Add('c', 3);
    Frame();
    EXPECT_EQ(cInput::GetCursor(), cInput::Cursor::Default);
    a->Hot = b->Hot = true;
    Frame();
    EXPECT_EQ(a->HotCalls + b->HotCalls + c->HotCalls, "-c----");
    EXPECT_EQ(cInput::GetCursor(), cInput::Cursor::Hand);
    cWidgets::SetCapture(a); // the captured one is asked first
    a->HotCalls = b->HotCalls = c->HotCalls = "";
    Frame();
    EXPECT_EQ(a->HotCalls + b->HotCalls + c->HotCalls, "-cc");
}

TEST_F(Widgets, TipsComeAfterALag) {
    cFakeClock clock;
    struct Restore {
        ~Restore() { cTimer::Reset(); } // other tests have the real clock
    } restore;
    const auto frame = [&clock](float seconds) {
        clock.Advance((long long)(seconds * 1e6f));
        cTimer::Acquire();
        cWidgets::HandleInputEvents();
    };
    TipTheme theme;
    const auto drawn = [&theme] {
        cWidgets::Render(-1);
        EXPECT_EQ(theme.Drawn, "") << "only when its layer is drawn by itself";
        cWidgets::Render(cWidgets::ToolTipLayer);
        return std::exchange(theme.Drawn, {});
    };
    Probe* a = Add('a', 3);
    cTimer::Reset();
    frame(1);
    a->Hot = true;
    a->Tip = "hello";
    a->TipTheme = &theme;
    frame(0.3f);
    EXPECT_EQ(drawn(), "");
    frame(0.3f);
    EXPECT_EQ(drawn(), "38 hello 0,0 ");
    a->Tip = "other";
    frame(0.01f);
    EXPECT_EQ(drawn(), "38 other 0,0 ");

    cWidgets::SetCapture(a); // a press hides it until the mouse has left
    frame(0.1f);
    EXPECT_EQ(drawn(), "");
    cWidgets::ReleaseCapture();
    frame(1);
    EXPECT_EQ(drawn(), "");
    a->Hot = false;
    frame(1);
    a->Hot = true;
    frame(0.3f);
    EXPECT_EQ(drawn(), "");
    frame(0.3f);
    EXPECT_EQ(drawn(), "38 other 0,0 ");
}
