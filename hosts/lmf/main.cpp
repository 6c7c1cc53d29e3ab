// lmf, the command line host of the filter library: what is typed, and what is printed.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "apply.h"
#include "catalogue.h"
#include "command_line.h"
#include "console.h"
#include "files.h"
#include "listing.h"
#include "picture_options.h"
#include "progress.h"
#include "recipe_commands.h"
#include "sample.h"

namespace lmf::host {

namespace {

// Prints the catalogue document with the filters of one category, or of all.
int PrintCatalogue(const std::string &category) {
    Json document = Catalogue();
    Json &filters = document["filters"];
    for (size_t i = filters.size(); i-- > 0 && !category.empty();)
        if (Normalized(filters[i]["category"].get<std::string>()) != Normalized(category)) filters.erase(i);
    Print(document.dump(1) + "\n");
    return kDone;
}

int List(const Arguments &arguments) {
    CLI::App app(
        "Lists the filters and says what each does. With words, only those whose name, category, description or\n"
        "other names have them all.",
        "lmf list [WORD]...");
    ListRequest request;
    bool json = false;
    app.add_option("--category", request.category, "Only the filters of this category")->type_name("NAME");
    app.add_flag("--all", request.all, "Also the filters that this version cannot run");
    app.add_flag("--json", json, "Print the catalogue document");
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, request.words, exitCode)) return exitCode;
    if (!request.category.empty() && !RequireCategory(request.category)) return kUsage;
    if (json) {
        if (request.words.empty()) return PrintCatalogue(request.category);
        Complain("lmf list --json takes no words");
        return kUsage;
    }
    const std::string text = ListText(request);
    if (text.empty()) {
        Complain(std::string("no filter has these words") + (request.all ? "" : "; --all looks at all 95"));
        return kUsage;
    }
    Print(text);
    return kDone;
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
    Print(ShowText(*filter));
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
    if (picture.fileBits > 0) entry["fileBits"] = picture.fileBits;
    entry["iccBytes"] = picture.metadata.icc.size();
    entry["exifBytes"] = picture.metadata.exif.size();
    entry["xmpBytes"] = picture.metadata.xmp.size();
    entry["iptcBytes"] = picture.metadata.iptc.size();
    entry["orientation"] = ExifOrientation(picture.metadata.exif, report);
    return entry;
}

int Info(const Arguments &arguments) {
    CLI::App app("Tells what a picture file holds, as the filters will see it.", "lmf info PICTURE...");
    bool json = false;
    Limits limits;
    app.add_flag("--json", json, "Print JSON");
    AddReadingOptions(app, limits);
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
        if (picture.fileBits > 0) text += " (" + std::to_string(picture.fileBits) + " bits a channel in the file)";
        if (HasAlpha(picture)) text += ", alpha";
        if (!picture.metadata.icc.empty()) text += ", ICC profile";
        if (!picture.metadata.exif.empty()) text += ", EXIF";
        if (!picture.metadata.xmp.empty()) text += ", XMP";
        if (!picture.metadata.iptc.empty()) text += ", IPTC";
        if (entry["orientation"] != 0) text += ", orientation " + entry["orientation"].dump();
        Print(text + "\n");
    }
    if (json) Print(document.dump(1, ' ', false, Json::error_handler_t::replace) + "\n");
    return exitCode;
}

// The options that say which files are read and written.
void AddFileOptions(CLI::App &app, FilesRequest &files) {
    static const std::map<std::string, Conflict> kConflicts = {{"overwrite", Conflict::kOverwrite},
                                                               {"skip", Conflict::kSkip},
                                                               {"fail", Conflict::kFail},
                                                               {"rename", Conflict::kRename}};
    app.add_option("--out-dir", files.folder, "Write all results into this folder")->type_name("DIR");
    app.add_option("--suffix", files.suffix, "Add this to the names of the results, before the ending")
        ->type_name("TEXT");
    app.add_flag("--in-place", files.inPlace, "Let results take the place of their inputs");
    app.add_flag("--keep-tree", files.keepTree, "Keep the folders of the inputs below --out-dir");
    app.add_option_function<std::string>(
           "--on-conflict",
           [&files](const std::string &word) {
               const auto found = kConflicts.find(word);
               if (found == kConflicts.end())
                   throw CLI::ValidationError("--on-conflict", "takes fail, skip, rename or overwrite");
               files.conflict = found->second;
           },
           "What to do where a result's name is taken: fail, skip, rename or overwrite (default: overwrite)")
        ->type_name("WHAT");
    app.add_flag_callback(
        "--skip-existing", [&files] { files.conflict = Conflict::kSkip; }, "The same as --on-conflict skip");
    app.add_flag("-r,--recurse", files.recurse, "Take the pictures in folders, and in folders below them");
    app.add_option("--files-from", files.listFile,
                   "Take names of inputs from a file too, one a line; - is standard input")
        ->type_name("FILE");
    app.add_flag("-0,--null", files.nulList, "The names of --files-from end in NUL bytes and not in lines");
    app.add_option("--format", files.extension, "Write png, jpg, tif, webp or bmp, whatever the name ends in")
        ->type_name("FORMAT");
}

