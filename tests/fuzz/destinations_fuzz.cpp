// Reads arbitrary bytes as a list of destinations. Whatever it holds, the reader may not leave its buffers, and numbers
// its lines one after the other.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "overlays/social_destinations.h"

using namespace lmf;

static void Require(bool condition, const char *what) {
    if (condition) return;
    std::fprintf(stderr, "destinations_fuzz: %s\n", what);
    std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    int32_t count = 0;
    ReadDestinations(
        {reinterpret_cast<const char *>(data), size},
        [](void *target, int32_t index, const SocialDestination &destination) {
            Require(index == (*static_cast<int32_t *>(target))++, "a line was left out");
            Require(std::memchr(destination.name, '\0', 260) != nullptr, "open name");
            Require(std::strpbrk(destination.name, "\r\n\"") == nullptr, "a name that no line gives");
        },
        &count);
    return 0;
}
