// The built-in classes, which come from all over the framework.
#include "editor/cClassExplorer.h"

#include "animation/cSpline.h"
#include "reflection/Kinds.h"
#include "reflection/cColorEdit.h"
#include "reflection/cImageSwatchFile.h"
#include "view/cPosition.h"
#include "view/cTransform.h"

#include <memory>

namespace trellis {

namespace {

template <class T> void RegisterOne() {
    const auto model = std::make_unique<T>();
    cClass_RegClass(model.get(), nullptr);
}

template <class... T> void Register() {
    (RegisterOne<T>(), ...);
}

} // namespace

void cClassExplorer::RegisterBuiltIn() {
    Inited = true; // ahead of everything: the models below are reflected objects and come back here
    // Kinds first: an object class skips the members whose kind is not there.
    Register<_cFloat, _cInt, _cStr, _cFloat2, _cFloat3, _cFloat4, _cVec2i, _cVec3i, _cColor, _cBool, _cBind, _cSliderI,
             _cSliderF, _cEditSliderI, _cEditSliderF, _cSliderRangedI, _cSliderRangedF, _cSeparator, _cImageFile,
             _cModelFile, _cAnimFile, _cCameraFile, _cBspFile, _cXmlFile, _cSoundFile, _cImageID, _cLabel>();
    Register<cImageSwatchFile, cColorEdit, cPosition, cTransform, cSpline>();
}

} // namespace trellis
