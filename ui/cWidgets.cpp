#include "ui/cWidgets.h"

#include "foundation/cTimer.h"
#include "ui/cTheme.h"
#include "ui/cWidget.h"
#include "view/cInput.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace trellis {

namespace {

constexpr int MakeID(int layer, int slot) {
    return layer << 16 | slot;
}
constexpr int LayerOf(int id) {
    return id >> 16;
}
constexpr int SlotOf(int id) {
    return id & 0xFFFF;
}

} // namespace

/// Spans a walk over the lists. The outermost one carries out what was postponed.
struct cWidgets::CriticalSection {
    CriticalSection() { s_CriticalSection = true; }
    ~CriticalSection() {
        s_CriticalSection = Outer;
        if (!Outer) {
            ApplyWithinCriticalSectionQueries();
        }
    }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    const bool Outer = s_CriticalSection;
};

/// Calls `call(id, widget)` for every widget, layers and orders from the front. True ends the walk. Nobody is called
/// twice, however the lists change: each layer is walked as it stood when its turn came.
template <class F> void cWidgets::ForEachFromFront(F call) {
    for (int layer = LayerCount - 1; layer >= 0; layer--) {
        const int start = s_Walks.Count(); // walks within walks stand behind each other
        s_Walks.AddRange(s_Order[layer].Data(), s_Order[layer].Count());
        bool isDone = false;
        for (int i = s_Walks.Count() - 1; i >= start && !isDone; i--) {
            const int id = MakeID(layer, s_Walks[i]);
            cWidget* widget = GetWidget(id);
            isDone = widget && call(id, widget);
        }
        s_Walks.SetCount(start);
        if (isDone) {
            return;
        }
    }
}

int cWidgets::AddWidget(cWidget* widget, int layer) {
    constexpr int MaxSlots = 1 << 16;
    if (!widget || !IsLayer(layer)) {
        return -1;
    }
    cList<int>& freeSlots = s_FreeSlots[layer];
    int slot;
    if (!freeSlots.IsEmpty()) {
        slot = freeSlots[freeSlots.Count() - 1];
        freeSlots.SetCount(freeSlots.Count() - 1);
        s_Layers[layer][slot] = widget;
    } else if (s_Layers[layer].Count() < MaxSlots) {
        slot = s_Layers[layer].Add(widget);
    } else {
        return -1;
    }
    s_Order[layer].Add(slot);
    return MakeID(layer, slot);
}

/// Empties a slot and deletes what was in it. Its destructor finds the widget gone from the lists, and what it adds
/// does not get this slot.
void cWidgets::Remove(int layer, int slot) {
    cWidget* widget = std::exchange(s_Layers[layer][slot], nullptr);
    const int at = s_Order[layer].IndexOf(slot);
    if (at != -1) {
        s_Order[layer].RemoveAt(at);
    }
    if (s_ToolTipBlock == widget) {
        s_ToolTipBlock = nullptr;
    }
    s_ToolTipStr.Clear(); // it may have been this widget's, and its theme's; the next frame asks again
    delete widget;
    s_FreeSlots[layer].Add(slot);
}

void cWidgets::FreeWidget(int id, bool deferrable) {
    if (deferrable && s_CriticalSection) {
        s_ToFree.Add(id);
        return;
    }
    if (GetWidget(id)) {
        if (m_idSendTo == id) {
            m_idSendTo = -1;
        }
        Remove(LayerOf(id), SlotOf(id));
    }
}

void cWidgets::FreeWidget(const cWidget* widget, bool deferrable) {
    const int id = GetWidgetID(widget);
    if (id != -1) {
        FreeWidget(id, deferrable);
    }
}

void cWidgets::FreeLayer(int layer) {
    if (!IsLayer(layer)) {
        return;
    }
    for (int slot = 0; slot < s_Layers[layer].Count(); slot++) {
        if (s_Layers[layer][slot]) {
            FreeWidget(MakeID(layer, slot), true);
        }
    }
    s_Order[layer].Clear();
}

void cWidgets::FreeAll() {
    for (int layer = 0; layer < LayerCount; layer++) {
        FreeLayer(layer);
    }
}

