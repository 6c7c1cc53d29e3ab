// Fontconfig finds the fonts, Raqm orders and shapes the characters (with FriBidi and HarfBuzz), FreeType gives their
// outlines and covers the pixels. None of them starts a thread or ends the process when memory is short.
#include "platform/text.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include <fontconfig/fontconfig.h>
#include <fribidi.h>
#include <ft2build.h>
#include <raqm.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H
#include FT_OUTLINE_H
#include FT_STROKER_H
#include FT_TRUETYPE_TABLES_H

namespace lmf {

struct TextFont {
    FT_Library library = nullptr;
    FcPattern *wanted = nullptr;
    FT_Face face = nullptr;
    FcFontSet *fallbacks = nullptr;   ///< fonts that can stand in, the closest first; null until one is needed
    FT_Face *fallbackFaces = nullptr; ///< as many as there are fallbacks; null while one is not open
    int32_t height = 0;
    int32_t ascent = 0;
    FT_F26Dot6 em = 0;
    FT_Int32 loadFlags = 0;
    bool isBold = false;
    bool isItalic = false;
    bool isSmooth = true;

    ~TextFont() {
        if (library != nullptr) FT_Done_FreeType(library); // with all faces
        delete[] fallbackFaces;
        if (fallbacks != nullptr) FcFontSetDestroy(fallbacks);
        if (wanted != nullptr) FcPatternDestroy(wanted);
    }
};

namespace {

/// Letters grow no further than this em in pixels: FreeType counts the columns of a glyph in 16 bits.
constexpr int32_t kLargestEm = 8192;
/// From this weight on a font counts as bold.
constexpr int32_t kBoldWeight = 600;

/// The installed fonts, read once and kept to the end of the process. They are our own: the host's default stays as it
/// is.
struct InstalledFonts {
    FcConfig *config = FcInitLoadConfigAndFonts();

