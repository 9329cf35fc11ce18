// Member kinds: each describes one plain value, which it can zero, save, load, copy and name. An editor picks the
// control of a member by the text of its kind's class name. What cannot be read leaves the value at zero (a
// ranged slider's ends too, and a `_cIndex` without its enum as it was); it is reported and stops nothing.
#pragma once

#include "reflection/cClass.h"

namespace trellis {

/// What every kind supplies in the same way. A kind gives `ClassName` (its registered name) and `DataSize` (bytes of
/// the value), and replaces `CallCtor`, `Save`, `Load`, `FullCopy` and `CompatibleWith`.
template <class Kind, class Base = cClass> class cKind : public Base {
public:
    cKind() { this->cClass::CallCtor(this); } // the palette is complete once any kind lives
    const char* GetClassName() override { return Kind::ClassName; }
    cClass* new_element() override { return new Kind; }
    cOneClassStorage* GetClassStorage() override {
        static cOneClassStorage* OCS = nullptr;
        return cClass_CachedStorage(&OCS, this);
    }
};

/// Base of the kinds whose value is one T: zero is T(), copying is assignment.
template <class T> class cValueKind : public cClass {
public:
    static constexpr int DataSize = sizeof(T);
    void CallCtor(void* data) override { Value(data) = T(); }
    bool FullCopy(void* src, void*, cClass*, void* dst, void*, cClassCopyContext*) override {
        Value(dst) = Value(src);
        return true;
    }

protected:
    static T& Value(void* data) { return *static_cast<T*>(data); }
};

/// Base of the kinds whose value is N numbers in a row. The body has them all, with blanks between. A row of floats may
/// be followed by more numbers, which are ignored; of ints there must be exactly N.
template <class T, int N> class cNumbersKind : public cClass {
public:
    static constexpr int DataSize = N * sizeof(T);
    void CallCtor(void* data) override;
    void Save(cXml& node, void* data, void* extra) override;
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                  cClassCopyContext* context) override;
};

/// An int.
class _cInt : public cKind<_cInt, cValueKind<int>> {
public:
    static constexpr const char* ClassName = "_cInt";
    void Save(cXml& node, void* data, void* extra) override;
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool CompatibleWith(const char*, int size) override { return size == DataSize; }
};

/// A float; three decimals in files.
class _cFloat : public cKind<_cFloat, cValueKind<float>> {
public:
    static constexpr const char* ClassName = "_cFloat";
    void Save(cXml& node, void* data, void* extra) override;
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool CompatibleWith(const char* typeName, int size) override; ///< By the name alone.
};

/// A bool. Whatever does not begin with "true" is false, and no error.
class _cBool : public cKind<_cBool, cValueKind<bool>> {
public:
    static constexpr const char* ClassName = "_cBool";
    void Save(cXml& node, void* data, void* extra) override;
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool CompatibleWith(const char*, int size) override { return size == DataSize; }
};

/// A `cStr`.
class _cStr : public cKind<_cStr, cValueKind<cStr>> {
public:
    static constexpr const char* ClassName = "_cStr";
    void Save(cXml& node, void* data, void* extra) override;
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
};

/// The code of a key, an int; -1 for none.
class _cBind : public cKind<_cBind, cValueKind<int>> {
public:
    static constexpr const char* ClassName = "_cBind";
    void CallCtor(void* data) override { Value(data) = -1; }
    void Save(cXml& node, void* data, void* extra) override;
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool CompatibleWith(const char* typeName, int size) override;
};

/// The id of an image, an int; -1 for none. Ids are given anew in each run, so files never hold one.
class _cImageID : public cKind<_cImageID, cValueKind<int>> {
public:
    static constexpr const char* ClassName = "_cImageID";
    void CallCtor(void* data) override { Value(data) = -1; }
    void Save(cXml&, void*, void*) override {}
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool CompatibleWith(const char* typeName, int size) override;
};

/// Two floats.
class _cFloat2 : public cKind<_cFloat2, cNumbersKind<float, 2>> {
public:
    static constexpr const char* ClassName = "_cFloat2";
    bool CompatibleWith(const char* typeName, int size) override;
};

