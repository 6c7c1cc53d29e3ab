#include "overlays/social_destinations.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "common/text.h"

namespace lmf {

namespace {

constexpr size_t kLineSize = 260;
static_assert(sizeof(SocialDestination::name) >= kLineSize);

constexpr const char *kBlanks = " \t";

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

/// An attribute of a line.
struct Attribute {
    char key[kLineSize] = "";
    char value[kLineSize] = "";
};

/// Reads the attribute at the start of `rest`, if there is one, and moves on behind what it read.
/// @return false at the end of the line
bool NextAttribute(const char **rest, Attribute *attribute) {
    const char *at = *rest + std::strspn(*rest, kBlanks);
    if (*at == '\0') return false;
    *attribute = {};
    const size_t keyLength = std::strcspn(at, " \t=");
    std::memcpy(attribute->key, at, keyLength);
    at += keyLength;
    if (*at != '=') {
        attribute->key[0] = '\0';
        *rest = at;
        return true;
    }
    bool quoted = false;
    size_t length = 0;
    for (at++; *at != '\0' && (quoted || !IsBlank(*at)); at++) {
        if (*at == '"')
            quoted = !quoted;
        else
            attribute->value[length++] = *at;
    }
    *rest = at;
    return true;
}

} // namespace

SocialDestination ParseDestination(const char *line) {
    static constexpr struct {
        const char *key;
        int32_t SocialDestination::*number; ///< null for the name
    } kKeys[] = {
        {"name", nullptr},
        {"width", &SocialDestination::width},
        {"depth", &SocialDestination::depth},
        {"num", &SocialDestination::num},
        {"den", &SocialDestination::den},
        {"flags", &SocialDestination::flags},
    };
    char text[kLineSize] = "";
    std::memcpy(text, line, std::min(std::strcspn(line, "\r\n"), kLineSize - 1));
    SocialDestination destination = {};
    bool known[std::size(kKeys)] = {};
    const char *rest = text;
    Attribute attribute;
    while (NextAttribute(&rest, &attribute)) {
        for (size_t i = 0; i < std::size(kKeys); i++) {
            if (known[i] || !SameIgnoringCase(attribute.key, kKeys[i].key)) continue;
            known[i] = true;
            if (kKeys[i].number != nullptr)
                destination.*kKeys[i].number = ParseNumber(attribute.value);
            else
                std::memcpy(destination.name, attribute.value, sizeof attribute.value);
        }
    }
    return destination;
}

void ReadDestinations(std::string_view text,
                      void (*take)(void *target, int32_t index, const SocialDestination &destination), void *target) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    LineReader lines{text};
    char line[kLineSize];
    for (int32_t index = 0; lines.Next(line, kLineSize); index++) take(target, index, ParseDestination(line));
}

} // namespace lmf
