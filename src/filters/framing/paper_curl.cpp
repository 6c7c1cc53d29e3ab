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
#include "image/geometry/warp_sample.h"

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

float Unit01(float value) {
    return std::min(std::max(value, 0.0f), 1.0f);
}

/// How bright the bend is, by the cosine of its angle.
float Light(float upright) {
    return 0.4f + 0.6f * upright;
}

/// 0 from -1 down and 1 from 0 up, with a soft way between them.
float SoftStep(float value) {
    const float at = Unit01(value + 1.0f);
    return at * at * (3.0f - 2.0f * at);
}

/// The rolled page, for a picture that is turned so that its lower right corner rolls up. Lengths are pixels.
struct Curl {
    float width, height;
    float nx, ny; ///< the direction to the corner, of length 1
    float start;  ///< of the bend, along that direction
    float radius;
    float back;     ///< how far the flat back reaches behind the bend's start
    float softness; ///< width of the shadow
    float perSoftness;
    float edgeSlope, edgeMiddle; ///< how an edge comes to cover pixels: within one pixel, or at once
    BlockArray<float> angles;    ///< of the bend, at sines in steps of 1 / kBendSteps
    BlockArray<Color> backs;     ///< the back's colour there

    Curl(const ReadView &picture, const FilterParameters &settings)
        : width(static_cast<float>(picture.width)), height(static_cast<float>(picture.height)),
          edgeSlope(settings.FilterCurlAntialias != 0 ? 1.0f : 1e9f),
          edgeMiddle(settings.FilterCurlAntialias != 0 ? 0.5f : 1.0f), angles(kBendSteps + 1), backs(kBendSteps + 1) {
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
        if (!*this) return;
        for (int32_t i = 0; i <= kBendSteps; i++) {
            angles[i] = std::asin(static_cast<float>(i) / kBendSteps);
            backs[i] = BackAt(angles[i], color);
        }
    }

    explicit operator bool() const { return angles && backs; }
    /// The place in the tables.
    int32_t BendAt(float t) const { return static_cast<int32_t>(Unit01(t / radius) * kBendSteps + 0.5f); }
    /// How much is covered of a pixel whose middle lies that far inside an edge.
    float Covered(float inside) const { return Unit01(inside * edgeSlope + edgeMiddle); }
    /// Up to here a page has nothing above it, not even shadow.
    float FlatEnd() const { return -back - softness - 2.0f; }
    /// From here on nothing of the page is seen.
    float ShadowEnd() const { return radius + softness + 1.0f; }

private:
    static Color BackAt(float angle, Color color) {
        const float fromHighlight = (angle - 0.62f) / 0.3f, highlight = 0.6f * std::exp(-fromHighlight * fromHighlight);
        const auto lit = [&](uint8_t level) {
            const float shade = static_cast<float>(level) * Light(std::cos(angle));
            return static_cast<uint32_t>(shade + (255.0f - shade) * highlight + 0.5f);
        };
        return PackColor(lit(RedOf(color)), lit(GreenOf(color)), lit(BlueOf(color)));
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
    /// @param stepX, stepY  how fast the distances inside change from pixel to pixel
    float Cover(const Curl &curl, float stepX, float stepY) const {
        return curl.Covered(insideX / stepX) * curl.Covered(insideY / stepY);
    }
};

constexpr int32_t kRun = 64; ///< pixels

/// Up to kRun pixels of a row, from left to right, none of which or all of which lie beyond the bend's start.
struct Run {
    int32_t count;
    float x, y, stepX; ///< the first one's middle in the turned picture, and the way to the next one's
    double t, stepT;   ///< the same along the direction to the corner, from the bend's start on
    bool bends;
};

/// What lies above each other in the pixels of a run: what each layer weighs there, and which points of the page its
/// front shows.
struct Layers {
    float beneath[kRun], front[kRun], back[kRun];
    int32_t bend[kRun];         ///< the place in the tables
    float t[kRun], angle[kRun]; ///< the distance from the bend's start, and the bend's angle there
    float pageX[kRun], pageY[kRun];
    bool changes = false, hasFront = false, hasBack = false, isBack = true; ///< any pixel, and all of them
};

/// Paints the result.
struct Painter {
    const Curl &curl;
    const ReadView &picture;
    const Corner corner;

