// lmf, the command line host of the filter library: what is typed, and what is printed.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "apply.h"
#include "catalogue.h"
#include "progress.h"

namespace lmf::host {

namespace {

using Arguments = std::vector<std::string>;

void Print(const std::string &text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

// Points to the help of the command whose usage line is the app's name: "lmf apply FILTER IN OUT".
std::string HelpHint(const CLI::App &app) {
    const std::string &usage = app.get_name();
    return ". See " + usage.substr(0, usage.find(' ', usage.find(' ') + 1)) + " --help";
}

// Reads the options of a command. What is no option is left in `rest` byte for byte: names of files pass no parser.
// Gives true to go on; otherwise the program ends with `exitCode`.
bool ParseOptions(CLI::App &app, Arguments arguments, Arguments &rest, int &exitCode) {
    app.allow_extras();
    std::reverse(arguments.begin(), arguments.end());
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError &error) {
        const bool help = error.get_exit_code() == 0;
        exitCode = help ? kDone : kUsage;
        if (help) {
            Print(app.help());
        } else {
            Complain(error.what() + HelpHint(app));
        }
        return false;
    }
    bool optionsEnded = false;
    for (const std::string &argument : app.remaining()) {
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (!optionsEnded && argument.size() > 1 && argument[0] == '-') {
            Complain("there is no option " + Printable(argument) + HelpHint(app));
            exitCode = kUsage;
            return false;
        } else {
            rest.push_back(argument);
        }
    }
    return true;
}

void AddLimits(CLI::App &app, Limits &limits) {
    app.add_option("--max-side", limits.side, "Largest width or height to read, in pixels")
        ->check(CLI::Range(int64_t{1}, int64_t{0x7FFFFFFF}))
        ->capture_default_str();
    app.add_option("--max-pixels", limits.pixels, "Largest number of pixels to read")
        ->check(CLI::Range(int64_t{1}, int64_t{0xFFFFFFFF}))
        ->capture_default_str();
}

// Finds the filter of a command, or says which names are near.
const Json *RequireFilter(const std::string &name) {
    if (const Json *filter = FindFilter(name)) return filter;
    std::vector<std::string> names;
    for (const Json &filter : Catalogue()["filters"]) names.push_back(filter["name"]);
    Complain("there is no filter \"" + Printable(name) + "\"" + Suggestion(name, names) +
             " \"lmf list\" names them all");
    return nullptr;
}

int List(const Arguments &arguments) {
    CLI::App app("Lists the filters, with the kinds of picture that each accepts.", "lmf list");
    std::string category;
    bool json = false;
    app.add_option("--category", category, "Only the filters of this category");
    app.add_flag("--json", json, "Print the catalogue document");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (!rest.empty()) {
        Complain("lmf list takes options only");
        return kUsage;
    }
    const Json &categories = Catalogue()["categories"];
    const auto wanted = [&](const Json &name) {
        return category.empty() || EqualInAnyCase(name.get_ref<const std::string &>(), category);
    };
    if (std::none_of(categories.begin(), categories.end(), wanted)) {
        std::string all;
        for (const Json &name : categories) all += (all.empty() ? "" : ", ") + name.get<std::string>();
        Complain("there is no category \"" + Printable(category) + "\". The categories: " + all);
        return kUsage;
    }
    Json document = Catalogue();
    Json &filters = document["filters"];
    for (size_t i = filters.size(); i-- > 0;)
        if (!wanted(filters[i]["category"])) filters.erase(i);
    if (json) {
        Print(document.dump(1) + "\n");
        return kDone;
    }
    Print(Padded("FILTER", 28) + Padded("CATEGORY", 14) + "ACCEPTS\n");
    for (const Json &filter : filters)
        Print(Padded(filter["name"], 28) + Padded(filter["category"], 14) + AcceptedModes(filter) +
              (filter["available"] ? "" : " (not in this version)") + "\n");
    return kDone;
}

// Gives value / steps with the decimals that the steps make out.
std::string Fraction(int64_t value, int64_t steps) {
    char text[32];
    const int decimals = steps >= 100 ? 2 : steps > 1 ? 1 : 0;
    std::snprintf(text, sizeof text, "%.*f", decimals, double(value) / double(steps));
    return text;
}

// Gives a number as a control shows it.
std::string ShownNumber(const Json &setting, int64_t value) {
    const std::string shown = setting.value("shown", "plain");
    if (shown == "hundredths") return Fraction(value, 100);
    if (shown == "tenths") return Fraction(value, 10);
    return std::to_string(value - setting.value("offset", int64_t{0}));
}

std::string ColorText(int64_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "%02X%02X%02X", int(value & 0xFF), int(value >> 8 & 0xFF),
                  int(value >> 16 & 0xFF));
    return text;
}

// Gives what a number means to a person, "4.0 pixels", and what the filter's page shows where that differs.
std::string MeaningOf(const Json &setting, int64_t value) {
    const std::string plain = std::to_string(value), shown = ShownNumber(setting, value);
    const std::string means =
        Fraction(value - setting.value("offset", int64_t{0}), setting.value("perUnit", int64_t{1}));
    std::string text;
    // A seed counts nothing: it is a number to remember.
    if (setting.contains("unit") && setting["unit"] != "seed") text = " " + setting["unit"].get<std::string>();
    if (means != plain) text = " is " + means + text;
    if (shown != means) text += " (shown as " + shown + ")";
    return plain + text;
}

// Gives a value as it is written behind "KEY=", and what it means.
std::string ValueText(const Json &setting, const Json &value) {
    if (value.is_string()) return "\"" + value.get<std::string>() + "\"";
    if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
    const int64_t number = value.get<int64_t>();
    if (setting["type"] == "color") return ColorText(number);
    std::string text = MeaningOf(setting, number);
    for (const Json &entry : setting.contains("entries") ? setting["entries"] : Json::array())
        if (entry["value"] == value) text += " (" + entry["name"].get<std::string>() + ")";
    return text;
}

void PrintSetting(const Json &setting) {
    const std::string label = setting.value("name", setting["label"].get<std::string>());
    Print("\n" + setting["key"].get<std::string>() + (label.empty() ? "" : "  \"" + label + "\"") + "\n");
    const auto line = [](const char *name, const std::string &text) { Print("  " + Padded(name, 10) + text + "\n"); };
    const std::string help = setting["help"];
    if (!help.empty()) Print("  " + help + "\n");
    line("type", setting["type"].get<std::string>() + ", " +
                     (setting["id"] == 0 ? "no control" : setting["control"].get<std::string>()));
    if (setting.contains("entries")) {
        for (const Json &entry : setting["entries"])
            line(&entry == &setting["entries"][0] ? "entries" : "",
                 std::to_string(entry["value"].get<int>()) + " " + entry["name"].get<std::string>());
    } else if (setting.contains("min") && setting["type"] != "color") {
        line("range", MeaningOf(setting, setting["min"].get<int64_t>()) + " to " +
                          MeaningOf(setting, setting["max"].get<int64_t>()));
    }
    line("default", ValueText(setting, setting["default"]));
    if (setting["restore"] != setting["default"]) line("restore", ValueText(setting, setting["restore"]));
    if (!setting["stored"].get<bool>()) line("", "kept in no settings file; --set cannot reach it");
}

int Show(const Arguments &arguments) {
    CLI::App app("Shows a filter's settings: keys, ranges and defaults.", "lmf show FILTER");
    bool json = false;
    app.add_flag("--json", json, "Print the filter's part of the catalogue document");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest.size() != 1) {
        Complain("lmf show takes the name of one filter");
        return kUsage;
    }
    const Json *filter = RequireFilter(rest[0]);
    if (!filter) return kUsage;
    if (json) {
        Print(filter->dump(1) + "\n");
        return kDone;
    }
    Print((*filter)["name"].get<std::string>() + "\n  " + Padded("category", 10) +
          (*filter)["category"].get<std::string>() + "\n  " + Padded("accepts", 10) + AcceptedModes(*filter) + "\n  " +
          Padded("alpha", 10) + (*filter)["alpha"].get<std::string>() + "\n");
    for (const Json &setting : (*filter)["settings"]) PrintSetting(setting);
    if ((*filter)["settings"].empty()) Print("\nThis filter has no settings.\n");
    return kDone;
}

