// The working record of one call: the picture, what became of it, and every filter's parameters.
#pragma once

#include "engine/settings.h"
#include "image/dib.h"

namespace lmf {

/// What kind of host is calling, and how: the bits of RunFlags.
enum RunFlag : uint32_t {
    kRunStandard = 1,
    kRunDaubery = 2,
    kRunDirect = 4,
    kRunBatch = 8,
    kRunFixedFilter = 16,
    kRunPaint = 32,
    kRunScaleDialog = 64,
    kRunReelsmith = 128,
    kRunFrameloom = 256
};

/// Outcome of a run, an index into the error texts. These are the ones that the filter path sets.
enum ErrorCode : int32_t { kErrorOk = 0, kErrorCancelled = 4, kErrorUnsupported = 5, kErrorMemory = 6 };

/// Zero-filled at the start of a call. A copy keeps a whole state, but does not own the handles in it.
struct FilterContext : FilterParameters {
    void *ownerWindow;
    void *dialogWindow;  ///< null in the direct path, so that slots can tell whether controls exist
    int32_t filterIndex; ///< current row of the catalogue
    DibHandle source;    ///< the host's picture: never changed, never freed
    DibHandle second;    ///< the host's second picture or null: never changed, never freed
    int32_t zoomA;       ///< left preview, percent; 12 stands for 12.5
    int32_t panXA, panYA;
    int32_t panModeA;
    int32_t mode;           ///< the ImageMode that the kernel runs in
    int32_t width, height;  ///< of `source`, pixels
    DibHandle result;       ///< owned
    DibHandle secondResult; ///< owned, or null
    int32_t zoomB;          ///< right preview, percent
    int32_t panXB, panYB;
    int32_t panModeB;
    int32_t resultWidth, resultHeight; ///< of `result`, pixels
    int32_t dragStartX, dragStartY;
    int32_t dragging;
    int32_t dragPainting;
    int32_t dirty; ///< settings changed since the last run
    Color paperColor;
    int32_t restrictionB, restrictionA;
    int32_t errorCode;  ///< an ErrorCode
    DibHandle auxImage; ///< owned: a further picture that a kernel leaves behind; freed before every run
    int32_t typedEntry; ///< set while OnScroll runs for a typed value: the slot must not write the edit back
    int32_t hostReserved;
    int32_t pickingPaper;
    int32_t busy; ///< a run or a preview paint is in progress
    void *listFont, *listBoldFont;
    int32_t previewPending;
};

} // namespace lmf
