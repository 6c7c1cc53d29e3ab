/* The C interface of the Lumenfold filter library: eleven exported functions and the records that they take.
 *
 * Pictures are movable blocks (LmfHandle; on Windows an HGLOBAL) that hold a packed device-independent bitmap:
 *
 *   offset  size  field
 *        0     4  biSize, 40
 *        4     4  biWidth in pixels, positive
 *        8     4  biHeight in pixels, positive: rows run from the bottom of the picture to the top
 *       12     2  biPlanes, 1
 *       14     2  biBitCount: 1, 4, 8, 24 or 32; others read as white, and extended calls refuse them
 *       16     4  biCompression, 0
 *       20     4  biSizeImage: row stride times height; the stride is ((width * bits + 31) / 32) * 4 bytes
 *       24     8  biXPelsPerMeter, biYPelsPerMeter, 0
 *       32     4  biClrUsed: 2, 16, 256 or 0
 *       36     4  biClrImportant, the same
 *       40  4 * n colour table for depths up to 8: n = 2^bits entries of blue, green, red, 0
 *                 pixels: 24 bits are blue, green, red; 32 bits blue, green, red, alpha; 4 bits high nibble first;
 *                 1 bit most significant bit first
 *
 * Colours are 0x00BBGGRR, sizes in bytes unless told otherwise, lengths and places in pixels. Texts are zero-terminated
 * and in UTF-8; in settings, what is no valid UTF-8 counts as code page 1252. Names of files are in the system's own
 * form. All calls run on the caller's thread and must not overlap. */
#ifndef LMF16FILTER_H
#define LMF16FILTER_H

#include <stdint.h>

#include "lmf16block.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What kind of host calls, and how: the bits of `runFlags`. 0 is legal. */
enum {
    LMF_RUN_STANDARD = 1,      /* a standard host: the enable file is read */
    LMF_RUN_DAUBERY = 2,       /* the paint host Daubery, with its own settings files */
    LMF_RUN_DIRECT = 4,        /* apply without a dialog; the ini file is not rewritten */
    LMF_RUN_BATCH = 8,         /* a batch: "Batch" settings files, hostRecord is a block of the host's own */
    LMF_RUN_FIXED_FILTER = 16, /* the dialog shows one filter that cannot be changed */
    LMF_RUN_PAINT = 32,        /* as LMF_RUN_DAUBERY, with the standard settings files */
    LMF_RUN_SCALE_DIALOG = 64, /* the dialog grows to its parent's size */
    LMF_RUN_REELSMITH = 128,   /* the animation host Reelsmith */
    LMF_RUN_FRAMELOOM = 256,   /* the animation host Frameloom */
    LMF_RUN_EXTENDED = 512     /* with LMF_RUN_DIRECT: an extended call (see below) */
};

/* An extended call has LMF_RUN_EXTENDED beside LMF_RUN_DIRECT. What differs from other direct calls:
 * - `hooks`, where given, points to an LmfExtendedHooks.
 * - What a window would ask for is done without one: filters that need faces look for them, and Social Media takes its
 *   destination by number from a list; it fails with _OPEN without a list and with _CORRUPTED for a destination that is
 *   not there or has no size.
 * - Average and Edge Enhancement count whole byte offsets, as in the windows. In other calls these are numbers of 16
 *   bits, as hosts know them, which mix the rows of pictures of 24 bits that are wider than 3640 pixels (of 8 bits:
 *   16383).
 * - Pictures of unknown depth are refused. */

/* In a batch call (LMF_RUN_BATCH), `hostRecord` is the host's own block; the library writes the 32-bit error code
 * (an LMF_ERROR_) at this byte offset and touches nothing else of it. */
#define LMF_BATCH_ERROR_OFFSET 568

/* The filters in the order of the catalogue: X(ENUMERATOR, "name"). LMF_FILTER_ADD_ALPHA is row 0, and so on; rows
 * never change. */
