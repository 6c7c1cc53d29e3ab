#include "metadata.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "files.h"
#include "metadata_module.h"

namespace lmf::host {

namespace {

// Beside the filter library.
constexpr char kModuleFile[] = "liblmf_metadata.so";

// Gives the module, which is loaded once and stays; null, with a warning, if it is not there.
const MetadataModule *Module(Report &report) {
    static const MetadataModule *module = [] {
        void *library = dlopen((ProgramLibraryFolder() + kModuleFile).c_str(), RTLD_NOW | RTLD_LOCAL);
        void *entry = library ? dlsym(library, "LmfMetadataModule") : nullptr;
        return entry ? reinterpret_cast<decltype(&LmfMetadataModule)>(entry)() : nullptr;
    }();
    if (!module) report.Warn(std::string(kModuleFile) + " cannot be loaded, so metadata is left out");
    return module;
}

// What Exiv2 says is about data that it could not make out, and has left out.
void PassOn(const MetadataModule::Complaints &complaints, Report &report) {
    for (const std::string &complaint : complaints) report.Warn("metadata: " + complaint);
}

bool IsExif(ByteView block) {
    return block.size() >= 8 &&
           (std::memcmp(block.data(), "II*\0", 4) == 0 || std::memcmp(block.data(), "MM\0*", 4) == 0);
}

bool Near(double a, double b, double tolerance) {
    return std::fabs(a - b) <= tolerance;
}

// Whether the tags tell what a program without colour management shows anyway.
bool LooksLikeSrgb(const ColorTags &colors) {
    static constexpr double kSrgb[8] = {0.3127, 0.329, 0.64, 0.33, 0.3, 0.6, 0.15, 0.06};
    if (colors.srgbIntent >= 0) return true;
    if (colors.gamma > 0 && !Near(colors.gamma, 1 / 2.2, 0.01)) return false;
    if (colors.chroma[0] <= 0) return true;
    for (int i = 0; i < 8; ++i)
        if (!Near(colors.chroma[i], kSrgb[i], 0.01)) return false;
    return true;
}

void DropWhatHasNoPlace(Metadata &metadata, unsigned holds, const char *format, Report &report) {
    std::string left;
    const auto drop = [&](unsigned kind, auto &part, const std::string &name) {
        if ((holds & kind) || part.empty()) return;
        left += (left.empty() ? "" : ", ") + name;
        part.clear();
    };
    drop(kHoldsExif, metadata.exif, "EXIF");
    drop(kHoldsXmp, metadata.xmp, "XMP");
    drop(kHoldsIptc, metadata.iptc, "IPTC");
    drop(kHoldsComment, metadata.comment, "comment");
    drop(kHoldsTexts, metadata.texts,
         metadata.texts.size() == 1 ? "text" : std::to_string(metadata.texts.size()) + " texts");
    if (!left.empty()) report.Warn(std::string(format) + " has no place for this, which is left out: " + left);
}

} // namespace

std::string TextChunk::Keyword() const {
    return std::string(data.begin(), std::find(data.begin(), data.end(), 0));
}

Metadata FitMetadata(Metadata metadata, const Described &picture, unsigned holds, const char *format, Report &report) {
    MetadataChange change;
    change.picture = picture;
    change.densityIntoExif = (holds & kHoldsExif) && !(holds & kHoldsDensity) && metadata.density.absolute;
    change.iptcIntoXmp = (holds & kHoldsXmp) && !(holds & kHoldsIptc) && !metadata.iptc.empty();
    change.colorTagsIntoIcc = !(holds & kHoldsColorTags) && metadata.icc.empty() && metadata.colors.Known() &&
                              !LooksLikeSrgb(metadata.colors);
    const bool exif = (holds & kHoldsExif) && !metadata.exif.empty();
    const bool xmp = (holds & kHoldsXmp) && !metadata.xmp.empty() && picture.resized;
    if (exif || xmp || change.densityIntoExif || change.iptcIntoXmp || change.colorTagsIntoIcc) {
        MetadataModule::Complaints complaints;
        if (const MetadataModule *module = Module(report)) {
            module->change(metadata, change, complaints);
            PassOn(complaints, report);
            if (change.iptcIntoXmp) metadata.iptc.clear();
        } else {
            metadata.exif.clear();
        }
    }
    DropWhatHasNoPlace(metadata, holds, format, report);
    return metadata;
}

void StripMetadata(Metadata &metadata, Report &report) {
    Metadata kept;
    kept.icc = std::move(metadata.icc);
    kept.colors = metadata.colors;
    if (!metadata.exif.empty()) {
        kept.exif = std::move(metadata.exif);
        MetadataChange change;
        change.onlyOrientation = true;
        MetadataModule::Complaints complaints;
        if (const MetadataModule *module = Module(report)) {
            module->change(kept, change, complaints);
        } else {
            kept.exif.clear();
        }
    }
    metadata = std::move(kept);
}

int ExifOrientation(ByteView exif, Report &report) {
    if (exif.empty()) return 0;
    const MetadataModule *module = Module(report);
    return module ? module->orientation(exif) : 0;
}

void SetUpright(Metadata &metadata, const Described &picture, Report &report) {
    MetadataChange change;
    change.picture = picture;
    change.upright = true;
    MetadataModule::Complaints complaints;
    if (const MetadataModule *module = Module(report)) module->change(metadata, change, complaints);
    PassOn(complaints, report);
}

Bytes ExifBlock(ByteView block) {
    if (block.size() > 6 && std::memcmp(block.data(), "Exif\0\0", 6) == 0) block = block.subspan(6);
    return IsExif(block) ? Bytes(block.begin(), block.end()) : Bytes();
}

Bytes IptcOfResources(ByteView resources, Report &report) {
    const MetadataModule *module = Module(report);
    return module ? module->iptcOfResources(resources) : Bytes();
}

Bytes ExifOfTiff(ByteView file, Report &report) {
    const MetadataModule *module = Module(report);
    MetadataModule::Complaints complaints;
    Bytes exif = module ? module->exifOfTiff(file, complaints) : Bytes();
    PassOn(complaints, report);
    return exif;
}

bool AddToTiff(Bytes &file, const Metadata &metadata, Report &report) {
    const MetadataModule *module = Module(report);
    MetadataModule::Complaints complaints;
    const bool added = module && module->addToTiff(file, metadata, complaints);
    PassOn(complaints, report);
    return added;
}

InkConverter::~InkConverter() {
    Report ignored;
    if (transform) Module(ignored)->closeInks(transform);
}

bool InkConverter::Open(ByteView profile, bool inverted, Report &report) {
    const MetadataModule *module = Module(report);
    if (module) transform = module->openInks(profile, inverted);
    return transform != nullptr;
}

void InkConverter::Convert(const uint8_t *inks, int width, uint8_t *out) const {
    Report ignored;
    Module(ignored)->convertInks(transform, inks, width, out);
}

void InksToColor(const uint8_t *inks, int width, bool inverted, uint8_t *out) {
    for (int x = 0; x < width; ++x, inks += 4, out += 3) {
        const int black = inverted ? inks[3] : 255 - inks[3];
        for (int c = 0; c < 3; ++c) {
            const int light = inverted ? inks[2 - c] : 255 - inks[2 - c];
            out[c] = uint8_t((light * black + 127) / 255);
        }
    }
}

} // namespace lmf::host
