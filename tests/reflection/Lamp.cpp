#include "tests/reflection/Lamp.h"

using namespace trellis;

void cLight::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cBool>(On, "On");
    members.AddRanged<_cSliderI>(Power, "Power", 0, 100);
    members.Add<_cStr>(Room, "Room");
}

void cLamp::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddParent<cLight>();
    members.Add<_cFloat>(Height, "Height");
    members.AddSeparator("Looks");
    members.AddObject(Shade, "Shade");
    cClass::StaticMode = 1;
    cClass::NoSaveMode = 1;
    members.Add<_cInt>(Count, "Count");
    RegisterOneMemberIntProperty(
        new _cInt, [](void* lamp) { return static_cast<cLamp*>(static_cast<cClass*>(lamp))->Dim; },
        [](void* lamp, int value) {
            static_cast<cLamp*>(static_cast<cClass*>(lamp))->Dim = value;
            Trace += "d" + std::to_string(value);
        },
        "Dim", nullptr, GetClassName(), 2);
    members.AddButton(&cLamp::Blink, "&cLamp::Blink");
    GetElementStorage("Power")->PtrSetter = [](void*, void* power) {
        Trace += "p" + std::to_string(*static_cast<int*>(power));
    };
}

void cRoom::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cStr>(Name, "Name");
    members.AddObject(Lights, "Lights");
}
