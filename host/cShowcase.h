// A reflected class with a member of every kind, for the demonstration of the editor and for its tests.
#pragma once

#include "math/cVec3.h"
#include "reflection/cClassList.h"
#include "reflection/cColorEdit.h"

namespace trellis {

class cShape : public cClass {
    TRELLIS_CLASS(cShape)

public:
    using cClass::ToString;
    cStr ToString() override { return Name; }

    cStr Name;
};

class cBall : public cShape {
    TRELLIS_CLASS(cBall)

public:
    void CustomCtor() override { Radius = 1; }

    float Radius;
};

class cCrate : public cShape {
    TRELLIS_CLASS(cCrate)

public:
    cVec3 Size;
    cClassList<cShape> Content;
};

class cShowcase : public cClass {
    TRELLIS_CLASS(cShowcase)

public:
    void CustomCtor() override;
    bool IsEnabled(const char* member) override; ///< What is a number needs `Bool`.
    bool IsReadOnly(const char* member) override;
    void Double() { Int *= 2; }
    void DropShapes() { Shapes.RemoveAt(0, Shapes.Count()); }

    bool Bool;
    int Int;
    float Float;
    cStr Str, Fixed;
    int Bind;
    int SliderI, EditSliderI, RangedI[3];
    float SliderF, EditSliderF, RangedF[3];
    int Side;
    float Float2[2], Float3[3], Float4[4];
    int Vec2i[2], Vec3i[3];
    cStr Files[7];
    int Image;
    cColor Plain;
    cStr State;
    cColorEdit Color;
    cBall Best; // as a simple panel
    cClassList<cShape> Shapes;
};

} // namespace trellis