    /// Turns the picture so that the corner is the lower right one, and back.
    float TurnX(float x) const { return corner.isRight ? x : curl.width - x; }
    float TurnY(float y) const { return corner.isLower ? y : curl.height - y; }
};

/// The table is read in a loop of its own, so that the others run in wide lanes.
LMF_MULTIVERSION
void WeighLayers(Layers &__restrict layers, const Curl &curl, const Run &run) {
    const float bends = run.bends ? 1.0f : 0.0f, radius = curl.radius;
    for (int32_t k = 0; k < run.count; k++) {
        layers.t[k] = static_cast<float>(run.t + k * run.stepT);
        layers.bend[k] = curl.BendAt(layers.t[k]);
    }
    for (int32_t k = 0; k < run.count; k++) layers.angle[k] = curl.angles.data[layers.bend[k]];
    int32_t changes = 0, hasFront = 0, hasBack = 0, isBack = 1;
    for (int32_t k = 0; k < run.count; k++) {
        const float x = run.x + static_cast<float>(k) * run.stepX, t = layers.t[k], angle = layers.angle[k];
        const float sine = static_cast<float>(layers.bend[k]) / kBendSteps, upright = std::sqrt(1.0f - sine * sine);
        // The length of page that a pixel to the corner makes.
        const float stretch = 1.0f / std::max(upright, 0.05f), more = stretch * stretch - 1.0f;
        const float stepX = std::sqrt(1.0f + more * curl.nx * curl.nx),
                    stepY = std::sqrt(1.0f + more * curl.ny * curl.ny);
        // The turned-over page, on the upper half of the cylinder and flat behind it.
        const PagePoint over(curl, x, run.y, radius * (kPi - angle) - t - std::min(t, 0.0f));
        const float shadow = kShadowDepth * SoftStep(over.insideX * curl.perSoftness) *
                             SoftStep(over.insideY * curl.perSoftness) * SoftStep((radius - t) * curl.perSoftness);
        const float roll = curl.Covered(radius - t), back = over.Cover(curl, stepX, stepY);
        // The front of the page as it rises from the flat part.
        const PagePoint rising(curl, x, run.y, radius * angle - std::min(t, radius));
        const float front = bends * (1.0f - back) * rising.Cover(curl, stepX, stepY);
        layers.back[k] = roll * back;
        layers.front[k] = roll * front * std::min(Light(upright), 1.0f - shadow);
        layers.beneath[k] = (1.0f - roll * (back + front)) * (1.0f - shadow);
        layers.pageX[k] = rising.x;
        layers.pageY[k] = rising.y;
        changes |= layers.beneath[k] < 1.0f;
        hasFront |= layers.front[k] > 0.0f;
        hasBack |= layers.back[k] > 0.0f;
        isBack &= layers.back[k] >= 1.0f;
    }
    layers.changes = changes != 0;
    layers.hasFront = hasFront != 0;
    layers.hasBack = hasBack != 0;
    layers.isBack = isBack != 0;
}

/// Mixes the layers of a run; `bgr` holds what is beneath.
LMF_MULTIVERSION
void MixLayers(uint8_t *__restrict bgr, const uint8_t *__restrict front, const uint8_t *__restrict back,
               const Layers &layers, int32_t count) {
    for (int32_t k = 0; k < count; k++) {
        for (int32_t c = 0; c < 3; c++) {
            const int32_t i = k * 3 + c;
            bgr[i] = static_cast<uint8_t>(static_cast<int32_t>(static_cast<float>(bgr[i]) * layers.beneath[k] +
                                                               static_cast<float>(front[i]) * layers.front[k] +
                                                               static_cast<float>(back[i]) * layers.back[k] + 0.5f));
        }
    }
}

/// The same where the page throws shadow alone.
LMF_MULTIVERSION
void Darken(uint8_t *__restrict bgr, const Layers &layers, int32_t count) {
    for (int32_t k = 0; k < count; k++) {
        for (int32_t c = 0; c < 3; c++) {
            const int32_t i = k * 3 + c;
            bgr[i] = static_cast<uint8_t>(static_cast<int32_t>(static_cast<float>(bgr[i]) * layers.beneath[k] + 0.5f));
        }
    }
}

/// The back of the page in the light of the bend.
void PaintBack(uint8_t *bgr, const Curl &curl, const Layers &layers, int32_t count) {
    for (int32_t k = 0; k < count; k++) StoreBgr(bgr + k * ptrdiff_t{3}, curl.backs.data[layers.bend[k]]);
}

/// The picture on the rising page, its outermost pixels going on outside.
void PaintFront(uint8_t *bgr, const Painter &painter, const Layers &layers, int32_t count) {
    double xs[kRun], ys[kRun];
    for (int32_t k = 0; k < count; k++) {
        // From corners of pixels to what the sampler counts from.
        xs[k] = std::clamp(painter.TurnX(layers.pageX[k]) - 0.5f, 0.0f, painter.curl.width - 1.0f) - 0.5;
        ys[k] = std::clamp(painter.TurnY(layers.pageY[k]) - 0.5f, 0.0f, painter.curl.height - 1.0f) - 0.5;
    }
    const WriteView row{kRun, 1, 24, kRun * ptrdiff_t{3}, bgr};
    WarpSampleRow(row, 0, painter.picture, 0, count, xs, ys, 0);
}

/// Paints the page over what is beneath it.
void PaintRun(uint8_t *bgr, const Painter &painter, const Run &run) {
    Layers layers;
    WeighLayers(layers, painter.curl, run);
    if (!layers.changes) return;
    if (layers.isBack) return PaintBack(bgr, painter.curl, layers, run.count);
    if (!layers.hasBack && !layers.hasFront) return Darken(bgr, layers, run.count);
    uint8_t front[kRun * 3] = {}, back[kRun * 3] = {};
    if (layers.hasBack) PaintBack(back, painter.curl, layers, run.count);
    if (layers.hasFront) PaintFront(front, painter, layers, run.count);
    MixLayers(bgr, front, back, layers, run.count);
}

/// A row of the turned picture: where its pixels lie along the direction to the corner, from the bend's start on.
struct CurlRow {
    double first, step;
    int32_t width;

