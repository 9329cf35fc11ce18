#include "ui/cTheme_WindowsStandard.h"

#include "render/cRender.h"

namespace trellis {

cTheme_WindowsStandard::cTheme_WindowsStandard() {
    const int font = cRender::GetFontID("Tahoma 8");
    const int boldFont = cRender::GetFontID("Tahoma B8");
    ToolBarTexture = cRender::GetTextureID("Textures/WindowsStandard/ToolBar.bmp", -1);

    FocusFollowsMouse = false;
    HotTendSpeed = VisibleTendSpeed = EnabledTendSpeed = ActivityTendSpeed = ButtonGrowSpeed = Immediate;
    ButtonPressGrow = ButtonIdleGrow = ButtonHotGrow = 0;

    RowSpacing = SmallRowSpacing = 10;
    RowInsets = {6, 5, 5, 6};
    FocusMargin = 10;
    TabWraps = true;

    ScrollBarWidth = 16;
    ScrollArrowLength = 16;
    ScrollThumbMinLength = 8;
    ArrowScrollSpeed = 16;
    ScrollRepeatDelaySec = 0.4f;
    ScrollRepeatRateSec = 0.06f;
    ScrollBarsInsideClient = true;
    WheelScrollSpeed = 40;
    VScrollBarOffset = HScrollBarOffset = cVec3::Zero;

    SizingBorderWidth = 4;
    SizingCornerSize = 22;
    DragAlpha = 0.5f;
    FormMinSize = {200, 180};
    FormMinimizedSize = {160, 26};
    CloseButtonSize = MinimizeButtonSize = MaximizeButtonSize = {16, 14};
    CloseButtonOffset = {-6, -6};
    MinimizeButtonOffset = {-40, -6};
    MaximizeButtonOffset = {-24, -6};
    FormTitleInset = {4, -22, -4, -4};
    FormClientInset = {6, 26, -6, -25};
    FormGripSize = {20, 20};
    FormGripOffset = {-4, 4};
    FormTitleFont = boldFont;

    ButtonFont = font;
    ButtonPadding = 5;
    ButtonMinWidth = 65;
    ButtonHeight = 23;
    ButtonIconSize = {32, 30};
    ButtonArrowSize = {29, 23};
    BindButtonFont = font;
    BindButtonPadding = 5;
    BindButtonMinWidth = 65;
    BindButtonHeight = 23;
    CheckBoxFont = font;
    CheckBoxPadding = 5;
    CheckBoxMinWidth = 0;
    CheckBoxHeight = 17;
    CheckBoxBoxSize = 13;
    ComboFont = font;
    ComboPadding = 4;
    ComboMinWidth = 120;
    ComboHeight = 21;
    ComboButtonWidth = 17;
    ComboMaxVisibleItems = 8;
    ComboItemHeight = 15;
    ComboCapturesOnPress = false;
    EditFont = font;
    EditPadding = 5;
    EditMinWidth = 120;
    EditHeight = 21;
    EditPaddingLeft = EditPaddingRight = 4;
    EditCaretBlinkSec = 0.5f;
    EditVecSpacing = 4;
    EditVecMinWidth = 60;
    EditSliderSpacing = 5;
    EditSliderEditWidth = 60;
    FilePnSpacing = 4;
    FilePnButtonWidth = 24;
    SliderFont = font;
    SliderPadding = 5;
    SliderMinWidth = 120;
    SliderHeight = 21;
    SliderThumbWidth = 11;
    LabelFont = font;
    LabelPadding = 5;
    LabelValueSize = {120, 17};
    PanelFont = boldFont;
    PanelIndent = 16;
    PanelHeaderHeight = PanelTitleHeight = 21;
    PanelArrowSize = {13, 13};
    PanelArrowAtLeft = true;
    PanelToggleOnRelease = false;
    LabelColumnWidth = 160;
    ValueColumnWidth = 200;
    CenterRows = false;
    ToolBarHeight = 32;
    ToolBarMargin = 2;
    SeparatorFont = font;
    SeparatorHeight = 17;
    ToolBarSeparatorWidth = 8;
    ImageSwatchSize = {128, 128};
    ColorSwatchSize = {120, 21};
    ToolTipFont = font;
    ToolTipPadding = 4;
}

} // namespace trellis