/* clang-format off */
#define LMF_FILTERS(X) \
    X(ADD_ALPHA, "Add Alpha") \
    X(ADD_NOISE, "Add noise") \
    X(ALPHA_SHADOW, "Alpha shadow") \
    X(AVERAGE, "Average") \
    X(BAYER_DITHER, "Bayer Dither") \
    X(BIG_SCREEN, "Big Screen") \
    X(BLACK_THRESHOLD, "Black Threshold") \
    X(BUMP, "Bump") \
    X(CANVAS, "Canvas") \
    X(CAPTION, "Caption") \
    X(CHANNELS, "Channels") \
    X(COLOR_AND_INTENSITY, "Color and Intensity") \
    X(CONTRAST_AND_BRIGHTNESS, "Contrast and Brightness") \
    X(CONVERT_TO_256_COLORS, "Convert to 256 Colors") \
    X(CONVERT_TO_GREY, "Convert to Grey") \
    X(CONVERT_TO_MONO, "Convert to Mono") \
    X(CONVERT_TO_RGB, "Convert to RGB") \
    X(CORNERS, "Corners") \
    X(CROP, "Crop") \
    X(DESPECKLE, "Despeckle") \
    X(EDGE_TRACE_AND_FATTEN, "Edge Trace and Fatten") \
    X(EMBOSS, "Emboss") \
    X(EDGE_ENHANCEMENT, "Edge Enhancement") \
    X(EQUALIZE, "Equalize") \
    X(EXPLODE, "Explode") \
    X(FACE_DETECTION, "Face Detection") \
    X(FADE, "Fade") \
    X(FILM_GRAIN, "Film Grain") \
    X(FLIP, "Flip") \
    X(FRAME, "Frame") \
    X(GAMMA, "Gamma") \
    X(GAUSSIAN_BLUR, "Gaussian Blur") \
    X(GLASS_BLOCK, "Glass Block") \
    X(HALFTONE, "Halftone") \
    X(HEXAGON, "Hexagon") \
    X(HUE_SATURATION_BRIGHTNESS, "Hue Saturation Brightness") \
    X(IMPACT, "Impact") \
    X(IMPLODE, "Implode") \
    X(INVERT_CHANNELS, "Invert Channels") \
    X(INVERT_COLORS, "Invert Colors") \
    X(JIGSAW, "Jigsaw") \
    X(LENS_CORRECTION, "Lens Correction") \
    X(LENS_FLARE, "Lens Flare") \
    X(LIGHT_BOX, "Light Box") \
    X(MATT, "Matt") \
    X(MEDIAN, "Median") \
    X(MOONLIGHT, "Moonlight") \
    X(MOTION_BLUR, "Motion Blur") \
    X(NEON, "Neon") \
    X(NORMALIZE, "Normalize") \
    X(OBSCURE, "Obscure") \
    X(OIL_PAINTING, "Oil Painting") \
    X(PAPER_CURL, "Paper Curl") \
    X(PHOTO_FINE_TUNE, "Photo Fine-tune") \
    X(PLASTIC, "Plastic") \
    X(POSITION_ONLY, "Position Only") \
    X(POSTERIZE, "Posterize") \
    X(PREPRESS, "Prepress") \
    X(RADIAL_BLUR, "Radial Blur") \
    X(RAISE, "Raise") \
    X(RASTER, "Raster") \
    X(RED_EYE_REDUCTION, "Red-eye Reduction") \
    X(REDUCE_NOISE, "Reduce noise") \
    X(REFLECTION, "Reflection") \
    X(RESIZE, "Resize") \
    X(REMOVE_ALPHA, "Remove Alpha") \
    X(RIPPLE, "Ripple") \
    X(ROTATE, "Rotate") \
    X(ROUND, "Round") \
    X(SEAMLESS, "Seamless") \
    X(SEPIA, "Sepia") \
    X(SHADE, "Shade") \
    X(SHADOW, "Shadow") \
    X(SHAPE_MASK, "Shape mask") \
    X(SHARDS, "Shards") \
    X(SHARPEN, "Sharpen") \
    X(SHEAR, "Shear") \
    X(SIGMOIDAL_CONTRAST, "Sigmoidal Contrast") \
    X(SOCIAL_MEDIA, "Social Media") \
    X(SOLARIZE, "Solarize") \
    X(SPLIT_CHANNELS, "Split channels") \
    X(STARS, "Stars") \
    X(STITCH, "Stitch") \
    X(SWIRL, "Swirl") \
    X(TILE, "Tile") \
    X(TORN_EDGES, "Torn Edges") \
    X(TRIM, "Trim") \
    X(UNSHARP_MASK, "Unsharp Mask") \
    X(VIGNETTE, "Vignette") \
    X(WATER_DROPS, "Water Drops") \
    X(WATERMARK, "Watermark") \
    X(WAVES, "Waves") \
    X(WHITE_BALANCE, "White Balance") \
    X(WHITE_THRESHOLD, "White Threshold") \
    X(ZOOM_BLUR, "Zoom Blur")