    ~InstalledFonts() {
        if (config != nullptr) FcConfigDestroy(config);
        config = nullptr;
    }
};

/// Null when memory is short.
FcConfig *Config() {
    static InstalledFonts fonts;
    return fonts.config;
}

/// What is asked for, completed by the system's rules for families that stand in for others; null when memory is short.
FcPattern *MakePattern(const FontRequest &request) {
    FcPattern *pattern = FcPatternCreate();
    if (pattern == nullptr) return nullptr;
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8 *>(request.face));
    FcPatternAddInteger(pattern, FC_WEIGHT, FcWeightFromOpenType(request.weight));
    FcPatternAddInteger(pattern, FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_OUTLINE, FcTrue);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcPatternAddBool(pattern, FC_COLOR, FcFalse);
    FcPatternAddBool(pattern, FC_VARIABLE, FcFalse);
    FcConfigSubstitute(Config(), pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    return pattern;
}

/// Opens the file that a font's pattern names; null where it cannot be read or has no outlines.
FT_Face OpenFace(FT_Library library, FcPattern *pattern) {
    FcChar8 *file = nullptr;
    int index = 0;
    FT_Face face = nullptr;
    if (FcPatternGetString(pattern, FC_FILE, 0, &file) != FcResultMatch) return nullptr;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    if (FT_New_Face(library, reinterpret_cast<const char *>(file), index, &face) != 0) return nullptr;
    if (FT_IS_SCALABLE(face)) return face;
    FT_Done_Face(face);
    return nullptr;
}

FT_Face OpenClosestFace(const TextFont &font) {
    FcResult result;
    FcPattern *closest = FcFontMatch(Config(), font.wanted, &result);
    if (closest == nullptr) return nullptr;
    const FT_Face face = OpenFace(font.library, closest);
    FcPatternDestroy(closest);
    return face;
}

bool SetSize(const TextFont &font, FT_Face face) {
    return FT_Set_Char_Size(face, 0, font.em, 72, 72) == 0;
}

/// Makes the em so large that the ascent and the descent of the face come to the height together.
void ChooseSize(TextFont &font) {
    const FT_Face face = font.face;
    int64_t ascent = face->ascender;
    int64_t descent = -int64_t{face->descender};
    const auto *os2 = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (os2 != nullptr && os2->version != 0xFFFF && os2->usWinAscent + os2->usWinDescent > 0) {
        ascent = os2->usWinAscent;
        descent = os2->usWinDescent;
    }
    if (ascent < 0 || descent < 0 || ascent + descent == 0) {
        ascent = face->units_per_EM;
        descent = 0;
    }
    const int64_t cell = ascent + descent;
    font.ascent = static_cast<int32_t>((font.height * ascent * 2 + cell) / (cell * 2));
    font.em = std::clamp<int64_t>(int64_t{font.height} * face->units_per_EM * 64 / cell, 64, kLargestEm * 64);
}

bool Has(FT_Face face, char32_t character) {
    return FT_Get_Char_Index(face, character) != 0;
}

bool IsControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

/// Does a character go with the one before it: an accent, a joiner, a space?
bool IsAttached(char32_t character) {
    const FriBidiCharType type = fribidi_get_bidi_type(character);
    return type == FRIBIDI_TYPE_NSM || type == FRIBIDI_TYPE_BN || type == FRIBIDI_TYPE_WS;
}

bool FindFallbacks(TextFont &font) {
    if (font.fallbackFaces != nullptr) return true;
    FcResult result;
    if (font.fallbacks == nullptr) font.fallbacks = FcFontSort(Config(), font.wanted, FcTrue, nullptr, &result);
    if (font.fallbacks == nullptr) return false;
    font.fallbackFaces = new (std::nothrow) FT_Face[static_cast<size_t>(font.fallbacks->nfont)]();
    return font.fallbackFaces != nullptr;
}

/// The face of a stand-in that has the character, opened when it is first wanted; null where this is not one.
FT_Face FallbackFace(TextFont &font, int index, char32_t character) {
    FcPattern *pattern = font.fallbacks->fonts[index];
    FcCharSet *characters = nullptr;
    if (FcPatternGetCharSet(pattern, FC_CHARSET, 0, &characters) != FcResultMatch) return nullptr;
    if (!FcCharSetHasChar(characters, character)) return nullptr;
    FT_Face &face = font.fallbackFaces[index];
    if (face == nullptr) {
        face = OpenFace(font.library, pattern);
        if (face == nullptr || !SetSize(font, face)) return nullptr;
    }
    return Has(face, character) ? face : nullptr;
}

/// The face that draws a character; the font's own where none has it.
/// @param previous  the face of the character before it
FT_Face FaceOf(TextFont &font, char32_t character, FT_Face previous) {
    if (IsControl(character) || (IsAttached(character) && Has(previous, character))) return previous;
    if (Has(font.face, character) || !FindFallbacks(font)) return font.face;
    for (int i = 0; i < font.fallbacks->nfont; i++) {
        if (const FT_Face face = FallbackFace(font, i, character)) return face;
    }
    return font.face;
}

/// Gives each character its face.
bool SetFaces(raqm_t *layout, TextFont &font, std::u32string_view text) {
    if (!raqm_set_freetype_face(layout, font.face)) return false;
    FT_Face face = font.face;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); i++) {
        const FT_Face next = i < text.size() ? FaceOf(font, text[i], face) : nullptr;
        if (next == face) continue;
        if (face != font.face && !raqm_set_freetype_face_range(layout, face, start, i - start)) return false;
        face = next;
        start = i;
    }
    return true;
}

/// Where the lines of a paragraph begin: its first letter tells.
raqm_direction_t DirectionOf(std::u32string_view paragraph) {
    for (char32_t character : paragraph) {
        const FriBidiCharType type = fribidi_get_bidi_type(character);
        if (FRIBIDI_IS_LETTER(type)) return FRIBIDI_IS_RTL(type) ? RAQM_DIRECTION_RTL : RAQM_DIRECTION_LTR;
    }
    return RAQM_DIRECTION_LTR;
}