// Makes the files of a request of the names that were typed.
bool TakeNames(const CLI::App &app, const Arguments &names, FilesRequest &files) {
    files.inputs = names;
    if (files.extension.starts_with('.')) files.extension.erase(0, 1);
    const bool many = app.count("--out-dir") + app.count("--suffix") + app.count("--in-place") > 0;
    std::string fault;
    if (!files.extension.empty() && !CodecForName("x." + files.extension))
        fault = "--format takes png, jpg, tif, webp or bmp";
    else if (app.count("--out-dir") && files.folder.empty())
        fault = "--out-dir takes the name of a folder";
    else if (files.suffix.find('/') != std::string::npos)
        fault = "--suffix is a part of a name and has no /";
    else if (files.keepTree && files.folder.empty())
        fault = "--keep-tree needs --out-dir";
    else if (files.nulList && files.listFile.empty())
        fault = "--null needs --files-from";
    else if (!many && (files.recurse || !files.listFile.empty()))
        fault = "say where the results go: --out-dir, --suffix or --in-place";
    else if (!many && (files.inputs.size() != 2 || files.inputs[1].empty()))
        fault = "give one input and one output, or --out-dir and any number of inputs";
    if (!fault.empty()) {
        Complain(fault);
        return false;
    }
    if (many) return true;
    files.output = files.inputs[1];
    files.inputs.pop_back();
    return true;
}

// The options of lmf apply. `names` takes those of the filters after the first; a setting belongs to the filter that
// stands before it.
void AddApplyOptions(CLI::App &app, ApplyRequest &request, Arguments &names) {
    std::vector<StepRequest> &steps = request.settings.steps;
    steps.resize(1);
    app.add_option_function<std::string>(
           "--set", [&steps](const std::string &text) { steps.back().assignments.push_back(text); },
           "A setting of the filter before it (see lmf show)")
        ->type_name("NAME=VALUE")
        ->trigger_on_parse();
    app.add_option_function<std::string>(
           "--document", [&steps](const std::string &path) { steps.back().document = path; },
           "A document with settings of the filter before it")
        ->type_name("FILE")
        ->trigger_on_parse();
    app.add_option_function<std::string>(
           "--then",
           [&steps, &names](const std::string &name) {
               names.push_back(name);
               steps.emplace_back();
           },
           "A further filter, run over the result of the one before it")
        ->type_name("FILTER")
        ->trigger_on_parse();
    app.add_option("--paper", request.settings.paper, "The paper color, #RRGGBB, a name, or transparent")
        ->type_name("COLOR");
    app.add_option("--settings-from", request.settings.fromFile, "Begin with the settings of an ini file")
        ->type_name("FILE");
    app.add_option("--seed", request.seed, "Where random numbers start: the same N gives the same grain")
        ->check(CLI::Range(int64_t{0}, int64_t{0xFFFFFFFF}).description(""))
        ->type_name("N");
    app.add_option("--clipboard", request.clipboard,
                   "A picture file that plays the part of the clipboard, for filters that take a second picture")
        ->type_name("PICTURE");
    AddFileOptions(app, request.files);
    AddReadingOptions(app, request.limits);
    AddWritingOptions(app, request.encoding, request.treatment);
    app.add_option("--library", request.library, "The filter library, if not the one beside this program")
        ->type_name("FILE");
    app.add_option("-j,--jobs", request.jobs, "Processes that share the pictures (default: one a processor)")
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
    app.add_flag("--json", request.json, "Print a line of JSON for each picture when it is done");
    app.add_flag("-q,--quiet", request.quiet, "Print errors only: no warnings, no bar, no sum");
    app.footer("Exit codes: 0 done, 1 wrong usage, 2 an input could not be read, 3 a filter failed,\n"
               "4 an output could not be written. With many pictures: that of the first that failed.");
}

// Finds the filters of a chain.
bool FindSteps(ApplyRequest &request, const Arguments &names) {
    for (size_t i = 0; i < names.size(); ++i) {
        const Json *&filter = request.settings.steps[i].filter;
        if (!filter) filter = RequireFilter(names[i]);
        if (!filter) return false;
    }
    return true;
}

