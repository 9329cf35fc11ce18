#include "host/cShowcase.h"

#include "reflection/cEnum.h"
#include "view/cInput.h"

#include <cstring>

namespace trellis {

void cShape::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.Add<_cStr>(Name, "Name");
    }
}

void cBall::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddParent<cShape>();
        members.Add<_cFloat>(Radius, "Radius");
    }
}

void cCrate::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddParent<cShape>();
        members.Add<_cFloat3>(Size, "Size");
        members.AddObject(Content, "Content");
    }
}

void cShowcase::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    {
        cBall ball; // known to files and to the box of classes before any lives
        cClass_RegClass(&ball, "Round");
        cCrate crate;
        cClass_RegClass(&crate, "Angular");
    }
    members.AddSeparator("Numbers");
    members.Add<_cBool>(Bool, "Bool");
    members.Add<_cInt>(Int, "Int");
    members.AddButton(&cShowcase::Double, "&cShowcase::Double");
    members.Add<_cFloat>(Float, "Float");
    members.AddRanged<_cSliderI>(SliderI, "SliderI", 0, 10);
    members.AddRanged<_cSliderF>(SliderF, "SliderF", 0.0f, 1.0f);
    members.AddRanged<_cEditSliderI>(EditSliderI, "EditSliderI", 0, 10);
    members.AddRanged<_cEditSliderF>(EditSliderF, "EditSliderF", 0.0f, 1.0f);
    members.Add<_cSliderRangedI>(RangedI, "RangedI");
    members.Add<_cSliderRangedF>(RangedF, "RangedF");
    members.Add<_cFloat2>(Float2, "Float2");
    members.Add<_cFloat3>(Float3, "Float3");
    members.Add<_cFloat4>(Float4, "Float4");
    members.Add<_cVec2i>(Vec2i, "Vec2i");
    members.Add<_cVec3i>(Vec3i, "Vec3i");
    members.AddSeparator("Choices and texts");
    members.AddEnum(Side, "Side", cEnums::Get("cShowcase_Side"));
    members.Add<_cBind>(Bind, "Bind");
    members.Add<_cStr>(Str, "Str");
    members.Add<_cStr>(Fixed, "Fixed");
    members.Add<_cLabel>(State, "State");
    members.AddSeparator("Files");
    members.Add<_cImageFile>(Files[0], "ImageFile");
    members.Add<_cModelFile>(Files[1], "ModelFile");
    members.Add<_cAnimFile>(Files[2], "AnimFile");
    members.Add<_cCameraFile>(Files[3], "CameraFile");
    members.Add<_cBspFile>(Files[4], "BspFile");
    members.Add<_cSoundFile>(Files[5], "SoundFile");
    members.Add<_cXmlFile>(Files[6], "XmlFile");
    members.AddSeparator("Pictures");
    members.Add<_cImageID>(Image, "Image");
    members.Add<_cColor>(Plain, "Plain");
    members.AddObject(Color, "Color");
    SimpleMode = 1;
    members.AddObject(Best, "Best");
    members.AddObject(Shapes, "Shapes");
    members.AddButton(&cShowcase::DropShapes, "&cShowcase::DropShapes");
}

void cShowcase::CustomCtor() {
    cEnum* sides = cEnums::Get("cShowcase_Side");
    sides->Clear();
    sides->Add("Left", 0);
    sides->Add("Right", 1);
    sides->Add("Both", 3);
    Bool = true;
    Int = 5;
    Bind = cInput::Space;
    RangedI[2] = 10;
    Fixed = "as it is";
    State = "ready";
    Plain = cColor::Orange;
}

bool cShowcase::IsEnabled(const char* member) {
    return Bool || (std::strcmp(member, "Float") != 0 && std::strcmp(member, "Double") != 0);
}

bool cShowcase::IsReadOnly(const char* member) {
    return std::strcmp(member, "Fixed") == 0;
}

} // namespace trellis
