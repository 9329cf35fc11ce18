// The sizes of both themes, side by side. Those of Fragile are lengths of the small font, which the theme scales.
#pragma once

#include "ui/cTheme.h"

#include <gtest/gtest.h>

#include <cmath>

namespace trellis {

constexpr struct {
    float cTheme::*Member;
    float Classic, Fragile;
} s_Lengths[] = {
    {&cTheme::ButtonHotGrow, 0, 8},
    {&cTheme::RowSpacing, 10, 10},
    {&cTheme::ScrollBarWidth, 16, 20},
    {&cTheme::ScrollArrowLength, 16, 0},
    {&cTheme::ArrowScrollSpeed, 16, 18},
    {&cTheme::WheelScrollSpeed, 40, 40},
    {&cTheme::SizingBorderWidth, 4, 8},
    {&cTheme::ButtonPadding, 5, 8},
    {&cTheme::ButtonMinWidth, 65, 98},
    {&cTheme::ButtonHeight, 23, 34},
    {&cTheme::BindButtonPadding, 5, 8},
    {&cTheme::BindButtonMinWidth, 65, 98},
    {&cTheme::BindButtonHeight, 23, 34},
    {&cTheme::CheckBoxPadding, 5, 8},
    {&cTheme::CheckBoxMinWidth, 0, 0},
    {&cTheme::CheckBoxHeight, 17, 34},
    {&cTheme::CheckBoxBoxSize, 13, 20},
    {&cTheme::ComboPadding, 4, 8},
    {&cTheme::ComboMinWidth, 120, 160},
    {&cTheme::ComboHeight, 21, 34},
    {&cTheme::ComboButtonWidth, 17, 28},
    {&cTheme::ComboItemHeight, 15, 26},
    {&cTheme::EditPadding, 5, 8},
    {&cTheme::EditMinWidth, 120, 160},
    {&cTheme::EditHeight, 21, 34},
    {&cTheme::EditPaddingLeft, 4, 8},
    {&cTheme::EditPaddingRight, 4, 8},
    {&cTheme::EditVecSpacing, 4, 6},
    {&cTheme::EditVecMinWidth, 60, 80},
    {&cTheme::EditSliderSpacing, 5, 8},
    {&cTheme::EditSliderEditWidth, 60, 80},
    {&cTheme::FilePnSpacing, 4, 6},
    {&cTheme::FilePnButtonWidth, 24, 34},
    {&cTheme::SliderPadding, 5, 8},
    {&cTheme::SliderMinWidth, 120, 160},
    {&cTheme::SliderHeight, 21, 34},
    {&cTheme::SliderThumbWidth, 11, 20},
    {&cTheme::LabelPadding, 5, 8},
    {&cTheme::PanelIndent, 16, 16},
    {&cTheme::PanelHeaderHeight, 21, 34},
    {&cTheme::PanelTitleHeight, 21, 34},
    {&cTheme::LabelColumnWidth, 160, 160},
    {&cTheme::ValueColumnWidth, 200, 200},
    {&cTheme::ToolBarHeight, 32, 44},
    {&cTheme::ToolBarMargin, 2, 4},
    {&cTheme::SeparatorHeight, 17, 28},
    {&cTheme::ToolBarSeparatorWidth, 8, 12},
    {&cTheme::ToolTipPadding, 4, 4},
};

constexpr struct {
    cVec2 cTheme::*Member;
    cVec2 Classic, Fragile;
} s_Sizes[] = {
    {&cTheme::FormMinSize, {200, 180}, {200, 200}},     {&cTheme::FormMinimizedSize, {160, 26}, {160, 34}},
    {&cTheme::CloseButtonSize, {16, 14}, {20, 20}},     {&cTheme::CloseButtonOffset, {-6, -6}, {-10, -8}},
    {&cTheme::MinimizeButtonSize, {16, 14}, {20, 20}},  {&cTheme::MinimizeButtonOffset, {-40, -6}, {-58, -8}},
    {&cTheme::MaximizeButtonSize, {16, 14}, {20, 20}},  {&cTheme::MaximizeButtonOffset, {-24, -6}, {-34, -8}},
    {&cTheme::FormGripSize, {20, 20}, {20, 20}},        {&cTheme::FormGripOffset, {-4, 4}, {-8, 8}},
    {&cTheme::ButtonIconSize, {32, 30}, {40, 40}},      {&cTheme::ButtonArrowSize, {29, 23}, {40, 34}},
    {&cTheme::LabelValueSize, {120, 17}, {160, 34}},    {&cTheme::PanelArrowSize, {13, 13}, {16, 16}},
    {&cTheme::ImageSwatchSize, {128, 128}, {128, 128}}, {&cTheme::ColorSwatchSize, {120, 21}, {160, 34}},
};

constexpr struct {
    bool cTheme::*Member;
    bool Classic, Fragile;
} s_Flags[] = {
    {&cTheme::FocusFollowsMouse, false, true},
    {&cTheme::TabWraps, true, false},
    {&cTheme::ScrollBarsInsideClient, true, false},
    {&cTheme::ComboCapturesOnPress, false, true},
    {&cTheme::PanelArrowAtLeft, true, false},
    {&cTheme::PanelToggleOnRelease, false, true},
    {&cTheme::CenterRows, false, true},
};

inline void CheckMetrics(const cTheme& theme) {
    const bool isFragile = theme.Scale > 0;
    const auto scaled = [&](float classic, float fragile) {
        return isFragile ? std::floor(fragile * theme.Scale + 0.5f) : classic;
    };
    for (size_t i = 0; i < std::size(s_Lengths); i++) {
        EXPECT_EQ(theme.*s_Lengths[i].Member, scaled(s_Lengths[i].Classic, s_Lengths[i].Fragile)) << "length " << i;
    }
    for (size_t i = 0; i < std::size(s_Sizes); i++) {
        const auto& row = s_Sizes[i];
        // A length that is rounded and then negated: offsets to the left and down.
        const auto part = [&](float classic, float fragile) {
            return std::copysign(scaled(std::fabs(classic), std::fabs(fragile)), isFragile ? fragile : classic);
        };
        EXPECT_EQ((theme.*row.Member).x, part(row.Classic.x, row.Fragile.x)) << "size " << i;
        EXPECT_EQ((theme.*row.Member).y, part(row.Classic.y, row.Fragile.y)) << "size " << i;
    }
    for (size_t i = 0; i < std::size(s_Flags); i++) {
        EXPECT_EQ(theme.*s_Flags[i].Member, isFragile ? s_Flags[i].Fragile : s_Flags[i].Classic) << "flag " << i;
    }
    EXPECT_EQ(theme.SliderSteps, 20);
    EXPECT_EQ(theme.SliderStepsInt, 20);
    EXPECT_EQ(theme.ComboMaxVisibleItems, 8);
    EXPECT_EQ(theme.EditCaretBlinkSec, 0.5f);
    EXPECT_EQ(theme.Reserved, 0.5f);
}

} // namespace trellis
