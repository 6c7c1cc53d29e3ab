// The system's fonts: measure a run of text, draw it, stroke its outlines. Lines, alignment and spacing are made above.
// Characters are code points. Where no font can be had, OpenFont gives null, which no other function but CloseFont
// takes.
#pragma once

#include <cstdint>
#include <string_view>

namespace lmf {

/// Rows of 24-bit pixels in the order blue, green, red, which belong to the caller.
struct TextSurface {
    uint8_t *top = nullptr; ///< the first byte of the top row
    int32_t width = 0;
    int32_t height = 0;
    int64_t stride = 0; ///< bytes from a row to the one below it; negative where rows are stored from the bottom up
};

/// The pixels left <= x < right, top <= y < bottom.
struct TextRect {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

/// How letters are drawn.
struct TextInk {
    uint32_t color = 0;   ///< 0x00BBGGRR
    int32_t penWidth = 0; ///< width in pixels of a stroke along the outlines; 0 fills the letters instead
};

/// What is drawn: a text without line ends, or a line of a longer one.
struct TextRun {
    std::u32string_view characters;
    std::u32string_view paragraph = characters; ///< its first letter tells where lines begin, at the left or the right
};

/// What OpenFont looks for.
struct FontRequest {
    const char *face = ""; ///< family in UTF-8; the closest one stands in for one that is not installed
    int32_t height = 16;   ///< ascent plus descent in pixels; below 1 counts as 1
    int32_t weight = 400;  ///< 400 regular, 700 bold
    bool italic = false;   ///< slanted letters where the family has no italic
    bool antialias = true; ///< grey edges; otherwise each pixel has the colour or has not
};

/// A font of one size.
struct TextFont;

/// Finds and opens a font, owned by the caller. The desktop's settings for smoothing and hinting change nothing; its
/// language has a say in which font stands in for another.
/// @return null where no font is installed, what drawing needs is missing, or memory is short
[[nodiscard]] TextFont *OpenFont(const FontRequest &request);
/// Closes a font; null is ignored.
void CloseFont(TextFont *font);

/// Ascent plus descent in pixels: exactly what was asked for.
[[nodiscard]] int32_t FontHeight(const TextFont *font);

/// The width in whole pixels by which a text without line ends moves the place of what follows it. Scripts may be
/// mixed; characters that the font lacks come from others. Control characters have no width.
/// @return -1 when memory is short
[[nodiscard]] int32_t MeasureRun(TextFont *font, std::u32string_view text);

/// Draws a run, right-to-left parts in their order. Letters may reach beyond the measured width and height.
/// @param x, y  the left end of the run and the top of its ascent, in pixels of the surface; may lie outside of it
/// @param clip  pixels outside of it are left alone
/// @return false when memory is short; part of the run may then be drawn
[[nodiscard]] bool DrawRun(TextFont *font, const TextRun &run, int32_t x, int32_t y, const TextInk &ink,
                           const TextSurface &surface, const TextRect &clip);

/// The pixels that DrawRun would change with a surface and a clip that hold them all; without an area where it would
/// draw nothing.
/// @return false when memory is short
[[nodiscard]] bool RunBounds(TextFont *font, const TextRun &run, int32_t x, int32_t y, const TextInk &ink,
                             TextRect *bounds);

/// Calls `take` for each installed family, sorted by name.
/// @param take  gets `user` and the name in UTF-8, which lasts for the call
void ForEachFontFamily(void (*take)(void *user, const char *family), void *user);

/// Owns a font and closes it at the end of the scope.
struct FontOwner {
    TextFont *font;

    explicit FontOwner(const FontRequest &request) : font(OpenFont(request)) {}
    FontOwner(const FontOwner &) = delete;
    FontOwner &operator=(const FontOwner &) = delete;
    ~FontOwner() { CloseFont(font); }

    explicit operator bool() const { return font != nullptr; }
};

} // namespace lmf
