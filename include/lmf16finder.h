/* What the Lumenfold filter library asks of a face finder: a library of its own in the folder `cv` beside the filter
 * library (libcv_x64.so, on Windows cv_x64.dll) with the one function CV_FindFace. The filters Face Detection and
 * Red-eye Reduction load it by this name, so any finder that keeps to this page can take the place of the one that
 * comes with the library. */
#ifndef LMF16FINDER_H
#define LMF16FINDER_H

#include <stdint.h>

#include "lmf16block.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The head of a block that a finder gives. FaceRecords follow it: first all faces, then all eyes. */
typedef struct FaceList {
    int32_t faces;        /* number of face records */
    int32_t eyes;         /* number of eye records; of use only where eyes were asked for */
    uint8_t reserved[24]; /* not read */
} FaceList;

/* A rectangle in pixels from the top left corner of the picture. */
typedef struct FaceRecord {
    int32_t left;
    int32_t top;
    int32_t right;        /* the first column beyond it */
    int32_t bottom;       /* the first row beyond it */
    uint8_t reserved[12]; /* not read */
} FaceRecord;

/** Looks for faces and, in them, for eyes.
 *
 *  @param reserved     null
 *  @param picture      a picture as lmf16filter.h describes it; it stays the caller's and is not changed
 *  @param faceCascade  path of the cascade file for faces, zero-terminated
 *  @param eyeCascade   path of the one for eyes; an empty text where none are asked for
 *  @param findEyes     1 to look for eyes too, else 0
 *  @return a FaceList with its records, a block that the caller owns; null on failure. */
LMF_API LmfHandle CV_FindFace(void *reserved, LmfHandle picture, const char *faceCascade, const char *eyeCascade,
                              int32_t findEyes);

#ifdef __cplusplus
}
#endif

#endif
