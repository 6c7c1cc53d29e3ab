// The settings of a run: what was typed and what a settings file says, as the lines that the library takes for one
// call.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "catalogue.h"
#include "picture.h"

namespace lmf::host {

/// Values of settings as a settings file has them, by whole key.
using StoredValues = std::map<std::string, std::string>;

/// One filter as it was asked for.
struct StepRequest {
    const Json *filter = nullptr;
    StoredValues beginning;               // values of a recipe, over those of the settings file
    std::string document;                 // a document whose values count over these, or empty
    std::vector<std::string> assignments; // NAME=VALUE
};

struct SettingsRequest {
    std::vector<StepRequest> steps;
    std::string paper;    // a color, or empty for the default
    std::string fromFile; // a settings file to begin with, or empty
};

/// A place in the picture, beyond whose end it is held to that.
struct Place {
    std::string key, name;
    int64_t value = 0;
    bool across = false; // along the width; else along the height
};

/// One filter with its settings, ready to run.
struct Step {
    const Json *filter = nullptr;
    StoredValues values; // of all that is not the default, and "CurrentFilter"
    std::vector<Place> places;
    const Json *seed = nullptr; // the setting of a seed, where nothing sets it
    bool readsClock = false;    // for random numbers, and not for the date
};

/// Which random numbers a picture gets.
struct Grain {
    std::optional<int64_t> seed; // the same for all pictures
    bool many = false;           // without a seed, each of several pictures gets numbers of its own
    int64_t start = 0;           // clock at the start of the program, in seconds
    int64_t index = 0;           // of the picture
};

/// Makes the steps of a request. What the request gets wrong is complained of, all of it for a settings file; what it
/// sets in vain goes into the warnings of `report`. Gives kDone, kUsage or, for a file that cannot be read,
/// kUnreadable.
[[nodiscard]] int MakeSteps(const SettingsRequest &request, std::vector<Step> &steps, Report &report);

/// Gives the lines of a step for one picture; a place outside the picture is held to it with a warning.
std::string LinesFor(const Step &step, const Grain &grain, const Bitmap &image, Report &report);

/// Gives the number in place of the clock with which the library seeds the step's random numbers, if it needs one.
std::optional<int64_t> ClockFor(const Step &step, const Grain &grain);

/// Gives the file in which the library keeps the user's settings.
std::string UserIniPath();

} // namespace lmf::host
