// Reflected classes for the tests: a base, a derived class with setters and properties, and a class of lists.
#pragma once

#include "reflection/cClassList.h"
#include "reflection/cClassMembers.h"
#include "reflection/cColorEdit.h"

#include <string>

class cLight : public trellis::cClass {
    TRELLIS_CLASS(cLight)

public:
    void CustomCtor() override { Power = 40; }

    bool On;
    int Power;
    trellis::cStr Room;
};

class cLamp : public cLight {
    TRELLIS_CLASS(cLamp)

public:
    void CustomCtor() override {
        cLight::CustomCtor();
        Height = 1.5f;
        Dim = 0;
        Trace += "+";
    }
    void CustomDtor() override { Trace += "-"; }
    void OnProcess() override { Trace += "o"; }
    void Blink() { Blinks++; }

    float Height;
    trellis::cColorEdit Shade;
    int Dim; // through accessors
    int Blinks = 0;
    static inline int Count = 7;
    // Calls of constructors, destructors and setters; prototypes write into it until the very end.
    static inline std::string& Trace = *new std::string;
};

class cRoom : public trellis::cClass {
    TRELLIS_CLASS(cRoom)

public:
    trellis::cStr Name;
    trellis::cClassList<cLight> Lights;
};
