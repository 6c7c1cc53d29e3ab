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
    EXPECT_TRUE(Has(text, "FilterGaussianRadius  \"Radius:\"\n"));
    EXPECT_TRUE(Has(text, "range     10 is 1.0 pixels (shown as 0.10) to 990 is 99.0 pixels (shown as 9.90)\n"));
    EXPECT_TRUE(Has(text, "default   40 is 4.0 pixels (shown as 0.40)\n"));
    EXPECT_TRUE(Has(Run({"show", "Fade"}).output, "2 South\n"));
    EXPECT_TRUE(Has(Run({"show", "Swirl"}).output, "restore   2925"));
    EXPECT_TRUE(Has(Run({"show", "Invert Colors"}).output, "no settings"));
    EXPECT_EQ(CountLines({"list"}), size_t(kFilterCount) + 1);
    EXPECT_EQ(CountLines({"list", "--category", "blur"}), 1u + 4u);
}

} // namespace lmf::testing
