// Folders of a user's that a test has for itself.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "engine/settings.h"

namespace lmf::testing {

/// The maker's folder and the product's in it, both empty, and the user's documents. Settings start at the factory's.
struct UserFolders : ::testing::Test {
    std::filesystem::path root = std::filesystem::temp_directory_path() / ("lmf_user_" + std::to_string(::getpid()));
    std::filesystem::path folder = root / "Quillon Works", product = folder / "Lumenfold Studio 16";

    void SetUp() override {
        std::filesystem::create_directories(product);
        ::setenv("XDG_CONFIG_HOME", root.c_str(), 1);
        ::setenv("XDG_DOCUMENTS_DIR", root.c_str(), 1);
        Settings = kFactorySettings;
    }
    void TearDown() override {
        std::filesystem::remove_all(root);
        ::unsetenv("XDG_CONFIG_HOME");
        ::unsetenv("XDG_DOCUMENTS_DIR");
        Settings = kFactorySettings;
    }
};

} // namespace lmf::testing
