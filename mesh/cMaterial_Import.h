// From the picture files of a user to textures as the renderer wants them.
#pragma once

#include "mesh/cMaterial.h"

namespace trellis {

struct cMaterial_ImportArgs {
    cMaterial::ImportType::Enum Type = cMaterial::ImportType::Diffuse;
    bool KeepAlpha = false; ///< Of a diffuse picture.
    bool Compress = false;  ///< A diffuse picture; normal maps always are.
    bool NormalKeepAlpha = false;
    bool InvertGreen = false; ///< Of every normal map, made or loaded.
    float ScaleZ = 1;         ///< Of a height map.
    bool HeightAsAlpha = false;
    cStr* DiffuseMap = nullptr; ///< Name of the file to write, for the type `Diffuse`: proposed, and set to what it
                                ///< became. Also that of a decal's or an interface's picture. Empty: by the source's.
    cStr* NormalMap = nullptr;  ///< The same for the other types.
    int Reserved = 0;           ///< Stays 0.
    bool Changed = false;       ///< Out: whether a file was written.
};

/// Asks for a picture, or for two, and for a file; writes that, and has its texture reloaded. The target's name is then
/// relative to the read folder, where it lies under it. Ends with `Changed` false and no file written where the
/// user cancels a dialog, or a picture cannot be read, used or saved, or there is no room for it.
///
/// - `Diffuse`: a picture of bytes with one, three or four channels.
/// - `NormalMap`: a picture that is one.
/// - `HeightMap`: a picture that becomes one, by its brightness.
/// - `NormalMapPlusHeightMap`: first a normal map, then a height map that adds its relief where both have one size;
///   otherwise the normal map stays as it is. One of the same size that has no normals is refused.
///
/// A diffuse picture that is not compressed is an interface's or a particle's: it goes to "Textures/Particles".
void cMaterial_Import(cMaterial_ImportArgs* args);

} // namespace trellis
