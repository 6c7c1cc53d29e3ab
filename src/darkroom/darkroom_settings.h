// What the Darkroom keeps from one opening to the next: four numbers in a profile file of its own.
#pragma once

#include <cstdint>
#include <string_view>

namespace lmf {

/// The values of the Darkroom, by their keys.
struct DarkroomSettings {
    int32_t PDCurrentFilter = 0;     ///< index of the selected recipe
    int32_t PDDblClkOption = 1;      ///< what a double-click does, 0 to 4
    int32_t PDPAlphaPrompt = 1;      ///< show the prompt for pictures with alpha
    int32_t PDPaperColor = 0xFFFFFF; ///< 0x00BBGGRR

    bool operator==(const DarkroomSettings &) const = default;
};

/// The values of a profile text: lines `key=value` in the section "Photography Darkroom", names in any case. What the
/// text does not have gets its default; of a repeated key the first counts.
[[nodiscard]] DarkroomSettings ReadDarkroomProfile(std::string_view text);

/// The host's values from its file.
/// @param flags  those of the DarkroomRequest
[[nodiscard]] DarkroomSettings ReadDarkroomSettings(uint32_t flags);
/// Writes the values into the host's file, which keeps all else that it holds. Nothing is reported.
void WriteDarkroomSettings(uint32_t flags, const DarkroomSettings &settings);

} // namespace lmf
