#include "overlays/social_compose.h"

#include <utility>

#include "image/blur/gaussian.h"
#include "image/core/alpha_mask.h"
#include "image/core/dib_ops.h"
#include "image/core/pixel_map.h"
#include "image/draw/gradient_picture.h"
#include "image/noise/window_width.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

// Without memory, and of a size that cannot be, pictures are made empty, and what is made of those is empty again.

/// A place in a picture, which may reach beyond it.
struct Area {
    int64_t x, y, width, height;
};

/// What is composed, and how.
struct Composition {
    ReadView source; ///< 24 bits
    const SocialLayout &layout;
    int32_t width, height; ///< of the destination

    /// Percentages of the source at which it is as wide and as high as the destination.
    double PercentX() const { return static_cast<double>(width) * 100 / source.width; }
    double PercentY() const { return static_cast<double>(height) * 100 / source.height; }
};

int64_t Rounded(double value) {
    return static_cast<int64_t>(value + 0.5);
}

int64_t PartOf(int64_t length, int32_t percent) {
    return length * percent / 100;
}

/// Where a part of some space begins. Nothing begins before the space does.
int64_t Placed(int64_t space, int64_t part, int32_t placement) {
    return std::max<int64_t>(PartOf(space - part, placement), 0);
}

/// An area of this size at the layout's place in the destination.
Area PlacedArea(const Composition &made, int64_t width, int64_t height) {
    return {Placed(made.width, width, made.layout.placementX), Placed(made.height, height, made.layout.placementY),
            width, height};
}

LockedDib Scaled(const ReadView &picture, int64_t width, int64_t height) {
    if (std::min(width, height) < 1 || std::max(width, height) > INT32_MAX) return LockedDib();
    return LockedDib(DibScaleTo(picture, static_cast<int32_t>(width), static_cast<int32_t>(height), kWindowAutomatic));
}

/// What lies in an area of a picture, white where the picture does not reach.
DibHandle Crop(const ReadView &picture, const Area &area) {
    const auto coordinate = [](int64_t value) {
        return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
    };
    return DibCropRect(picture, coordinate(area.x), coordinate(area.y), coordinate(area.x + area.width),
                       coordinate(area.y + area.height));
}

/// The same without a copy where the area is the whole picture.
LockedDib Part(LockedDib picture, const Area &area) {
    if (!picture) return picture;
    const ReadView whole = picture;
    const bool isWhole = area.x == 0 && area.y == 0 && area.width == whole.width && area.height == whole.height;
    return isWhole ? std::move(picture) : LockedDib(Crop(whole, area));
}

/// The source at a size, or, where the layout's scale is larger, what of it lies at the layout's place.
LockedDib Cut(const Composition &made, int64_t width, int64_t height) {
    const SocialLayout &layout = made.layout;
    LockedDib scaled = Scaled(made.source, PartOf(width, layout.scale), PartOf(height, layout.scale));
    if (!scaled) return scaled;
    const ReadView view = scaled;
    return Part(std::move(scaled), {Placed(view.width, width, layout.placementX),
                                    Placed(view.height, height, layout.placementY), width, height});
}

/// The source so large that nothing is left to fill. One side keeps the source's own size.
DibHandle Fill(const Composition &made) {
    const SocialLayout &layout = made.layout;
    const double percent = std::max(made.PercentX(), made.PercentY());
    int64_t width = Rounded(made.source.width * percent / 100), height = Rounded(made.source.height * percent / 100);
    if (PartOf(width - made.width, layout.placementX) < 1)
        width = made.source.width;
    else
        height = made.source.height;
    LockedDib scaled = Scaled(made.source, PartOf(width, layout.scale), PartOf(height, layout.scale));
    if (!scaled) return nullptr;
    const ReadView view = scaled;
    DibHandle cut = Crop(view, {Placed(view.width, made.width, layout.placementX),
                                Placed(view.height, made.height, layout.placementY), made.width, made.height});
    return cut != nullptr ? cut : scaled.Release();
}

/// The source as large as it fits, with bars at two sides.
Area AreaBetweenBars(const Composition &made) {
    const double percent = std::min(made.PercentX(), made.PercentY());
    Area area =
        PlacedArea(made, Rounded(made.source.width * percent / 100), Rounded(made.source.height * percent / 100));
    (area.x != 0 ? area.height : area.width) = area.x != 0 ? made.height : made.width;
    return area;
}

/// The source with a margin all around that a shadow has room in.
/// @param shift  receives how far the shadow falls to the right and down, which is told by the margin alone
Area AreaWithMargin(const Composition &made, int64_t *shift) {
    const SocialLayout &layout = made.layout;
    const double width = made.source.width, height = made.source.height;
    const double percent = std::min(made.PercentX(), made.PercentY()) * (100 - layout.frameMargin) / 100;
    Area area = PlacedArea(made, Rounded(width * percent / 100), Rounded(height * percent / 100));
    *shift = PartOf(std::min(area.width, area.height), layout.shadowOffset);
    int64_t room = *shift;
    if (layout.shadowSoftness > 0) room += 1 + layout.shadowSoftness * 6 / 10;
    if (area.y < room) {
        const int64_t fitted = made.height - 2 * room;
        area = PlacedArea(made, Rounded(width / height * static_cast<double>(fitted)), fitted);
        area.y = room;
    }
    if (area.x < room) {
        const int64_t fitted = made.width - 2 * room;
        area = PlacedArea(made, fitted, Rounded(height / width * static_cast<double>(fitted)));
        area.x = room;
    }
    return area;
}

