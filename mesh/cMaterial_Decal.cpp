#include "mesh/cMaterial_Decal.h"

#include "foundation/cTimer.h"
#include "mesh/cMaterial_Import.h"

#include <cmath>
#include <utility>

namespace trellis {

namespace {

cColor Shine(const cColorEdit& color) {
    return color.Color * color.Modulator.Value;
}

/// What has passed of the current period; 0 for a period of 0.
float Fraction(float t, float period) {
    const float cycle = std::floor(t / period);
    return std::isfinite(cycle) ? (t - cycle * period) / period : 0;
}

} // namespace

void cMaterial_Decal::CustomCtor() {
    cMaterial::CustomCtor();
    PeriodSec = 1;
    m_DecalMapID = -1;
    m_StartTimeSec = 0;
}

void cMaterial_Decal::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddParent<cMaterial>();
    members.AddButton(&cMaterial_Decal::ReCreate, "&cMaterial_Decal::ReCreate");
    members.Add<_cImageFile>(DecalMap, "DecalMap");
    members.AddButton(&cMaterial_Decal::ImportDecalMap, "&cMaterial_Decal::ImportDecalMap");
    members.AddObject(Color0, "Color0");
    members.AddObject(Color1, "Color1");
    members.Add<_cFloat>(PeriodSec, "PeriodSec");
    members.AddButton(&cMaterial_Decal::SwapColors, "&cMaterial_Decal::SwapColors");
    members.Add<_cFloat>(UPeriodSec, "UPeriodSec");
    members.Add<_cFloat>(VPeriodSec, "VPeriodSec");
    members.Add<_cBool>(ForceShadows, "ForceShadows");
}

void cMaterial_Decal::Create() {
    if (m_DecalMapID == -1) {
        ReCreate();
    }
}

void cMaterial_Decal::ReCreate() {
    m_DecalMapID = FetchTexture(DecalMap);
    m_StartTimeSec = cTimer::GetTimeSec();
}

float cMaterial_Decal::GetTimeSec() const {
    return cTimer::GetTimeSec() - m_StartTimeSec;
}

cColor cMaterial_Decal::GetColor() const {
    const float t = GetTimeSec();
    const float cycle = std::floor(t / PeriodSec);
    if (!std::isfinite(cycle)) {
        return Shine(Color0);
    }
    const bool back = std::fmod(cycle, 2.0f) != 0; // a long run of short periods has more than an int counts
    const cColor a = Shine(back ? Color1 : Color0), b = Shine(back ? Color0 : Color1);
    const float u = t - cycle * PeriodSec;
    return cColor::Lerp(a, b, std::sin(u * 1.5707964f / PeriodSec));
}

cMat4 cMaterial_Decal::GetTextureMatrix() const {
    const float t = GetTimeSec();
    return cMat4::Translation(Fraction(t, UPeriodSec), Fraction(t, VPeriodSec));
}

void cMaterial_Decal::ImportDecalMap() {
    cMaterial_ImportArgs args;
    args.Compress = true;
    args.DiffuseMap = &DecalMap;
    cMaterial_Import(&args);
    if (args.Changed) {
        ReCreate();
    }
}

void cMaterial_Decal::SwapColors() {
    std::swap(Color0.Color, Color1.Color);
    std::swap(Color0.Modulator, Color1.Modulator);
}

} // namespace trellis
