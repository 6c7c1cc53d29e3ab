// Reads arbitrary bytes as a table of named colours.
#include <cstdlib>
#include <cstring>

#include "common/colour_database.h"

using namespace lmf;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    ColourTable table;
    if (!ReadColours({reinterpret_cast<const char *>(data), size}, &table)) std::abort();
    for (const NamedColour &colour : table.Elements()) {
        const size_t length = std::strlen(colour.name);
        if (length == 0 || length >= kColourLineSize || colour.color > 0xFFFFFF) std::abort();
        if (std::strpbrk(colour.name, "=\r\n") != nullptr) std::abort();
    }
    return 0;
}
