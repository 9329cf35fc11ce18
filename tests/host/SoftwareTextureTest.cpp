#include "host/cSoftwareTexture.h"

#include "math/cMat4.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace trellis {

namespace {

/// Grey levels, in the order of an image's block.
cImage Grey(const std::vector<unsigned char>& levels, int width, int height, int depth) {
    return cImage(cImage::CopyCtor, levels.data(), cFormat::R8, width, height, depth, 1);
}

float Red(const cSoftwareSampler& sampler, float u, float v = 0, float w = 0) {
    cVec4 at(u, v, w, 0);
    sampler.Sample(&at, 1, &at);
    return at.x * 255;
}

TEST(SoftwareTexture, AddressesAndFilters) {
    constexpr auto nearest = cFilter::Nearest, linear = cFilter::Trilinear;
    constexpr auto wrap = cAddressMode::Wrap, clamp = cAddressMode::Clamp, mirror = cAddressMode::Mirror;
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    constexpr struct {
        cFilter::Enum Filter;
        cAddressMode::Enum Mode;
        float U, Level; // of 0, 80, 160, 240
    } cases[] = {
        {nearest, wrap, 0.0f, 0},     {nearest, wrap, 0.24f, 0},    {nearest, wrap, 0.25f, 80},
        {nearest, wrap, 1, 0},        {nearest, wrap, -0.1f, 240},  {nearest, clamp, -0.1f, 0},
        {nearest, mirror, -0.1f, 0},  {nearest, wrap, 1.3f, 80},    {nearest, clamp, 1.3f, 240},
        {nearest, mirror, 1.3f, 160}, {nearest, mirror, 1, 240},    {nearest, mirror, -1.3f, 160},
        {linear, clamp, 0.125f, 0},   {linear, clamp, 0.25f, 40},   {linear, clamp, 0.3125f, 60},
        {linear, clamp, 0, 0},        {linear, wrap, 0, 120},       {linear, mirror, 0, 0},
        {linear, wrap, 1, 120},       {linear, clamp, 1, 240},      {linear, mirror, -0.25f, 40},
        {linear, wrap, 5.25f, 40},    {linear, clamp, inf, 240},    {linear, clamp, -inf, 0},
        {linear, clamp, nan, 0},      {nearest, clamp, 1e30f, 240},
    };
    for (const bool is1D : {false, true}) {
        cSoftwareTexture texture;
        ASSERT_TRUE(texture.Init(Grey({0, 80, 160, 240}, 4, is1D ? 0 : 1, 1)));
        for (const auto& c : cases) {
            const cSoftwareSampler sampler = {&texture, {c.Filter, c.Mode, clamp, clamp}};
            EXPECT_NEAR(Red(sampler, c.U, 0.3f), c.Level, 0.001f) << c.Filter << " " << c.Mode << " " << c.U;
        }
        for (const float u : {nan, inf, -inf}) {
            Red({&texture, {linear, wrap, mirror, wrap}}, u, u); // something, without a crash
        }
    }
}

TEST(SoftwareTexture, RowsAndSlices) {
    cSoftwareTexture flat, volume;
    ASSERT_TRUE(flat.Init(Grey({0, 40, 200, 240}, 2, 2, 1))); // row 0 is the bottom
    const cSoftwareSampler linear = {&flat, {}}, mirrored = {&flat, {cFilter::Nearest, {}, cAddressMode::Mirror, {}}};
    EXPECT_NEAR(Red(linear, 0, 0), 0, 0.001);
    EXPECT_NEAR(Red(linear, 1, 0), 40, 0.001);
    EXPECT_NEAR(Red(linear, 0, 1), 200, 0.001);
    EXPECT_NEAR(Red(linear, 0.5f, 0.5f), 120, 0.001);
    EXPECT_NEAR(Red(mirrored, 0.1f, 1.1f), 200, 0.001) << "each axis has its own mode";
    EXPECT_NEAR(Red(mirrored, 1.1f, 0), 0, 0.001) << "0 is Wrap";

    ASSERT_TRUE(volume.Init(Grey({10, 60, 110}, 1, 1, 3)));
    EXPECT_NEAR(Red({&volume, {}}, 0, 0, 1 / 3.0f), 35, 0.001); // between the centres at 1/6 and 1/2
    EXPECT_NEAR(Red({&volume, {cFilter::Nearest, {}, {}, cAddressMode::Wrap}}, 0, 0, 1.4f), 60, 0.001);
    cVec4 at = cVec4::Zero;
    const cSoftwareSampler slices = {&volume, {}};
    slices.SampleSlice(2, &at, 1, &at);
    EXPECT_NEAR(at.x * 255, 110, 0.001);
    slices.SampleSlice(99, &at, 1, &at);
    EXPECT_NEAR(at.x * 255, 110, 0.001) << "clamped";
}

/// What a cube's face shows in a direction is where a camera drew it.
TEST(SoftwareTexture, CubesAgreeWithTheirCameras) {
    cSoftwareTexture cube;
    ASSERT_TRUE(cube.Init(Grey({0, 40, 80, 120, 160, 200}, 1, 1, 0)));
    const cVec3 axes[] = {cVec3::AxisX, -cVec3::AxisX, cVec3::AxisY, -cVec3::AxisY, cVec3::AxisZ, -cVec3::AxisZ};
    for (int face = 0; face < 6; face++) {
        EXPECT_NEAR(Red({&cube, {}}, axes[face].x * 3, axes[face].y * 3, axes[face].z * 3), float(face * 40), 0.001);
        for (const cVec3& tilt : {cVec3(0.3f, 0.2f, 0.1f), cVec3(-0.5f, 0.4f, -0.3f), cVec3(0.1f, -0.2f, 0.4f)}) {
            const cVec4 d(axes[face] + tilt, 1);
            const cVec4 clip = d * cMat4::CubeViewProjection(cVec3::Zero, face, 100, true);
            float u, v;
            ASSERT_EQ(cSoftwareSampler::FaceOf(d, &u, &v), face);
            EXPECT_NEAR(u, clip.x / clip.w * 0.5f + 0.5f, 1e-6);
            EXPECT_NEAR(v, clip.y / clip.w * 0.5f + 0.5f, 1e-6);
        }
    }
    Red({&cube, {}}, 0, 0, 0);
}

TEST(SoftwareTexture, Formats) {
    const unsigned char pixel[] = {255, 102, 51, 153}; // 1, 0.4, 0.2, 0.6
    for (int i = cFormat::R8; i <= cFormat::Rgba32f; i++) {
        SCOPED_TRACE(cFormat::ToString(i));
        cImage image(cImage::CopyCtor, pixel, cFormat::Rgba8, 1, 1, 1, 1);
        ASSERT_TRUE(image.ToFormat(cFormat::Enum(i)));
        cSoftwareTexture texture;
        ASSERT_TRUE(texture.Init(image));
        EXPECT_EQ(texture.GetFormat(), i);
        cVec4 c(0.5f, 0.5f, 0, 0);
        cSoftwareSampler{&texture, {}}.Sample(&c, 1, &c);
        constexpr float grey = 0.5131f; // 0.2125 + 0.4 x 0.7154 + 0.2 x 0.0721
        constexpr cVec4 expected[] = {
            {grey, grey, grey, 1}, {1, 0.4f, 0, 1}, {1, 0.4f, 0.2f, 1}, {1, 0.4f, 0.2f, 0.6f}};
        for (int k = 0; k < 4; k++) {
            EXPECT_NEAR(c[k], expected[cFormat::ChannelCount[i] - 1][k], 0.003f) << k;
        }
    }
    cSoftwareTexture texture;
    EXPECT_FALSE(texture.Init(cImage()));
    EXPECT_FALSE(texture.Init(cImage(cFormat::Depth24, 1, 1, 1, 1)));
    EXPECT_TRUE(texture.InitColor(cFormat::R8, 1, 1, 1));
    EXPECT_FALSE(texture.InitColor(cFormat::R8, cSoftwareTexture::MaxSide + 1, 1, 1));
    EXPECT_FALSE(texture.InitColor(cFormat::Rgba32f, 16384, 16384, 1)) << "4 GiB";
    EXPECT_FALSE(texture.InitColor(cFormat::Dxt1, 4, 4, 1));
    EXPECT_TRUE(texture.IsEmpty());
}

} // namespace

} // namespace trellis
