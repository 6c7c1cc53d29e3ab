// A folder for a test that goes on in processes of its own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace lmf::testing {

/// An empty folder. In a process that the test starts it is the same one, and stays for the test to remove.
struct SharedFolder {
    std::string path;
    bool isOwner;

    SharedFolder() {
        const char *given = std::getenv("LMF_TEST_FOLDER");
        isOwner = given == nullptr;
        path = isOwner ? "/tmp/lmf-test-XXXXXX" : given;
        if (isOwner && mkdtemp(path.data()) != nullptr) ::setenv("LMF_TEST_FOLDER", path.c_str(), 1);
    }
    SharedFolder(const SharedFolder &) = delete;
    SharedFolder &operator=(const SharedFolder &) = delete;
    ~SharedFolder() {
        if (!isOwner) return;
        ::unsetenv("LMF_TEST_FOLDER");
        std::filesystem::remove_all(path);
    }
};

} // namespace lmf::testing
