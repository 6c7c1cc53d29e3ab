#include "darkroom/recipe_text.h"

#include <algorithm>
#include <cstring>

namespace lmf {

namespace {

using Line = char[1024];

/// The text of a line: without its end, what a "#" starts (in quotes too), and the blanks before it.
const char *TextOf(Line &line) {
    line[std::strcspn(line, "\r\n#")] = '\0';
    return SkipToText(line);
}

constexpr std::string_view kHeader = ":FILTER", kEnd = ":END";

bool IsEnd(const char *text) {
    return StartsIgnoringCase(text, kEnd);
}

/// Copies what stands in quotes or before a semicolon. A first quote is left out and a second one ends the text.
/// @param keepsSemicolons  a semicolon in quotes is part of the text
/// @return false, with as much of it as fits, for a text of more than kRecipeText characters
bool CopyQuoted(const char *text, bool keepsSemicolons, char *out) {
    bool quoted = false;
    size_t length = 0;
    for (; *text != '\0'; text++) {
        if (*text == '"' && quoted) break;
        if (*text == ';' && !(quoted && keepsSemicolons)) break;
        if (*text == '"') {
            quoted = true;
            continue;
        }
        if (length == kRecipeText) break;
        out[length++] = *text;
    }
    out[length] = '\0';
    return length < kRecipeText || *text == '\0' || *text == '"' || *text == ';';
}

} // namespace

bool RecipeReader::Next(RecipeText *recipe) {
    Line line;
    *recipe = {};
    const char *start = nullptr;
    for (const char *here = lines.rest.data(); lines.Next(line, sizeof line); here = lines.rest.data()) {
        const char *text = TextOf(line);
        if (StartsIgnoringCase(text, kHeader)) {
            start = lines.rest.data();
            recipe->nameIsTooLong = !CopyQuoted(SkipToText(text + kHeader.size()), true, recipe->name);
            if (recipe->nameIsTooLong) return true;
        } else if (IsEnd(text) && recipe->name[0] != '\0') {
            recipe->fields = {start, static_cast<size_t>(here - start)};
            return true;
        }
    }
    return false;
}

bool RecipeFieldReader::Next(RecipeRecord *record) {
    Line line;
    while (lines.Next(line, sizeof line)) {
        const char *text = TextOf(line);
        const size_t keyLength = std::min(std::strcspn(text, " :"), kRecipeText);
        *record = {};
        std::memcpy(record->key, text, keyLength);
        text = SkipToText(text + keyLength);
        while (*text == ':') text = SkipToText(text + 1);
        (void)CopyQuoted(text, false, record->value);
        if (record->key[0] == '\0' || record->value[0] == '\0') continue;
        const uint32_t known = typeOf(record->key);
        record->type = SameIgnoringCase(record->key, "Source") ? uint32_t{kRecipeString}
                       : known != 0                            ? known
                                                               : uint32_t{kRecipeNumber};
        if (record->IsNumber()) record->number = ParseNumber(record->value);
        return true;
    }
    return false;
}

} // namespace lmf
