#include "reflection/Kinds.h"

#include "foundation/cImmortal.h"
#include "reflection/_cIndex.h"
#include "reflection/cEnum.h"
#include "reflection/cErrorPager.h"
#include "reflection/cXml.h"

namespace trellis {

namespace {

/// @return false, for `Load` to hand on
bool Unreadable(const cXml& node, cErrorPager* pager, const char* complaint) {
    if (pager) {
        pager->xml_print(node, "%s: %s\n", complaint, node.Get_string());
    }
    return false;
}

bool IsType(const char* typeName, const char* expected) {
    return typeName && cStr::Compare(typeName, expected) == 0;
}

constexpr int FloatDecimals = 3;

cStr RowText(const float* row, int count) {
    return cStr::ToString(row, count, FloatDecimals, " ");
}

cStr RowText(const int* row, int count) {
    return cStr::ToString(row, count, " ");
}

// Files give vectors of four to members of three, so a row of floats may go on behind what is read; too many ints have
// always been refused. A word that is no number refuses either row, wherever it stands.
bool ReadRow(const char* text, int count, cList<float>* out) {
    return cStr::ToFloatArray(text, out) && out->Count() >= count;
}

bool ReadRow(const char* text, int count, cList<int>* out) {
    return cStr::ToIntArray(text, out) && out->Count() == count;
}

const char* RowComplaint(float*, int count) {
    return count == 2   ? "Parsing error during \"_cFloat2\" read from XML"
           : count == 3 ? "Parsing error during \"_cFloat3\" read from XML"
                        : "Parsing error during \"_cFloat4\" read from XML";
}

const char* RowComplaint(int*, int count) {
    return count == 2 ? "Parsing error during \"_cVec2i\" read from XML"
                      : "Parsing error during \"_cVec3i\" read from XML";
}

// Tables point into the ranges until the very end, and classes register at any time before it.
constinit cImmortal<cList<void*>> s_Ranges;

template <class T> void* MakeRange(T low, T high) {
    void* range = new T[2]{low, high};
    s_Ranges.Value.Add(range);
    return range;
}

} // namespace

void* cClass_MakeRange(int low, int high) {
    return MakeRange(low, high);
}

void* cClass_MakeRange(float low, float high) {
    return MakeRange(low, high);
}

template <class T, int N> void cNumbersKind<T, N>::CallCtor(void* data) {
    std::fill_n(static_cast<T*>(data), N, T());
}

template <class T, int N> void cNumbersKind<T, N>::Save(cXml& node, void* data, void*) {
    node.Assign_string(RowText(static_cast<T*>(data), N));
}

template <class T, int N> bool cNumbersKind<T, N>::Load(cXml& node, void* data, cErrorPager* pager, void*) {
    T* row = static_cast<T*>(data);
    cList<T> read;
    if (!ReadRow(node.Get_string(), N, &read)) {
        std::fill_n(row, N, T()); // all of it, also of a ranged slider, whose own zero has an upper end of 1
        return Unreadable(node, pager, RowComplaint(row, N));
    }
    std::copy_n(read.Data(), N, row);
    return true;
}

template <class T, int N>
bool cNumbersKind<T, N>::FullCopy(void* src, void*, cClass*, void* dst, void*, cClassCopyContext*) {
    std::copy_n(static_cast<T*>(src), N, static_cast<T*>(dst));
    return true;
}

template class cNumbersKind<float, 2>;
template class cNumbersKind<float, 3>;
template class cNumbersKind<float, 4>;
template class cNumbersKind<int, 2>;
template class cNumbersKind<int, 3>;

bool _cFloat2::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "cVec2");
}

bool _cFloat3::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && (IsType(typeName, "cVec3") || IsType(typeName, "cAngles"));
}

bool _cFloat4::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "cVec4");
}

bool _cColor::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "cColor");
}

bool _cVec2i::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "cVec.int.2");
}

bool _cVec3i::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "cVec.int.3");
}

void _cSliderRangedI::CallCtor(void* data) {
    _cVec3i::CallCtor(data);
    static_cast<int*>(data)[2] = 1;
}

void _cSliderRangedF::CallCtor(void* data) {
    _cFloat3::CallCtor(data);
    static_cast<float*>(data)[2] = 1;
}

void _cInt::Save(cXml& node, void* data, void*) {
    node.Assign_int(Value(data));
}

bool _cInt::Load(cXml& node, void* data, cErrorPager* pager, void*) {
    return cStr::ToInt(node.Get_string(), &Value(data)) || Unreadable(node, pager, "unable to read dword from XML");
}

void _cFloat::Save(cXml& node, void* data, void*) {
    node.Assign_string(RowText(&Value(data), 1));
}

bool _cFloat::Load(cXml& node, void* data, cErrorPager* pager, void*) {
    return cStr::ToFloat(node.Get_string(), &Value(data)) || Unreadable(node, pager, "unable to read float from XML");
}

bool _cFloat::CompatibleWith(const char* typeName, int) {
    return IsType(typeName, "float");
}

void _cBool::Save(cXml& node, void* data, void*) {
    node.Assign_string(Value(data) ? "true" : "false");
}

bool _cBool::Load(cXml& node, void* data, cErrorPager*, void*) {
    const char* text = node.Get_string();
    text += std::strspn(text, " \t");
    Value(data) = cStr::Compare(text, "true", 4) == 0; // "trueish" is true as well
    return true;
}

void _cStr::Save(cXml& node, void* data, void*) {
    node.Assign_string(Value(data));
}

bool _cStr::Load(cXml& node, void* data, cErrorPager*, void*) {
    Value(data) = node.GetBody();
    return true;
}

bool _cLabel::Load(cXml&, void* data, cErrorPager*, void*) {
    CallCtor(data);
    return true;
}

void _cBind::Save(cXml& node, void* data, void*) {
    node.Assign_int(Value(data));
}

bool _cBind::Load(cXml& node, void* data, cErrorPager* pager, void*) {
    if (!cStr::ToInt(node.Get_string(), &Value(data))) {
        CallCtor(data);
        return Unreadable(node, pager, "Parsing error during \"int\" read from XML");
    }
    return true;
}

bool _cBind::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "int");
}

bool _cImageID::Load(cXml&, void* data, cErrorPager*, void*) {
    CallCtor(data);
    return true;
}

bool _cImageID::CompatibleWith(const char* typeName, int size) {
    return size == DataSize && IsType(typeName, "int");
}

void _cIndex::Save(cXml& node, void* data, void* extra) {
    if (const auto* values = static_cast<const cEnum*>(extra)) {
        node.Assign_string(values->GetName(Value(data)));
    }
}

bool _cIndex::Load(cXml& node, void* data, cErrorPager* pager, void* extra) {
    const auto* values = static_cast<const cEnum*>(extra);
    if (!values) {
        if (pager) {
            pager->xml_print(node, "cEnum not assigned for type \"_cIndex\" for variable %s\n", node.GetQuoteName());
        }
        return false;
    }
    // A name that has gone since the file was written is no error: the enum's first value stands in.
    const int position = values->Find(node.Get_string());
    const int value = position < 0 ? -1 : values->Values[position];
    Value(data) = value != -1 ? value : values->Values.IsEmpty() ? 0 : values->Values[0];
    return true;
}

} // namespace trellis
