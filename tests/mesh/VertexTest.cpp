#include <string>

#include "tests/render/RecordingDevice.h"

#include <gtest/gtest.h>

namespace trellis {
namespace {

TEST(Vertex, ValidAttributes) {
    const char* const valid[] = {"f1 f2 f3 f4 b4 ", "f3 f4 ", "f3 ", "f2 f3 f4 ", "f3 ", "f3 ", "f4 ", "f4 ", ""};
    for (int usage = 0; usage <= 8; usage++) {
        std::string accepted;
        for (int i = -6; i < 18; i++) {
            const cVertex::Attrib attrib{"", cVertexUsage::Enum(usage), cVertexType::Enum((i + 6) / 6 - 1),
                                         (i + 6) % 6};
            if (attrib.IsValid()) {
                accepted += (attrib.Type == cVertexType::Float ? "f" : "b") + std::to_string(attrib.Count) + " ";
            }
        }
        EXPECT_EQ(accepted, valid[usage]) << usage;
    }
}

TEST(Vertex, FormatsInTheOrderOfTheirIds) {
    const RecordingDevice& device = RecordingDevice::Install();
    int id = 0;
    const auto check = [&]<class V>(V, const std::string& expected) { // name, type, count, usage of each attribute
        std::string text;
        for (const cVertex::Attrib& a : V::GetFormat()) {
            text += std::string(a.Name) + (a.Type == cVertexType::Float ? " f" : " b") + std::to_string(a.Count) + "/" +
                    std::to_string(a.Usage) + ", ";
        }
        EXPECT_EQ(text, expected);
        EXPECT_EQ(V::FormatID, id);
        EXPECT_EQ(device.GetVertexSize(id++), int(sizeof(V)));
    };
    const std::string colored = "Pos f3/1, Color b4/0, ";
    const std::string bump = "Pos f3/1, Normal f3/2, TexCoord f2/3, Tangent f3/4, BiTangent f3/5, ";
    check(cVertex::PositionColored(), colored);
    check(cVertex::PositionColoredTextured(), colored + "TexCoord f2/3, ");
    check(cVertex::PositionColoredTextured2(), colored + "TexCoord0 f2/3, TexCoord1 f2/0, ");
    check(cVertex::Particle(), colored + "TexCoord f2/3, RightUp f2/0, Forward f3/0, ");
    check(cVertex::PositionNormal(), "Pos f3/1, Normal f3/2, ");
    check(cVertex::PositionNormalColored(), "Pos f3/1, Normal f3/2, Color b4/0, ");
    check(cVertex::PositionNormalTextured(), "Pos f3/1, Normal f3/2, TexCoord f2/3, ");
    check(cVertex::PositionOnly(), "Pos f3/1, ");
    check(cVertex::PositionRhw(), "Pos f4/1, ");
    check(cVertex::PositionTextured(), "Pos f3/1, TexCoord f2/3, ");
    check(cVertex::Bump(), bump);
    check(cVertex::Anim(), bump + "Indices f4/6, Weights f4/7, ");
    check(cVertex::ShadowVolume(), "Pos0 f3/0, Pos1 f3/0, Pos2 f3/0, Indices0 f4/0, Weights0 f4/0, Indices1 f4/0, "
                                   "Weights1 f4/0, Indices2 f4/0, Weights2 f4/0, ");
    RecordingDevice::Uninstall();

    int offset = -1, count = -1;
    EXPECT_FALSE(cVertex::Anim::GetFormat().HasUsage(cVertexUsage::Custom, &offset, &count));
    EXPECT_EQ(offset, -1);
    EXPECT_TRUE(cVertex::Particle::GetFormat().HasUsage(cVertexUsage::TexCoord, &offset, nullptr));
    EXPECT_EQ(offset, 16); // a packed colour takes one byte for each component
}

} // namespace
} // namespace trellis
