// What is printed for people of the filters and their settings.
#pragma once

#include <string>
#include <vector>

#include "catalogue.h"

namespace lmf::host {

/// Which filters a list has.
struct ListRequest {
    std::string category;           // empty: all
    std::vector<std::string> words; // each is found in the filter's name, category, description or synonyms
    bool all = false;               // also those that this version cannot run
};

/// Gives one line a filter, its name and what it does, in the order of their names; empty where none fits.
std::string ListText(const ListRequest &request);

/// Gives a filter's settings, as people give them and as files store them.
std::string ShowText(const Json &filter);

} // namespace lmf::host
