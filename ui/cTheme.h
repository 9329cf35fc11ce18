// What windows look like: one table of sizes and fonts, and one `Draw` that paints any part of any control.
//
// Windows and controls take their sizes from the theme and draw only through it. A theme keeps nothing of a control:
// all that changes arrives in the arguments. Lengths are points, times seconds, speeds units per second.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cColor.h"
#include "math/cMat4.h"
#include "math/cRect.h"
#include "math/cVec4.h"

#include <algorithm>
#include <cfloat>

namespace trellis {

/// Themes are made once, after rendering is, and live to the end of the process. Rendering thread only.
class cTheme {
public:
    class Parts {
    public:
        enum Enum : int {
            None = 0,
            VScrollTrack = 1,
            HScrollTrack,
            VScrollThumb,
            HScrollThumb,
            VScrollPageUp,
            VScrollPageDown,
            HScrollPageLeft,
            HScrollPageRight,
            VScrollArrowUp,
            VScrollArrowDown,
            HScrollArrowLeft,
            HScrollArrowRight,
            FormBody,
            FormGrip,
            FormClose,
            FormClient,
            FormTitleBar,
            FormMinimize,
            FormMaximize,
            FormRestoreMinimized,
            FormRestoreMaximized,
            FormTitle,
            DockRegion,
            SizeLeft, // borders and corners are never drawn
            SizeTop,
            SizeRight,
            SizeBottom,
            SizeRightBottom,
            SizeLeftTop,
            SizeLeftBottom,
            SizeRightTop,
            Button,
            BindButton,
            Slider,
            CheckBox,
            ComboBox,
            DropDown,
            ToolTip,
            Edit,
            Panel,
            Separator,
            ImageSwatch,
            ColorSwatch,
            Label,
            Count
        };
    };

    /// Cells of the tool-bar bitmap, 32 by 32 pixels, 8 to a row.
    class ToolBarIcon {
    public:
        enum Enum : int {
            Load,
            Save,
            Back,
            Forward,
            Undo,
            Redo,
            Copy,
            Paste,
            Clear,
            Add,
            MoveUp,
            MoveDown,
            Delete,
            Count
        };
    };

    /// What a part is drawn from; unused fields stay as they are made: at rest, enabled, seen, without a picture.
    /// Amounts run from 0 to 1. How grey and how visible a part is, `CurEnabled` and `CurVisible` tell.
    ///
    /// | part | beside Clip, Rect, the states and amounts |
    /// |---|---|
    /// | Form... | Text of the title; Minimized |
    /// | Button | Text, or Icon with Transform for growth; Arrow: a button with a drop-down arrow at its right |
    /// | BindButton | Text, Value (name of the key), Toggled while it waits for one, LabelRect, ValueRect |
    /// | Slider | Text, LabelRect, ValueRect (the track), ThumbRect |
    /// | CheckBox | Text, Toggled, ValueRect (the box) |
    /// | ComboBox | Text, Value, LabelRect, ValueRect, Toggled while the list is open |
    /// | DropDown | Items, ItemFlags (bit 0: disabled), SelStart (the row under the hand, or -1), ScrollX: points that
    ///              the rows are scrolled up by |
    /// | ToolTip | Text, Position, Align |
    /// | Edit | Text, Value, LabelRect, ValueRect, TextRect, Caret, SelStart, SelLen (UTF-16), ScrollX, CaretTime;
    ///          Toggled while it is edited |
    /// | Panel | Text, LabelRect (the title), ThumbRect (the arrow), Toggled while expanded, Hovered |
    /// | Separator | Text |
    /// | Label | Text, Value, LabelRect, ValueRect |
    /// | ImageSwatch | Text, LabelRect, ValueRect, Texture, Extra (lines about the image) |
    /// | ColorSwatch | Text, LabelRect, ValueRect, Color |
    struct DrawArgs {
        Parts::Enum Part = Parts::None;
        cRect Clip = cRect::Empty; ///< Empty: no clip.
        cRect Rect{};
        bool Pressed = false;
        bool Active = false; ///< The form has the keyboard, and a control the focus.
        float Hot = 0;
        bool Toggled = false;
        bool Hovered = false;
        cStr Text;
        bool Minimized = false;
        cMat4 Transform{}; ///< Of the whole part; zero for none.
        cStr Value;

        cRect LabelRect = cRect::Empty;
        cRect ValueRect = cRect::Empty;
        cRect TextRect = cRect::Empty;
        cRect ThumbRect = cRect::Empty;
        int Caret = 0;
        int SelStart = 0;
        int SelLen = 0;
        float ScrollX = 0;
        float CaretTime = 0; ///< When the caret moved last, on the clock of `ui/`: it shows first, then blinks.
        int Icon = -1;       ///< Cell of the tool-bar bitmap.
        bool Arrow = false;
        int Texture = -1;
        cColor Color = cColor::White;

        cStr Extra[3];
        bool Enabled = true;
        bool Visible = true;
        float CurEnabled = 1;
        float CurVisible = 1;
        float Shown = 1; ///< Of a scroll bar; 1 for other parts.
        float Alpha = 1;
        cList<cStr> Items;
        cList<int> ItemFlags;
        float Activity = 0; ///< Of the form.
        float FormAlpha = 1;
        cVec2 Position{};
        int Align = 0; ///< A `cRect::Align`: which point of the tip stands at `Position`.

        int GetSelEnd() const { return int(std::min((long long)SelStart + SelLen, 0x7FFFFFFFLL)); }
    };

    virtual ~cTheme() = default;
    virtual void Draw(const DrawArgs& args) const = 0;

