#include "common/text.h"

#include <algorithm>
#include <cstring>

namespace lmf {

namespace {

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

int32_t ParseNumber(const char *text) {
    while (IsBlank(*text)) text++;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') text++;
    const int64_t limit = negative ? -static_cast<int64_t>(INT32_MIN) : INT32_MAX;
    int64_t value = 0;
    for (; *text >= '0' && *text <= '9'; text++) value = std::min(value * 10 + (*text - '0'), limit);
    return static_cast<int32_t>(negative ? -value : value);
}

const char *SkipBlanks(const char *text) {
    while (*text == ' ') text++;
    return text;
}

namespace {

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

} // namespace

bool SameIgnoringCase(const char *a, const char *b) {
    while (*a != '\0' && LowerCase(*a) == LowerCase(*b)) {
        a++;
        b++;
    }
    return LowerCase(*a) == LowerCase(*b);
}

bool StartsIgnoringCase(const char *text, std::string_view start) {
    for (const char c : start) {
        if (LowerCase(*text) != LowerCase(c)) return false;
        text++;
    }
    return true;
}

const char *SkipToText(const char *text) {
    while (*text != '\0' && static_cast<unsigned char>(*text) <= ' ') text++;
    return text;
}

void CutLineEnd(char *line) {
    line[std::strcspn(line, "\r\n")] = '\0';
}

bool LineReader::Next(char *line, size_t room) {
    if (rest.empty()) return false;
    const std::string_view most = rest.substr(0, room - 1);
    const size_t length = std::min(most.find('\n'), most.size() - 1) + 1;
    most.copy(line, length);
    line[length] = '\0';
    rest.remove_prefix(length);
    return true;
}

} // namespace lmf