/* clang-format on */
#define LMF_FILTER_ENUMERATOR(id, name) LMF_FILTER_##id,
enum { LMF_FILTERS(LMF_FILTER_ENUMERATOR) LMF_FILTER_COUNT };
#undef LMF_FILTER_ENUMERATOR

/* The start index that stands for "the filter that was applied last". */
#define LMF_FILTER_LAST 0xFFFFFFFFu

/* Error codes and their texts in order: X(ENUMERATOR, "text"). The filter path sets LMF_ERROR_OK, _CANCELLED,
 * _UNSUPPORTED and _MEMORY, and to extended hooks also _INFORMATION for a null argument, _UNSUITABLE for a source
 * that cannot be read and _FORMAT for one of another depth than above; the rest are shared with hosts. */
#define LMF_ERRORS(X)                                                                                                  \
    X(OK, "Ok")                                                                                                        \
    X(OPEN, "Error opening file")                                                                                      \
    X(CORRUPTED, "Corrupted file")                                                                                     \
    X(READ, "Error reading file")                                                                                      \
    X(CANCELLED, "Function cancelled")                                                                                 \
    X(UNSUPPORTED, "Unsupported function")                                                                             \
    X(MEMORY, "Memory error")                                                                                          \
    X(INFORMATION, "Information error")                                                                                \
    X(FORMAT, "Unsupported format")                                                                                    \
    X(RENAME, "Error renaming file")                                                                                   \
    X(CREATE, "Error creating file")                                                                                   \
    X(WRITE, "Error writing file")                                                                                     \
    X(COLORS, "Too many colors")                                                                                       \
    X(UNSUITABLE, "Unsuitable image")                                                                                  \
    X(RESOURCE, "Resource error")                                                                                      \
    X(LIBRARY, "Library error")
#define LMF_ERROR_ENUMERATOR(id, text) LMF_ERROR_##id,
enum { LMF_ERRORS(LMF_ERROR_ENUMERATOR) LMF_ERROR_COUNT };
#undef LMF_ERROR_ENUMERATOR

/* One half of the licence exchange. The library never calls it; it must not be null. */
typedef int32_t (*LmfValidation)(void *owner, const char *text);

/* What a host withholds from its user, and the picture that its menu is enabled for. */
typedef struct HostRestrictions {
    LmfHandle picture; /* read by EnableMenu only; may be null */
    int32_t restrictA; /* non-zero withholds the filters barred by the first restriction */
    int32_t restrictB; /* non-zero withholds the filters barred by the second restriction */
} HostRestrictions;

/* Passed to DoImageFilter by a host without LMF_RUN_BATCH. */
typedef struct HostRecord {
    uint32_t paperColor;                  /* in: 0x00BBGGRR; read with LMF_RUN_DAUBERY or LMF_RUN_PAINT */
    uint32_t filterIndex;                 /* in: catalogue row, 0 to 94, or LMF_FILTER_LAST; out on success */
    int32_t applyToDuplicate;             /* in and out, with LMF_RUN_DAUBERY or LMF_RUN_PAINT */
    const HostRestrictions *restrictions; /* may be null */
} HostRecord;