/// A run as glyphs from left to right.
struct ShapedRun {
    raqm_t *layout; ///< owns the glyphs
    raqm_glyph_t *glyphs = nullptr;
    size_t count = 0;
    bool isDone; ///< false when memory was short

    ShapedRun(TextFont &font, const TextRun &run) : layout(raqm_create()) {
        static_assert(sizeof(char32_t) == sizeof(uint32_t));
        const std::u32string_view text = run.characters;
        isDone = layout != nullptr &&
                 raqm_set_text(layout, reinterpret_cast<const uint32_t *>(text.data()), text.size()) &&
                 raqm_set_par_direction(layout, DirectionOf(run.paragraph)) && SetFaces(layout, font, text) &&
                 raqm_set_freetype_load_flags(layout, font.loadFlags) && raqm_layout(layout);
        if (isDone) glyphs = raqm_get_glyphs(layout, &count);
    }
    ShapedRun(const ShapedRun &) = delete;
    ShapedRun &operator=(const ShapedRun &) = delete;
    ~ShapedRun() { raqm_destroy(layout); }
};

/// Is a face made bold, or italic, by drawing, as its family is not?
bool IsEmboldened(const TextFont &font, FT_Face face) {
    return font.isBold && (face->style_flags & FT_STYLE_FLAG_BOLD) == 0;
}
bool IsSlanted(const TextFont &font, FT_Face face) {
    return font.isItalic && (face->style_flags & FT_STYLE_FLAG_ITALIC) == 0;
}

/// How much wider drawing bold makes a letter, in 1/64 pixels.
FT_Pos BoldStrength(const TextFont &font) {
    return font.em / 24;
}

/// The width of a glyph in whole pixels, so that a letter looks the same wherever it stands.
int64_t Advance(const TextFont &font, const raqm_glyph_t &glyph, std::u32string_view text) {
    if (IsControl(text[glyph.cluster])) return 0;
    FT_Pos advance = glyph.x_advance;
    if (advance > 0 && IsEmboldened(font, glyph.ftface)) advance += BoldStrength(font);
    return (advance + 32) >> 6;
}

/// Puts the outline of a glyph, y upwards from its origin on the baseline, into the slot of its face.
FT_Error LoadOutline(const TextFont &font, const raqm_glyph_t &glyph) {
    const FT_GlyphSlot slot = glyph.ftface->glyph;
    if (const FT_Error error = FT_Load_Glyph(glyph.ftface, glyph.index, font.loadFlags)) return error;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return FT_Err_Invalid_Glyph_Format;
    if (IsEmboldened(font, glyph.ftface)) FT_Outline_Embolden(&slot->outline, BoldStrength(font));
    if (IsSlanted(font, glyph.ftface)) {
        const FT_Matrix slant = {0x10000, 0x366A, 0, 0x10000}; // by 12 degrees
        FT_Outline_Transform(&slot->outline, &slant);
    }
    FT_Outline_Translate(&slot->outline, glyph.x_offset, glyph.y_offset);
    return FT_Err_Ok;
}

/// Where a glyph goes.
struct GlyphTarget {
    const TextSurface &surface;
    const TextRect &clip; ///< inside the surface
    uint32_t color;
    int64_t x; ///< the surface's column of the glyph's column 0
    int64_t y; ///< the surface's row below the glyph's row 0, from which rows count upwards
};

uint8_t Mix(uint8_t below, uint32_t color, uint32_t coverage) {
    return static_cast<uint8_t>((below * (255 - coverage) + (color & 0xFF) * coverage + 127) / 255);
}