LockedDib Gradient(const SocialLayout &layout, int64_t width, int64_t height) {
    return LockedDib(GradientPicture(static_cast<Color>(layout.color1), static_cast<Color>(layout.color2),
                                     static_cast<int32_t>(width), static_cast<int32_t>(height), layout.gradientX - 50,
                                     layout.gradientY - 50, layout.gradientAngle, layout.gradientType));
}

/// Recolours a picture and blurs it.
LockedDib Softened(const SocialLayout &layout, const LockedDib &picture) {
    if (!picture) return LockedDib();
    const auto scale = [](int32_t percent) { return 2 * (static_cast<float>(percent) / 200); };
    LockedDib soft(
        DibAdjustHsv(picture, static_cast<float>(layout.hsbHue - 180), scale(layout.hsbSat), scale(layout.hsbBri)));
    constexpr int32_t kRadiusTenths = 50;
    if (soft && layout.blur > 0) soft = LockedDib(GaussianBlurDirect(soft, kRadiusTenths, layout.blur));
    return soft;
}

bool HasSoftBars(int32_t process) {
    return process >= kSocialSoftBars;
}

/// A sheet with a bar on either side of the area, and black between them.
LockedDib TwoBars(const Composition &made, const Area &area, int32_t process) {
    const bool upright = area.x != 0;
    const int64_t right = area.x + area.width, below = area.y + area.height;
    const Area bars[2] = {
        {0, 0, upright ? area.x : made.width, upright ? made.height : area.y},
        {upright ? right : 0, upright ? 0 : below, upright ? made.width - right : made.width,
         upright ? made.height : made.height - below},
    };
    const bool flips[2] = {process == kSocialSoftBarsReverseMirrored,
                           process == kSocialDoubleGradientBarsMirrored || process == kSocialSoftBarsMirrored};
    LockedDib sheet(DibCreate(made.width, made.height, nullptr, 24));
    LockedDib bar;
    for (int32_t i = 0; i < 2 && sheet; i++) {
        const auto [x, y, width, height] = bars[i];
        // Bars of one size are the same picture.
        if (i == 0 || width != bars[0].width || height != bars[0].height)
            bar = HasSoftBars(process) ? Softened(made.layout, Cut(made, width, height))
                                       : Gradient(made.layout, width, height);
        const LockedDib flipped(!bar || !flips[i] ? nullptr : upright ? DibFlipHorizontal(bar) : DibFlipVertical(bar));
        if (!bar || (flips[i] && !flipped)) return LockedDib();
        DibCopyRect(sheet.View(), static_cast<int32_t>(x), static_cast<int32_t>(y), flipped ? flipped : bar, 0, 0,
                    static_cast<int32_t>(width), static_cast<int32_t>(height));
    }
    return sheet;
}

/// The middle of a picture that is enlarged to cover the destination.
LockedDib LargeBackground(const Composition &made, const ReadView &picture) {
    const double scale =
        std::max(static_cast<double>(made.width) / picture.width, static_cast<double>(made.height) / picture.height);
    const auto width = static_cast<int64_t>(picture.width * scale),
               height = static_cast<int64_t>(picture.height * scale);
    const Area middle = {(width - made.width) / 2, (height - made.height) / 2, made.width, made.height};
    return Softened(made.layout, Part(Scaled(picture, width, height), middle));
}

LockedDib Background(const Composition &made, const Area &area, const ReadView &picture, int32_t process) {
    switch (process) {
    case kSocialSolidBars:
    case kSocialShadowOnSolid:
        return LockedDib(DibCreateSolid(made.width, made.height, static_cast<Color>(made.layout.color1)));
    case kSocialGradientBars:
    case kSocialShadowOnGradient:
        return Gradient(made.layout, made.width, made.height);
    case kSocialLargeBackground:
    case kSocialShadowLargeBackground:
        return LargeBackground(made, picture);
    default:
        return TwoBars(made, area, process);
    }
}