Json DescribePicture(const std::string &path, const Picture &picture, Report &report) {
    Json entry;
    entry["file"] = path;
    entry["format"] = picture.codec->name;
    entry["width"] = picture.image.width;
    entry["height"] = picture.image.height;
    entry["bits"] = picture.image.bits;
    entry["mode"] = ModeName(picture.image);
    entry["alpha"] = HasAlpha(picture);
    entry["iccBytes"] = picture.metadata.icc.size();
    entry["exifBytes"] = picture.metadata.exif.size();
    entry["orientation"] = ExifOrientation(picture.metadata.exif, report);
    return entry;
}

int Info(const Arguments &arguments) {
    CLI::App app("Tells what a picture file holds, as the filters will see it.", "lmf info PICTURE...");
    bool json = false;
    Limits limits;
    app.add_flag("--json", json, "Print JSON");
    AddLimits(app, limits);
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest.empty()) {
        Complain("lmf info takes the names of pictures");
        return kUsage;
    }
    Json document = Json::array();
    for (const std::string &path : rest) {
        Report report;
        Picture picture;
        if (!ReadPicture(path, limits, picture, report)) {
            Complain(Printable(path) + ": " + report.error);
            exitCode = kUnreadable;
            continue;
        }
        for (const std::string &warning : report.warnings) Complain(Printable(path) + ": warning: " + warning);
        document.push_back(DescribePicture(path, picture, report));
        if (json) continue;
        const Json &entry = document.back();
        std::string text = Printable(path) + ": " + picture.codec->name + ", " + std::to_string(picture.image.width) +
                           " x " + std::to_string(picture.image.height) + ", " + std::to_string(picture.image.bits) +
                           " bits, " + ModeName(picture.image);
        if (HasAlpha(picture)) text += ", alpha";
        if (!picture.metadata.icc.empty()) text += ", ICC profile";
        if (!picture.metadata.exif.empty()) text += ", EXIF";
        if (entry["orientation"] != 0) text += ", orientation " + entry["orientation"].dump();
        Print(text + "\n");
    }
    if (json) Print(document.dump(1, ' ', false, Json::error_handler_t::replace) + "\n");
    return exitCode;
}

