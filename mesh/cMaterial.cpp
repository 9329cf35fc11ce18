#include "mesh/cMaterial.h"

#include "render/cRender.h"

#include <iterator>

namespace trellis {

namespace {

constexpr const char* s_Words[] = {"None", "Bump", "Glass", "Decal", "Interface"}; // indexed by Type
static_assert(std::size(s_Words) == cMaterial::Type::Interface + 1, "type added without its word");

} // namespace

void cMaterial::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cStr>(MaterialName, "MaterialName");
    members.AddSeparator("");
}

cStr cMaterial::ToString() {
    return MaterialName.IsEmpty() ? cStr() : MaterialName + cStr::Format(" (%s)", s_Words[GetType()]);
}

int cMaterial::FetchTexture(const cStr& filePn) {
    // A service resolves the materials of its models as well, and draws nothing.
    return filePn.IsEmpty() || !cRender::GetInstance() ? -1 : cRender::GetTextureID(filePn, -1);
}

void cMaterial::AddTextureFile(cList<cStr>* files, const cStr& filePn) {
    if (!filePn.IsEmpty()) {
        files->Add(filePn);
    }
}

} // namespace trellis
