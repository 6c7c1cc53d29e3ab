// Paper Curl: rolls one corner of the picture up like a page.
// Size is how far the roll comes in from the corner, in percent of the way to the opposite one, and Direction says
// which corner. Curl color is the back of the page. Where the page is lifted, the paper colour shows, or with Include
// clipboard the clipboard's picture, which lies in that corner in its own size. Antialias smooths the edges.
//
// The page lies flat up to a line that is parallel to a diagonal. Beyond it, it bends around a cylinder until it has
// turned over, and lies flat on itself. Every pixel looks for the layers that are above it: the back of the page, its
// rising front, what is beneath.
#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "engine/clipboard_picture.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/core/dib_ops.h"
#include "image/draw/row_painter.h"
#include "image/geometry/corner.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(650, "Size:", &P::FilterCurlSize, {5, 95})
        .In(Unit::Percent)
        .Help("How far the corner rolls up, of the way to the opposite corner."),
    CheckBox(651, "Include clipboard", &P::FilterCurlClipboard)
        .Help("Shows the clipboard's picture under the page instead of the paper color."),
    CheckBox(652, "Antialias", &P::FilterCurlAntialias).Restores(1).Help("Smooths the edges of the rolled page."),
    Combo(653, "Direction:", &P::FilterCurlDirection, kCornerList).Help("The corner that rolls up."),
    ColorButton(654, "Curl color", &P::FilterCurlColor).Help("Color of the back of the page."),
};

constexpr float kPi = 3.14159265f;
/// The cylinder's radius, of the length of page that is rolled up. Half a turn leaves the rest for the flat back.
constexpr float kRadiusShare = 0.2f;
constexpr float kShadowDepth = 0.6f;
constexpr int32_t kBendSteps = 2048;
/// A point of the page that far inside its sides fills its pixel, however much the bend stretches the page.
constexpr float kSurelyInside = 16.0f;

struct Rgb {
    float blue, green, red;
};

Rgb Mix(const Rgb &a, const Rgb &b, float share) {
    return {a.blue + (b.blue - a.blue) * share, a.green + (b.green - a.green) * share, a.red + (b.red - a.red) * share};
}

Rgb PixelAt(const uint8_t *bgr) {
    return {static_cast<float>(bgr[0]), static_cast<float>(bgr[1]), static_cast<float>(bgr[2])};
}

constexpr Rgb kBlack = {0.0f, 0.0f, 0.0f}, kWhite = {255.0f, 255.0f, 255.0f};

void Store(uint8_t *bgr, const Rgb &color) {
    bgr[0] = static_cast<uint8_t>(static_cast<int32_t>(color.blue + 0.5f));
    bgr[1] = static_cast<uint8_t>(static_cast<int32_t>(color.green + 0.5f));
    bgr[2] = static_cast<uint8_t>(static_cast<int32_t>(color.red + 0.5f));
}

float Unit01(float value) {
    return std::min(std::max(value, 0.0f), 1.0f);
}

/// 0 from -1 down and 1 from 0 up, with a soft way between them.
float SoftStep(float value) {
    const float at = Unit01(value + 1.0f);
    return at * at * (3.0f - 2.0f * at);
}

/// How fast the distances of a point of the page from its sides change from pixel to pixel.
struct Steps {
    float x = 1.0f, y = 1.0f;
};

/// The bend at one distance from the line at which it begins.
struct Bend {
    float overLength, frontLength; ///< of page up to the back on top, and to the front below
    Steps over, front;
    Rgb back;        ///< the back's colour in this light
    float frontDark; ///< and how dark the front is, 0 to 1
};

/// The rolled page, for a picture that is turned so that its lower right corner rolls up. Lengths are pixels.
struct Curl {
    float width, height;
    float nx, ny; ///< the direction to the corner, of length 1
    float start;  ///< of the bend, along that direction
    float radius;
    float back;     ///< how far the flat back reaches behind the bend's start
    float softness; ///< width of the shadow
    float perSoftness;
    bool isSmooth;
    BlockArray<Bend> bends;

    Curl(const ReadView &picture, const FilterParameters &settings)
        : width(static_cast<float>(picture.width)), height(static_cast<float>(picture.height)),
          isSmooth(settings.FilterCurlAntialias != 0), bends(kBendSteps + 1) {
        const float diagonal = std::hypot(width, height);
        nx = height / diagonal;
        ny = width / diagonal;
        const float whole = 2.0f * width * height / diagonal;
        const float rolled = whole * static_cast<float>(settings.FilterCurlSize) / 100.0f;
        start = whole - rolled;
        radius = rolled * kRadiusShare;
        back = rolled - kPi * radius;
        softness = radius * 0.6f + 1.0f;
        perSoftness = 1.0f / softness;
        const auto color = static_cast<Color>(settings.FilterCurlColor);
        const uint8_t bgr[3] = {BlueOf(color), GreenOf(color), RedOf(color)};
        for (int32_t i = 0; bends && i <= kBendSteps; i++) bends[i] = BendAtAngle(i, PixelAt(bgr));
    }

