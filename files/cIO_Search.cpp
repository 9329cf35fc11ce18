// Searching: patterns, the merged view of read and write folder, and the walk down a tree.
#include "files/cIO.h"

#include <sys/stat.h>

#include <set>
#include <utility>

#include "files/cIO_Internal.h"

namespace trellis {

namespace {

char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

bool EqualsPath(const cStr* a, const cStr* b) {
    return cStr::ComparePath(*a, *b) == 0;
}

/// Appends the items of a folder under the name that they have, or would have, in it.
void AppendItems(const cStr& folder, const char* wildcard, cIO::Items items, bool merge, cList<cStr>* out) {
    const auto nameOf = [&folder](const cStr& name) {
        cStr path = folder;
        if (path.IsEmpty() || path.Text()[path.Length() - 1] != '/') {
            path.Append('/');
        }
        path.Append(name);
        return path;
    };
    cList<cStr> names;
    cIO_ListFolder(folder, wildcard, items, &names);
    for (const cStr& name : names) {
        out->Add(nameOf(name));
    }
    cStr redirected = folder;
    if (merge && cIO::ReplaceReadPath(&redirected)) {
        cIO_ListFolder(redirected, wildcard, items, &names);
        for (const cStr& name : names) {
            const cStr path = nameOf(name);
            if (out->IndexOf(path, EqualsPath) == -1) {
                out->Add(path);
            }
        }
    }
}

void SearchPattern(const char* pattern, cIO::Items items, bool merge, cList<cStr>* out) {
    cStr folder, wildcard;
    cIO_SplitPattern(pattern, &folder, &wildcard);
    out->Clear();
    if (!cIO::PathIsAbsolute(folder)) {
        return; // a URL: it would count from the working directory
    }
    AppendItems(folder, wildcard, items, merge, out);
}

/// Walks a tree once. Folders are taken by the letter on the way down: one that is named "*" is no wildcard.
class TreeWalk {
public:
    explicit TreeWalk(cList<cStr>* files) : m_Files(files) {}

    void Walk(const cStr& folder, const char* wildcard) {
        cStr redirected = folder;
        const bool copied = cIO::ReplaceReadPath(&redirected) && Enter(redirected);
        if (!Enter(folder) && !copied) {
            return;
        }
        cList<cStr> files, folders;
        AppendItems(folder, wildcard, cIO::Items::Files, true, &files);
        m_Files->AddRange(files.Data(), files.Count());
        AppendItems(folder, wildcard, cIO::Items::Folders, true, &folders);
        for (const cStr& sub : folders) {
            Walk(sub, "");
        }
    }

private:
    /// @return whether the folder exists and was not entered before: links may lead back up, or many times down
    bool Enter(const char* folder) {
        struct stat info;
        return stat(folder, &info) == 0 && m_Entered.emplace(info.st_dev, info.st_ino).second;
    }

    cList<cStr>* m_Files;
    std::set<std::pair<dev_t, ino_t>> m_Entered;
};

} // namespace

void cIO_SplitPattern(const char* pattern, cStr* folder, cStr* wildcard) {
    *folder = cIO::EnsureAbsolutePath(pattern);
    wildcard->Clear();
    const char* slash = std::strrchr(*folder, '/');
    if (slash && std::strpbrk(slash, "*?")) {
        *wildcard = slash + 1;
        folder->Remove(folder->Length() - wildcard->Length(), wildcard->Length());
    }
    cIO_TrimFolder(folder);
}

bool cIO_MatchWildcard(const char* wildcard, const char* name) {
    // Only the last star needs to be retried: what stands before it has its shortest match already.
    const char* star = nullptr;
    const char* retry = nullptr;
    while (*name) {
        if (*wildcard == '*') {
            star = ++wildcard;
            retry = name;
        } else if (*wildcard == '?' || (*wildcard && Fold(*wildcard) == Fold(*name))) {
            wildcard++;
            name++;
        } else if (star) {
            wildcard = star;
            name = ++retry;
        } else {
            return false;
        }
    }
    while (*wildcard == '*') {
        wildcard++;
    }
    return *wildcard == 0;
}

void cIO::SearchItems(const char* pattern, cList<cStr>* out, Items items) {
    SearchPattern(pattern, items, false, out);
}

void cIO::SearchFiles(const char* pattern, cList<cStr>* out, bool merge) {
    SearchPattern(pattern, Items::Files, merge, out);
}

void cIO::SearchFolders(const char* pattern, cList<cStr>* out) {
    SearchPattern(pattern, Items::Folders, true, out);
}

void cIO::SearchFilesRecursive(const char* pattern, cList<cStr>* out) {
    cStr folder, wildcard;
    cIO_SplitPattern(pattern, &folder, &wildcard);
    out->Clear();
    if (!PathIsAbsolute(folder)) {
        return; // a URL, as above
    }
    TreeWalk(out).Walk(folder, wildcard);
}

void cIO::SearchFilesRecursive(const char* pattern, cList<cStr>* out, const char* extensions) {
    cList<cStr> wanted, all;
    cStr::Split(extensions, &wanted, ";");
    SearchFilesRecursive(pattern, &all);
    out->Clear();
    for (const cStr& file : all) {
        if (wanted.IsEmpty() || wanted.IndexOf(file.GetFileExtension(), cStr::EqualsNoCase) != -1) {
            out->Add(file);
        }
    }
}

} // namespace trellis
