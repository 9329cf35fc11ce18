// Objects from arbitrary texts: one member of every kind, member objects, and a list that takes any class. Whatever was
// read is saved, and what was saved reads back.
#include "animation/cSpline.h"
#include "foundation/cLog.h"
#include "reflection/cClassList.h"
#include "reflection/cClassMembers.h"
#include "reflection/cColorEdit.h"
#include "reflection/cEnum.h"
#include "reflection/cImageSwatchFile.h"
#include "view/cPosition.h"
#include "view/cTransform.h"

#include <cstdint>
#include <cstdlib>

using namespace trellis;

namespace {

class cEverything : public cClass {
    TRELLIS_CLASS(cEverything)

public:
    void CustomCtor() override {
        cEnum* sides = cEnums::Get("cEverything_Side");
        sides->Clear();
        sides->Add("Left", 0);
        sides->Add("Right", 5);
        Dim = 0;
    }
    void Press() {}

    int Int, Bind, Image, Index, SliderI, EditI;
    float Float, SliderF, EditF;
    float F2[2], F3[3], F4[4], C4[4], RangedF[3];
    int I2[2], I3[3], RangedI[3];
    bool Bool;
    cStr Str, ImageFile, XmlFile, Label;
    cColorEdit ColorEdit;
    cImageSwatchFile Swatch;
    cPosition Position;
    cTransform Transform;
    cSpline Spline;
    cClassList<cEverything> Children;
    int Dim;
};

int GetDim(void* object) {
    return static_cast<cEverything*>(static_cast<cClass*>(object))->Dim;
}
void SetDim(void* object, int dim) {
    static_cast<cEverything*>(static_cast<cClass*>(object))->Dim = dim;
}

void cEverything::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cInt>(Int, "Int");
    members.Add<_cBind>(Bind, "Bind");
    members.Add<_cImageID>(Image, "Image");
    members.AddEnum(Index, "Index", cEnums::Get("cEverything_Side"));
    members.AddRanged<_cSliderI>(SliderI, "SliderI", 0, 9);
    members.AddRanged<_cEditSliderI>(EditI, "EditI", 0, 9);
    members.Add<_cFloat>(Float, "Float");
    members.AddRanged<_cSliderF>(SliderF, "SliderF", 0.0f, 1.0f);
    members.AddRanged<_cEditSliderF>(EditF, "EditF", 0.0f, 1.0f);
    members.Add<_cFloat2>(F2, "F2");
    members.Add<_cFloat3>(F3, "F3");
    members.Add<_cFloat4>(F4, "F4");
    members.Add<_cColor>(C4, "C4");
    members.Add<_cSliderRangedF>(RangedF, "RangedF");
    members.Add<_cVec2i>(I2, "I2");
    members.Add<_cVec3i>(I3, "I3");
    members.Add<_cSliderRangedI>(RangedI, "RangedI");
    members.Add<_cBool>(Bool, "Bool");
    members.Add<_cStr>(Str, "Str");
    members.Add<_cImageFile>(ImageFile, "ImageFile");
    members.Add<_cXmlFile>(XmlFile, "XmlFile");
    members.Add<_cLabel>(Label, "Label");
    members.AddSeparator("Heading");
    members.AddButton(&cEverything::Press, "&cEverything::Press");
    members.AddObject(ColorEdit, "ColorEdit");
    members.AddObject(Swatch, "Swatch");
    members.AddObject(Position, "Position");
    members.AddObject(Transform, "Transform");
    members.AddObject(Spline, "Spline");
    members.AddObject(Children, "Children");
    RegisterOneMemberIntProperty(new _cInt, GetDim, SetDim, "Dim", nullptr, GetClassName(), ~0u);
}

void Check(bool ok) {
    if (!ok) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cLog::GetLogMutable().Clear();
    cStr text;
    text.Append("<a>");
    text.Append(reinterpret_cast<const char*>(data), 0, int(size));
    text.Append("</a>");
    cEverything object;
    object.ReadFromString(text);
    cStr saved;
    Check(object.WriteToString(&saved));
    cEverything again;
    Check(again.ReadFromString(saved));
    cStr copied;
    cClass* clone = object.Clone();
    Check(clone->WriteToString(&copied));
    Check(copied == saved);
    delete clone;
    return 0;
}
