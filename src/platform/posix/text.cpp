#include "platform/text.h"

#include <cstdio>

#include "platform/module.h"
#include "platform/system.h"
#include "platform/text_module.h"

namespace lmf {

namespace {

/// The module beside the library; null, with one line on stderr, where it or what it needs is not installed.
const TextModule *LoadTextModule() {
    void *entry = FindSymbol(LoadModule(ModuleFolder(), "lmf16text"), kTextModuleEntry);
    if (entry != nullptr) return reinterpret_cast<TextModuleEntry>(entry)();
    std::fprintf(stderr, "lmf16filter: text cannot be drawn: %s\n", ModuleError());
    return nullptr;
}

/// The module, loaded by the first call and kept for good.
const TextModule *Module() {
    static const TextModule *const module = LoadTextModule();
    return module;
}

} // namespace

TextFont *OpenFont(const FontRequest &request) {
    if (Module() == nullptr) return nullptr;
    TextFont *font = Module()->openFont(request);
    static bool isTold = false;
    if (font == nullptr && !isTold) std::fputs("lmf16filter: text cannot be drawn: no font can be opened\n", stderr);
    isTold |= font == nullptr;
    return font;
}

void CloseFont(TextFont *font) {
    if (font != nullptr) Module()->closeFont(font);
}

int32_t FontHeight(const TextFont *font) {
    return Module()->fontHeight(font);
}

int32_t MeasureRun(TextFont *font, std::u32string_view text) {
    return Module()->measureRun(font, text);
}

bool DrawRun(TextFont *font, const TextRun &run, int32_t x, int32_t y, const TextInk &ink, const TextSurface &surface,
             const TextRect &clip) {
    return Module()->drawRun(font, run, x, y, ink, surface, clip);
}

bool RunBounds(TextFont *font, const TextRun &run, int32_t x, int32_t y, const TextInk &ink, TextRect *bounds) {
    return Module()->runBounds(font, run, x, y, ink, bounds);
}

void ForEachFontFamily(void (*take)(void *user, const char *family), void *user) {
    if (Module() != nullptr) Module()->forEachFontFamily(take, user);
}

} // namespace lmf
