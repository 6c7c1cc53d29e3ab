#include "filter_run.h"

#include <algorithm>
#include <cstring>

namespace lmf::host {

namespace {

// What these make of a pixel hangs on no pixel beside it, or they look at hidden pixels on purpose.
constexpr std::string_view kKeepsToPixels[] = {"Add Alpha",
                                               "Bayer Dither",
                                               "Black Threshold",
                                               "Channels",
                                               "Color and Intensity",
                                               "Contrast and Brightness",
                                               "Convert to 256 Colors",
                                               "Convert to Grey",
                                               "Convert to Mono",
                                               "Convert to RGB",
                                               "Crop",
                                               "Equalize",
                                               "Flip",
                                               "Gamma",
                                               "Hue Saturation Brightness",
                                               "Invert Channels",
                                               "Invert Colors",
                                               "Moonlight",
                                               "Normalize",
                                               "Photo Fine-tune",
                                               "Posterize",
                                               "Remove Alpha",
                                               "Sepia",
                                               "Sigmoidal Contrast",
                                               "Solarize",
                                               "Split channels",
                                               "Stitch",
                                               "Tile",
                                               "Trim",
                                               "White Balance",
                                               "White Threshold"};

// These leave ground that the picture does not cover, and fill it with the paper.
constexpr std::string_view kUncovers[] = {"Matt", "Rotate", "Shear"};

template <size_t N>
bool IsOneOf(const std::string_view (&names)[N], const Json &filter) {
    return std::find(std::begin(names), std::end(names), filter["name"].get_ref<const std::string &>()) !=
           std::end(names);
}

// Whether the filter does what it is asked for on such a picture. By dimensions, Resize has no way but its windows,
// which mix colours, and gives pictures of indices back as they are.
bool Takes(const Json &filter, const FilterCall &call, const std::string &mode) {
    const bool indices = mode == "palette" || mode == "mono";
    const bool byDimensions = call.lines.find("FilterResizeByDim = 1") != std::string::npos;
    return Accepts(filter, mode) && !(filter["name"] == "Resize" && indices && byDimensions);
}

bool RaiseToColor(Picture &picture, Report &report) {
    Bitmap raised;
    const Bitmap &image = picture.image;
    if (!MakeBitmap(raised, image.width, image.height, 24, report)) return false;
    for (int y = 0; y < image.height; ++y) FillRow(picture, Layout::kColor, Order::kBgr, y, raised.Row(y));
    picture.image = std::move(raised);
    return true;
}

// Gives hidden pixels the colour of the nearest that can be seen. Two passes, each with the neighbours that it has
// been to, find a way from there that is hardly longer than the shortest; far away any colour will do.
class HiddenColors {
public:
    explicit HiddenColors(Picture &target) : picture(target), bytes(picture.image.bits / 8) {}

    void Fill() {
        const int width = picture.image.width, height = picture.image.height;
        distance.assign(size_t(width) * size_t(height), kFar);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) Visit(x, y, -1);
        for (int y = height - 1; y >= 0; --y)
            for (int x = width - 1; x >= 0; --x) Visit(x, y, 1);
    }

private:
    static constexpr uint8_t kFar = 255;

    uint8_t &DistanceAt(int x, int y) { return distance[size_t(y) * size_t(picture.image.width) + size_t(x)]; }

    // `side` is -1 for the neighbours above and to the left, 1 for those below and to the right.
    void Visit(int x, int y, int side) {
        uint8_t &own = DistanceAt(x, y);
        if (picture.alpha.Row(y)[x] != 0) {
            own = 0;
            return;
        }
        const int steps[4][2] = {{side, 0}, {0, side}, {side, side}, {-side, side}};
        for (const auto &[dx, dy] : steps) {
            const int nx = x + dx, ny = y + dy;
            if (nx < 0 || ny < 0 || nx >= picture.image.width || ny >= picture.image.height) continue;
            const uint8_t next = DistanceAt(nx, ny);
            if (next == kFar || next + 1 >= own) continue;
            own = uint8_t(next + 1);
            std::memcpy(picture.image.Row(y) + bytes * x, picture.image.Row(ny) + bytes * nx, size_t(bytes));
        }
    }