/// Mixes the colour into the covered pixels of a row.
/// @param user  the GlyphTarget
void DrawSpans(int row, int count, const FT_Span *spans, void *user) {
    const auto &[surface, clip, color, left, bottom] = *static_cast<const GlyphTarget *>(user);
    const int64_t y = bottom - 1 - row;
    if (y < clip.top || y >= clip.bottom) return;
    for (const FT_Span &span : std::span(spans, static_cast<size_t>(count))) {
        const int64_t begin = std::max<int64_t>(left + span.x, clip.left);
        const int64_t end = std::min<int64_t>(left + span.x + span.len, clip.right);
        uint8_t *pixel = surface.top + y * surface.stride + begin * 3;
        for (int64_t x = begin; x < end; x++, pixel += 3) {
            pixel[0] = Mix(pixel[0], color >> 16, span.coverage);
            pixel[1] = Mix(pixel[1], color >> 8, span.coverage);
            pixel[2] = Mix(pixel[2], color, span.coverage);
        }
    }
}

FT_Error FillSmooth(FT_Library library, FT_Outline *outline, GlyphTarget target, int columns, int rows) {
    FT_Raster_Params params = {};
    params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
    params.gray_spans = DrawSpans;
    params.user = &target;
    params.clip_box = {0, 0, columns, rows};
    return FT_Outline_Render(library, outline, &params);
}

/// The rasteriser for whole pixels keeps strokes in one piece that are thinner than a pixel.
FT_Error FillWhole(FT_Library library, FT_Outline *outline, GlyphTarget target, int columns, int rows) {
    const int pitch = (columns + 7) / 8;
    const std::unique_ptr<uint8_t[]> bits(new (std::nothrow) uint8_t[static_cast<size_t>(pitch) * rows]());
    if (bits == nullptr) return FT_Err_Out_Of_Memory;
    FT_Bitmap bitmap = {};
    bitmap.rows = static_cast<unsigned>(rows);
    bitmap.width = static_cast<unsigned>(columns);
    bitmap.pitch = -pitch; // from the bottom row up
    bitmap.buffer = bits.get();
    bitmap.pixel_mode = FT_PIXEL_MODE_MONO;
    if (const FT_Error error = FT_Outline_Get_Bitmap(library, outline, &bitmap)) return error;
    for (int row = 0; row < rows; row++) {
        const uint8_t *line = bits.get() + static_cast<size_t>(pitch) * row;
        for (int x = 0; x < columns; x++) {
            const FT_Span pixel = {static_cast<int16_t>(x), 1, 255};
            if ((line[x / 8] >> (7 - x % 8) & 1) != 0) DrawSpans(row, 1, &pixel, &target);
        }
    }
    return FT_Err_Ok;
}

/// The pixels that an outline about its origin may cover: columns to the right of the origin, rows upwards from it.
struct PixelBox {
    int64_t left, bottom, columns, rows;

    explicit PixelBox(const FT_Outline &outline) {
        FT_BBox box;
        FT_Outline_Get_CBox(&outline, &box);
        left = box.xMin >> 6;
        bottom = box.yMin >> 6;
        columns = (box.xMax >> 6) - left + 1;
        rows = (box.yMax >> 6) - bottom + 1;
    }
};

/// Fills an outline about its origin in `target`, and leaves it moved. It is filled whole and cut afterwards, as the
/// rasterisers look at what is beside a pixel.
FT_Error FillOutline(const TextFont &font, FT_Outline *outline, const GlyphTarget &target) {
    const PixelBox box(*outline);
    const int64_t left = target.x + box.left;
    const int64_t bottom = target.y - box.bottom;
    const TextRect &clip = target.clip;
    const bool isShown = std::max<int64_t>(left, clip.left) < std::min<int64_t>(left + box.columns, clip.right) &&
                         std::max<int64_t>(bottom - box.rows, clip.top) < std::min<int64_t>(bottom, clip.bottom);
    if (!isShown) return FT_Err_Ok;
    if (std::max(box.columns, box.rows) > INT16_MAX) return FT_Err_Raster_Overflow; // columns of spans have 16 bits
    FT_Outline_Translate(outline, -box.left * 64, -box.bottom * 64);
    const auto fill = font.isSmooth ? FillSmooth : FillWhole;
    return fill(font.library, outline, {target.surface, clip, target.color, left, bottom},
                static_cast<int>(box.columns), static_cast<int>(box.rows));
}

