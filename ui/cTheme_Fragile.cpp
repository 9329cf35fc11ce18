#include "ui/cTheme_Fragile.h"

#include "render/cFont.h"
#include "render/cRender.h"

#include <cmath>

namespace trellis {

cTheme_Fragile::cTheme_Fragile() {
    const int small = cRender::GetFontID("Calibri 11");
    const int large = cRender::GetFontID("Calibri 16");
    const int title = cRender::GetFontID("Calibri B24");
    if (small == -1 || large == -1) {
        return;
    }
    FormTitleFont = title;
    const int smallHeight = cRender::GetFont(small)->Height;
    Scale = smallHeight > 0 ? float(cRender::GetFont(large)->Height) / float(smallHeight) : 1;
    ButtonFont = BindButtonFont = CheckBoxFont = ComboFont = EditFont = SliderFont = LabelFont = large;
    PanelFont = SeparatorFont = large;
    ToolTipFont = small;
    SetMetrics();
}

float cTheme_Fragile::R(float v) const {
    return std::floor(v * Scale + 0.5f);
}

void cTheme_Fragile::SetMetrics() {
    FocusFollowsMouse = true;
    HotTendSpeed = 5;
    VisibleTendSpeed = 4;
    EnabledTendSpeed = 4;
    ActivityTendSpeed = 12;
    ButtonPressGrow = -R(6);
    ButtonIdleGrow = 0;
    ButtonHotGrow = R(8);
    ButtonGrowSpeed = R(200);

    RowSpacing = R(10);
    SmallRowSpacing = R(10) / 2;
    RowInsets = {R(6), R(5), R(5), R(6)};
    FocusMargin = 2 * R(10) + R(34);
    TabWraps = false;

    ScrollBarWidth = R(20);
    ScrollArrowLength = 0;
    ScrollThumbMinLength = 2 * R(20);
    ArrowScrollSpeed = R(18);
    ScrollRepeatDelaySec = 0.4f;
    ScrollRepeatRateSec = 0.06f;
    ScrollBarsInsideClient = false;
    WheelScrollSpeed = R(40);
    VScrollBarOffset = {R(20), 0, 0};
    HScrollBarOffset = {0, -R(20), 0};

    SizingBorderWidth = R(8);
    SizingCornerSize = R(8) + R(20);
    DragAlpha = 1;
    FormMinSize = {R(200), R(200)};
    FormMinimizedSize = {R(160), R(34)};
    CloseButtonSize = MinimizeButtonSize = MaximizeButtonSize = {R(20), R(20)};
    CloseButtonOffset = {-R(10), -R(8)};
    MaximizeButtonOffset = {-R(34), -R(8)};
    MinimizeButtonOffset = {-R(58), -R(8)};
    FormTitleInset = {R(8), -R(36), -R(8), -R(8)};
    FormClientInset = {R(10), R(32), -R(30), -R(40)};
    FormGripSize = {R(20), R(20)};
    FormGripOffset = {-R(8), R(8)};

    ButtonPadding = R(8);
    ButtonMinWidth = R(98);
    ButtonHeight = R(34);
    ButtonIconSize = {R(40), R(40)};
    ButtonArrowSize = {R(40), R(34)};
    BindButtonPadding = R(8);
    BindButtonMinWidth = R(98);
    BindButtonHeight = R(34);
    CheckBoxPadding = R(8);
    CheckBoxMinWidth = 0;
    CheckBoxHeight = R(34);
    CheckBoxBoxSize = R(20);
    ComboPadding = R(8);
    ComboMinWidth = R(160);
    ComboHeight = R(34);
    ComboButtonWidth = R(28);
    ComboMaxVisibleItems = 8;
    ComboItemHeight = R(26);
    ComboCapturesOnPress = true;
    EditPadding = R(8);
    EditMinWidth = R(160);
    EditHeight = R(34);
    EditPaddingLeft = EditPaddingRight = R(8);
    EditCaretBlinkSec = 0.5f;
    EditVecSpacing = R(6);
    EditVecMinWidth = R(80);
    EditSliderSpacing = R(8);
    EditSliderEditWidth = R(80);
    FilePnSpacing = R(6);
    FilePnButtonWidth = R(34);
    SliderPadding = R(8);
    SliderMinWidth = R(160);
    SliderHeight = R(34);
    SliderThumbWidth = R(20);
    LabelPadding = R(8);
    LabelValueSize = {R(160), R(34)};
    PanelIndent = R(16);
    PanelHeaderHeight = PanelTitleHeight = R(34);
    PanelArrowSize = {R(16), R(16)};
    PanelArrowAtLeft = false;
    PanelToggleOnRelease = true;
    LabelColumnWidth = R(160);
    ValueColumnWidth = R(200);
    CenterRows = true;
    ToolBarHeight = R(44);
    ToolBarMargin = R(4);
    SeparatorHeight = R(28);
    ToolBarSeparatorWidth = R(12);
    ImageSwatchSize = {R(128), R(128)};
    ColorSwatchSize = {R(160), R(34)};
    ToolTipPadding = R(4);
}

} // namespace trellis
