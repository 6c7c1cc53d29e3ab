#include "command_line.h"

#include <algorithm>

#include "console.h"
#include "progress.h"

namespace lmf::host {

namespace {

// Points to the help of the command whose usage line is the app's name: "lmf apply FILTER IN OUT".
std::string HelpHint(const CLI::App &app) {
    const std::string &usage = app.get_name();
    return ". See " + usage.substr(0, usage.find(' ', usage.find(' ') + 1)) + " --help";
}

} // namespace

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

const Json *RequireFilter(const std::string &name) {
    if (const Json *filter = FindFilter(name)) return filter;
    std::vector<std::string> names;
    for (const Json &filter : Catalogue()["filters"]) names.push_back(filter["name"]);
    Complain("there is no filter \"" + Printable(name) + "\"" + Suggestion(name, names) +
             " \"lmf list\" names them, \"lmf list WORD\" looks for one");
    return nullptr;
}

bool RequireCategory(std::string &category) {
    std::string all;
    for (const Json &name : Catalogue()["categories"]) {
        const auto &spelling = name.get_ref<const std::string &>();
        all.append(all.empty() ? "" : ", ").append(spelling);
        if (Normalized(spelling) != Normalized(category)) continue;
        category = spelling;
        return true;
    }
    Complain("there is no category \"" + Printable(category) + "\". The categories: " + all);
    return false;
}

} // namespace lmf::host
