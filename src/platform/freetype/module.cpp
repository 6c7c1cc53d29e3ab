#include "platform/text_module.h"

extern "C" __attribute__((visibility("default"))) const lmf::TextModule *LmfTextModule() {
    static constexpr lmf::TextModule kModule = {lmf::OpenFont, lmf::CloseFont, lmf::FontHeight,       lmf::MeasureRun,
                                                lmf::DrawRun,  lmf::RunBounds, lmf::ForEachFontFamily};
    return &kModule;
}
