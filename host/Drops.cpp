#include "host/Drops.h"

#include "host/Daylight.h"
#include "render/cRender.h"

#include <cmath>

namespace trellis {

namespace {

constexpr int s_Balls = 8;

} // namespace

Drops::Drops() {
    m_Surface.Init({-4, 0.5f, -4}, {4, 8.5f, 4}, 48, 48, 48);
    m_Balls.SetCount(s_Balls);
    Step(0);
}

void Drops::Step(float sec) {
    m_Sec += sec;
    for (int i = 0; i < s_Balls; i++) { // each on a figure of its own, well within the box
        const float t = m_Sec * (0.6f + 0.07f * float(i)) + float(i) * 2.4f;
        m_Balls[i] = {{2.3f * std::sin(t), 4.5f + 2.1f * std::sin(1.3f * t + 1), 2.3f * std::cos(0.7f * t)},
                      0.55f + 0.04f * float(i)};
    }
    m_Surface.UpdateMetaballs(m_Balls, false);
}

void Drops::Draw() const {
    cRender::SetWorldMatrix(cMat4::Identity);
    DrawInDaylight(m_Surface.Model.Meshes[0], cColor(0.35f, 0.65f, 0.95f, 1));
    cRender::DrawBounds(GetBox(), cColor::DarkSlateGray);
}

} // namespace trellis
