#include "mesh/cMaterial_Interface.h"

#include "mesh/cMaterial_Import.h"

namespace trellis {

void cMaterial_Interface::CustomCtor() {
    cMaterial::CustomCtor();
    m_InterfaceMapID = -1;
}

void cMaterial_Interface::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddParent<cMaterial>();
    members.AddButton(&cMaterial_Interface::ReCreate, "&cMaterial_Interface::ReCreate");
    members.Add<_cImageFile>(InterfaceMap, "InterfaceMap");
    members.AddButton(&cMaterial_Interface::ImportInterfaceMap, "&cMaterial_Interface::ImportInterfaceMap");
    members.Add<_cBool>(Specular, "Specular");
}

void cMaterial_Interface::Create() {
    if (m_InterfaceMapID == -1) {
        ReCreate();
    }
}

void cMaterial_Interface::ReCreate() {
    m_InterfaceMapID = FetchTexture(InterfaceMap);
}

void cMaterial_Interface::ImportInterfaceMap() {
    cMaterial_ImportArgs args;
    args.KeepAlpha = true;
    args.DiffuseMap = &InterfaceMap;
    cMaterial_Import(&args);
    if (args.Changed) {
        ReCreate();
    }
}

} // namespace trellis
