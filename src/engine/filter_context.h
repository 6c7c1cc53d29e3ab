// The working record of one run: the picture, what became of it, and every filter's parameters.
#pragma once

#include "engine/settings.h"
#include "image/blur/convolve5x5.h"
#include "image/core/dib.h"
#include "lmf16filter.h"

namespace lmf {

/// Zero-filled at the start of a call. A copy keeps a whole state, but does not own the handles in it.
struct FilterContext : FilterParameters {
    void *ownerWindow;                 ///< the host's, or null
    LmfLoadPicture loadPicture;        ///< the host's reader of picture files, which takes `ownerWindow`; or null
    int64_t time;                      ///< of the call, as SystemTime gives it
    int32_t filterIndex;               ///< current row of the catalogue
    DibHandle source;                  ///< the host's picture: never changed, never freed
    DibHandle second;                  ///< the host's second picture or null: never changed, never freed
    int32_t mode;                      ///< the ImageMode that the kernel runs in
    int32_t width, height;             ///< of `source`, pixels
    DibHandle result;                  ///< owned; null before the first run
    DibHandle secondResult;            ///< owned, or null
    bool secondIsReplaced;             ///< `secondResult` is what the run made of the second picture, null included
    bool runsOnSecond;                 ///< the kernel runs on `second`, after it ran on `source`
    DibHandle clipboard;               ///< plays the part of the clipboard: a picture of the host, or null
    int32_t resultWidth, resultHeight; ///< of `result`, pixels
    const char *destinations;          ///< file of the host with the list for Social Media; null: the user's
    int32_t destinationWidth, destinationDepth; ///< that Social Media makes, pixels; 0 while none is chosen
    Color paperColor;
    ByteOffsets byteOffsets;                  ///< of the 5 x 5 windows: whole in windows and in extended calls
    int32_t ditherBrightness, ditherContrast; ///< the general settings of black and white diffusion
    int32_t restrictionB, restrictionA;       ///< of FilterIsOffered
    int32_t errorCode;                        ///< an LMF_ERROR_
    DibHandle auxImage; ///< owned: a further picture that a kernel leaves behind; freed before every run
    int32_t hostReserved;
    /// The names of the cascade files, as the general settings have them.
    SettingText faceCascade, eyesCascade;
    BlockHandle FaceDetectList; ///< what FilterPrepare of Face Detection found (a FaceList), until its last phase
    BlockHandle RedeyeList;     ///< the same of Red-eye Reduction
};

/// Makes `made`, which may be null for none, the second picture of the result.
void ReplaceSecond(FilterContext &context, DibHandle made);
/// Frees all that the context owns.
void FreePictures(FilterContext &context);

} // namespace lmf
