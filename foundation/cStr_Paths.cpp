// Paths. A slash is either kind; the framework itself joins with backslashes.
#include "foundation/cStr.h"

namespace trellis {

namespace {

bool IsSlash(char c) {
    return c == '/' || c == '\\';
}

char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

bool SamePathByte(char a, char b) {
    return Fold(a) == Fold(b) || (IsSlash(a) && IsSlash(b));
}

} // namespace

int cStr::ComparePath(const char* a, const char* b, int n) {
    a = a ? a : "";
    b = b ? b : "";
    for (; n != 0 && SamePathByte(*a, *b); a++, b++, n -= n > 0) {
        if (!*a) {
            return 0;
        }
    }
    if (n == 0) { // the prefix matches; it must end at a component on both sides
        if (*b && !IsSlash(*b)) {
            return -1;
        }
        return *a && !IsSlash(*a) ? 1 : 0;
    }
    const int difference = static_cast<signed char>(Fold(*a)) - static_cast<signed char>(Fold(*b));
    // In `a` only the forward slash marks a folder: sorted lists that hosts have stored rely on this order.
    a += std::strcspn(a, "/");
    b += std::strcspn(b, "/\\");
    if ((*a != 0) == (*b != 0)) {
        return difference < 0 ? -1 : 1;
    }
    return *b ? -1 : 1;
}

int cStr::LastSlash() const {
    int i = length - 1;
    while (i >= 0 && !IsSlash(str[i])) {
        i--;
    }
    return i;
}

int cStr::ExtensionDot() const {
    for (int i = length - 1; i >= 0 && !IsSlash(str[i]); i--) {
        if (str[i] == '.') {
            return i;
        }
    }
    return -1;
}

cStr cStr::GetFileExtension() const {
    const int dot = ExtensionDot();
    return dot < 0 ? Empty : Mid(dot + 1, length - dot - 1);
}

cStr cStr::GetFileName() const {
    if (length == 0) {
        return Empty;
    }
    int i = length - 1; // starts one byte before the end, so that a trailing slash stays on the name
    while (i >= 1 && !IsSlash(str[i - 1])) {
        i--;
    }
    return Mid(i, length - i);
}

cStr cStr::GetFileBase() const {
    const cStr name = GetFileName();
    return name.Mid(0, int(std::strcspn(name, ".")));
}

cStr cStr::GetFilePath() const {
    return Mid(0, LastSlash() + 1);
}

void cStr::RemoveFileExtension() {
    const int dot = ExtensionDot();
    if (dot >= 0) {
        Remove(dot, length - dot);
    }
}

void cStr::RemoveFileName() {
    const int slash = LastSlash();
    Remove(slash < 0 ? 0 : slash, slash < 0 ? length : length - slash);
}

void cStr::RemoveFilePath() {
    Remove(0, LastSlash() + 1);
}

void cStr::SetFileExtension(const char* ext) {
    const cStr added(ext); // `ext` may be what is cut off
    RemoveFileExtension();
    if (added.Text()[0] != '.') {
        Append('.');
    }
    Append(added);
}

void cStr::SetFileDefaultExtension(const char* ext) {
    if (GetFileExtension().IsEmpty()) {
        SetFileExtension(ext);
    }
}

void cStr::SetFilePath(const char* path) {
    const cStr name = GetFileName();
    const cStr newPath(path);
    Copy(newPath, 0, newPath.length);
    AppendPath(name);
}

void cStr::SetFileDefaultPath(const char* path) {
    if (LastSlash() < 0) {
        SetFilePath(path);
    }
}

void cStr::AppendPath(const char* s) {
    if (!s || !*s) {
        return;
    }
    if (Owns(s)) {
        AppendPath(cStr(s, 0, int(std::strlen(s))));
        return;
    }
    const int n = int(std::strlen(s));
    Reserve(2LL + length + n, true);
    if (length > 0 && !IsSlash(str[length - 1])) {
        Append('\\');
    }
    const int skipped = IsSlash(*s) ? 1 : 0;
    const int from = length;
    Append(s, skipped, n - skipped);
    Replace('/', '\\', from, length - from);
}

void cStr::RemoveFileAbsPath(const char* root) {
    root = root ? root : "";
    const int rootLength = int(std::strlen(root));
    // The text is cut, not its components: stored names were made so, and no root at all takes a leading slash away.
    if (str && CompareNoCase(str, root, rootLength) == 0) {
        Remove(0, rootLength);
        if (IsSlash(str[0])) {
            Remove(0);
        }
        return;
    }
    cList<cStr> parts;
    cList<cStr> rootParts;
    Split(Text(), &parts, "\\/");
    Split(root, &rootParts, "\\/");
    int same = 0;
    while (same < parts.Count() && same < rootParts.Count() && EqualsNoCase(&parts[same], &rootParts[same])) {
        same++;
    }
    if (same == 0) {
        return; // empty, or on another root
    }
    cStr path;
    for (int i = same; i < rootParts.Count(); i++) {
        path.AppendPath("..");
    }
    for (int i = same; i < parts.Count(); i++) {
        path.AppendPath(parts[i]);
    }
    *this = path;
}

void cStr::EnsureTrailingBackslash() {
    if (length > 0 && !IsSlash(str[length - 1])) {
        Append('\\');
    }
}

void cStr::SlashesToBackSlashes() {
    Replace('/', '\\');
}

void cStr::BackSlashesToSlashes() {
    Replace('\\', '/');
}

} // namespace trellis
