// What the sources of cIO share. The lists are never destroyed: threads still load and save while the process exits.
#pragma once

#include "files/cIO.h"

namespace trellis {

class SourceFolder;

struct cIO_FileDialogPref {
    cStr Key;
    cStr Folder;
};

extern cList<cIO::Source*>& cIO_Sources;
extern SourceFolder* cIO_DefaultSource; ///< Entry 0 of the sources; null until the set-up has made it.
extern cStr& cIO_ThisFilePathName;
extern cList<cIO_FileDialogPref>& cIO_FileDialogPrefs;

extern cList<cIO::ImageCodecInfo>& cIO_ImageCodecs;
extern cList<cIO::ModelCodecInfo>& cIO_ModelCodecs;
extern cList<cIO::AnimCodecInfo>& cIO_AnimCodecs;
extern cList<cIO::CameraCodecInfo>& cIO_CameraCodecs;

/// The set-up, at the first call only. Everything that it calls may come back here.
void cIO_Init();

const cIO::Host& cIO_GetHost(); ///< What `cIO::SetHost` was given.

/// Registers the codecs of the framework's own formats.
void cIO_AddBuiltInCodecs();

/// Cuts the name of a build output directory off the end of a folder, so that a program that is run from where it was
/// built finds the data of its project. Only the ending is looked at: "/x/MyRelease" becomes "/x/My".
///
/// @return the name that was cut off, null for none
const char* cIO_CutOutputDirectory(cStr* folder);

/// Cuts trailing slashes, but leaves a root.
void cIO_TrimFolder(cStr* folder);

/// Cuts a pattern into its folder, absolute, and the wildcard of its last component, empty for none.
void cIO_SplitPattern(const char* pattern, cStr* folder, cStr* wildcard);

/// Whether '*' (any bytes) and '?' (one byte) of the wildcard can be filled so that it gives the name; case is folded.
bool cIO_MatchWildcard(const char* wildcard, const char* name);

/// Names of the items in a folder that is taken by the letter, in the order of `cStr::ComparePath`.
///
/// @param wildcard  empty for all
/// @param names     emptied first
void cIO_ListFolder(const char* folder, const char* wildcard, cIO::Items items, cList<cStr>* names);

/// The copy of a path that reading finds: the write folder's if it exists, else the path itself, made absolute.
cStr cIO_FindForReading(const char* path);

} // namespace trellis
