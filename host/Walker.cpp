#include "host/Walker.h"

#include "math/cMat4.h"
#include "render/cRender.h"

namespace trellis {

Walker::Walker() : Position(cVec3::Zero), m_Falling(cVec3::Zero) {
    m_Mesh.Radii = {Radius, HalfHeight, Radius};
    m_Mesh.MaxIterations = 8;
}

void Walker::SetLevel(const cModel& level, const cVec3& start) {
    m_Mesh.Free();
    m_Mesh.AddModel(level, cMat4::Identity, 0);
    m_Mesh.BuildBsp();
    Position = start;
    m_Falling = cVec3::Zero;
    m_Way.Clear();
}

void Walker::Step(const cVec3& push, float sec) {
    cVec3 along(push.x, 0, push.z);
    along = along.LengthSq() > 1 ? cVec3::Normalize(along) : along;
    cVec3 to = Position + along * (Speed * sec);
    m_Mesh.Collide(Position, &to, nullptr, 0, 1, nullptr, nullptr, nullptr);
    Position = to;
    Fall(sec);
    if (m_Way.Count() == MostPlaces) {
        m_Way.Clear();
    }
    const cVec3 feet = Position - cVec3(0, HalfHeight - 0.05f, 0);
    if (m_Way.IsEmpty() || (m_Way[m_Way.Count() - 1].Pos - feet).Length() > 0.02f) {
        m_Way.Add({feet, cColor::Orange.ToDword()});
    }
}

void Walker::Fall(float sec) {
    constexpr float Gravity = 9.81f, Steepest = 0.6f; // what is flatter carries
    m_Falling.y -= Gravity * sec;
    const cVec3 from = Position, down = from + m_Falling * sec;
    cVec3 to = down, normal;
    if (m_Mesh.Collide(from, &to, nullptr, 0, 0, &normal, nullptr, nullptr)) {
        if (normal.y < Steepest) {
            to = down;
            m_Mesh.Collide(from, &to, nullptr, 0, 1, nullptr, nullptr, nullptr);
        }
        m_Falling = cVec3::Zero;
    }
    Position = to;
}

void Walker::Draw() const {
    constexpr int Stride = 24; // places of the way from shadow to shadow
    static const int s_Shader = cRender::GetShaderID("Colored", cVertex::PositionColored::FormatID);
    const auto drawAt = [](const cVec3& p, const cColor& color) {
        cRender::SetWorldMatrix(cMat4::Scaling(Radius, HalfHeight, Radius) * cMat4::Translation(p.x, p.y, p.z));
        cRender::DrawSphereWire(cVec3::Zero, 1, color, 5, 8, cVec3::AxisY);
    };
    for (int i = 0; i < m_Way.Count(); i += Stride) {
        drawAt(m_Way[i].Pos + cVec3(0, HalfHeight - 0.05f, 0), cColor(0.45f, 0.5f, 0.58f, 1));
    }
    drawAt(Position, cColor::Red);
    cRender::SetWorldMatrix(cMat4::Identity);
    cRender::SetShader(s_Shader);
    cRender::ApplyTransforms();
    cRender::DrawArrays(cTopology::LineStrip, m_Way.Data(), m_Way.Count());
}

} // namespace trellis