int ApplyCommand(const Arguments &arguments) {
    CLI::App app("Applies a filter to a picture, or to many.\n"
                 "The file name's ending picks the format: .png, .jpg, .tif, .webp or .bmp.",
                 "lmf apply FILTER IN OUT | lmf apply FILTER --out-dir DIR IN...");
    ApplyRequest request;
    app.add_option("--set", request.settings.assignments, "A setting of the filter, as KEY=VALUE (see lmf show)")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    app.add_option("--paper", request.settings.paper, "The paper color")->type_name("RRGGBB");
    app.add_option("--settings-from", request.settings.fromFile, "Begin with the settings of an ini file")
        ->type_name("FILE");
    app.add_option("--clipboard", request.clipboard,
                   "A picture file that plays the part of the clipboard, for filters that take a second picture")
        ->type_name("PICTURE");
    CLI::Option *folder =
        app.add_option("--out-dir", request.folder, "Write all results into this folder")->type_name("DIR");
    app.add_option("--format", request.extension, "With --out-dir: the ending of the results, such as png")
        ->needs(folder);
    app.add_flag("--skip-existing", request.skipExisting, "Leave pictures alone whose result is there already");
    app.add_option("--quality", request.encoding.quality, "Quality of JPEG and WebP")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    app.add_flag("--lossless", request.encoding.lossless, "Write WebP without loss");
    AddLimits(app, request.limits);
    app.add_option("--library", request.library, "The filter library, if not the one beside this program")
        ->type_name("FILE");
    app.add_flag("--json", request.json, "Print what was done as JSON");
    app.footer("Exit codes: 0 done, 1 wrong usage, 2 an input could not be read, 3 a filter failed,\n"
               "4 an output could not be written. With many pictures: that of the first that failed.");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest.empty()) {
        Complain("name a filter. See lmf apply --help");
        return kUsage;
    }
    request.settings.filter = RequireFilter(rest[0]);
    if (!request.settings.filter) return kUsage;
    request.inputs.assign(rest.begin() + 1, rest.end());
    if (folder->count() == 0) {
        if (request.inputs.size() != 2) {
            Complain("give one input and one output, or --out-dir and any number of inputs");
            return kUsage;
        }
        request.output = request.inputs[1];
        request.inputs.pop_back();
    } else if (request.inputs.empty() || request.folder.empty()) {
        Complain(request.folder.empty() ? "--out-dir takes the name of a folder" : "there are no pictures to work on");
        return kUsage;
    }
    if (request.extension.starts_with('.')) request.extension.erase(0, 1);
    if (!request.extension.empty() && !CodecForName("x." + request.extension)) {
        Complain("--format takes png, jpg, tif, webp or bmp");
        return kUsage;
    }
    return Apply(request);
}

