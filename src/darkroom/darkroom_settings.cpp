#include "darkroom/darkroom_settings.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "common/text.h"
#include "engine/config_text.h"
#include "engine/text_file.h"

namespace lmf {

namespace {

constexpr std::string_view kSection = "[Photography Darkroom]";

constexpr struct {
    const char *key;
    int32_t DarkroomSettings::*value;
} kKeys[] = {
    {"PDCurrentFilter", &DarkroomSettings::PDCurrentFilter},
    {"PDDblClkOption", &DarkroomSettings::PDDblClkOption},
    {"PDPAlphaPrompt", &DarkroomSettings::PDPAlphaPrompt},
    {"PDPaperColor", &DarkroomSettings::PDPaperColor},
};
constexpr size_t kNone = std::size(kKeys);

using ProfileLine = char[1024];

/// Walks the lines of a profile.
struct ProfileReader {
    LineReader lines;
    bool inSection = false; ///< the line belongs to the Darkroom's section
    bool isHeading = false; ///< the line opens a section
    size_t key = kNone;     ///< index of the key that the line sets, or kNone
    const char *value = ""; ///< of that key
    ProfileLine line = "";

    bool Next() {
        if (!lines.Next(line, sizeof line)) return false;
        key = kNone;
        const char *text = SkipToText(line);
        isHeading = *text == '[';
        if (isHeading) inSection = StartsIgnoringCase(text, kSection);
        const char *equals = std::strchr(text, '=');
        if (!inSection || *text == ';' || equals == nullptr) return true;
        const size_t length = std::min(std::strcspn(text, "= \t"), static_cast<size_t>(equals - text));
        const auto found = std::ranges::find_if(kKeys, [&](const auto &known) {
            return std::strlen(known.key) == length && StartsIgnoringCase(text, known.key);
        });
        key = static_cast<size_t>(found - kKeys);
        value = equals + 1;
        return true;
    }
};

bool FindProfile(uint32_t flags, char (&path)[kPathSize]) {
    constexpr uint32_t kFullWindowFlag = 1;
    return FindSettingsFile(flags & kFullWindowFlag ? "LMFPhotographyDarkroom.ini" : "DauberyPhotographyDarkroom.ini",
                            path);
}

void AddKeys(LineWriter &out, const DarkroomSettings &settings) {
    for (const auto &known : kKeys) out.Add("%s=%d", known.key, static_cast<int>(settings.*known.value));
}

} // namespace

DarkroomSettings ReadDarkroomProfile(std::string_view text) {
    DarkroomSettings settings;
    bool read[kNone + 1] = {};
    for (ProfileReader reader{{text}}; reader.Next(); read[reader.key] = true) {
        if (reader.key != kNone && !read[reader.key]) settings.*kKeys[reader.key].value = ParseNumber(reader.value);
    }
    return settings;
}

DarkroomSettings ReadDarkroomSettings(uint32_t flags) {
    char path[kPathSize];
    return ReadDarkroomProfile(TextFile(FindProfile(flags, path) ? path : nullptr).Text());
}

void WriteDarkroomSettings(uint32_t flags, const DarkroomSettings &settings) {
    char path[kPathSize];
    if (!FindProfile(flags, path)) return;
    const SettingsLock lock;
    const TextFile present(path);
    if (present.Failed()) return;
    constexpr size_t kRoomOfSection = 1024;
    LineWriter out(1, 2 * present.Text().size() + kRoomOfSection);
    bool written = false;
    for (ProfileReader reader{{present.Text()}}; reader.Next();) {
        if (reader.key != kNone) continue;
        CutLineEnd(reader.line);
        out.Add("%s", reader.line);
        if (!reader.isHeading || !reader.inSection || written) continue;
        AddKeys(out, settings);
        written = true;
    }
    if (!written) {
        out.Add("%s", kSection.data());
        AddKeys(out, settings);
    }
    if (out.Whole()) ReplaceTextFile(path, out.Text());
}

} // namespace lmf
