// A lit surface: a diffuse map, and a normal map for the light.
#pragma once

#include "mesh/cMaterial.h"
#include "reflection/cColorEdit.h"

namespace trellis {

class cMaterial_Bump : public cMaterial {
    TRELLIS_CLASS(cMaterial_Bump)

public:
    void CustomCtor() override;
    Type::Enum GetType() const override { return Type::Bump; }
    void Create() override;
    void ListTextureFiles(cList<cStr>* files) const override;
    cColor GetDiffuseMapModulator() const override {
        return DiffuseMapModulator.Color * DiffuseMapModulator.Modulator.Value;
    }
    int GetDiffuseMapID() const override { return m_DiffuseMapID; }
    int GetNormalMapID() const override { return m_NormalMapID; }

    void ReCreate(); ///< Fetches both textures anew.

    // Pictures that the user picks, see `cMaterial_Import`. The maps are fetched anew when one has changed.
    void ImportDiffuseMap();
    void ImportHeightMap();
    void ImportNormalMap();
    void ImportNormalMapPlusHeightMap();

    cColorEdit DiffuseMapModulator;
    cStr DiffuseMap; ///< A file, as all maps.
    bool ImportDiffuseMapKeepAlpha;
    cStr NormalMap;
    float ImportHeightMapScaleZ;
    bool ImportHeightMapSaveHeightAsAlpha;
    bool ImportNormalMapKeepAlpha;
    bool ImportNormalMapInvertGreen; ///< Of height maps as well.

private:
    void Import(ImportType::Enum type);

    int m_DiffuseMapID = -1;
    int m_NormalMapID = -1;
};

} // namespace trellis
