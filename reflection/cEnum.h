// Named enumerations: what the members of kind `_cIndex` choose from. One thread, as all reflective work.
#pragma once

#include "foundation/cStrHash.h"

namespace trellis {

/// Names with their values. A class fills its enums in `CustomCtor`, and so again for each new object:
///
///     cEnum* sides = cEnums::Get("cLamp_Side");
///     sides->Clear();
///     sides->Add("Left", 0);
///     sides->Add("Right", 1);
class cEnum {
public:
    void Clear();

    /// Appends a value, or gives a name that is there a new value. A null name is ignored.
    void Add(const char* name, unsigned value);

    int Find(const char* name) const { return Names.Find(name); } ///< Position in `Values`, or -1. Case counts.
    const char* GetName(int value) const; ///< The name of the first entry of that value; "" for none.

    cStrHash Names; ///< Each with its position in `Values`.
    cList<int> Values;
    cList<int> Images; ///< Beside `Values`, -1 each; nothing reads it.
    cList<int> Groups; ///< Emptied by `Clear`; nothing reads it.
};

/// All enumerations by name. They live until the process ends, whatever happens to the register.
class cEnums {
public:
    static cEnum* Get(const char* name); ///< Made when it is not there, and for a null name each time. Never null.

    /// A new one. Of two with one name `Get` finds either, so this is for names that `Get` would not find.
    static cEnum* Create(const char* name);

    static void ClearAll(); ///< Empties the register. Members keep the enums that they have.

    static cList<cEnum*>& s_Enums;
    static cStrHash& s_Reg; ///< Each name with its position in `s_Enums`.
};

} // namespace trellis
