#include "metadata_module.h"

#include <exiv2/exiv2.hpp>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>

namespace lmf::host {

namespace {

using Complaints = MetadataModule::Complaints;

constexpr size_t kMostComplaints = 4;
constexpr char kOrientation[] = "Exif.Image.Orientation";

Complaints *gComplaints = nullptr;

void OnMessage(int level, const char *text) {
    if (level < Exiv2::LogMsg::error || !gComplaints || gComplaints->size() >= kMostComplaints) return;
    std::string line(text);
    while (!line.empty() && line.back() == '\n') line.pop_back();
    gComplaints->push_back(line);
}

// Exiv2 speaks through one handler and leaves by exceptions; both end here. Gives false after an exception.
template <typename Work>
bool Guarded(Complaints &complaints, Work work) {
    Exiv2::LogMsg::setHandler(OnMessage);
    gComplaints = &complaints;
    bool done = false;
    try {
        work();
        done = true;
    } catch (const std::bad_alloc &) {
        gComplaints = nullptr;
        throw;
    } catch (const std::exception &error) {
        complaints.emplace_back(error.what());
    }
    gComplaints = nullptr;
    return done;
}

uint32_t SizeOf(ByteView bytes) {
    return uint32_t(std::min<size_t>(bytes.size(), 0xFFFFFFFF));
}

int Orientation(ByteView exif) {
    int64_t value = 0;
    Complaints ignored;
    (void)Guarded(ignored, [&] {
        Exiv2::ExifData data;
        Exiv2::ExifParser::decode(data, exif.data(), SizeOf(exif));
        const auto found = data.findKey(Exiv2::ExifKey(kOrientation));
        if (found != data.end() && found->count() == 1) value = found->toLong();
    });
    return value >= 1 && value <= 8 ? int(value) : 0;
}

void SetIfThere(Exiv2::ExifData &data, const char *key, uint32_t value) {
    const auto found = data.findKey(Exiv2::ExifKey(key));
    if (found != data.end()) found->setValue(std::to_string(value));
}

void SetDensity(Exiv2::ExifData &data, const Density &density) {
    if (!density.absolute || data.findKey(Exiv2::ExifKey("Exif.Image.XResolution")) != data.end()) return;
    const auto perInch = [](double perMetre) {
        return Exiv2::URational(uint32_t(std::lround(perMetre * 0.0254 * 1000)), 1000u);
    };
    data["Exif.Image.XResolution"] = perInch(density.x);
    data["Exif.Image.YResolution"] = perInch(density.y);
    data["Exif.Image.ResolutionUnit"] = uint16_t{2}; // inches
}

void EncodeExif(const Exiv2::ExifData &data, Exiv2::ByteOrder order, Bytes &exif) {
    if (data.empty()) {
        exif.clear();
        return;
    }
    // Where the layout stays, the values are changed in the block itself, and maker notes keep their places.
    Exiv2::Blob made;
    if (Exiv2::ExifParser::encode(made, exif.data(), SizeOf(exif), order, data) == Exiv2::wmIntrusive)
        exif.assign(made.begin(), made.end());
}

void ChangeExif(Metadata &metadata, const MetadataChange &change, Complaints &complaints) {
    Exiv2::ExifData data;
    Exiv2::ByteOrder order = Exiv2::littleEndian;
    if (!metadata.exif.empty()) order = Exiv2::ExifParser::decode(data, metadata.exif.data(), SizeOf(metadata.exif));
    if (order == Exiv2::invalidByteOrder) order = Exiv2::littleEndian;
    const size_t before = metadata.exif.size();
    if (change.onlyOrientation) {
        const auto found = data.findKey(Exiv2::ExifKey(kOrientation));
        Exiv2::ExifData only;
        if (found != data.end()) only.add(*found);
        metadata.exif.clear();
        EncodeExif(only, order, metadata.exif);
        return;
    }
    Exiv2::ExifThumb(data).erase();
    if (change.upright) SetIfThere(data, kOrientation, 1);
    for (const char *key : {"Exif.Photo.PixelXDimension", "Exif.Iop.RelatedImageWidth"})
        SetIfThere(data, key, uint32_t(change.picture.width));
    for (const char *key : {"Exif.Photo.PixelYDimension", "Exif.Iop.RelatedImageLength"})
        SetIfThere(data, key, uint32_t(change.picture.height));
    if (change.densityIntoExif) SetDensity(data, metadata.density);
    EncodeExif(data, order, metadata.exif);
    constexpr size_t kExiv2Limit = 65527; // beyond it, it leaves out the largest values
    if (before > kExiv2Limit && metadata.exif.size() < before)
        complaints.emplace_back("values too long for a JPEG file are left out");
}

bool Mentions(ByteView packet, const char *word) {
    return std::search(packet.begin(), packet.end(), word, word + std::strlen(word)) != packet.end();
}

void SetIfThere(Exiv2::XmpData &data, const char *key, const std::string &value) {
    const auto found = data.findKey(Exiv2::XmpKey(key));
    if (found != data.end()) found->setValue(value);
}

void ChangeXmp(Metadata &metadata, const MetadataChange &change) {
    const bool moreThanText = change.picture.resized || change.upright;
    const bool sizes = moreThanText && (Mentions(metadata.xmp, "Dimension") || Mentions(metadata.xmp, "ImageWidth") ||
                                        Mentions(metadata.xmp, "Orientation"));
    const bool iptc = change.iptcIntoXmp && !metadata.iptc.empty();
    if (!sizes && !iptc) return;
    Exiv2::XmpData data;
    if (!metadata.xmp.empty() &&
        Exiv2::XmpParser::decode(data, std::string(metadata.xmp.begin(), metadata.xmp.end())) != 0)
        return;
    if (sizes) {
        const std::string width = std::to_string(change.picture.width), height = std::to_string(change.picture.height);
        for (const char *key : {"Xmp.exif.PixelXDimension", "Xmp.tiff.ImageWidth"}) SetIfThere(data, key, width);
        for (const char *key : {"Xmp.exif.PixelYDimension", "Xmp.tiff.ImageLength"}) SetIfThere(data, key, height);
        if (change.upright) SetIfThere(data, "Xmp.tiff.Orientation", "1");
    }
    if (iptc) {
        Exiv2::IptcData records;
        if (Exiv2::IptcParser::decode(records, metadata.iptc.data(), SizeOf(metadata.iptc)) == 0)
            Exiv2::copyIptcToXmp(records, data);
    }
    std::string packet;
    if (Exiv2::XmpParser::encode(packet, data) == 0) metadata.xmp.assign(packet.begin(), packet.end());
}

struct ProfileCloser {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

// A profile of the colours that PNG's gAMA and cHRM tell; without primaries those of sRGB.
void ProfileFromTags(const ColorTags &tags, bool grey, Bytes &icc) {
    static constexpr double kSrgb[8] = {0.3127, 0.329, 0.64, 0.33, 0.3, 0.6, 0.15, 0.06};
    const double *chroma = tags.chroma[0] > 0 ? tags.chroma : kSrgb;
    const double gamma = tags.gamma > 0 ? tags.gamma : 1 / 2.2;
    cmsToneCurve *curve = cmsBuildGamma(nullptr, 1 / gamma);
    if (!curve) return;
    const cmsCIExyY white = {chroma[0], chroma[1], 1};
    const cmsCIExyYTRIPLE primaries = {{chroma[2], chroma[3], 1}, {chroma[4], chroma[5], 1}, {chroma[6], chroma[7], 1}};
    cmsToneCurve *const curves[3] = {curve, curve, curve};
    const Profile profile(grey ? cmsCreateGrayProfile(&white, curve) : cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurve(curve);
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size)) return;
    icc.resize(size);
    if (!cmsSaveProfileToMem(profile.get(), icc.data(), &size)) icc.clear();
}

void Change(Metadata &metadata, const MetadataChange &change, Complaints &complaints) {
    if (!metadata.exif.empty() || change.densityIntoExif) {
        if (!Guarded(complaints, [&] { ChangeExif(metadata, change, complaints); })) metadata.exif.clear();
    }
    (void)Guarded(complaints, [&] { ChangeXmp(metadata, change); });
    if (change.colorTagsIntoIcc) ProfileFromTags(metadata.colors, change.picture.grey, metadata.icc);
}

Bytes IptcOfResources(ByteView resources) {
    const Exiv2::byte *record = nullptr;
    uint32_t header = 0, size = 0;
    Bytes iptc;
    Complaints ignored;
    (void)Guarded(ignored, [&] {
        if (Exiv2::Photoshop::locateIptcIrb(resources.data(), long(resources.size()), &record, &header, &size) == 0)
            iptc.assign(record + header, record + header + size);
    });
    return iptc;
}

Bytes ExifOfTiff(ByteView file, Complaints &complaints) {
    Bytes exif;
    (void)Guarded(complaints, [&] {
        Exiv2::ExifData data;
        Exiv2::IptcData iptc;
        Exiv2::XmpData xmp;
        const Exiv2::ByteOrder order = Exiv2::TiffParser::decode(data, iptc, xmp, file.data(), SizeOf(file));
        // Profile, XMP and IPTC go their own ways.
        for (const char *key : {"Exif.Image.InterColorProfile", "Exif.Image.XMLPacket", "Exif.Image.IPTCNAA"}) {
            const auto found = data.findKey(Exiv2::ExifKey(key));
            if (found != data.end()) data.erase(found);
        }
        EncodeExif(data, order, exif);
    });
    return exif;
}

bool AddToTiff(Bytes &file, const Metadata &metadata, Complaints &complaints) {
    return Guarded(complaints, [&] {
        Exiv2::ExifData data, added;
        Exiv2::IptcData iptc;
        Exiv2::XmpData xmp;
        const Exiv2::ByteOrder order = Exiv2::TiffParser::decode(data, iptc, xmp, file.data(), SizeOf(file));
        if (!metadata.exif.empty()) Exiv2::ExifParser::decode(added, metadata.exif.data(), SizeOf(metadata.exif));
        for (const Exiv2::Exifdatum &datum : added)
            if (data.findKey(Exiv2::ExifKey(datum.key())) == data.end()) data.add(datum);
        if (!metadata.iptc.empty()) Exiv2::IptcParser::decode(iptc, metadata.iptc.data(), SizeOf(metadata.iptc));
        if (!metadata.xmp.empty()) Exiv2::XmpParser::decode(xmp, std::string(metadata.xmp.begin(), metadata.xmp.end()));
        Exiv2::MemIo made;
        if (Exiv2::TiffParser::encode(made, file.data(), SizeOf(file), order, data, iptc, xmp) == Exiv2::wmIntrusive) {
            made.open();
            const Exiv2::byte *bytes = made.mmap();
            file.assign(bytes, bytes + made.size());
        }
    });
}

void *OpenInks(ByteView profile, bool inverted) {
    const Profile inks(cmsOpenProfileFromMem(profile.data(), SizeOf(profile)));
    if (!inks || cmsGetColorSpace(inks.get()) != cmsSigCmykData) return nullptr;
    const Profile screen(cmsCreate_sRGBProfile());
    return cmsCreateTransform(inks.get(), inverted ? TYPE_CMYK_8_REV : TYPE_CMYK_8, screen.get(), TYPE_BGR_8,
                              INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION);
}

void ConvertInks(void *transform, const uint8_t *inks, int width, uint8_t *out) {
    cmsDoTransform(transform, inks, out, cmsUInt32Number(width));
}

void CloseInks(void *transform) {
    cmsDeleteTransform(transform);
}

} // namespace

extern "C" __attribute__((visibility("default"))) const MetadataModule *LmfMetadataModule() {
    static constexpr MetadataModule kModule = {Orientation, Change,   IptcOfResources, ExifOfTiff,
                                               AddToTiff,   OpenInks, ConvertInks,     CloseInks};
    return &kModule;
}

} // namespace lmf::host
