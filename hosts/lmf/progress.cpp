#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace lmf::host {

namespace {

constexpr size_t kBarWidth = 24;
constexpr size_t kNameWidth = 40;

} // namespace

Progress::Progress(size_t pictures) : total(pictures), shown(pictures > 1 && isatty(STDERR_FILENO)) {}

Progress::~Progress() {
    Clear();
}

void Progress::Show(size_t index, const std::string &name) const {
    if (!shown) return;
    const size_t filled = kBarWidth * index / total;
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '-');
    std::fprintf(stderr, "\r\033[K[%s] %zu/%zu %s", bar.c_str(), index + 1, total,
                 Printable(name).substr(0, kNameWidth).c_str());
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