    CurlRow(const Curl &curl, float y, int32_t pixels)
        : first(curl.nx * 0.5 + double{curl.ny} * y - curl.start), step(curl.nx), width(pixels) {}
    double At(int32_t i) const { return first + step * i; }
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

/// Copies the flat page, fills in what lies beneath it elsewhere, and paints the roll over both.
void PaintRow(const WriteView &to, int32_t y, const Painter &painter, const Beneath &beneath) {
    const Curl &curl = painter.curl;
    const bool isRight = painter.corner.isRight;
    const float turnedY = painter.TurnY(static_cast<float>(y) + 0.5f);
    const CurlRow turned(curl, turnedY, to.width);
    const int32_t bend = turned.FirstBeyond(0.0f), width = to.width;
    const int32_t left = isRight ? 0 : width - bend;
    std::memcpy(to.Row(y) + ptrdiff_t{left} * 3, painter.picture.Row(y) + ptrdiff_t{left} * 3,
                static_cast<size_t>(bend) * 3);
    beneath.FillRow(to, y, isRight ? bend : 0, isRight ? width : width - bend);

    const auto paint = [&](int32_t first, int32_t end) {
        for (int32_t i = first; i < end; i += kRun) {
            const int32_t count = std::min(kRun, end - i), leftmost = isRight ? i : i + count - 1;
            const float x = static_cast<float>(leftmost) + 0.5f, step = isRight ? 1.0f : -1.0f;
            const Run run{count, x, turnedY, step, turned.At(leftmost), step * turned.step, i >= bend};
            PaintRun(to.Row(y) + ptrdiff_t{isRight ? leftmost : width - 1 - leftmost} * 3, painter, run);
        }
    };
    paint(turned.FirstBeyond(curl.FlatEnd()), bend);
    paint(bend, turned.FirstBeyond(curl.ShadowEnd()));
}

DibHandle PaperCurlKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    const Curl curl(source, context);
    if (!pass.IsColor() || !curl) return nullptr;
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
