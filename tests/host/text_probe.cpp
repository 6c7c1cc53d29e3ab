// Stands for the library where a test looks at how it comes to its fonts: it loads the module that lies beside it.
#include "platform/system.h"
#include "platform/text.h"

extern "C" int32_t ProbeText(int32_t height);

/// @return the width of a text in a font that is `height` pixels high, or -1 where there is no font
extern "C" __attribute__((visibility("default"))) int32_t ProbeText(int32_t height) {
    lmf::KeepModuleFolder(nullptr);
    lmf::ForEachFontFamily([](void *, const char *) {}, nullptr);
    const lmf::FontOwner again({"Arial", height});
    const lmf::FontOwner font({"Arial", height});
    lmf::CloseFont(nullptr);
    return font && lmf::FontHeight(font.font) == height ? lmf::MeasureRun(font.font, U"text") : -1;
}