void cWidgets::FreeDead() {
    for (int layer = 0; layer < LayerCount; layer++) {
        for (int slot = 0; slot < s_Layers[layer].Count(); slot++) {
            cWidget* widget = s_Layers[layer][slot];
            if (widget && widget->IsDead() && s_Layers[layer][slot] == widget) {
                Remove(layer, slot);
            }
        }
    }
}

cWidget* cWidgets::GetWidget(int id) {
    if (id < 0 || !IsLayer(LayerOf(id)) || SlotOf(id) >= s_Layers[LayerOf(id)].Count()) {
        return nullptr;
    }
    return s_Layers[LayerOf(id)][SlotOf(id)];
}

int cWidgets::GetWidgetID(const cWidget* widget) {
    for (int layer = 0; widget && layer < LayerCount; layer++) {
        const int slot = s_Layers[layer].IndexOf(const_cast<cWidget*>(widget));
        if (slot != -1) {
            return MakeID(layer, slot);
        }
    }
    return -1;
}

int cWidgets::GetWidgetLayer(const cWidget* widget) {
    const int id = GetWidgetID(widget);
    return id == -1 ? -1 : LayerOf(id);
}

const cList<cWidget*>& cWidgets::GetLayer(int layer) {
    return s_Layers[IsLayer(layer) ? layer : 0];
}

const cList<int>& cWidgets::GetLayerFreeSlots(int layer) {
    return s_FreeSlots[IsLayer(layer) ? layer : 0];
}

const cList<int>& cWidgets::GetLayerOrder(int layer) {
    return s_Order[IsLayer(layer) ? layer : 0];
}

void cWidgets::BringToFront(int id) {
    if (id == -1) {
        return;
    }
    if (s_CriticalSection) {
        s_BringToFront.Add(id);
        return;
    }
    cWidget* widget = GetWidget(id);
    if (!widget) {
        return;
    }
    cList<int>& order = s_Order[LayerOf(id)];
    const int at = order.IndexOf(SlotOf(id));
    if (at != -1) {
        order.RemoveAt(at);
        order.Add(SlotOf(id));
    }
    widget->OnBringToFront();
}

void cWidgets::BringToFront(const cWidget* widget) {
    BringToFront(GetWidgetID(widget));
}

// ---- Capture

void cWidgets::SetCapture() {
    SetCapture(m_idCurProcessing);
}

void cWidgets::SetCapture(int id) {
    if (m_idSendTo == -1) {
        m_idSendTo = id;
    }
}

void cWidgets::SetCapture(const cWidget* widget) {
    SetCapture(GetWidgetID(widget));
}

void cWidgets::ReleaseCapture() {
    m_idSendTo = -1;
}

bool cWidgets::IsCaptured() {
    return m_idSendTo != -1;
}

bool cWidgets::IsCaptured(int id) {
    return id != -1 && m_idSendTo == id;
}

bool cWidgets::IsCaptured(const cWidget* widget) {
    return m_idSendTo != -1 && GetWidget(m_idSendTo) == widget; // a stale id is nobody's, and null's
}

// ---- Frames

void cWidgets::FindHot(int captured, int* hot) {
    bool covered = false;
    *hot = -1;
    if (cWidget* widget = GetWidget(captured)) {
        covered = widget->IsHot(false);
        *hot = covered ? captured : -1;
    }
    ForEachFromFront([&](int id, cWidget* widget) {
        if (id != captured && widget->IsHot(covered) && !covered) { // every one is asked, and asked once
            covered = true;
            *hot = id;
        }
        return false;
    });
}

void cWidgets::UpdateToolTip(int captured, int hot) {
    const cWidget* hotWidget = GetWidget(hot);
    if (const cWidget* widget = GetWidget(captured)) {
        s_ToolTipBlock = widget;
    }
    if (s_ToolTipBlock != hotWidget) {
        s_ToolTipBlock = nullptr; // the mouse has left what was pressed
    }

    cStr text;
    const cTheme* theme = nullptr;
    cWidget* asked = GetWidget(hot);
    const bool hasTip = asked && asked->OnSetToolTip(&text, &theme) && s_ToolTipBlock != asked;
    const float before = s_ToolTipLagSec;
    const float frame = cTimer::GetSystemFrameTimeSec();
    s_ToolTipLagSec = std::clamp(hasTip ? before - frame : before + frame, 0.0f, cTheme::ToolTipDelaySec);
    if (s_ToolTipLagSec != 0) {
        s_ToolTipStr.Clear();
        return;
    }
    if (before != 0) {
        s_ToolTipPos = cInput::GetMousePositionOrient(); // it appears where the mouse is now, and does not follow it
    }
    s_ToolTipStr = text;
    s_ToolTipTheme = theme;
}