int ApplyCommand(const Arguments &arguments) {
    CLI::App app("Applies a filter, or several one after the other, to a picture, or to many.\n"
                 "The file name's ending picks the format: .png, .jpg, .tif, .webp or .bmp.\n"
                 "As IN, - is standard input; as OUT it is standard output.",
                 "lmf apply FILTER [--then FILTER]... IN OUT | lmf apply FILTER --out-dir DIR IN...");
    ApplyRequest request;
    Arguments names(1);
    RecipeChoice recipe;
    AddApplyOptions(app, request, names);
    AddRecipeOptions(app, recipe);
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (app.count("--recipe") > 0) {
        exitCode = TakeRecipe(recipe, request.quiet, request.settings.steps[0]);
        if (exitCode != kDone) return exitCode;
    } else if (rest.empty()) {
        Complain("name a filter. See lmf apply --help");
        return kUsage;
    } else {
        names[0] = rest[0];
        rest.erase(rest.begin());
    }
    if (!FindSteps(request, names)) return kUsage;
    if (!TakeNames(app, rest, request.files)) return kUsage;
    TakePaper(request.settings.paper, request.treatment);
    return Apply(request);
}

int SampleCommand(const Arguments &arguments) {
    CLI::App app("Draws a picture to try filters on. A file that is there already stays as it is.",
                 "lmf sample PICTURE");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest.size() != 1) {
        Complain("lmf sample takes the name of the picture to write");
        return kUsage;
    }
    Report report;
    Picture picture;
    if (rest[0] != kStandardStream && FileExists(rest[0])) report.Fail("this file is there already");
    if (report.error.empty() && DrawSample(picture, report) &&
        WritePicture(rest[0], nullptr, picture, Encoding(), report))
        return kDone;
    Complain(Printable(rest[0]) + ": " + report.error);
    return kUnwritable;
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
    {"sample", "draw a picture to try filters on", SampleCommand},
    {"recipes", "list the recipes", RecipesCommand},
    {"sheet", "draw what recipes or filters make of a picture", SheetCommand},
    {"save", "write a document with a filter's settings", SaveCommand},
    {"settings", "tell where the library keeps the user's settings", SettingsCommand},
};

int Usage(bool asked) {
    std::string text = "lmf applies the Lumenfold filters to picture files.\n\n"
                       "  lmf apply FILTER [--set NAME=VALUE]... [--then FILTER [--set ...]]... IN OUT\n"
                       "  lmf apply FILTER --out-dir DIR IN...\n"
                       "  lmf list [WORD]... [--category C] [--all] [--json]\n"
                       "  lmf show FILTER [--json]\n"
                       "  lmf apply --recipe NAME IN OUT\n"
                       "  lmf info PICTURE...\n"
                       "  lmf sample PICTURE\n"
                       "  lmf recipes [--json]\n"
                       "  lmf sheet IN OUT.png [--filters A,B,... | --category C]\n"
                       "  lmf save FILTER [--set NAME=VALUE]... FILE\n"
                       "  lmf settings path\n"
                       "  lmf --version\n\n"
                       "Commands:\n";
    for (const Command &command : kCommands) text += "  " + Padded(command.name, 10) + command.summary + "\n";
    text += "\n\"lmf COMMAND --help\" tells more.\n";
    std::fputs(text.c_str(), asked ? stdout : stderr);
    return asked ? kDone : kUsage;
}

int Run(const Arguments &arguments) {
    if (arguments.empty()) return Usage(false);
    if (arguments[0] == "--help" || arguments[0] == "-h" || arguments[0] == "help") return Usage(true);
    if (arguments[0] == "--version" || arguments[0] == "-V" || arguments[0] == "version") {
        Print("lmf " LMF_VERSION "\n");
        return kDone;
    }
    std::vector<std::string> names;
    for (const Command &command : kCommands) {
        if (arguments[0] == command.name) return command.run(Arguments(arguments.begin() + 1, arguments.end()));
        names.emplace_back(command.name);
    }
    Complain("there is no command \"" + Printable(arguments[0]) + "\"" + Suggestion(arguments[0], names) +
             " See lmf --help");
    return kUsage;
}

// Ends the program for want of memory, with a text that needs none.
[[noreturn]] void EndWithoutMemory() {
    constexpr std::string_view kText = "lmf: stopped, most likely since memory is too short\n";
    (void)!write(STDERR_FILENO, kText.data(), kText.size());
    _exit(kUnreadable);
}

// Memory may end anywhere, also where nothing can be caught: while a document of JSON is taken apart, say, or in the
// constructors of the command line's library, before which this one runs.
[[gnu::constructor(101)]] void TellOfShortMemory() {
    std::set_terminate(EndWithoutMemory);
}

} // namespace

} // namespace lmf::host

int main(int count, char **arguments) {
    using namespace lmf::host;
    CleanUpOnSignals();
    try {
        // Output that could not be printed, on a full disk say, is a failure too.
        return FinishOutput(Run({arguments + 1, arguments + count}));
    } catch (const std::bad_alloc &) {
        EndWithoutMemory();
    } catch (const std::exception &error) {
        Complain(error.what());
        return kUnreadable;
    }
}
