// Base of the materials: what a surface looks like, as a renderer asks for it.
#pragma once

#include "math/cColor.h"
#include "math/cMat4.h"
#include "reflection/cClassMembers.h"

namespace trellis {

/// A material answers what it knows and leaves the rest as the base has it. Its textures are fetched when a mesh
/// first names it; their ids are -1 until then, for an empty file name, and without a device.
class cMaterial : public cClass {
    TRELLIS_CLASS(cMaterial)

public:
    using cClass::ToString;

    class Type {
    public:
        enum Enum : int { None, Bump, Glass, Decal, Interface }; ///< No class answers `Glass`.
    };
    class ImportType {
    public:
        enum Enum : int { Diffuse, NormalMap, HeightMap, NormalMapPlusHeightMap };
    };

    cStr ToString() override; ///< "Rock (Bump)"; empty without a name.

    virtual Type::Enum GetType() const { return Type::None; }

    /// Fetches the textures, unless one is there already.
    virtual void Create() {}
    virtual void ListTextureFiles(cList<cStr>*) const {} ///< Appends the file names that are not empty.
    virtual cColor GetDiffuseMapModulator() const { return cColor::White; }
    virtual int GetDiffuseMapID() const { return -1; }
    virtual int GetNormalMapID() const { return -1; }
    virtual bool UseSpecular() const { return false; }
    virtual int GetInterfaceMapID() const { return -1; }
    virtual float GetRefractionDepth() const { return 0; }
    virtual float GetReflectionDepth() const { return 0; }
    virtual cColor GetColor() const { return cColor::White; }
    virtual float GetAmbientCoeff() const { return 0; }
    virtual float GetDiffuseCoeff() const { return 0; }
    virtual float GetMixRatio() const { return 0; }
    virtual int GetDecalMapID() const { return -1; }
    virtual cMat4 GetTextureMatrix() const { return cMat4::Identity; }
    virtual bool GetForceShadows() const { return false; }

    cStr MaterialName;

protected:
    static int FetchTexture(const cStr& filePn);
    static void AddTextureFile(cList<cStr>* files, const cStr& filePn);
};

} // namespace trellis
