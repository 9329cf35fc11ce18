// A picture that is shown as it is, unlit: particles and parts of an interface.
#pragma once

#include "mesh/cMaterial.h"

namespace trellis {

class cMaterial_Interface : public cMaterial {
    TRELLIS_CLASS(cMaterial_Interface)

public:
    void CustomCtor() override;
    Type::Enum GetType() const override { return Type::Interface; }
    void Create() override;
    void ListTextureFiles(cList<cStr>* files) const override { AddTextureFile(files, InterfaceMap); }
    bool UseSpecular() const override { return Specular; }
    int GetInterfaceMapID() const override { return m_InterfaceMapID; }

    void ReCreate(); ///< Fetches the texture anew.
    void ImportInterfaceMap();

    cStr InterfaceMap;
    bool Specular;

private:
    int m_InterfaceMapID = -1;
};

} // namespace trellis