/// Three floats: a vector or angles.
class _cFloat3 : public cKind<_cFloat3, cNumbersKind<float, 3>> {
public:
    static constexpr const char* ClassName = "_cFloat3";
    bool CompatibleWith(const char* typeName, int size) override;
};

/// Four floats.
class _cFloat4 : public cKind<_cFloat4, cNumbersKind<float, 4>> {
public:
    static constexpr const char* ClassName = "_cFloat4";
    bool CompatibleWith(const char* typeName, int size) override;
};

/// A `cColor`.
class _cColor : public cKind<_cColor, _cFloat4> {
public:
    static constexpr const char* ClassName = "_cColor";
    bool CompatibleWith(const char* typeName, int size) override;
};

/// Two ints.
class _cVec2i : public cKind<_cVec2i, cNumbersKind<int, 2>> {
public:
    static constexpr const char* ClassName = "_cVec2i";
    bool CompatibleWith(const char* typeName, int size) override;
};

/// Three ints.
class _cVec3i : public cKind<_cVec3i, cNumbersKind<int, 3>> {
public:
    static constexpr const char* ClassName = "_cVec3i";
    bool CompatibleWith(const char* typeName, int size) override;
};

// Sliders. The extra data of the first four is what `cClass_MakeRange` gives. The ends bind the control, not the files.

/// A lower and an upper end for the sliders: two numbers. It is never freed.
void* cClass_MakeRange(int low, int high);
void* cClass_MakeRange(float low, float high);

/// An int between two ends.
class _cSliderI : public cKind<_cSliderI, _cInt> {
public:
    static constexpr const char* ClassName = "_cSliderI";
};

/// A float between two ends.
class _cSliderF : public cKind<_cSliderF, _cFloat> {
public:
    static constexpr const char* ClassName = "_cSliderF";
};

/// An int between two ends, with an edit field beside the slider.
class _cEditSliderI : public cKind<_cEditSliderI, _cInt> {
public:
    static constexpr const char* ClassName = "_cEditSliderI";
};

/// A float between two ends, with an edit field beside the slider.
class _cEditSliderF : public cKind<_cEditSliderF, _cFloat> {
public:
    static constexpr const char* ClassName = "_cEditSliderF";
};

/// Three ints: a value and its own ends. Zero is 0 in [0, 1].
class _cSliderRangedI : public cKind<_cSliderRangedI, _cVec3i> {
public:
    static constexpr const char* ClassName = "_cSliderRangedI";
    void CallCtor(void* data) override;
};

/// Three floats: a value and its own ends. Zero is 0 in [0, 1].
class _cSliderRangedF : public cKind<_cSliderRangedF, _cFloat3> {
public:
    static constexpr const char* ClassName = "_cSliderRangedF";
    void CallCtor(void* data) override;
};

// Paths, which differ only in what the file dialog offers.

/// Path of an image.
class _cImageFile : public cKind<_cImageFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cImageFile";
};

/// Path of a model.
class _cModelFile : public cKind<_cModelFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cModelFile";
};

/// Path of an animation.
class _cAnimFile : public cKind<_cAnimFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cAnimFile";
};

/// Path of a recorded camera.
class _cCameraFile : public cKind<_cCameraFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cCameraFile";
};

/// Path of a level.
class _cBspFile : public cKind<_cBspFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cBspFile";
};

/// Path of a sound.
class _cSoundFile : public cKind<_cSoundFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cSoundFile";
};

/// Path of a file of the class engine.
class _cXmlFile : public cKind<_cXmlFile, _cStr> {
public:
    static constexpr const char* ClassName = "_cXmlFile";
};

// What is only shown.

/// A text made at run time: files never hold it, and a load empties it.
class _cLabel : public cKind<_cLabel, _cStr> {
public:
    static constexpr const char* ClassName = "_cLabel";
    void Save(cXml&, void*, void*) override {}
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
};

/// A heading between members: the member's name, with no value behind it.
class _cSeparator : public cKind<_cSeparator> {
public:
    static constexpr const char* ClassName = "_cSeparator";
    static constexpr int DataSize = 0;
    bool ForceProperty() override { return true; } ///< A row of its own, never a node.
    bool FullCopy(void*, void*, cClass*, void*, void*, cClassCopyContext*) override { return true; }
};

} // namespace trellis
