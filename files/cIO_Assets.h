// What the four kinds of asset share: tables by extension, loading and saving through them.
#pragma once

#include "files/cFile.h"
#include "files/cIO_Internal.h"
#include "foundation/cLog.h"

#include <memory>
#include <new>
#include <utility>

namespace trellis {

/// A path as the log and the registry know it: relative to the read folder where it lies under that.
cStr cIO_RelativePath(const char* path);

/// The codec for a path's extension, without regard to case; null for none.
template <class Info> auto* cIO_FindCodec(const cList<Info>& codecs, const cStr& path) {
    const cStr extension = path.GetFileExtension();
    for (const Info& info : codecs) {
        if (cStr::EqualsNoCase(&info.Extension, &extension)) {
            return info.Codec;
        }
    }
    return decltype(codecs[0].Codec){};
}

/// The first registration of an extension wins.
///
/// @param word  what the codec is for and what it can do, as in "image codec."
/// @return false when the extension was there; the codec stays the caller's
template <class Info, class Codec>
bool cIO_AddCodecTo(cList<Info>& codecs, const char* extension, Codec* codec, const char* word) {
    const cStr wanted(extension);
    for (const Info& info : codecs) {
        if (cStr::EqualsNoCase(&info.Extension, &wanted)) {
            return false;
        }
    }
    codecs.Add({wanted, codec});
    cLog::Message("Added \"%s\" %s", wanted.Text(), word);
    return true;
}

/// @param asset  empty when it cannot be decoded
/// @param kind   as in "Can't load model file"
template <class Info, class Asset>
bool cIO_LoadAsset(const char* path, Asset* asset, const cList<Info>& codecs, const char* kind) {
    const cStr relative = cIO_RelativePath(path);
    cFile file;
    if (!cIO::LoadFile(relative, &file, false)) {
        cLog::Warning("Can't load %s file \"%s\"", kind, relative.Text());
        return false;
    }
    auto* codec = cIO_FindCodec(codecs, relative); // an unknown extension cannot be decoded, as far as anyone cares
    bool decoded = false;
    try {
        decoded = codec && codec->Decode(file, asset);
    } catch (const std::bad_alloc&) { // a small file may stand for more than there is room for
    }
    if (!decoded) {
        asset->Free();
        cLog::Warning("Can't decode %s file \"%s\"", kind, relative.Text());
        return false;
    }
    cLog::Message("Loaded %s file \"%s\"", kind, relative.Text());
    return true;
}

/// @param what  as in "Can't encode model file"
template <class Info, class Asset>
bool cIO_SaveAsset(const char* path, const Asset& asset, const cList<Info>& codecs, const char* what) {
    const cStr name(path);
    auto* codec = name.GetFileExtension().IsEmpty() ? nullptr : cIO_FindCodec(codecs, name);
    if (!codec) {
        return false;
    }
    cFile file;
    bool encoded = false;
    try {
        encoded = codec->Encode(asset, &file);
    } catch (const std::bad_alloc&) {
    }
    if (!encoded) {
        cLog::Warning("Can't encode %s \"%s\"", what, name.Text());
        return false;
    }
    return file.GetSize() == 0 || cIO::SaveFile(name, file, false, true);
}

/// The registry of one kind of asset. An entry's object is null while it is unloaded; its position is the ID, which
/// lasts until everything is freed.
template <class Entry> Entry* cIO_FindEntry(cList<Entry*>& entries, int id) {
    return id >= 0 && id < entries.Count() ? entries[id] : nullptr;
}

/// Appends an entry and gives its ID. @param object  what the entry keeps
template <class Entry, class Asset>
int cIO_AddEntry(cList<Entry*>& entries, std::unique_ptr<Entry> entry, Asset* Entry::*object,
                 std::unique_ptr<Asset> asset) {
    (*entry).*object = asset.release();
    const int id = entries.Add(entry.get());
    entry.release();
    return id;
}

/// Gives an entry what was loaded anew. An object that is there stays where it is: programs hold its address.
template <class Entry, class Asset>
void cIO_Replace(Entry* entry, Asset* Entry::*object, std::unique_ptr<Asset> fresh) {
    if (entry->*object) {
        (entry->*object)->Copy(*fresh);
    } else {
        entry->*object = fresh.release();
    }
}

/// @return whether any entry of that path could be reloaded
template <class Entry> bool cIO_ReloadPath(const cList<Entry*>& entries, const cStr& path, bool (*reload)(int)) {
    bool reloaded = false;
    for (int i = 0; i < entries.Count(); i++) {
        if (cStr::ComparePath(entries[i]->Path, path) == 0) {
            reloaded |= reload(i);
        }
    }
    return reloaded;
}

/// @return number of entries that could be reloaded
inline int cIO_ReloadAll(int count, bool (*reload)(int)) {
    int reloaded = 0;
    for (int i = 0; i < count; i++) {
        reloaded += reload(i);
    }
    return reloaded;
}

/// @return number of objects that went
template <class Entry, class Asset> int cIO_UnloadEntries(cList<Entry*>& entries, Asset* Entry::*object) {
    int count = 0;
    for (Entry* entry : entries) {
        if (entry->*object) {
            (entry->*object)->Free();
            delete std::exchange(entry->*object, nullptr);
            count++;
        }
    }
    return count;
}

template <class Entry> void cIO_FreeEntries(cList<Entry*>& entries) {
    for (Entry* entry : entries) {
        delete entry;
    }
    entries.Free();
}

} // namespace trellis