    const Bend &BendAt(float t) const { return bends[static_cast<int32_t>(Unit01(t / radius) * kBendSteps + 0.5f)]; }
    float Covered(float share) const { return isSmooth ? Unit01(share) : share >= 0.5f ? 1.0f : 0.0f; }
    /// Up to here a page has nothing above it, not even shadow.
    float FlatEnd() const { return -back - softness - 2.0f; }
    /// From here on nothing of the page is seen.
    float ShadowEnd() const { return radius + softness + 1.0f; }

private:
    Bend BendAtAngle(int32_t i, const Rgb &color) const {
        const float angle = std::asin(static_cast<float>(i) / kBendSteps), upright = std::cos(angle);
        const float stretch = 1.0f / std::max(upright, 0.05f), fromHighlight = (angle - 0.62f) / 0.3f;
        const float body = 0.4f + 0.6f * upright, highlight = 0.6f * std::exp(-fromHighlight * fromHighlight);
        return {radius * (kPi - angle),
                radius * angle,
                StepsFor(-stretch),
                StepsFor(stretch),
                Mix(Mix(kBlack, color, body), kWhite, highlight),
                1.0f - body};
    }
    /// @param stretch  length of page that a pixel to the corner makes
    Steps StepsFor(float stretch) const {
        const float more = stretch * stretch - 1.0f;
        return {std::sqrt(1.0f + more * nx * nx), std::sqrt(1.0f + more * ny * ny)};
    }
};

/// A point of the page that lies above or below a pixel, and how far inside the page's sides it is.
struct PagePoint {
    float x, y;
    float insideX, insideY; ///< below 0 outside

    /// @param shift  from the pixel to the point, along the direction to the corner
    PagePoint(const Curl &curl, float pixelX, float pixelY, float shift)
        : x(pixelX + shift * curl.nx), y(pixelY + shift * curl.ny), insideX(std::min(x, curl.width - x)),
          insideY(std::min(y, curl.height - y)) {}
    float Inside() const { return std::min(insideX, insideY); }
    float Cover(const Curl &curl, const Steps &steps) const {
        return curl.Covered(insideX / steps.x + 0.5f) * curl.Covered(insideY / steps.y + 0.5f);
    }
};

/// The picture seen from a point between pixels, its outermost pixels going on outside.
Rgb Sample(const ReadView &picture, float x, float y) {
    const float left = std::floor(x - 0.5f), top = std::floor(y - 0.5f);
    const auto at = [&](float column, float row) {
        const auto i = std::clamp(static_cast<int32_t>(column), 0, picture.width - 1);
        const auto j = std::clamp(static_cast<int32_t>(row), 0, picture.height - 1);
        return PixelAt(picture.Row(j) + i * ptrdiff_t{3});
    };
    const float shareX = x - 0.5f - left, shareY = y - 0.5f - top;
    return Mix(Mix(at(left, top), at(left + 1, top), shareX), Mix(at(left, top + 1), at(left + 1, top + 1), shareX),
               shareY);
}

/// Paints pixels of the result.
struct Painter {
    const Curl &curl;
    const ReadView &picture;
    const Corner corner;

    /// Turns the picture so that the corner is the lower right one, and back.
    float TurnX(float x) const { return corner.isRight ? x : curl.width - x; }
    float TurnY(float y) const { return corner.isLower ? y : curl.height - y; }

    /// The front of the page as it rises from the flat part.
    Rgb Front(const Rgb &beneath, const PagePoint &front, const Bend &bend, float shadow) const {
        const float cover = front.Cover(curl, bend.front);
        if (cover <= 0.0f) return beneath;
        const Rgb seen = Sample(picture, TurnX(front.x), TurnY(front.y));
        return Mix(beneath, Mix(seen, kBlack, std::max(bend.frontDark, shadow)), cover);
    }

    /// A pixel at (x, y) of the turned picture and `t` from where the bend starts. `bgr` holds what lies beneath the
    /// page, or up to the bend, the flat page.
    [[gnu::always_inline]] void Paint(uint8_t *bgr, float x, float y, float t) const {
        const Bend &bend = curl.BendAt(t);
        const bool bends = t > 0.0f;
        // The turned-over page, on the upper half of the cylinder and flat behind it.
        const PagePoint over(curl, x, y, bend.overLength - (bends ? t : 2.0f * t));
        if (over.Inside() >= kSurelyInside && t < curl.radius - 1.0f) return Store(bgr, bend.back);
        if (!bends && over.Inside() <= -curl.softness - 1.0f) return;
        const float shadow = kShadowDepth * SoftStep(over.insideX * curl.perSoftness) *
                             SoftStep(over.insideY * curl.perSoftness) * SoftStep((curl.radius - t) * curl.perSoftness);
        const Rgb beneath = Mix(PixelAt(bgr), kBlack, shadow);
        const float roll = curl.Covered(curl.radius - t + 0.5f);
        if (roll <= 0.0f) return Store(bgr, beneath);
        const float overShare = over.Cover(curl, bends ? bend.over : Steps());
        Rgb page = beneath;
        if (bends && overShare < 1.0f)
            page = Front(beneath, PagePoint(curl, x, y, bend.frontLength - std::min(t, curl.radius)), bend, shadow);
        Store(bgr, Mix(beneath, Mix(page, bend.back, overShare), roll));
    }
};