/// Coverage of a rectangle of one level whose edges may be soft, row by row. It is what GaussianBlurDirect makes of the
/// whole mask: since all rows of the rectangle are alike, columns that one of them leaves on the same level are, too,
/// and it takes one row and one column of each level.
class SoftRectangle {
public:
    /// @param sigmaTenths  width of the curve in tenths of a pixel; 0 leaves the edges hard
    SoftRectangle(const WriteView &sheet, const Area &area, uint8_t level, int32_t sigmaTenths)
        : width(sheet.width), height(sheet.height), row(static_cast<uint64_t>(width)),
          columns(kLevels * static_cast<uint64_t>(height)), coverage(static_cast<uint64_t>(width)) {
        constexpr double kRadius = 20;
        BlockArray<uint8_t> hard(static_cast<uint64_t>(std::max(width, height)));
        if (!row || !columns || !coverage || !hard) return;
        const int32_t window = std::min({width, height, WindowWidth(kRadius)});
        BlurKernel kernel;
        if (sigmaTenths > 0 && BuildGaussianKernel(window, sigmaTenths / 10.0, &kernel) == 0) return;
        const auto makeLine = [&](uint8_t *to, int32_t count, int64_t start, int64_t length, uint8_t value) {
            std::fill_n(hard.data, count, uint8_t{0});
            std::fill(hard.data + std::clamp<int64_t>(start, 0, count),
                      hard.data + std::clamp<int64_t>(start + length, 0, count), value);
            if (sigmaTenths > 0)
                BlurLineGrey(kernel->data, window, hard.data, to, count);
            else
                std::copy_n(hard.data, count, to);
        };
        makeLine(row.data, width, area.x, area.width, level);
        for (int32_t x = 0; x < width; x++) {
            if (!std::exchange(used[row[x]], true))
                makeLine(columns.data + row[x] * int64_t{height}, height, area.y, area.height, row[x]);
        }
        ready = true;
    }
    /// False when there was no memory.
    explicit operator bool() const { return ready; }
    /// Row y, good until the next call.
    const uint8_t *Row(int32_t y) {
        ToneTable levels = {};
        for (int32_t level = 0; level < kLevels; level++)
            if (used[level]) levels.at[level] = columns[level * int64_t{height} + y];
        LookUpBytes(coverage.data, row.data, static_cast<size_t>(width), levels);
        return coverage.data;
    }

private:
    static constexpr int32_t kLevels = 256;

    int32_t width, height;
    BlockArray<uint8_t> row;     ///< of the rectangle, with its soft ends
    BlockArray<uint8_t> columns; ///< what a column becomes that has this level in the rectangle, for the levels in use
    BlockArray<uint8_t> coverage;
    bool used[kLevels] = {};
    bool ready = false;
};

/// @return false without memory
bool CastShadow(const WriteView &sheet, const SocialLayout &layout, const Area &area, int64_t shift) {
    constexpr int32_t kHardest = 2;
    const int32_t unit = std::max(std::min(sheet.width, sheet.height) / 128, 1);
    SoftRectangle shadow(sheet, {area.x + shift, area.y + shift, area.width, area.height},
                         static_cast<uint8_t>(layout.shadowOpacity),
                         layout.shadowSoftness > kHardest ? unit * layout.shadowSoftness : 0);
    if (!shadow) return false;
    for (int32_t y = 0; y < sheet.height; y++)
        TintRow(sheet.Row(y), shadow.Row(y), sheet.width, static_cast<Color>(layout.shadowColor));
    return true;
}

/// Puts the picture into its area, with its line around it.
void Finish(const WriteView &sheet, const SocialLayout &layout, const Area &area, const ReadView &picture) {
    const auto x = static_cast<int32_t>(area.x), y = static_cast<int32_t>(area.y);
    DibCopyRect(sheet, x, y, picture, 0, 0, picture.width, picture.height);
    if (!layout.keylineEnable) return;
    const int32_t size = layout.keylineSize;
    DibFrameRect(sheet, x - size, y - size, picture.width + 2 * size, picture.height + 2 * size,
                 static_cast<uint32_t>(layout.keylineColor), size);
}

DibHandle Compose(const Composition &made, int32_t process) {
    if (process <= kSocialFill || process > kSocialShadowLargeBackground) return Fill(made);
    const bool hasMargin = process == kSocialShadowOnSolid || process == kSocialShadowOnGradient ||
                           process == kSocialShadowLargeBackground;
    int64_t shift = 0;
    const Area area = hasMargin ? AreaWithMargin(made, &shift) : AreaBetweenBars(made);
    const LockedDib picture = Cut(made, area.width, area.height);
    if (!picture) return nullptr;
    LockedDib sheet = Background(made, area, picture, process);
    if (!sheet) return nullptr;
    if (hasMargin && made.layout.shadowEnable && !CastShadow(sheet.View(), made.layout, area, shift)) return nullptr;
    Finish(sheet.View(), made.layout, area, picture);
    return sheet.Release();
}

} // namespace

DibHandle SocialCompose(const ReadView &picture, const SocialLayout &layout, const SocialDestination &destination,
                        int32_t process) {
    if (destination.width < 1 || destination.depth < 1) return nullptr;
    if (picture.bits == 24) return Compose({picture, layout, destination.width, destination.depth}, process);
    const LockedDib colors(picture.bits == 32 ? DibFlattenOnColor(picture, 0) : DibToRgb(picture));
    if (!colors) return nullptr;
    return Compose({colors, layout, destination.width, destination.depth}, process);
}

} // namespace lmf
