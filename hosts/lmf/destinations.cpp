#include "destinations.h"

#include "common/text_decoding.h"
#include "lmf16filter.h"
#include "overlays/social_destinations.h"
#include "product_file.h"
#include "progress.h"

namespace lmf::host {

namespace {

constexpr char kFilter[] = "Social Media";
constexpr char kSetting[] = "FilterSocialMediaDestination";

struct DestinationList {
    std::string path;
    std::string error; // empty if the list could be read
    Json entries = Json::array();
};

std::string NameOf(const SocialDestination &destination) {
    char name[3 * sizeof destination.name + 1];
    const size_t length = TextToUtf8(destination.name, name, sizeof name);
    return Printable(std::string(name, length));
}

DestinationList ReadList() {
    DestinationList list;
    list.path = FindProductFile(kDestinationFiles, kDestinationFiles[1]);
    Report report;
    std::string text;
    if (!ReadProductFile(list.path, text, report)) {
        list.error = list.path + ": " + report.error;
    } else {
        ReadDestinations(
            text,
            [](void *target, int32_t index, const SocialDestination &destination) {
                static_cast<Json *>(target)->push_back({{"value", index}, {"name", NameOf(destination)}});
            },
            &list.entries);
        if (list.entries.empty()) list.error = list.path + ": the list is empty";
    }
    return list;
}

// Read once, before the library no longer sees the user's folder.
const DestinationList &Destinations() {
    // Never destroyed, as the catalogue is not.
    static const DestinationList &kList = *new DestinationList(ReadList());
    return kList;
}

} // namespace

Json WithDestinations(Json document) {
    const DestinationList &list = Destinations();
    for (Json &filter : document["filters"]) {
        for (Json &setting : filter["settings"]) {
            if (setting["key"] != kSetting) continue;
            setting["entries"] = list.entries;
            if (list.error.empty())
                setting["max"] = list.entries.size() - 1;
            else
                setting["help"] = setting["help"].get<std::string>() + " No list can be read: " + Printable(list.error);
        }
    }
    return document;
}

bool FindDestinations(const Json &filter, std::string &path, Report &report) {
    if (filter["name"] != kFilter) return true;
    const DestinationList &list = Destinations();
    if (!list.error.empty()) return report.Fail("no destinations: " + Printable(list.error));
    path = list.path;
    return true;
}

std::string DestinationAdvice(const Json &filter, int errorCode) {
    if (filter["name"] != kFilter) return "";
    if (errorCode == LMF_ERROR_CORRUPTED)
        return " (the list has no such destination, or one without width and depth: " + Printable(Destinations().path) +
               ")";
    if (errorCode == LMF_ERROR_MEMORY)
        return " (two bars need a picture of another shape than the destination, and a shadow needs room)";
    return "";
}

} // namespace lmf::host