    Picture &picture;
    int bytes;
    Bytes distance;
};

bool HasHiddenPixels(const Picture &picture) {
    for (int y = 0; picture.alpha && y < picture.alpha.height; ++y)
        if (std::memchr(picture.alpha.Row(y), 0, size_t(picture.alpha.width))) return true;
    return false;
}

bool MakeWhite(Bitmap &plane, const Bitmap &like, Report &report) {
    if (!MakeBitmap(plane, like.width, like.height, 8, report)) return false;
    SetGreyRamp(plane);
    for (int y = 0; y < plane.height; ++y) std::memset(plane.Row(y), 255, size_t(plane.width));
    return true;
}

FilterOutcome OutOfMemory() {
    return {false, LMF_ERROR_MEMORY};
}

// Runs the filter over black paper, in picture and alpha, and takes the black out of the edges again: how much of it is
// in there, a white picture shows that goes the same way.
FilterOutcome RunOnNothing(const Library &library, FilterCall call, Picture &picture, Report &report) {
    call.lines += "PaperColor = 0\n";
    Picture ground;
    if (!picture.alpha && !MakeWhite(picture.alpha, picture.image, report)) return OutOfMemory();
    if (picture.image.bits >= 8 && !MakeWhite(ground.image, picture.image, report)) return OutOfMemory();
    const FilterOutcome outcome = ApplyFilter(library, call, picture, report);
    if (!outcome.done || !ground.image || !ApplyFilter(library, call, ground, report).done) return outcome;
    const Bitmap &image = picture.image;
    if (ground.image.width != image.width || ground.image.height != image.height ||
        (image.bits != 24 && !HasGreyRamp(image)))
        return outcome;
    const int bytes = image.bits / 8;
    for (int y = 0; y < image.height; ++y) {
        uint8_t *row = image.Row(y);
        const uint8_t *cover = ground.image.Row(y);
        for (int x = 0; x < image.width; ++x)
            for (int c = 0; c < bytes && cover[x] != 0 && cover[x] != 255; ++c)
                row[bytes * x + c] = uint8_t(std::min(255, (row[bytes * x + c] * 255 + cover[x] / 2) / cover[x]));
    }
    return outcome;
}

// Trims the picture, and the alpha with it. Where the cut lies is told by runs that leave a side alone: the sides are
// cut in the order north, east, south, west, each over what is left.
FilterOutcome RunTrim(const Library &library, const FilterCall &call, Picture &picture, Report &report) {
    Bitmap alpha = std::move(picture.alpha);
    const int width = picture.image.width, height = picture.image.height;
    const auto trimmedSize = [&](const char *without, int &outWidth, int &outHeight) {
        Picture copy;
        if (!MakeBitmap(copy.image, width, height, picture.image.bits, report)) return OutOfMemory();
        std::memcpy(copy.image.bytes, picture.image.bytes, LmfBlockSize(picture.image.block));
        FilterCall part = call;
        part.lines += without;
        const FilterOutcome outcome = ApplyFilter(library, part, copy, report);
        outWidth = copy.image.width;
        outHeight = copy.image.height;
        return outcome;
    };
    int withWest = 0, ignored = 0, northOnly = 0;
    FilterOutcome outcome = trimmedSize("FilterTrimWest = 0\n", withWest, ignored);
    if (outcome.done)
        outcome = trimmedSize("FilterTrimEast = 0\nFilterTrimSouth = 0\nFilterTrimWest = 0\n", ignored, northOnly);
    if (outcome.done) outcome = ApplyFilter(library, call, picture, report);
    Bitmap cut;
    if (outcome.done && !MakeBitmap(cut, picture.image.width, picture.image.height, 8, report)) outcome = OutOfMemory();
    if (!outcome.done) {
        picture.alpha = std::move(alpha);
        return outcome;
    }
    SetGreyRamp(cut);
    const int left = withWest - cut.width, top = height - northOnly;
    for (int y = 0; y < cut.height; ++y) std::memcpy(cut.Row(y), alpha.Row(top + y) + left, size_t(cut.width));
    picture.alpha = std::move(cut);
    return outcome;
}

FilterOutcome RunAsIs(const Library &library, const Json &filter, const FilterCall &call, const Treatment &treatment,
                      Picture &picture, Report &report) {
    const bool transparent =
        treatment.paper == Paper::kTransparent || (treatment.paper == Paper::kByPicture && picture.alpha);
    if (transparent && IsOneOf(kUncovers, filter)) return RunOnNothing(library, call, picture, report);
    if (picture.alpha && filter["name"] == "Trim") return RunTrim(library, call, picture, report);
    return ApplyFilter(library, call, picture, report);
}

// Where the pixel (x, y) of the upright picture lies in one of this size and orientation.
struct Spot {
    int x, y;
};
Spot Source(int orientation, int width, int height, int x, int y) {
    const int right = width - 1, bottom = height - 1;
    switch (orientation) {
    case 2:
        return {right - x, y};
    case 3:
        return {right - x, bottom - y};
    case 4:
        return {x, bottom - y};
    case 5:
        return {y, x};
    case 6:
        return {y, bottom - x};
    case 7:
        return {right - y, bottom - x};
    case 8:
        return {right - y, x};
    default:
        return {x, y};
    }
}

bool Turn(Bitmap &bitmap, int orientation, Report &report) {
    const bool sideways = orientation >= 5;
    const int width = bitmap.width, height = bitmap.height, bits = bitmap.bits;
    Bitmap turned;
    if (!MakeBitmap(turned, sideways ? height : width, sideways ? width : height, bits, report)) return false;
    if (bits <= 8) std::memcpy(turned.Palette(), bitmap.Palette(), 4 * size_t(bitmap.Colors()));
    for (int y = 0; y < turned.height; ++y) {
        uint8_t *out = turned.Row(y);
        for (int x = 0; x < turned.width; ++x) {
            const Spot from = Source(orientation, width, height, x, y);
            const uint8_t *row = bitmap.Row(from.y);
            if (bits >= 8) {
                std::memcpy(out + x * (bits / 8), row + from.x * (bits / 8), size_t(bits / 8));
            } else {
                const int perByte = 8 / bits, mask = (1 << bits) - 1;
                const int value = row[from.x / perByte] >> (8 - bits * (from.x % perByte + 1)) & mask;
                out[x / perByte] = uint8_t(out[x / perByte] | value << (8 - bits * (x % perByte + 1)));
            }
        }
    }
    bitmap = std::move(turned);
    return true;
}

} // namespace

