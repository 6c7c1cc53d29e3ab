#include "picture_options.h"

#include <map>

namespace lmf::host {

void AddReadingOptions(CLI::App &app, Limits &limits) {
    app.add_option("--max-side", limits.side, "Largest width or height to read, in pixels")
        ->check(CLI::Range(int64_t{1}, int64_t{0x7FFFFFFF}))
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--max-pixels", limits.pixels, "Largest number of pixels to read")
        ->check(CLI::Range(int64_t{1}, int64_t{0xFFFFFFFF}))
        ->type_name("N")
        ->capture_default_str();
    app.add_flag("--strict", limits.undamaged, "Refuse a damaged picture even if a decoder can mend it");
}

void AddWritingOptions(CLI::App &app, Encoding &encoding, Treatment &treatment) {
    static const std::map<std::string, Chroma> kChroma = {
        {"keep", Chroma::kKeep}, {"444", Chroma::k444}, {"422", Chroma::k422}, {"420", Chroma::k420}};
    app.add_option_function<std::string>(
           "--quality",
           [&encoding](const std::string &text) {
               const bool number =
                   !text.empty() && text.size() <= 3 && text.find_first_not_of("0123456789") == std::string::npos;
               encoding.quality = number ? std::stoi(text) : 0;
               if ((number || text != "keep") && (encoding.quality < 1 || encoding.quality > 100))
                   throw CLI::ValidationError("--quality", "takes keep, or 1 to 100");
           },
           "Quality of JPEG and WebP, 1 to 100; keep: that of a JPEG input, else 92 (default: keep)")
        ->type_name("N|keep");
    app.add_option("--chroma", encoding.chroma, "How finely JPEG keeps colors: 444, 422, 420 or keep (default: keep)")
        ->transform(CLI::Transformer(kChroma))
        ->type_name("S");
    app.add_flag("--progressive", encoding.progressive, "Write JPEG in scans from coarse to fine");
    app.add_flag("--lossless", encoding.lossless, "Write WebP without loss");
    app.add_option("--compression", encoding.compression, "How hard PNG tries to be small, 0 to 9 (default: 4)")
        ->check(CLI::Range(0, 9))
        ->type_name("N");
    app.add_flag("--strip", encoding.strip, "Leave metadata out, but for color profile and orientation");
    app.add_flag("--auto-orient", treatment.upright, "Turn pictures as their orientation tells");
    app.add_flag("--strict-depth", treatment.strictDepth, "Refuse a filter that takes true color to other pictures");
}

void TakePaper(std::string &paper, Treatment &treatment) {
    if (paper.empty()) return;
    treatment.paper = EqualInAnyCase(paper, "transparent") ? Paper::kTransparent : Paper::kColored;
    if (treatment.paper == Paper::kTransparent) paper.clear();
}

} // namespace lmf::host