    static void Init(); ///< Makes the themes that are not there yet; after `cRender::Init`.

    static inline const cTheme* WindowsStandard = nullptr;
    static inline const cTheme* Fragile = nullptr;
    static inline float ToolTipDelaySec = 0.5f;
    static inline float CharRepeatDelaySec = 0.4f;
    static inline float CharRepeatRateSec = 0.04f;
    static inline float GamepadRepeatDelaySec = 0.3f;
    static inline float GamepadRepeatRateSec = 0.12f;

    static constexpr float Immediate = FLT_MAX; ///< Speed of what is not animated.

    // ---- Behaviour and animation
    bool FocusFollowsMouse = false;
    float HotTendSpeed = 0;
    float VisibleTendSpeed = 0;
    float EnabledTendSpeed = 0;
    float ActivityTendSpeed = 0;
    float ButtonPressGrow = 0; ///< Points that a button grows by on each side.
    float ButtonIdleGrow = 0;
    float ButtonHotGrow = 0;
    float ButtonGrowSpeed = 0;

    // ---- Layout of rows
    float RowSpacing = 0;
    float SmallRowSpacing = 0;
    cVec4 RowInsets{};      ///< Left, top, right, bottom.
    float FocusMargin = 10; ///< Around the control that is scrolled to.
    bool TabWraps = true;

    // ---- Scroll bars
    float ScrollBarWidth = 0;
    float ScrollArrowLength = 0; ///< 0: no arrows.
    float ScrollThumbMinLength = 0;
    float ArrowScrollSpeed = 0; ///< Points a step.
    float ScrollRepeatDelaySec = 0;
    float ScrollRepeatRateSec = 0;
    bool ScrollBarsInsideClient = false;
    float WheelScrollSpeed = 0; ///< Points a unit of the wheel.
    cVec3 VScrollBarOffset{};   ///< Of its right, top and bottom edges.
    cVec3 HScrollBarOffset{};   ///< Of its left, bottom and right edges.

    // ---- Forms. Offsets are from the top right corner.
    float SizingBorderWidth = 0;
    float SizingCornerSize = 0;
    float Reserved = 0.5f;
    float DragAlpha = 0; ///< Of a form that is being moved or sized.
    cVec2 FormMinSize{};
    cVec2 FormMinimizedSize{};
    cVec2 CloseButtonSize{}, CloseButtonOffset{};
    cVec2 MinimizeButtonSize{}, MinimizeButtonOffset{};
    cVec2 MaximizeButtonSize{}, MaximizeButtonOffset{};
    cRect FormTitleInset{};                 ///< Added to the edges; the top and the bottom both to the form's top.
    cRect FormClientInset{};                ///< Added to the edges.
    cVec2 FormGripSize{}, FormGripOffset{}; ///< From the lower right corner.
    int FormTitleFont = -1;

    // ---- Controls
    int ButtonFont = -1;
    float ButtonPadding = 0;
    float ButtonMinWidth = 0;
    float ButtonHeight = 0;
    cVec2 ButtonIconSize{};
    cVec2 ButtonArrowSize{}; ///< Of an icon button with an arrow.

    float SliderSteps = 20; ///< Steps that the keys divide a range into.
    int SliderStepsInt = 20;

    int BindButtonFont = -1;
    float BindButtonPadding = 0;
    float BindButtonMinWidth = 0;
    float BindButtonHeight = 0;

    int CheckBoxFont = -1;
    float CheckBoxPadding = 0;
    float CheckBoxMinWidth = 0;
    float CheckBoxHeight = 0;
    float CheckBoxBoxSize = 0;

    int ComboFont = -1;
    float ComboPadding = 0;
    float ComboMinWidth = 0;
    float ComboHeight = 0;
    float ComboButtonWidth = 0;
    int ComboMaxVisibleItems = 0;
    float ComboItemHeight = 0;
    bool ComboCapturesOnPress = false;

    int EditFont = -1;
    float EditPadding = 0;
    float EditMinWidth = 0;
    float EditHeight = 0;
    float EditPaddingLeft = 0;
    float EditPaddingRight = 0;
    float EditCaretBlinkSec = 0;
    float EditVecSpacing = 0;
    float EditVecMinWidth = 0;
    float EditSliderSpacing = 0;
    float EditSliderEditWidth = 0;

    float FilePnSpacing = 0;
    float FilePnButtonWidth = 0;

    int SliderFont = -1;
    float SliderPadding = 0;
    float SliderMinWidth = 0;
    float SliderHeight = 0;
    float SliderThumbWidth = 0;

    int LabelFont = -1;
    float LabelPadding = 0;
    cVec2 LabelValueSize{};

    int PanelFont = -1;
    float PanelIndent = 0;
    float PanelHeaderHeight = 0;
    float PanelTitleHeight = 0;
    cVec2 PanelArrowSize{};
    bool PanelArrowAtLeft = false;
    bool PanelToggleOnRelease = false;
    float LabelColumnWidth = 0;
    float ValueColumnWidth = 0;
    bool CenterRows = false;

    float ToolBarHeight = 0;
    float ToolBarMargin = 0;
    int SeparatorFont = -1;
    float SeparatorHeight = 0;
    float ToolBarSeparatorWidth = 0;

    cVec2 ImageSwatchSize{};
    cVec2 ColorSwatchSize{};

    int ToolTipFont = -1;
    float ToolTipPadding = 0;

    float Scale = 0; ///< Of a theme that grows with its fonts.

protected:
    cTheme() = default;
};

} // namespace trellis
