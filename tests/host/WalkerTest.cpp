#include "host/Walker.h"

#include <gtest/gtest.h>

#include "files/cIO.h"
#include "mesh/cModel.h"

namespace trellis {
namespace {

constexpr struct {
    const char* Name;
    cVec3 Push;
    int Frames;
    cVec3 End;
} s_Legs[] = {
    {"falls upon the platform", {0, 0, 0}, 60, {0, 2.4f, 0}},
    {"down the stairs", {1, 0, 0}, 100, {6.7f, 0.95f, 0}},
    {"past a column to the long wall", {0, 0, 1}, 90, {5.944f, 0.95f, 4.994f}},
    {"along the wall and through the gap", {-1, 0, 1}, 190, {-1.632f, 0.95f, 8.342f}},
    {"back through the gap", {1, 0, -1}, 70, {0.22f, 0.951f, 5.07f}},
    {"along the platform", {-1, 0, 0}, 125, {-8.1f, 0.951f, 5.07f}},
    {"past a column to the ramp", {0, 0, -1}, 75, {-8.1f, 0.951f, 0}},
    {"up the ramp", {1, 0, 0}, 125, {0.08f, 2.4f, 0}},
};

TEST(Walkers, GoThroughTheCourt) {
    cModel court;
    ASSERT_TRUE(cIO::LoadModel(TRELLIS_SCRIPTS "/../scenes/court.obj", &court));
    Walker walker;
    walker.SetLevel(court, {0, 4, 0});
    for (const auto& leg : s_Legs) {
        for (int i = 0; i < leg.Frames; i++) {
            walker.Step(leg.Push, 1.0f / 60);
        }
        EXPECT_LT((walker.Position - leg.End).Length(), 0.1f)
            << leg.Name << ": " << walker.Position.x << ' ' << walker.Position.y << ' ' << walker.Position.z;
    }
}

} // namespace
} // namespace trellis