/* Gives the library a picture file of the user's as a new block, which the library frees, or null where that fails. The
 * Watermark filter prints it: with 32 bits a pixel by its alpha, with 24 as it is. Other depths should be widened,
 * since their indexes would be taken for reds. `owner` is that of the call. */
typedef LmfHandle (*LmfLoadPicture)(void *owner, const char *path);

/* What the host does for single filters. */
typedef struct HostHooks {
    uint64_t reserved0;
    LmfLoadPicture loadPicture; /* may be null */
    uint64_t reserved1;
    char folder[261];    /* zero-terminated */
    char extension[261]; /* zero-terminated */
} HostHooks;

/* What `hooks` points to in a call with LMF_RUN_EXTENDED and LMF_RUN_DIRECT. Fields beyond `size` count as null.
 * Where a field of the HostRecord says the same as one of the settings, the record counts. */
typedef struct LmfExtendedHooks {
    HostHooks hooks;
    uint32_t size;        /* in: bytes of the whole record, from the start of `hooks` */
    int32_t errorCode;    /* out, on success too: an LMF_ERROR_ */
    const char *settings; /* in: lines "Key = value" as in a settings file, which they outdo for this call only; also
                             keys that no file keeps, such as FilterCropLeft; may be null. Numbers are stored ones, in
                             the units that `lmf show FILTER` and catalogue.json name behind the keys: tenths of a
                             degree, hundredths, pixels of the picture; colours as decimal 0x00BBGGRR, yes as 1 */
    LmfHandle clipboard;  /* in: a picture that stands for the clipboard's; stays the host's; may be null */
    const char *destinations; /* in: the file with the list from which Social Media takes its destination; null: the
                                 user's list, or else the library's own */
} LmfExtendedHooks;

/* One entry of a menu. */
typedef struct LmfMenuItem {
    uint32_t id;       /* the first id that the host gave, plus the catalogue row */
    int32_t enabled;   /* 1, or 0 where the entry is greyed; 1 until the first EnableMenu */
    char category[16]; /* "Artistic", ...: the title of the submenu in a grouped menu; zero-terminated */
    char name[40];     /* "Add noise", ...; zero-terminated */
} LmfMenuItem;

/* What GetMenu gives where there is no Win32: a block of the host's with `count` items behind its head. The host locks
 * it to read it and frees it with LmfBlockFree; it holds nothing of the library's. */
typedef struct LmfMenu {
    uint32_t count;
    uint32_t grouped; /* 1: the items of one category follow each other; 0: they stand in the order of the catalogue */
} LmfMenu;

/** @return the first of the `count` items of a locked menu. */
static inline const LmfMenuItem *LmfMenuItems(const LmfMenu *menu) {
    return (const LmfMenuItem *)(const void *)(menu + 1);
}

/* What the windows ask of their host. `hostValue` is that of the request; the picture stays the library's. */
typedef void (*LmfView)(void *window, LmfHandle picture, void *hostValue); /* shows a picture */
/* Asks the user for a name and saves the picture under it; `title` is what the picture is called. */
typedef int32_t (*LmfSaveAs)(void *window, const char *title, LmfHandle picture, void *hostValue);