int SettingsCommand(const Arguments &arguments) {
    CLI::App app("Prints the name of the file in which the library keeps the user's settings.\n"
                 "lmf apply reads it only when told to with --settings-from.",
                 "lmf settings path");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest != Arguments{"path"}) {
        Complain("there is \"lmf settings path\" and nothing else");
        return kUsage;
    }
    Print(UserIniPath() + "\n");
    return kDone;
}

struct Command {
    const char *name;
    const char *summary;
    int (*run)(const Arguments &arguments);
};

constexpr Command kCommands[] = {
    {"apply", "apply a filter to a picture, or to many", ApplyCommand},
    {"list", "list the filters", List},
    {"show", "show a filter's settings", Show},
    {"info", "tell what a picture file holds", Info},
    {"settings", "tell where the library keeps the user's settings", SettingsCommand},
};

int Usage(bool asked) {
    std::string text = "lmf applies the Lumenfold filters to picture files.\n\n"
                       "  lmf apply FILTER IN OUT [--set KEY=VALUE]...\n"
                       "  lmf apply FILTER --out-dir DIR IN...\n"
                       "  lmf list [--category C] [--json]\n"
                       "  lmf show FILTER [--json]\n"
                       "  lmf info PICTURE...\n"
                       "  lmf settings path\n\n"
                       "Commands:\n";
    for (const Command &command : kCommands) text += "  " + Padded(command.name, 10) + command.summary + "\n";
    text += "\n\"lmf COMMAND --help\" tells more.\n";
    std::fputs(text.c_str(), asked ? stdout : stderr);
    return asked ? kDone : kUsage;
}

int Run(const Arguments &arguments) {
    if (arguments.empty()) return Usage(false);
    if (arguments[0] == "--help" || arguments[0] == "-h" || arguments[0] == "help") return Usage(true);
    std::vector<std::string> names;
    for (const Command &command : kCommands) {
        if (arguments[0] == command.name) return command.run(Arguments(arguments.begin() + 1, arguments.end()));
        names.emplace_back(command.name);
    }
    Complain("there is no command \"" + Printable(arguments[0]) + "\"" + Suggestion(arguments[0], names) +
             " See lmf --help");
    return kUsage;
}

} // namespace

} // namespace lmf::host

int main(int count, char **arguments) {
    const int exitCode = lmf::host::Run({arguments + 1, arguments + count});
    // Output that could not be printed, on a full disk say, is a failure too.
    const bool printed = std::fflush(stdout) == 0 && !std::ferror(stdout);
    if (!printed && exitCode == lmf::host::kDone) return lmf::host::kUnwritable;
    return exitCode;
}