/// The outlines of glyphs: as they are, or those of a pen's stroke along them.
struct GlyphOutlines {
    const TextFont &font;
    FT_Stroker stroker = nullptr; ///< null for the glyphs as they are
    bool isReady;                 ///< false when memory was short

    GlyphOutlines(const TextFont &drawn, int32_t penWidth) : font(drawn) {
        isReady = penWidth <= 0 || FT_Stroker_New(font.library, &stroker) == 0;
        if (stroker == nullptr) return;
        const FT_Fixed radius = FT_Fixed{penWidth} * 32;
        FT_Stroker_Set(stroker, radius, FT_STROKER_LINECAP_ROUND, FT_STROKER_LINEJOIN_ROUND, 0);
    }
    GlyphOutlines(const GlyphOutlines &) = delete;
    GlyphOutlines &operator=(const GlyphOutlines &) = delete;
    ~GlyphOutlines() { FT_Stroker_Done(stroker); }

    /// Calls take(FT_Outline *) for a glyph, and gives its error or that of making the outline.
    template <typename Take>
    FT_Error Give(const raqm_glyph_t &glyph, Take take) const {
        if (const FT_Error error = LoadOutline(font, glyph)) return error;
        const FT_GlyphSlot slot = glyph.ftface->glyph;
        if (stroker == nullptr) return take(&slot->outline);
        FT_Glyph stroked = nullptr;
        FT_Error error = FT_Get_Glyph(slot, &stroked);
        if (error == FT_Err_Ok) error = FT_Glyph_Stroke(&stroked, stroker, 1);
        if (error == FT_Err_Ok) error = take(&reinterpret_cast<FT_OutlineGlyph>(stroked)->outline);
        FT_Done_Glyph(stroked);
        return error;
    }
};

/// Calls take(FT_Outline *, int64_t x) for each glyph of a run, whose origin stands in column x.
/// @return false when memory is short
template <typename Take>
bool ForEachOutline(TextFont &font, const TextRun &run, int64_t x, int32_t penWidth, Take take) {
    const std::u32string_view text = run.characters;
    if (text.empty()) return true;
    const ShapedRun shaped(font, run);
    const GlyphOutlines outlines(font, penWidth);
    if (!shaped.isDone || !outlines.isReady) return false;
    for (const raqm_glyph_t &glyph : std::span(shaped.glyphs, shaped.count)) {
        if (IsControl(text[glyph.cluster])) continue;
        // A glyph that its file has spoilt is left out.
        const FT_Error error = outlines.Give(glyph, [&](FT_Outline *outline) { return take(outline, x); });
        if (error == FT_Err_Out_Of_Memory) return false;
        x += Advance(font, glyph, text);
    }
    return true;
}

int32_t Limited(int64_t number) {
    return static_cast<int32_t>(std::clamp<int64_t>(number, INT32_MIN, INT32_MAX));
}

/// Opens what the request names and gives the font its sizes.
bool Prepare(TextFont &font, const FontRequest &request) {
    font.height = std::max(request.height, 1);
    font.isBold = request.weight >= kBoldWeight;
    font.isItalic = request.italic;
    font.isSmooth = request.antialias;
    // FreeType's own hinting alone: for smooth letters of heights only, which keeps their strokes sharp and their
    // shapes true, otherwise to whole pixels.
    font.loadFlags = FT_LOAD_NO_BITMAP | (request.antialias ? FT_LOAD_TARGET_LIGHT : FT_LOAD_TARGET_MONO);
    if (Config() == nullptr || FT_Init_FreeType(&font.library) != 0) return false;
    font.wanted = MakePattern(request);
    if (font.wanted == nullptr) return false;
    font.face = OpenClosestFace(font);
    if (font.face == nullptr) return false;
    ChooseSize(font);
    return SetSize(font, font.face);
}

} // namespace

