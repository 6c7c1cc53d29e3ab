#include "overlays/text_layout.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "common/text_decoding.h"
#include "platform/memory.h"

namespace lmf {

namespace {

/// Characters that are not drawn alone: accents, joiners, and the scripts whose letters join or change places.
constexpr char32_t kJoiningRanges[][2] = {
    {0x0300, 0x036F},   {0x0483, 0x0489},   {0x0590, 0x109F},   {0x1780, 0x18AF},   {0x1A00, 0x1CFF},
    {0x1DC0, 0x1DFF},   {0x200C, 0x200F},   {0x202A, 0x202E},   {0x2066, 0x2069},   {0x20D0, 0x20FF},
    {0x302A, 0x302F},   {0x3099, 0x309A},   {0xA66F, 0xA67D},   {0xA800, 0xABFF},   {0xFB1D, 0xFDFF},
    {0xFE00, 0xFE0F},   {0xFE20, 0xFE2F},   {0xFE70, 0xFEFE},   {0x10800, 0x11FFF}, {0x1E800, 0x1EFFF},
    {0x1F1E6, 0x1F1FF}, {0x1F3FB, 0x1F3FF}, {0xE0020, 0xE01EF},
};

bool IsJoining(char32_t character) {
    return std::any_of(std::begin(kJoiningRanges), std::end(kJoiningRanges),
                       [&](const char32_t(&range)[2]) { return character >= range[0] && character <= range[1]; });
}

/// The characters of a text, with room behind them for an ellipsis.
struct Characters {
    static constexpr std::u32string_view kEllipsis = U"...";

    BlockArray<char32_t> room;
    std::u32string_view text;

    explicit Characters(const char *bytes) : room(std::strlen(bytes) + kEllipsis.size()) {
        if (room) text = {room.data, DecodeText(bytes, room.data)};
    }
    explicit operator bool() const { return static_cast<bool>(room); }

    /// Keeps the first `length` characters and ends them in the ellipsis.
    void Cut(size_t length) {
        std::copy(kEllipsis.begin(), kEllipsis.end(), room.data + length);
        text = {room.data, length + kEllipsis.size()};
    }
};

/// The widths of the parts of a text that is drawn in runs, or character by character.
struct Widths {
    TextFont *font;
    std::u32string_view text;
    BlockArray<int64_t> ends; ///< where each character ends, of single ones
    bool isShort = false;     ///< memory was short: the widths are worth nothing

    /// @param charPercent  how far single characters move the next ones; null for runs
    Widths(TextFont *drawn, std::u32string_view characters, const int32_t *charPercent)
        : font(drawn), text(characters), ends(charPercent == nullptr ? 0 : characters.size()) {
        if (charPercent == nullptr) return;
        isShort = !ends && !text.empty();
        int64_t end = 0;
        for (size_t i = 0; i < text.size() && !isShort; i++) {
            if (text[i] >= ' ') end += int64_t{Measured(text.substr(i, 1))} * *charPercent / 100;
            ends[static_cast<int64_t>(i)] = end;
        }
    }

    int64_t Of(size_t begin, size_t end) {
        return ends ? EndOf(end) - EndOf(begin) : Measured(text.substr(begin, end - begin));
    }

