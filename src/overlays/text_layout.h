// Texts in boxes: lines, word wrap, alignment, ellipsis and spacing. Texts are read by common/text_decoding.h.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace lmf {

/// How a text stands in its box; combined by |.
enum TextFormat : uint32_t {
    kTextLeft = 0,
    kTextCenter = 1,
    kTextRight = 2,
    kTextVerticalCenter = 4, ///< of a single line only, as is kTextBottom; without them a text begins at the top
    kTextBottom = 8,
    kTextWordBreak = 0x10,    ///< lines that would pass the box are broken between words
    kTextSingleLine = 0x20,   ///< line ends in the text do not count
    kTextMeasure = 0x400,     ///< draws nothing: the box's bottom is moved to the end of the text instead
    kTextEndEllipsis = 0x8000 ///< a single line that would pass the box is cut and ends in "..."
};

/// What texts are drawn with, and where.
struct TextDrawing {
    TextFont *font;
    TextInk ink;
    TextSurface surface; ///< left alone by kTextMeasure
};

/// Draws a text into a box, outside which nothing is filled; a pen's strokes may leave it.
///
/// Word wrap: a word that would pass the box goes whole to the next line, and is broken inside only when it stands
/// alone there; spaces that would pass end the line. Spaces at which a line was broken are dropped. A carriage return,
/// a line feed or both together end a line. An empty text is one line.
/// @param rect    the box
/// @param format  of TextFormat
/// @return the height of the text in pixels, or 0 when memory is short
[[nodiscard]] int32_t DrawTextPlain(const TextDrawing &drawing, const char *text, TextRect *rect, uint32_t format);

/// The pixels that DrawTextPlain would change on a surface that holds them all; without an area where it would draw
/// nothing.
/// @return false when memory is short
[[nodiscard]] bool TextBounds(TextFont *font, const TextInk &ink, const char *text, const TextRect &rect,
                              uint32_t format, TextRect *bounds);

/// DrawTextPlain with spacing, character by character: each moves the next one by its own width times `charPercent` /
/// 100, and each line moves the next one by the font's height times `linePercent` / 100. 100 and 100 is DrawTextPlain.
///
/// Lines are always broken between words, but for a single line, and by carriage returns, whose line feed is skipped.
/// The box neither cuts the text nor sets it in the middle or at the bottom, and there is no ellipsis. A text with
/// letters that join or change places keeps the spacing of its characters.
[[nodiscard]] int32_t DrawTextSpaced(const TextDrawing &drawing, const char *text, TextRect *rect, uint32_t format,
                                     int32_t charPercent, int32_t linePercent);

/// The width and height in pixels of a text on one line.
/// @return false when memory is short
[[nodiscard]] bool MeasureText(TextFont *font, const char *text, int32_t *width, int32_t *height);

} // namespace lmf