TextFont *OpenFont(const FontRequest &request) {
    auto *font = new (std::nothrow) TextFont;
    if (font == nullptr || Prepare(*font, request)) return font;
    delete font;
    return nullptr;
}

void CloseFont(TextFont *font) {
    delete font;
}

int32_t FontHeight(const TextFont *font) {
    return font->height;
}

int32_t MeasureRun(TextFont *font, std::u32string_view text) {
    if (text.empty()) return 0;
    const ShapedRun shaped(*font, {text});
    if (!shaped.isDone) return -1;
    int64_t width = 0;
    for (const raqm_glyph_t &glyph : std::span(shaped.glyphs, shaped.count)) width += Advance(*font, glyph, text);
    return static_cast<int32_t>(std::clamp<int64_t>(width, 0, INT32_MAX));
}

bool DrawRun(TextFont *font, const TextRun &run, int32_t x, int32_t y, const TextInk &ink, const TextSurface &surface,
             const TextRect &clip) {
    const TextRect inside = {std::max(clip.left, 0), std::max(clip.top, 0), std::min(clip.right, surface.width),
                             std::min(clip.bottom, surface.height)};
    const int64_t baseline = int64_t{y} + font->ascent;
    return ForEachOutline(*font, run, x, ink.penWidth, [&](FT_Outline *outline, int64_t left) {
        return FillOutline(*font, outline, {surface, inside, ink.color, left, baseline});
    });
}

bool RunBounds(TextFont *font, const TextRun &run, int32_t x, int32_t y, const TextInk &ink, TextRect *bounds) {
    const int64_t baseline = int64_t{y} + font->ascent;
    *bounds = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    const bool done = ForEachOutline(*font, run, x, ink.penWidth, [&](const FT_Outline *outline, int64_t left) {
        const PixelBox box(*outline);
        if (outline->n_points == 0) return FT_Err_Ok;
        bounds->left = std::min(bounds->left, Limited(left + box.left));
        bounds->top = std::min(bounds->top, Limited(baseline - box.bottom - box.rows));
        bounds->right = std::max(bounds->right, Limited(left + box.left + box.columns));
        bounds->bottom = std::max(bounds->bottom, Limited(baseline - box.bottom));
        return FT_Err_Ok;
    });
    if (bounds->left > bounds->right) *bounds = {};
    return done;
}

void ForEachFontFamily(void (*take)(void *user, const char *family), void *user) {
    FcPattern *all = FcPatternBuild(nullptr, FC_OUTLINE, FcTypeBool, FcTrue, nullptr);
    FcObjectSet *wanted = FcObjectSetBuild(FC_FAMILY, nullptr);
    const bool isReady = Config() != nullptr && all != nullptr && wanted != nullptr;
    FcFontSet *fonts = isReady ? FcFontList(Config(), all, wanted) : nullptr;
    if (fonts != nullptr) {
        const std::span patterns(fonts->fonts, static_cast<size_t>(fonts->nfont));
        const auto name = [](FcPattern *pattern) {
            FcChar8 *family = nullptr;
            const bool isNamed = FcPatternGetString(pattern, FC_FAMILY, 0, &family) == FcResultMatch;
            return isNamed ? reinterpret_cast<const char *>(family) : "";
        };
        std::sort(patterns.begin(), patterns.end(),
                  [&](FcPattern *a, FcPattern *b) { return std::strcmp(name(a), name(b)) < 0; });
        const char *previous = "";
        for (FcPattern *pattern : patterns) {
            if (std::strcmp(name(pattern), previous) != 0) take(user, name(pattern));
            previous = name(pattern);
        }
        FcFontSetDestroy(fonts);
    }
    if (all != nullptr) FcPatternDestroy(all);
    if (wanted != nullptr) FcObjectSetDestroy(wanted);
}

} // namespace lmf
