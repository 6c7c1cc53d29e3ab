// The fixed catalogue of 95 filters. Every part of the library reaches a filter by its row.
#pragma once

#include <cstdint>

#include "engine/filter.h"
#include "lmf16filter.h"

namespace lmf {

/// Capabilities and visibility of a filter: the bits of FilterEntry.flags.
enum FilterFlag : uint32_t {
    FilterAcceptsColor = 0x00001,
    FilterAcceptsGrey = 0x00002,
    FilterAcceptsPalette = 0x00004,
    FilterAcceptsMono = 0x00008,
    FilterBarredByA = 0x00010,           ///< withheld under the host's first restriction
    FilterBarredByPaletteRule = 0x00020, ///< withheld from palette and mono pictures under the context's restriction
    FilterBarredByB = 0x00040,           ///< withheld under the host's second restriction
    FilterKeepsSecond = 0x00080,         ///< pixels stay in place: the second picture is not run through the kernel
    FilterDropsSecond = 0x00100,         ///< the result has no second picture
    FilterRunsSecond = 0x00200,          ///< the second picture runs though the filter lacks FilterAcceptsGrey
    FilterNeedsSecond = 0x00400,         ///< listed for true colour only when a second picture exists
    FilterNeedsClipboard = 0x00800,      ///< offered only while the clipboard holds a picture
    FilterHiddenFromPaint = 0x01000,
    FilterHiddenFromBatch = 0x02000,
    FilterFallback = 0x04000,   ///< fills a list that would hold fewer than three filters
    FilterEnabled = 0x08000,    ///< the user's switch
    FilterNoDocument = 0x10000, ///< settings cannot be saved as a document
    FilterHiddenFromAnimation = 0x20000
};

/// The names of the categories, in the order of FilterEntry.category.
inline constexpr const char *kCategoryList = "Artistic;Blur;Color;Effect;Image;Noise;Photographic;Quality";

struct FilterEntry {
    const char *name;
    const Filter *filter;
    int32_t category; ///< index into kCategoryList
    uint32_t flags;   ///< FilterEnabled is the one bit that changes
    int32_t itemId;   ///< stable number for hosts, 0 to 94
    int32_t pageId;   ///< resource id of the page; 0: none
};

inline constexpr int32_t kFilterCount = LMF_FILTER_COUNT;
static_assert(kFilterCount == 95);

extern FilterEntry FilterCatalogue[kFilterCount];

/// May the filter run on pictures of this mode? A filter that needs the second picture counts as colour capable.
[[nodiscard]] bool FilterAccepts(const FilterEntry &entry, int32_t mode);

/// What a host's restrictions and the call's kind withhold.
struct OfferRules {
    uint32_t runFlags = 0;
    bool hasHostRestrictions = false; ///< a host record with restrictions was passed
    bool hostRestrictA = false, hostRestrictB = false;
    bool clipboardHasPicture = false;
};

/// May the filter of this row be listed now?
/// @param restriction1, restriction2  the context's two restrictions
[[nodiscard]] bool FilterIsOffered(const OfferRules &rules, int32_t mode, bool restriction1, bool restriction2,
                                   bool hasSecond, int32_t row);

/// Every page's part of `Settings` into the context, limited, and what follows from the picture.
void LoadAllSettings(FilterContext &context);
/// Every page's part of the context into `Settings`.
void StoreAllSettings(const FilterContext &context);
/// Every page's restore values into the context.
void ResetAllDefaults(FilterContext &context);
/// Limits every page's numbers in the context. A kernel may read the settings of another page too.
void LimitAllSettings(FilterContext &context);

/// Where a control stands.
struct ControlPlace {
    int32_t id;
    int32_t row; ///< of the catalogue
    const PageControl *control;
};

/// The control with this id of any page, or null; ids are unique over all pages.
[[nodiscard]] const ControlPlace *FindControl(int32_t id);

} // namespace lmf
