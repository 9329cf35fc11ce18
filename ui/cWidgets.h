// The manager of all widgets: layers from rear to front, events with capture, the hot widget, cursor and tool tip.
//
//     id = layer << 16 | slot         layers 0 (rear) to 32; a freed slot is empty until it is used again
//
//     layer 0: splines under edit   1: manipulators   3: forms   4: drop-down lists, pop-ups and the tool tip
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cVec2.h"

namespace trellis {

class cTheme;
class cWidget;

/// Owns the widgets. An id is good until its widget is freed; a later one may get the same. Unknown ids, null pointers
/// and layers out of range are ignored. While events are handed out or widgets are drawn, what is freed with
/// `deferrable` and what is brought to the front waits until the end, so that a widget may close itself in any call.
/// Belongs to the rendering thread.
class cWidgets {
public:
    static constexpr int LayerCount = 33;
    static constexpr int ToolTipLayer = 4;

    static int AddWidget(cWidget* widget, int layer); ///< Takes over the widget; it comes to the front. -1: refused.
    static void FreeWidget(int id, bool deferrable);
    static void FreeWidget(const cWidget* widget, bool deferrable);
    static void FreeLayer(int layer);
    static void FreeAll();
    static void FreeDead(); ///< Deletes all that answer `IsDead`.

    static cWidget* GetWidget(int id); ///< Null when there is none.
    static int GetWidgetID(const cWidget* widget);
    static int GetWidgetLayer(const cWidget* widget);
    // Layer 0's for a layer out of range.
    static const cList<cWidget*>& GetLayer(int layer);
    static const cList<int>& GetLayerFreeSlots(int layer);
    static const cList<int>& GetLayerOrder(int layer); ///< Slots, the rear first.

    static void BringToFront(int id); ///< Of its own layer.
    static void BringToFront(const cWidget* widget);

    /// The captured widget sees every event first. Nothing happens while another is captured.
    static void SetCapture(); ///< The widget that is being called.
    static void SetCapture(int id);
    static void SetCapture(const cWidget* widget);
    static void ReleaseCapture();
    static bool IsCaptured();
    static bool IsCaptured(int id);
    static bool IsCaptured(const cWidget* widget);

    static void HandleInputEvents(); ///< Once a frame, ahead of the drawing.
    static void Render(int layer);   ///< -1 for all. The tool tip shows when its layer is drawn by itself.

private:
    struct CriticalSection;

    static bool IsLayer(int layer) { return layer >= 0 && layer < LayerCount; }
    static void Remove(int layer, int slot);
    static void FindHot(int captured, int* hot);
    static void UpdateToolTip(int captured, int hot);
    static void ApplyWithinCriticalSectionQueries();
    template <class F> static void ForEachFromFront(F call);

    static inline constinit cList<cWidget*> s_Layers[LayerCount];
    static inline constinit cList<int> s_Order[LayerCount];
    static inline constinit cList<int> s_FreeSlots[LayerCount];
    static inline constinit cList<int> s_Walks; // slots of the layers that are being walked
    static inline constinit cList<int> s_ToFree;
    static inline constinit cList<int> s_BringToFront;
    static inline bool s_CriticalSection = false;
    static inline int m_idCurProcessing = -1;
    static inline int m_idSendTo = -1; // the capture
    static inline float s_ToolTipLagSec = 0.5f;
    static inline const cWidget* s_ToolTipBlock = nullptr; // compared, never called
    static inline constinit cStr s_ToolTipStr;
    static inline cVec2 s_ToolTipPos{0, 0};
    static inline const cTheme* s_ToolTipTheme = nullptr;
};

} // namespace trellis
