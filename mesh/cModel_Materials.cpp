// A model's way to the materials, which need reflection and textures; geometry does not.
#include "mesh/cMaterials.h"
#include "mesh/cModel.h"

namespace trellis {

void cModel::GetMaterialsID() {
    for (Mesh& mesh : Meshes) {
        mesh.MaterialID = g_Materials.GetMaterialID(mesh.MaterialName);
    }
}

} // namespace trellis