/* The request of DoPhotographDarkroom. Fields marked "library" are the library's own while the call runs. */
typedef struct DarkroomRequest {
    uint32_t reserved0;
    uint32_t flags; /* 1: full window; 2: Ok box; 4, out: "Apply to duplicate" was on at Ok */
    void *owner;
    LmfHandle picture; /* in: a private clone */
    LmfHandle mask;    /* in: the alpha picture, a private clone; may be null */
    LmfHandle result;  /* out, with flag 2; then the caller's */
    char title[264];
    LmfValidation validation; /* must not be null */
    LmfView view;
    LmfSaveAs saveAs;
    uint32_t buttonStyle;
    uint32_t gradientSliders;
    uint32_t changed;    /* out: 1: a recipe was reconfigured */
    uint32_t paperColor; /* in, with flag 2 */
    const char *browserPath;
    uint32_t browserMask;
    uint32_t reserved1;
    LmfHandle undo;     /* library */
    uint32_t undoDepth; /* in: how many steps of undo the host allows */
    uint32_t undoCount; /* library */
    uint64_t reserved2;
    void *hostValue;   /* handed back to the callbacks */
    uint32_t tipTimer; /* library */
    uint32_t reserved3;
    void *tipWindow;     /* library */
    int32_t tipPoint[2]; /* library: x and y in pixels */
    uint32_t hitItem;    /* library */
    uint32_t reserved4;
    LmfHandle thumbBase;   /* library */
    LmfHandle thumbSource; /* library */
} DarkroomRequest;

/* The request of DoAdjust. Fields marked "library" are the library's own while the call runs. */
typedef struct AdjustRequest {
    uint32_t reserved0;
    uint32_t flags; /* 1: free-standing; 2: Ok box; 4, out: "Apply to duplicate" was on at Ok; 8: batch with the check
                       "Dither"; 16: batch without; 32, in and out: "Dither" is on */
    void *owner;
    LmfHandle picture; /* in: stays the host's; the library's while the call runs, and null after it */
    LmfHandle second;  /* in: not changed; may be null */
    LmfHandle result;  /* out, with flag 2; then the caller's */
    char title[264];
    LmfValidation validation; /* must not be null */
    LmfView view;
    LmfSaveAs saveAs;
    uint32_t buttonStyle;
    uint32_t gradientSliders;
    uint64_t reserved1;
    const char *browserPath;
    uint32_t browserMask;
    uint32_t reserved2[5];
    void *hostValue;          /* handed back to every callback */
    LmfHandle previewBase;    /* library */
    int32_t previewOffset[2]; /* library: x and y in pixels */
    uint32_t dirty;           /* library */
    uint32_t reserved3;
    void *context; /* library */
    /* Gives the picture number `index` of a batch. */
    LmfHandle (*fetch)(void *hostHandle, void *hostValue, uint32_t index, uint32_t zero);
    /* Takes the result of picture number `index` and gives 0 on failure. Index 0xFFFFFFFF and null end the batch. */
    int32_t (*store)(void *hostHandle, void *hostValue, uint32_t index, LmfHandle picture, uint32_t zero);
    void *hostHandle; /* handed to `fetch` and `store` */
    uint32_t count;   /* pictures in a batch */
} AdjustRequest;

/** Runs a filter on a picture, in the master filter dialog or, with LMF_RUN_DIRECT, at once and without a window.
 *
 *  @param owner            the host's window, or null
 *  @param picture          in: the source, which stays the host's and is never changed; out on success: the result,
 *                          a new block that the host owns
 *  @param callback         the host's part of the licence exchange; null makes the call return 0
 *  @param second           must not be null. In: the 8-bit grey companion picture (usually alpha) or null; out on
 *                          success: its result, owned by the host, or null
 *  @param buttonStyle      how owner-drawn buttons are painted
 *  @param gradientSliders  non-zero paints slider tracks
 *  @param runFlags         the LMF_RUN_ bits
 *  @param hostRecord       a HostRecord or null; with LMF_RUN_BATCH the host's block of at least 572 bytes, or null
 *  @param browserPath      executable that shows help, at most 260 characters; may be null
 *  @param browserMask      which browsers to try for help
 *  @param hostReserved     stored and not used
 *  @param hooks            may be null; with LMF_RUN_EXTENDED and LMF_RUN_DIRECT the first part of an LmfExtendedHooks,
 *                          which the library also writes to
 *  @return 1 on success. On 0 nothing was written through `picture` and `second`. */