FilterOutcome RunFilter(const Library &library, const Json &filter, const FilterCall &call, const Treatment &treatment,
                        Picture &picture, Report &report) {
    const std::string name = filter["name"];
    const std::string mode = ModeName(picture.image);
    const bool taken = Takes(filter, call, mode);
    if (!taken && treatment.strictDepth && Accepts(filter, mode)) return {false, LMF_ERROR_UNSUPPORTED};
    if (!taken && !treatment.strictDepth && Accepts(filter, "true color")) {
        report.Warn("the " + mode + " picture becomes true color, since " + name + " takes no " + mode);
        if (!RaiseToColor(picture, report)) return OutOfMemory();
    }
    const bool plainBytes = picture.image.bits == 24 || (picture.image.bits == 8 && HasGreyRamp(picture.image));
    if (plainBytes && !IsOneOf(kKeepsToPixels, filter) && HasHiddenPixels(picture)) HiddenColors(picture).Fill();
    const bool hadAlpha = bool(picture.alpha);
    const size_t warnings = report.warnings.size();
    const FilterOutcome outcome = RunAsIs(library, filter, call, treatment, picture, report);
    // The library counts a run as done when only the alpha's memory was too short.
    const bool lost = outcome.done && hadAlpha && !picture.alpha && filter["alpha"] != "dropped";
    if (lost && report.warnings.size() == warnings) return OutOfMemory();
    return outcome;
}

bool TurnUpright(Picture &picture, Report &report) {
    const int orientation = ExifOrientation(picture.metadata.exif, report);
    if (orientation <= 1) return true;
    if (!Turn(picture.image, orientation, report)) return false;
    if (picture.alpha && !Turn(picture.alpha, orientation, report)) return false;
    picture.readWidth = picture.image.width;
    picture.readHeight = picture.image.height;
    SetUpright(picture.metadata, {picture.image.width, picture.image.height, true, false}, report);
    Density &density = picture.metadata.density;
    if (orientation >= 5) std::swap(density.x, density.y);
    return true;
}

} // namespace lmf::host