/// A row of the turned picture: where its pixels lie along the direction to the corner, from the bend's start on.
struct CurlRow {
    double first, step;
    int32_t width;

    CurlRow(const Curl &curl, float y, int32_t pixels)
        : first(curl.nx * 0.5 + double{curl.ny} * y - curl.start), step(curl.nx), width(pixels) {}
    float At(int32_t i) const { return static_cast<float>(first + step * i); }
    /// The first pixel beyond a distance.
    int32_t FirstBeyond(float t) const {
        return static_cast<int32_t>(std::clamp(std::ceil((t - first) / step), 0.0, static_cast<double>(width)));
    }
};

/// What lies beneath the page, over a whole row.
struct Beneath {
    LockedDib clipboard; ///< 24 bits; empty where only paper is
    Corner corner;
    Color paper;

    /// Fills left <= x < right of row y.
    void FillRow(const WriteView &to, int32_t y, int32_t left, int32_t right) const {
        FillPixels(to.Row(y), 24, left, right, paper);
        if (!clipboard) return;
        const ReadView from = clipboard;
        const int32_t shiftX = corner.isRight ? to.width - from.width : 0;
        const int32_t shiftY = corner.isLower ? to.height - from.height : 0;
        DibCopyRect(to, left, y, from, left - shiftX, y - shiftY, right - left, 1);
    }
};

constexpr int32_t kRun = 32; ///< pixels

/// Paints a run of pixels left of the bend, where that takes no look at each of them: where both of its ends lie well
/// inside the turned-over page, or well outside the same side of it, so does all between them.
/// @return false where it takes one
bool PaintRun(uint8_t *bgr, const Curl &curl, const PagePoint &first, const PagePoint &last, Color back) {
    if (std::min(first.Inside(), last.Inside()) >= kSurelyInside) {
        FillPixels(bgr, 24, 0, kRun, back);
        return true;
    }
    const float outside = -curl.softness - kRun - 1.0f;
    return std::max(first.insideX, last.insideX) <= outside || std::max(first.insideY, last.insideY) <= outside;
}

/// Copies the flat page, fills in what lies beneath it elsewhere, and paints the roll over both.
LMF_MULTIVERSION
void PaintRow(const WriteView &to, int32_t y, const Painter &painter, const Beneath &beneath) {
    const Curl &curl = painter.curl;
    const Corner &corner = painter.corner;
    const float turnedY = painter.TurnY(static_cast<float>(y) + 0.5f);
    const CurlRow turned(curl, turnedY, to.width);
    const int32_t bend = turned.FirstBeyond(0.0f), width = to.width;
    const int32_t left = corner.isRight ? 0 : width - bend;
    std::memcpy(to.Row(y) + ptrdiff_t{left} * 3, painter.picture.Row(y) + ptrdiff_t{left} * 3,
                static_cast<size_t>(bend) * 3);
    beneath.FillRow(to, y, corner.isRight ? bend : 0, corner.isRight ? width : width - bend);
    const int32_t end = turned.FirstBeyond(curl.ShadowEnd());
    const auto pixel = [&](int32_t i) { return to.Row(y) + ptrdiff_t{corner.isRight ? i : width - 1 - i} * 3; };
    const auto over = [&](int32_t i) {
        return PagePoint(curl, static_cast<float>(i) + 0.5f, turnedY, curl.bends[0].overLength - 2.0f * turned.At(i));
    };
    uint8_t flatBgr[3];
    Store(flatBgr, curl.bends[0].back);
    const Color flatBack = PackColor(flatBgr[2], flatBgr[1], flatBgr[0]);
    for (int32_t i = turned.FirstBeyond(curl.FlatEnd()); i < end;) {
        const int32_t last = i + kRun - 1;
        if (last < bend && PaintRun(pixel(corner.isRight ? i : last), curl, over(i), over(last), flatBack)) {
            i += kRun;
            continue;
        }
        for (const int32_t runEnd = std::min(i + kRun, end); i < runEnd; i++) {
            const float t = i < bend ? std::min(turned.At(i), 0.0f) : std::max(turned.At(i), 1e-6f);
            painter.Paint(pixel(i), static_cast<float>(i) + 0.5f, turnedY, t);
        }
    }
}

DibHandle PaperCurlKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    const Curl curl(source, context);
    if (!pass.IsColor() || !curl.bends) return nullptr;
    const WriteView &to = pass.To();
    const Corner corner(context.FilterCurlDirection);
    const Painter painter{curl, pass.From(), corner};
    Beneath beneath{LockedDib(), corner, context.paperColor};
    if (context.FilterCurlClipboard != 0) {
        if (const ClipboardLock clipboard(context); clipboard) {
            beneath.clipboard = LockedDib(ExpandToRgb(clipboard.View()));
            if (!beneath.clipboard) return nullptr;
        }
    }
    for (int32_t y = 0; y < to.height; y++) PaintRow(to, y, painter, beneath);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kPaperCurl = MakeFilter<kPage>(PaperCurlKernel);

} // namespace lmf
