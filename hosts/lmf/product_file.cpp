#include "product_file.h"

#include <cstdlib>
#include <filesystem>

#include "files.h"
#include "settings.h"

namespace lmf::host {

namespace {

constexpr char kProductFolder[] = "Lumenfold Studio 16";
constexpr size_t kLargestText = size_t{1} << 20;

std::string UserFolder() {
    const std::string ini = UserIniPath();
    return ini.substr(0, ini.rfind('/') + 1) + kProductFolder + "/";
}

std::string LibraryFolder() {
    const char *library = std::getenv("LMF_LIBRARY");
    if (!library || !*library) return ProgramLibraryFolder();
    std::error_code error;
    return std::filesystem::absolute(library, error).parent_path().string() + "/";
}

} // namespace

std::string FindProductFile(std::span<const char *const> names, const char *factory) {
    for (const char *name : names)
        if (FileExists(UserFolder() + name)) return UserFolder() + name;
    return LibraryFolder() + factory;
}

bool ReadProductFile(const std::string &path, std::string &text, Report &report) {
    Bytes bytes;
    if (!ReadFile(
            path, [](ByteView) { return true; }, bytes, report))
        return false;
    if (bytes.size() > kLargestText) return report.Fail("the file is larger than 1 MB");
    text.assign(bytes.begin(), bytes.end());
    return true;
}

} // namespace lmf::host
