#include "mesh/cMaterial_Bump.h"

#include "mesh/cMaterial_Import.h"

namespace trellis {

void cMaterial_Bump::CustomCtor() {
    cMaterial::CustomCtor();
    ImportDiffuseMapKeepAlpha = true;
    ImportHeightMapScaleZ = 1;
    m_DiffuseMapID = m_NormalMapID = -1;
}

void cMaterial_Bump::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddParent<cMaterial>();
    members.AddButton(&cMaterial_Bump::ReCreate, "&cMaterial_Bump::ReCreate");
    members.AddObject(DiffuseMapModulator, "DiffuseMapModulator");
    members.Add<_cImageFile>(DiffuseMap, "DiffuseMap");
    members.AddButton(&cMaterial_Bump::ImportDiffuseMap, "&cMaterial_Bump::ImportDiffuseMap");
    members.Add<_cBool>(ImportDiffuseMapKeepAlpha, "ImportDiffuseMapKeepAlpha");
    members.Add<_cImageFile>(NormalMap, "NormalMap");
    members.AddButton(&cMaterial_Bump::ImportHeightMap, "&cMaterial_Bump::ImportHeightMap");
    members.Add<_cFloat>(ImportHeightMapScaleZ, "ImportHeightMapScaleZ");
    members.Add<_cBool>(ImportHeightMapSaveHeightAsAlpha, "ImportHeightMapSaveHeightAsAlpha");
    members.AddButton(&cMaterial_Bump::ImportNormalMap, "&cMaterial_Bump::ImportNormalMap");
    members.Add<_cBool>(ImportNormalMapKeepAlpha, "ImportNormalMapKeepAlpha");
    members.Add<_cBool>(ImportNormalMapInvertGreen, "ImportNormalMapInvertGreen");
    members.AddButton(&cMaterial_Bump::ImportNormalMapPlusHeightMap, "&cMaterial_Bump::ImportNormalMapPlusHeightMap");
}

void cMaterial_Bump::Create() {
    if (m_DiffuseMapID == -1 && m_NormalMapID == -1) {
        ReCreate();
    }
}

void cMaterial_Bump::ReCreate() {
    m_DiffuseMapID = FetchTexture(DiffuseMap);
    m_NormalMapID = FetchTexture(NormalMap);
}

void cMaterial_Bump::ListTextureFiles(cList<cStr>* files) const {
    AddTextureFile(files, DiffuseMap);
    AddTextureFile(files, NormalMap);
}

void cMaterial_Bump::ImportDiffuseMap() {
    Import(ImportType::Diffuse);
}

void cMaterial_Bump::ImportHeightMap() {
    Import(ImportType::HeightMap);
}

void cMaterial_Bump::ImportNormalMap() {
    Import(ImportType::NormalMap);
}

void cMaterial_Bump::ImportNormalMapPlusHeightMap() {
    Import(ImportType::NormalMapPlusHeightMap);
}

void cMaterial_Bump::Import(ImportType::Enum type) {
    cMaterial_ImportArgs args;
    args.Type = type;
    args.KeepAlpha = ImportDiffuseMapKeepAlpha;
    args.Compress = true;
    args.NormalKeepAlpha = ImportNormalMapKeepAlpha;
    args.InvertGreen = ImportNormalMapInvertGreen;
    args.ScaleZ = ImportHeightMapScaleZ;
    args.HeightAsAlpha = ImportHeightMapSaveHeightAsAlpha;
    args.DiffuseMap = &DiffuseMap;
    args.NormalMap = &NormalMap;
    cMaterial_Import(&args);
    if (args.Changed) {
        ReCreate();
    }
}

} // namespace trellis
