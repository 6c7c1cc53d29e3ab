// What the program prints of the catalogue, against the library's own tables.
#include <algorithm>
#include <set>

#include <nlohmann/json.hpp>

#include "engine/catalogue.h"
#include "host/lmf_program.h"

namespace lmf::testing {

namespace {

using Json = nlohmann::json;

struct LmfCatalogue : LmfProgram {
    size_t CountLines(const Names &arguments) {
        const std::string text = Run(arguments).output;
        return size_t(std::count(text.begin(), text.end(), '\n'));
    }
};

} // namespace

TEST_F(LmfCatalogue, ListsEveryRowAsTheLibraryHasIt) {
    const Json document = Json::parse(Run({"list", "--json"}).output);
    ASSERT_EQ(document["filters"].size(), size_t(kFilterCount));
    for (int32_t row = 0; row < kFilterCount; row++) {
        const FilterEntry &entry = FilterCatalogue[row];
        const Json &filter = document["filters"][size_t(row)];
        EXPECT_EQ(filter["row"], row);
        EXPECT_EQ(filter["name"], entry.name);
        EXPECT_EQ(filter["category"], document["categories"][size_t(entry.category)]);
        EXPECT_EQ(filter["flags"], entry.flags);
        EXPECT_EQ(filter["itemId"], entry.itemId);
        EXPECT_EQ(filter["pageId"], entry.pageId);
        size_t modes = 0;
        for (int32_t mode = kModeTrueColor; mode <= kModeMono; mode++) modes += FilterAccepts(entry, mode);
        EXPECT_EQ(filter["accepts"].size(), modes) << entry.name;
    }
    std::set<std::string> fileKeys;
    for (const Json &key : document["keys"]) fileKeys.insert(key["key"]);
    EXPECT_EQ(fileKeys.size(), kConfigRows - 1);
    EXPECT_EQ(fileKeys.count("BuildDate"), 0u);
    for (size_t row = 0; row < document["filters"].size(); row++) {
        size_t controls = 0;
        for (const Json &setting : document["filters"][row]["settings"]) {
            EXPECT_EQ(fileKeys.count(setting["key"]) == 1, setting["stored"].get<bool>()) << setting["key"];
            controls += setting["control"] == "radio button" ? setting["entries"].size() : 1;
        }
        const std::span<const PageControl> page = FilterCatalogue[row].filter->page;
        EXPECT_EQ(controls, static_cast<size_t>(std::ranges::count_if(page, &PageControl::IsSetting)))
            << FilterCatalogue[row].name;
    }
}

TEST_F(LmfCatalogue, ShowsAFilterForPeopleAndForPrograms) {
    const Json document = Json::parse(Run({"list", "--json"}).output);
    EXPECT_EQ(Json::parse(Run({"show", "gaussian BLUR", "--json"}).output), document["filters"][31]);
    const std::string text = Run({"show", "Gaussian Blur"}).output;
    EXPECT_TRUE(Has(text, "\nRadius  \"Radius:\"\n"));
    EXPECT_TRUE(Has(text, "range     1.0 to 99.0 pixels\n  default   4.0 pixels\n"));
    EXPECT_TRUE(Has(text, "the slider of the window shows 0.40 for 4.0 pixels\n"));
    EXPECT_TRUE(Has(text, "key       FilterGaussianRadius=10 to 990, default 40\n"));
    const std::pair<const char *, const char *> parts[] = {
        {"Fade", "2 South\n"},
        {"Swirl", "range     -1440 to 1440 degrees\n  default   45 degrees\n"},
        {"Rotate", "0 Left: Turns the picture to the left.\n            1 Right: Turns"},
        {"Rotate", "range     0.0 to 359.9 degrees, or any other angle\n"},
        {"Crop", "default   the picture's width less 1\n"},
        {"Trim", "needs     Mode \"By size\"\n"},
        {"Sharpen", "effect    none; give FilterEmbossWidth instead\n"},
        {"Sharpen", "EmbossWidth  \"Radius:\"  (of Emboss)\n"},
        {"Shadow", "default   #000000\n"},
        {"Invert Colors", "no settings"},
    };
    for (const auto &[filter, part] : parts) EXPECT_TRUE(Has(Run({"show", filter}).output, part)) << part;
}

TEST_F(LmfCatalogue, ListsWhatRunsAndLooksForWords) {
    const auto available = std::ranges::count_if(
        FilterCatalogue, [](const FilterEntry &entry) { return entry.filter->FilterKernel != nullptr; });
    EXPECT_EQ(CountLines({"list"}), size_t(available));
    EXPECT_EQ(CountLines({"list", "--all"}), size_t(kFilterCount));
    EXPECT_EQ(CountLines({"list", "--category", "BLUR"}), 4u);
    EXPECT_EQ(Run({"list", "water", "frosted glass"}).output.substr(0, 11), "Water Drops");
    for (const FilterEntry &entry : FilterCatalogue) {
        if (entry.filter->FilterKernel != nullptr) continue;
        EXPECT_TRUE(Has(Run({"show", entry.name}).output, "This version cannot run it."));
        EXPECT_FALSE(Has(Run({"list"}).output, "\n" + std::string(entry.name) + " "));
    }
    EXPECT_EQ(Run({"--version"}).output.substr(0, 6), "lmf 0.");
}

// Case, blanks and signs don't count, and people have other names for many a filter.
TEST_F(LmfCatalogue, NamesAreFoundAsPeopleWriteThem) {
    const std::pair<const char *, const char *> names[] = {{"gaussian-blur", "Gaussian Blur"},
                                                           {"GaussianBlur", "Gaussian Blur"},
                                                           {" gaussian  blur", "Gaussian Blur"},
                                                           {"hue_saturation_brightness", "Hue "},
                                                           {"grayscale", "Convert to Grey"},
                                                           {"black and white", "Convert to Grey"},
                                                           {"negate", "Invert Colors"},
                                                           {"sharpen", "Sharpen"},
                                                           {"crop", "Crop"},
                                                           {"vintage", "Sepia"},
                                                           {"sepia-tone", "Sepia"},
                                                           {"photo finetune", "Photo Fine-tune"}};
    for (const auto &[typed, name] : names) EXPECT_TRUE(Run({"show", typed}).output.starts_with(name)) << typed;
    const Json document = Json::parse(Run({"list", "--json"}).output);
    std::set<std::string> all;
    for (const Json &filter : document["filters"]) {
        EXPECT_FALSE(filter["description"].get<std::string>().empty());
        for (const Json &synonym : filter["synonyms"]) EXPECT_TRUE(all.insert(synonym).second) << synonym;
    }
}

} // namespace lmf::testing
