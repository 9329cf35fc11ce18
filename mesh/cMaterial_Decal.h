// A picture laid over a surface, which pulses between two colours and may travel.
#pragma once

#include "mesh/cMaterial.h"
#include "reflection/cColorEdit.h"

namespace trellis {

/// Everything moves with the game's time, from the moment the texture was fetched.
class cMaterial_Decal : public cMaterial {
    TRELLIS_CLASS(cMaterial_Decal)

public:
    void CustomCtor() override;
    Type::Enum GetType() const override { return Type::Decal; }
    void Create() override; ///< Starts the pulse, too.
    void ListTextureFiles(cList<cStr>* files) const override { AddTextureFile(files, DecalMap); }

    /// Periods lead from one colour to the other and back in turn, each as a quarter of a sine. `Color0` for a period
    /// of 0.
    cColor GetColor() const override;
    int GetDecalMapID() const override { return m_DecalMapID; }
    cMat4 GetTextureMatrix() const override; ///< A translation by the part of each period that has passed.
    bool GetForceShadows() const override { return ForceShadows; }

    void ReCreate(); ///< Fetches the texture anew, and starts the pulse again.
    void ImportDecalMap();
    void SwapColors();

    cStr DecalMap;
    cColorEdit Color0, Color1;
    float PeriodSec;              ///< From the one colour to the other.
    float UPeriodSec, VPeriodSec; ///< Over the texture's width and height; 0: it stays.
    bool ForceShadows;

private:
    float GetTimeSec() const;

    int m_DecalMapID = -1;
    float m_StartTimeSec = 0;
};

} // namespace trellis