    /// How many characters from `begin` on, up to `end`, are at most `limit` wide together.
    size_t Fitting(size_t begin, size_t end, int64_t limit) {
        size_t fits = 0;
        for (size_t most = end - begin; fits < most;) {
            const size_t middle = (fits + most + 1) / 2;
            if (Of(begin, begin + middle) <= limit)
                fits = middle;
            else
                most = middle - 1;
        }
        return fits;
    }

private:
    int64_t EndOf(size_t count) { return count == 0 ? 0 : ends[static_cast<int64_t>(count) - 1]; }
    int32_t Measured(std::u32string_view run) {
        const int32_t width = MeasureRun(font, run);
        if (width < 0) isShort = true;
        return width;
    }
};

/// How a text is broken into lines.
struct Wrap {
    int64_t width;
    bool isSingleLine;
    bool breaksWords;
    bool breaksAtLineFeeds; ///< also at those without a carriage return before them
};

/// A line of a text, and where the next one begins.
struct Line {
    size_t begin;
    size_t end;
    size_t next;
    bool endsParagraph;
    bool isLast;
};

Line NextLine(Widths &widths, size_t begin, const Wrap &wrap) {
    const std::u32string_view text = widths.text;
    if (wrap.isSingleLine) return {begin, text.size(), text.size(), true, true};
    const size_t stop = std::min(text.find_first_of(wrap.breaksAtLineFeeds ? U"\r\n" : U"\r", begin), text.size());
    const bool isLast = stop == text.size();
    const size_t afterStop = isLast ? stop : stop + (text.substr(stop, 2) == U"\r\n" ? 2 : 1);
    const auto broken = [&](size_t end, size_t next) {
        while (end > begin && text[end - 1] == ' ') end--;
        return next == stop ? Line{begin, end, afterStop, true, isLast} : Line{begin, end, next, false, false};
    };
    for (size_t at = begin; wrap.breaksWords && at < stop;) {
        const bool isWord = text[at] != ' ';
        const size_t end = std::min(isWord ? text.find(U' ', at) : text.find_first_not_of(U' ', at), stop);
        if (widths.Of(begin, end) > wrap.width) {
            if (!isWord) return broken(at, end);
            if (at > begin) return broken(at, at);
            const size_t inside = begin + std::max<size_t>(widths.Fitting(begin, end, wrap.width), 1);
            if (inside < end) return {begin, inside, inside, false, false};
        }
        at = end;
    }
    return {begin, stop, afterStop, true, isLast};
}

/// Calls `draw` with each line, its number, and the text from the begin of its paragraph on. @return the number of
/// lines
template <typename Draw>
int64_t ForEachLine(Widths &widths, const Wrap &wrap, Draw draw) {
    Line line = {0, 0, 0, true, false};
    std::u32string_view paragraph;
    int64_t count = 0;
    while (!line.isLast) {
        if (line.endsParagraph) paragraph = widths.text.substr(line.next);
        line = NextLine(widths, line.next, wrap);
        draw(line, count++, paragraph);
    }
    return count;
}

int64_t WidthOf(const TextRect &rect) {
    return int64_t{rect.right} - rect.left;
}

TextRect WholeSurface(const TextSurface &surface) {
    return {0, 0, surface.width, surface.height};
}

int32_t Limited(int64_t number) {
    return static_cast<int32_t>(std::clamp<int64_t>(number, INT32_MIN, INT32_MAX));
}

/// Draws a run with its left end at x and its top at y. @return false when memory is short
bool DrawAt(const TextDrawing &drawing, const TextRun &run, int64_t x, int64_t y, const TextRect &clip) {
    return DrawRun(drawing.font, run, Limited(x), Limited(y), drawing.ink, drawing.surface, clip);
}

/// The height of a text, which moves the bottom of a box that is only measured.
int32_t Finish(int64_t height, TextRect *rect, bool isMeasured) {
    if (isMeasured) rect->bottom = Limited(rect->top + height);
    return Limited(height);
}

/// Ends a text that is wider than `width` in an ellipsis. @return false when memory is short
bool CutToWidth(TextFont *font, Characters &characters, int64_t width) {
    Widths widths(font, characters.text, nullptr);
    const int32_t ellipsis = MeasureRun(font, Characters::kEllipsis);
    if (widths.Of(0, characters.text.size()) > width)
        characters.Cut(widths.Fitting(0, characters.text.size(), width - ellipsis));
    return !widths.isShort && ellipsis >= 0;
}

/// The top of a single line in its box.
int64_t SingleLineTop(const TextRect &rect, int32_t fontHeight, uint32_t format) {
    if ((format & kTextBottom) != 0) return int64_t{rect.bottom} - fontHeight;
    if ((format & kTextVerticalCenter) != 0) return rect.top + (int64_t{rect.bottom} - rect.top - fontHeight) / 2;
    return rect.top;
}

/// Calls take(run, x, y), which gives false when memory is short, for each line of a plain text unless it is only
/// measured.
/// @return the number of lines, or 0 when memory is short
template <typename Take>
int64_t ForEachPlainLine(TextFont *font, const char *text, const TextRect &rect, uint32_t format, Take take) {
    const bool isSingleLine = (format & kTextSingleLine) != 0;
    const int32_t fontHeight = FontHeight(font);
    Characters characters(text);
    if (!characters) return 0;
    if (isSingleLine && (format & kTextEndEllipsis) != 0 && !CutToWidth(font, characters, WidthOf(rect))) return 0;

    const int64_t top = isSingleLine ? SingleLineTop(rect, fontHeight, format) : rect.top;
    const Wrap wrap = {WidthOf(rect), isSingleLine, (format & kTextWordBreak) != 0, true};
    Widths widths(font, characters.text, nullptr);
    bool isShort = false;
    const int64_t lines =
        ForEachLine(widths, wrap, [&](const Line &line, int64_t number, std::u32string_view paragraph) {
            if ((format & kTextMeasure) != 0) return;
            const std::u32string_view run = characters.text.substr(line.begin, line.end - line.begin);
            const int64_t free = wrap.width - widths.Of(line.begin, line.end);
            int64_t x = rect.left;
            if ((format & kTextCenter) != 0) x += free / 2;
            if ((format & kTextRight) != 0) x += free;
            isShort |= !take(TextRun{run, paragraph}, x, top + number * fontHeight);
        });
    return isShort || widths.isShort ? 0 : lines;
}

TextRect Common(const TextRect &a, const TextRect &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

bool HasArea(const TextRect &rect) {
    return rect.left < rect.right && rect.top < rect.bottom;
}

/// The smallest box that holds both.
TextRect Hull(const TextRect &a, const TextRect &b) {
    if (!HasArea(a)) return b;
    if (!HasArea(b)) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

} // namespace

int32_t DrawTextPlain(const TextDrawing &drawing, const char *text, TextRect *rect, uint32_t format) {
    const TextRect clip = drawing.ink.penWidth > 0 ? WholeSurface(drawing.surface) : *rect;
    const int64_t lines =
        ForEachPlainLine(drawing.font, text, *rect, format,
                         [&](const TextRun &run, int64_t x, int64_t y) { return DrawAt(drawing, run, x, y, clip); });
    return lines == 0 ? 0 : Finish(lines * FontHeight(drawing.font), rect, (format & kTextMeasure) != 0);
}

bool TextBounds(TextFont *font, const TextInk &ink, const char *text, const TextRect &rect, uint32_t format,
                TextRect *bounds) {
    *bounds = {};
    return ForEachPlainLine(font, text, rect, format, [&](const TextRun &run, int64_t x, int64_t y) {
               TextRect line;
               if (!RunBounds(font, run, Limited(x), Limited(y), ink, &line)) return false;
               *bounds = Hull(*bounds, ink.penWidth > 0 ? line : Common(line, rect));
               return true;
           }) != 0;
}

int32_t DrawTextSpaced(const TextDrawing &drawing, const char *text, TextRect *rect, uint32_t format,
                       int32_t charPercent, int32_t linePercent) {
    if (charPercent == 100 && linePercent == 100) return DrawTextPlain(drawing, text, rect, format);
    const bool isMeasured = (format & kTextMeasure) != 0;
    const int32_t fontHeight = FontHeight(drawing.font);
    const int64_t step = int64_t{fontHeight} * linePercent / 100;
    const Characters characters(text);
    if (!characters) return 0;

    const bool inRuns = std::any_of(characters.text.begin(), characters.text.end(), IsJoining);
    const TextRect clip = WholeSurface(drawing.surface);
    const Wrap wrap = {WidthOf(*rect), (format & kTextSingleLine) != 0, true, false};
    Widths widths(drawing.font, characters.text, inRuns ? nullptr : &charPercent);
    bool isShort = false;
    const int64_t lines =
        ForEachLine(widths, wrap, [&](const Line &line, int64_t number, std::u32string_view paragraph) {
            const std::u32string_view run = characters.text.substr(line.begin, line.end - line.begin);
            if (isMeasured) return;
            const int64_t free = wrap.width - widths.Of(line.begin, line.end);
            int64_t x = rect->left;
            if ((format & kTextCenter) != 0) x += free / 2 + (free & 1);
            if ((format & kTextRight) != 0) x += free + (free & 1);
            const int64_t y = rect->top + number * step;
            if (inRuns) isShort |= !DrawAt(drawing, {run, paragraph}, x, y, clip);
            for (size_t i = line.begin; i < line.end && !inRuns; i++) {
                if (characters.text[i] <= ' ') continue;
                isShort |= !DrawAt(drawing, {characters.text.substr(i, 1)}, x + widths.Of(line.begin, i), y, clip);
            }
        });
    if (isShort || widths.isShort) return 0;
    return Finish(step * (lines - 1) + fontHeight, rect, isMeasured);
}

bool MeasureText(TextFont *font, const char *text, int32_t *width, int32_t *height) {
    const Characters characters(text);
    if (!characters) return false;
    *width = MeasureRun(font, characters.text);
    *height = FontHeight(font);
    return *width >= 0;
}

} // namespace lmf