void cWidgets::HandleInputEvents() {
    FreeDead();
    const int captured = m_idSendTo;
    int hot;
    FindHot(captured, &hot);
    cInput::Cursor::Enum cursor = cInput::Cursor::Default;
    cWidget* hotWidget = GetWidget(hot);
    if (!hotWidget || !hotWidget->OnSetCursor(&cursor)) {
        cursor = cInput::Cursor::Default;
    }
    cInput::SetCursor(cursor);
    UpdateToolTip(captured, hot);

    const CriticalSection section;
    while (const std::unique_ptr<cInput::Event> event{cInput::GetEvent()}) {
        const cInput::Event& e = *event;
        const int receiver = m_idSendTo; // it may change from event to event
        // The captured widget first, and then all others, until one consumes it.
        const auto dispatch = [receiver](auto call) {
            cWidget* widget = GetWidget(receiver);
            if (widget && call(widget)) {
                return;
            }
            ForEachFromFront([&](int id, cWidget* other) {
                if (id == receiver) {
                    return false;
                }
                m_idCurProcessing = id;
                return call(other);
            });
        };
        const auto broadcast = [](auto call) {
            ForEachFromFront([&](int, cWidget* widget) {
                call(widget);
                return false;
            });
        };
        switch (e.Type) {
        case cInput::ButtonEvent:
            dispatch([&e](cWidget* w) { return e.Down ? w->OnButtonDown(e.Code) : w->OnButtonUp(e.Code); });
            break;
        case cInput::MouseMoveEvent:
            dispatch([](cWidget* w) { return w->OnMouseMove(); });
            break;
        case cInput::CharEvent:
            dispatch([&e](cWidget* w) { return w->OnChar(e.Char, e.Code); });
            break;
        case cInput::TouchEvent: {
            constexpr float Still = 0.001f;
            const bool moved = std::fabs(e.Delta.x) > Still || std::fabs(e.Delta.y) > Still;
            broadcast([&e, moved](cWidget* w) {
                moved ? w->OnMultitouchMove(e.Id) : e.Down ? w->OnMultitouchDown(e.Id) : w->OnMultitouchUp(e.Id);
            });
            break;
        }
        case cInput::GestureEvent:
            broadcast([&e](cWidget* w) {
                if (e.Stage == cInput::GestureDown) {
                    w->OnGestureDown(e.Gesture, e.Position);
                } else if (e.Stage == cInput::GestureMove) {
                    w->OnGestureMove(e.Position, e.Delta, e.Values[0], e.Values[1]);
                } else if (e.Stage == cInput::GestureUp) {
                    w->OnGestureUp();
                }
            });
            break;
        }
    }
}

void cWidgets::Render(int layer) {
    {
        const CriticalSection section;
        for (int i = 0; i < LayerCount; i++) {
            for (int k = 0; (layer == -1 || layer == i) && k < s_Order[i].Count(); k++) {
                if (cWidget* widget = GetWidget(MakeID(i, s_Order[i][k]))) {
                    widget->OnRender();
                }
            }
        }
    }
    if (layer == ToolTipLayer && !s_ToolTipStr.IsEmpty() && s_ToolTipTheme) {
        cTheme::DrawArgs args;
        args.Part = cTheme::Parts::ToolTip;
        args.Text = s_ToolTipStr;
        args.Position = s_ToolTipPos;
        args.Align = cRect::LeftBottom;
        s_ToolTipTheme->Draw(args);
    }
}

void cWidgets::ApplyWithinCriticalSectionQueries() {
    for (int i = 0; i < s_ToFree.Count(); i++) {
        FreeWidget(s_ToFree[i], false);
    }
    for (int i = 0; i < s_BringToFront.Count(); i++) {
        BringToFront(s_BringToFront[i]);
    }
    s_ToFree.Clear();
    s_BringToFront.Clear();
}

} // namespace trellis
