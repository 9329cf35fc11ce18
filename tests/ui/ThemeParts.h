// What holds for every part of every theme, on the recording device.
#pragma once

#include "host/ThemeSamples.h"
#include "tests/render/RecordingDevice.h"

#include <gtest/gtest.h>

namespace trellis {

inline bool IsDrawnPart(int part) {
    return part != cTheme::Parts::None && (part < cTheme::Parts::SizeLeft || part > cTheme::Parts::SizeRightTop);
}

/// @param each  called with the arguments of every part, a drop-down's rows and a swatch without a texture included
template <class F> void ForEachPart(const cTheme& theme, F each) {
    for (int part = cTheme::Parts::None; part < cTheme::Parts::Count; part++) {
        SCOPED_TRACE(part);
        each(ThemeSamples::Of(theme, cTheme::Parts::Enum(part), {40, 400}));
    }
}

/// What is drawn at all, and that clip and world matrix come back.
inline void CheckEveryPart(const cTheme& theme, RecordingDevice& device) {
    const cRect outer(1, 2, 300, 200), clip(10, 20, 600, 450);
    const cMat4 grown = cMat4::ScalingAt(cVec2(60, 390), cVec2(1.5f, 1.5f));
    ForEachPart(theme, [&](cTheme::DrawArgs args) {
        const auto draws = [&] {
            cRender::SetClipRect(outer);
            device.Take();
            device.TakeDraws();
            theme.Draw(args);
            EXPECT_EQ(cRender::GetClipRect(), outer);
            EXPECT_EQ(cRender::GetWorldMatrix(), cMat4::Identity);
            return device.TakeDraws().size();
        };
        EXPECT_EQ(draws() > 0, IsDrawnPart(args.Part));
        args.Clip = clip;
        args.Transform = grown;
        EXPECT_EQ(draws() > 0, IsDrawnPart(args.Part));
        EXPECT_TRUE(!IsDrawnPart(args.Part) || device.Take().starts_with("SetClipRect 10,20,600,450\n"));
        for (float cTheme::DrawArgs::*amount :
             {&cTheme::DrawArgs::Alpha, &cTheme::DrawArgs::FormAlpha, &cTheme::DrawArgs::CurVisible}) {
            args.*amount = 0;
            EXPECT_EQ(draws(), 0u);
            args.*amount = 1;
        }
    });
}

} // namespace trellis