LMF_API uint64_t LMF16FILTERDoImageFilter(void *owner, LmfHandle *picture, LmfValidation callback, LmfHandle *second,
                                          int32_t buttonStyle, int32_t gradientSliders, uint32_t runFlags,
                                          void *hostRecord, const char *browserPath, uint32_t browserMask,
                                          int32_t hostReserved, const HostHooks *hooks);

/** Opens the Photography Darkroom.
 *  @return 1 on success; 0 on failure and where no window system serves this build. */
LMF_API uint64_t LMF16FILTERDoPhotographDarkroom(DarkroomRequest *request);

/** Opens the Adjust window.
 *  @return 1 on success; 0 on failure and where no window system serves this build. */
LMF_API uint64_t LMF16FILTERDoAdjust(AdjustRequest *request);

/** Builds the host's Filter menu with item ids `firstId` + catalogue row.
 *
 *  With `grouped` 0 it has the filters that the user's enable file of Daubery leaves enabled and that paint hosts show,
 *  in the order of the catalogue. Otherwise it has all filters that paint hosts show, category after category.
 *  No desktop is needed.
 *  @return on Windows a menu, which the host destroys; elsewhere a block with an LmfMenu, which the host frees; null
 *  when memory is short. */
LMF_API void *LMF16FILTERGetMenu(uint32_t firstId, uint32_t grouped);

/** Enables and greys the items of a menu of GetMenu for the picture of `restrictions`; without a picture, or one that
 *  cannot be read, all are greyed.
 *  @param menu     of GetMenu, not locked by anybody who writes to it; null or another block is left alone
 *  @param firstId  the one that was given to GetMenu
 *  @return what the item of the last row was before, 0 enabled or 3 greyed; -1 where the menu has no such item. */
LMF_API int32_t LMF16FILTEREnableMenu(void *menu, uint32_t firstId, const HostRestrictions *restrictions);

/** @return the number of filters, 95. */
LMF_API int32_t LMF16FILTERGetCount(void);

/** @return the interface's version, 0x101. */
LMF_API int32_t LMF16FILTERGetVersion(void);

/** @return the library's legal line; constant text that the library owns. */
LMF_API const char *LMF16FILTERGetCopyright(void);

/** One half of the licence exchange, which counts as passed.
 *  @return constant text that the library owns. */
LMF_API const char *LMF16FILTERGetValidationString(void);

/** The other half of the licence exchange, which counts as passed.
 *  @return 1. */
LMF_API int32_t LMF16FILTERSetValidation(const char *text);

/** Load and unload notice. The system's loader calls it; hosts have no need to.
 *  @param reason  1: the library was loaded, 0: it is being unloaded; others do nothing
 *  @return 1. */
LMF_API int32_t DllMain(void *module, uint32_t reason, void *reserved);

/* The types of the functions above, for hosts that find them at run time:
 *
 *   LmfDoImageFilter run = (LmfDoImageFilter)dlsym(library, "LMF16FILTERDoImageFilter"); */
typedef uint64_t (*LmfDoImageFilter)(void *owner, LmfHandle *picture, LmfValidation callback, LmfHandle *second,
                                     int32_t buttonStyle, int32_t gradientSliders, uint32_t runFlags, void *hostRecord,
                                     const char *browserPath, uint32_t browserMask, int32_t hostReserved,
                                     const HostHooks *hooks);
typedef uint64_t (*LmfDoPhotographDarkroom)(DarkroomRequest *request);
typedef uint64_t (*LmfDoAdjust)(AdjustRequest *request);
typedef void *(*LmfGetMenu)(uint32_t firstId, uint32_t grouped);
typedef int32_t (*LmfEnableMenu)(void *menu, uint32_t firstId, const HostRestrictions *restrictions);
typedef int32_t (*LmfGetCount)(void);
typedef int32_t (*LmfGetVersion)(void);
typedef const char *(*LmfGetCopyright)(void);
typedef const char *(*LmfGetValidationString)(void);
typedef int32_t (*LmfSetValidation)(const char *text);

#ifdef __cplusplus
}
#endif

#endif
