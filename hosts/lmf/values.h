// Values of settings as texts: what a person means (45 degrees, 5 pixels, a color's name) and what a settings file
// stores for it (450, 50, 255).
#pragma once

#include <string>

#include "catalogue.h"

namespace lmf::host {

/// How the one who gives a value counts.
enum class Manner {
    kMeant, ///< as `lmf show` shows it: in the setting's unit
    kStored ///< as a settings file has it
};

/// Turns the text of a value into the stored form. Fails, naming what is legal, for one that the setting cannot have.
[[nodiscard]] bool ParseValue(const Json &setting, const std::string &given, Manner manner, std::string &stored,
                              Report &report);

/// Whether a line of settings gives a text back as it is: lines are short, and begin and end in their own ways.
[[nodiscard]] bool FitsLine(const std::string &key, const std::string &text, Report &report);

/// Turns #RRGGBB, RRGGBB or the name of a color into the stored number.
[[nodiscard]] bool ParseColor(const std::string &given, std::string &stored, Report &report);

/// Gives a stored number as a person says it, "45.0", without its unit.
std::string MeantText(const Json &setting, int64_t stored);

/// Gives a stored number as the filter's page displays it.
std::string DisplayedText(const Json &setting, int64_t stored);

/// Gives a stored value of a boolean or a choice as a person says it: on, off, "South".
std::string ValueName(const Json &setting, int64_t stored);

/// Gives the default as a person says it, with its unit: 4.0 pixels, "South", #102030.
std::string DefaultText(const Json &setting);

/// Gives what a person may say: "1.0 to 99.0 pixels"; empty where the type tells.
std::string RangeText(const Json &setting);

/// Gives the key with what it stores: "FilterGaussianRadius=10 to 990, default 40".
std::string StoredText(const Json &setting);

} // namespace lmf::host
