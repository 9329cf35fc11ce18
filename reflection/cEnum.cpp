#include "reflection/cEnum.h"

#include "foundation/cImmortal.h"

namespace trellis {

namespace {

constinit cImmortal<cList<cEnum*>> s_EnumsStore;
constinit cImmortal<cStrHash> s_RegStore;

// Every enum ever made. Member tables point at enums that the register has dropped.
constinit cImmortal<cList<cEnum*>> s_Made;

} // namespace

constinit cList<cEnum*>& cEnums::s_Enums = s_EnumsStore.Value;
constinit cStrHash& cEnums::s_Reg = s_RegStore.Value;

void cEnum::Clear() {
    Names.Clear();
    Values.Clear();
    Images.Clear();
    Groups.Clear();
}

void cEnum::Add(const char* name, unsigned value) {
    if (!name) {
        return;
    }
    const int position = Find(name);
    if (position >= 0) {
        Values[position] = int(value);
        return;
    }
    Names.Add(name, Values.Count());
    Values.Add(int(value));
    Images.Add(-1);
}

const char* cEnum::GetName(int value) const {
    const int position = Values.IndexOf(value);
    for (const cStrHash::NameIndex& entry : Names.GetNames()) {
        if (entry.Index == position) {
            return entry.Name.Text();
        }
    }
    return "";
}

cEnum* cEnums::Get(const char* name) {
    const int position = s_Reg.Find(name);
    return position >= 0 ? s_Enums[position] : Create(name);
}

cEnum* cEnums::Create(const char* name) {
    auto* made = new cEnum;
    s_Made.Value.Add(made);
    s_Reg.Add(name, s_Enums.Add(made));
    return made;
}

void cEnums::ClearAll() {
    s_Enums.Clear();
    s_Reg.Clear();
}

} // namespace trellis
