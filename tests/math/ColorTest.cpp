#include "math/cColor.h"

#include <gtest/gtest.h>

#include <cmath>

namespace trellis {
namespace {

TEST(Color, GreenIsFullOnPurpose) {
    EXPECT_EQ(cColor::Green, cColor::Lime);
    EXPECT_STREQ(cColor::MidGreen.ToWebColor(), "#008000");
}

TEST(Color, NamesOfTheWeb) { // samples of CSS Colors Level 3
    const struct {
        cColor Color;
        const char* Web;
    } cases[] = {{cColor::Red, "#ff0000"},
                 {cColor::AliceBlue, "#f0f8ff"},
                 {cColor::YellowGreen, "#9acd32"},
                 {cColor::Silver, "#c0c0c0"}};
    for (const auto& c : cases) {
        EXPECT_STREQ(c.Color.ToWebColor(), c.Web);
        EXPECT_EQ(c.Color.a, 1);
    }
    EXPECT_EQ(cColor::Teal.g, 128 / 255.0f);
}

TEST(Color, DwordHasRedLowest) {
    EXPECT_EQ(cColor(1, 0, 0, 0).ToDword(), 0x000000FFu);
    EXPECT_EQ(cColor(0, 0.5f, 0.2f, 1).ToDword(), 0xFF338000u); // 0.5 x 255 + 0.5 = 128
    EXPECT_EQ(cColor::Transparent.ToDword(), 0x00FFFFFFu);
    EXPECT_EQ(cColor(-1, 7, NAN, INFINITY).ToDword(), 0xFF00FF00u);
    EXPECT_EQ(cColor::FloatToDword(0.0019f), 0u);
    EXPECT_EQ(cColor::FloatToDword(0.0020f), 1u); // 0.51 + 0.5
    EXPECT_EQ(cColor::FloatToDword(0.9999f), 255u);
}

} // namespace
} // namespace trellis
