// The face finder: Haar cascades (P. Viola and M. Jones, "Rapid object detection using a boosted cascade of simple
// features", 2001) as OpenCV's classifier runs them, on the equalised grey picture.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

#include "image/core/rows.h"
#include "lmf16finder.h"

namespace {

/// From one size of the search to the next.
constexpr double kScaleStep = 1.1;
/// How many hits must lie on each other to count.
constexpr int kNeighbours = 3;
/// The smallest face: so many pixels, and such a part of the shorter side.
constexpr int kSmallestFace = 24;
constexpr int kSmallestPart = 20;
/// The upper part of a face, in percent, that eyes are looked for in.
constexpr int kEyesPercent = 60;

using Rects = std::vector<cv::Rect>;

/// Keeps OpenCV to the caller's thread for a scope. The host may use OpenCV too, and have its own mind about threads.
struct OneThread {
    const int before = cv::getNumThreads();
    OneThread() { cv::setNumThreads(0); }
    OneThread(const OneThread &) = delete;
    OneThread &operator=(const OneThread &) = delete;
    ~OneThread() { cv::setNumThreads(before); }
};

/// The cascade of a file. One that is missing or broken is told in one line and stays empty.
cv::CascadeClassifier ReadCascade(const std::string &path) {
    cv::CascadeClassifier cascade;
    std::FILE *file = std::fopen(path.c_str(), "rb");
    if (file != nullptr) {
        std::fclose(file);
        try {
            cascade.load(path);
        } catch (const std::exception &) {
            cascade = {};
        }
    }
    if (cascade.empty()) std::fprintf(stderr, "cv_x64: %s: missing, or not a cascade\n", path.c_str());
    return cascade;
}

/// The equalised grey picture; empty where there was no memory for its rows.
cv::Mat GreyOf(const lmf::ReadView &picture) {
    lmf::RgbRows rows(picture);
    if (!rows) return {};
    cv::Mat grey(picture.height, picture.width, CV_8UC1);
    for (int32_t y = 0; y < picture.height; y++) {
        const cv::Mat bgr(1, picture.width, CV_8UC3, const_cast<uint8_t *>(rows.MemoryRow(y)));
        cv::Mat row = grey.row(picture.height - 1 - y);
        cv::cvtColor(bgr, row, cv::COLOR_BGR2GRAY);
    }
    cv::equalizeHist(grey, grey);
    return grey;
}

/// What the cascade finds, from the largest down.
Rects Search(cv::CascadeClassifier &cascade, const cv::Mat &grey, int smallest) {
    Rects found;
    cascade.detectMultiScale(grey, found, kScaleStep, kNeighbours, 0, cv::Size(smallest, smallest));
    std::sort(found.begin(), found.end(), [](const cv::Rect &a, const cv::Rect &b) {
        return std::tuple(b.area(), a.y, a.x) < std::tuple(a.area(), b.y, b.x);
    });
    return found;
}

/// The eyes in the upper parts of the faces, face by face.
Rects SearchEyes(cv::CascadeClassifier &cascade, const cv::Mat &grey, const Rects &faces) {
    Rects eyes;
    for (const cv::Rect &face : faces) {
        const cv::Rect upper(face.x, face.y, face.width, face.height * kEyesPercent / 100);
        for (const cv::Rect &eye : Search(cascade, grey(upper), 0)) eyes.push_back(eye + upper.tl());
    }
    return eyes;
}

/// @return the block, which the caller owns, or null
LmfHandle MakeList(const Rects &faces, const Rects &eyes) {
    LmfHandle list = LmfBlockAlloc(sizeof(FaceList) + (faces.size() + eyes.size()) * sizeof(FaceRecord));
    auto *bytes = static_cast<uint8_t *>(LmfBlockLock(list));
    if (bytes == nullptr) return nullptr;
    const FaceList head = {static_cast<int32_t>(faces.size()), static_cast<int32_t>(eyes.size()), {}};
    std::memcpy(bytes, &head, sizeof head);
    bytes += sizeof head;
    for (const Rects *found : {&faces, &eyes}) {
        for (const cv::Rect &rect : *found) {
            const FaceRecord record = {rect.x, rect.y, rect.x + rect.width, rect.y + rect.height, {}};
            std::memcpy(bytes, &record, sizeof record);
            bytes += sizeof record;
        }
    }
    LmfBlockUnlock(list);
    return list;
}

} // namespace

LmfHandle CV_FindFace(void *, LmfHandle picture, const char *faceCascade, const char *eyeCascade,
                      int32_t findEyes) try {
    const lmf::DibReadLock source(picture);
    if (!source) return nullptr;
    const OneThread oneThread;
    cv::CascadeClassifier faceFinder = ReadCascade(faceCascade);
    cv::CascadeClassifier eyeFinder = findEyes != 0 ? ReadCascade(eyeCascade) : cv::CascadeClassifier();
    if (faceFinder.empty() || (findEyes != 0 && eyeFinder.empty())) return nullptr;
    const int shorter = std::min(source.view.width, source.view.height);
    if (shorter < kSmallestFace) return MakeList({}, {});

    const cv::Mat grey = GreyOf(source.view);
    if (grey.empty()) return nullptr;
    const Rects faces = Search(faceFinder, grey, std::max(kSmallestFace, shorter / kSmallestPart));
    return MakeList(faces, findEyes != 0 ? SearchEyes(eyeFinder, grey, faces) : Rects());
} catch (...) {
    return nullptr;
}
