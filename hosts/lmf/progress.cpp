#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace lmf::host {

namespace {

constexpr size_t kBarWidth = 24;
constexpr size_t kNameWidth = 40;

// One picture that takes no longer has no line.
constexpr double kShortSeconds = 1;

std::string Time(double seconds) {
    const long whole = long(seconds + 0.5);
    char text[32];
    if (whole < 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
    return text;
}

} // namespace

Progress::Progress(size_t pictures) : total(pictures), shown(pictures > 0 && isatty(STDERR_FILENO)) {}

Progress::~Progress() {
    Clear();
}

void Progress::Show(size_t done, const std::string &name) {
    if (!shown) return;
    const double gone = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const std::string label = Printable(name).substr(0, kNameWidth);
    if (total == 1) {
        if (gone >= kShortSeconds) std::fprintf(stderr, "\r\033[K%s, %s so far", label.c_str(), Time(gone).c_str());
    } else {
        const size_t filled = kBarWidth * done / total;
        const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '-');
        const std::string left = done > 0 ? Time(gone / double(done) * double(total - done)) + " left, " : "";
        std::fprintf(stderr, "\r\033[K[%s] %zu%% %zu/%zu, %s%s", bar.c_str(), 100 * done / total, done, total,
                     left.c_str(), label.c_str());
    }
    std::fflush(stderr);
}

void Progress::Clear() const {
    if (shown) std::fputs("\r\033[K", stderr);
}

std::string Printable(const std::string &name) {
    std::string text = name;
    for (char &c : text)
        if (static_cast<unsigned char>(c) < 32 || c == 127) c = '?';
    return text;
}

} // namespace lmf::host
