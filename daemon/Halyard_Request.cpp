#include "daemon/Halyard_Request.h"

#include <cctype>
#include <cstring>

namespace {

const char* SkipSpace(const char* s) {
    while (std::isspace(static_cast<unsigned char>(*s))) {
        s++;
    }
    return s;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = char(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

bool Halyard_ParseId(const char* text, unsigned int* id) {
    text = SkipSpace(text);
    const bool minus = *text == '-';
    if (minus || *text == '+') {
        text++;
    }
    if (HexDigit(*text) < 0) {
        return false;
    }
    if (text[0] == '0' && (text[1] | 0x20) == 'x') {
        text += 2;
    }
    unsigned long long value = 0;
    for (int digit; (digit = HexDigit(*text)) >= 0 && value <= 0xFFFFFFFFu; text++) {
        value = value * 16 + unsigned(digit);
    }
    if (value > 0xFFFFFFFFu) {
        *id = 0xFFFFFFFFu;
    } else {
        *id = minus ? 0u - unsigned(value) : unsigned(value);
    }
    return true;
}

bool Halyard_ParseStop(const char* text, unsigned int* id) {
    constexpr char word[] = "stop";
    constexpr size_t length = sizeof(word) - 1;
    text = SkipSpace(text);
    if (std::strncmp(text, word, length) != 0 || !std::isspace(static_cast<unsigned char>(text[length]))) {
        return false;
    }
    return Halyard_ParseId(text + length, id);
}
