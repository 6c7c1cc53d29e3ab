#include "image/color/octree.h"

#include <cstring>

namespace lmf {

namespace {

constexpr int32_t kMostColors = 256;
constexpr int32_t kDeepest = 5;

struct OctreeNode {
    double pixels; ///< counted at this node
    double totalRed, totalGreen, totalBlue;
    double quantizeError; ///< sum of the squared distances of all pixels of the cell from its mid-point
    uint8_t id;           ///< which child of the parent
    uint8_t level;        ///< 0 at the root
    uint8_t census;       ///< bit mask of the children present
    OctreeNode *parent;   ///< the root is its own
    OctreeNode *child[8];
    int32_t mergedInPass; ///< when the node was merged into its parent, 0 for a living one
};

constexpr int32_t kNodesOfBlock = 1536;

struct NodeBlock {
    OctreeNode nodes[kNodesOfBlock];
    BlockHandle handle;  ///< of this block, which stays locked
    NodeBlock *previous; ///< the block made before
};

/// The working record of one call. Its nodes come by the block, and none is freed before all are.
struct OctreeCube {
    OctreeNode *root = nullptr;
    uint32_t depth = 0;
    uint32_t colors = 0; ///< nodes with pixels of their own
    uint32_t nodes = 0;
    double pruningThreshold = 0;
    double nextThreshold = 0;
    NodeBlock *newest = nullptr;
    int32_t unused = 0; ///< nodes left in the newest block

    OctreeCube() = default;
    OctreeCube(const OctreeCube &) = delete;
    OctreeCube &operator=(const OctreeCube &) = delete;
    ~OctreeCube() {
        while (newest != nullptr) {
            const BlockHandle handle = newest->handle;
            newest = newest->previous;
            BlockUnlock(handle);
            BlockFree(handle);
        }
    }
};

/// A new node under `parent`; null when memory is short.
OctreeNode *MakeNode(OctreeCube *cube, uint32_t id, uint32_t level, OctreeNode *parent) {
    if (cube->unused == 0) {
        BlockOwner fresh(BlockAlloc(sizeof(NodeBlock)));
        auto *block = static_cast<NodeBlock *>(BlockLock(fresh.handle));
        if (block == nullptr) return nullptr;
        block->handle = fresh.Release();
        block->previous = cube->newest;
        cube->newest = block;
        cube->unused = kNodesOfBlock;
    }
    OctreeNode *node = &cube->newest->nodes[--cube->unused];
    cube->nodes++;
    node->id = static_cast<uint8_t>(id);
    node->level = static_cast<uint8_t>(level);
    node->parent = parent != nullptr ? parent : node;
    if (parent != nullptr) {
        parent->child[id] = node;
        parent->census = static_cast<uint8_t>(parent->census | 1u << id);
    }
    return node;
}

/// Levels of the tree for a number of colours: one more than its logarithm to the base 4.
constexpr uint32_t DepthFor(uint32_t wanted) {
    uint32_t depth = 0;
    for (; wanted != 0; wanted /= 4) depth++;
    return std::clamp(depth, 2u, 8u);
}
// With at most 8^5 cells the tree needs no limit on its nodes.
static_assert(DepthFor(kMostColors) == kDeepest);

/// Squared distance of a channel from the mid-point of its interval, at [level][channel].
struct SquareTable {
    double at[kDeepest + 1][256];

    SquareTable() {
        for (uint32_t level = 1; level <= kDeepest; level++) {
            const uint32_t width = 256u >> level;
            for (uint32_t value = 0; value < 256; value++) {
                const double offset = (value & (width - 1)) - (width - 1) * 0.5;
                at[level][value] = offset * offset;
            }
        }
        std::fill(at[0], at[0] + 256, 0.0);
    }
};

/// Counts `run` equal pixels. `rootError` stands for the root's quantizeError. False when memory is short.
bool Classify(OctreeCube *cube, const SquareTable &squares, const uint8_t *bgr, int32_t run, double *rootError) {
    const uint32_t red = bgr[2], green = bgr[1], blue = bgr[0];
    OctreeNode *node = cube->root;
    double sum = *rootError;
    for (uint32_t level = 1; level <= cube->depth; level++) {
        const uint32_t shift = 8 - level;
        const uint32_t id = (red >> shift & 1) << 2 | (green >> shift & 1) << 1 | (blue >> shift & 1);
        OctreeNode *child = node->child[id];
        if (child == nullptr) {
            child = MakeNode(cube, id, level, node);
            if (child == nullptr) return false;
            if (level == cube->depth) cube->colors++;
        }
        node = child;
        // Quarters of whole numbers: this sum is exact in any order.
        const double *square = squares.at[level];
        node->quantizeError += run * (square[green] + square[red] + square[blue]);
        sum += node->quantizeError;
    }
    *rootError = sum;
    node->pixels += run;
    node->totalRed += static_cast<double>(red) * run;
    node->totalGreen += static_cast<double>(green) * run;
    node->totalBlue += static_cast<double>(blue) * run;
    return true;
}

bool SamePixel(const uint8_t *a, const uint8_t *b) {
    return a[0] == b[0] && a[1] == b[1] && a[2] == b[2];
}

bool ClassifyPicture(OctreeCube *cube, const ReadView &view) {
    const SquareTable squares;
    double rootError = 0;
    for (int32_t y = 0; y < view.height; y++) {
        const uint8_t *pixel = view.MemoryRow(y);
        const uint8_t *end = pixel + static_cast<ptrdiff_t>(view.width) * 3;
        while (pixel < end) {
            const uint8_t *first = pixel;
            do pixel += 3;
            while (pixel < end && SamePixel(pixel, first));
            if (!Classify(cube, squares, first, static_cast<int32_t>((pixel - first) / 3), &rootError)) return false;
        }
    }
    cube->root->quantizeError = rootError;
    return true;
}

/// Adds a node's pixels, with those of all its descendants, to its parent.
/// @return how many of the descendants had pixels of their own before.
uint32_t MergeIntoParent(OctreeCube *cube, OctreeNode *node, int32_t pass) {
    uint32_t colored = 0;
    for (uint32_t id = 0; id < 8; id++) {
        if ((node->census >> id & 1) == 0) continue;
        colored += node->child[id]->pixels > 0;
        colored += MergeIntoParent(cube, node->child[id], pass);
    }
    OctreeNode *parent = node->parent;
    parent->pixels += node->pixels;
    parent->totalRed += node->totalRed;
    parent->totalGreen += node->totalGreen;
    parent->totalBlue += node->totalBlue;
    parent->census = static_cast<uint8_t>(parent->census & ~(1u << node->id));
    node->mergedInPass = pass;
    cube->nodes--;
    return colored;
}

void CollectBelow(const OctreeNode *node, OctreeNode **list, uint32_t *length) {
    for (uint32_t id = 0; id < 8; id++) {
        if ((node->census >> id & 1) == 0) continue;
        list[(*length)++] = node->child[id];
        CollectBelow(node->child[id], list, length);
    }
}

/// Merges nodes in passes over the tree, children before parents, until few enough have pixels of their own. A pass
/// merges the nodes whose error does not exceed the smallest that the pass before had seen among the others.
///
/// Walking the whole tree for each of thousands of passes is slow. Errors never change, so the nodes are sorted by
/// them once, and a pass touches only those that it merges. It gives the counts of a walk: a node that goes with an
/// ancestor has been visited before the ancestor, and so still counts in that pass, as does its error.
/// @return false when memory is short.
bool Reduce(OctreeCube *cube, uint32_t wanted) {
    if (cube->colors <= wanted) return true;
    BlockArray<OctreeNode *> byError(cube->nodes);
    if (!byError) return false;
    uint32_t length = 0;
    CollectBelow(cube->root, byError.data, &length);
    std::sort(byError.data, byError.data + length, [](const OctreeNode *a, const OctreeNode *b) {
        return a->quantizeError != b->quantizeError ? a->quantizeError < b->quantizeError : a->level > b->level;
    });

    uint32_t next = 0;
    uint32_t living = cube->colors;
    for (int32_t pass = 1; cube->colors > wanted; pass++) {
        cube->pruningThreshold = cube->nextThreshold;
        uint32_t leaving = 0;
        for (; next < length && byError[next]->quantizeError <= cube->pruningThreshold; next++) {
            OctreeNode *node = byError[next];
            if (node->mergedInPass != 0) continue;
            living -= node->pixels > 0;
            living += node->parent->pixels == 0;
            leaving += MergeIntoParent(cube, node, pass);
        }
        cube->colors = living;
        living -= leaving;
        while (next < length && byError[next]->mergedInPass != 0 && byError[next]->mergedInPass != pass) next++;
        cube->nextThreshold = cube->root->quantizeError - 1;
        if (next < length) cube->nextThreshold = std::min(cube->nextThreshold, byError[next]->quantizeError);
    }
    return true;
}

uint8_t MeanChannel(double total, double count) {
    return static_cast<uint8_t>((total + count * 0.5) / count);
}

/// Numbers the nodes that have pixels, children before parents, and writes their mean colours.
void AssignColors(OctreeNode *node, Palette768 *palette, uint32_t *count) {
    for (uint32_t id = 0; id < 8; id++) {
        if ((node->census >> id & 1) != 0) AssignColors(node->child[id], palette, count);
    }
    if (node->pixels == 0 || *count == kMostColors) return;
    uint8_t *rgb = palette->rgb + static_cast<ptrdiff_t>(*count) * 3;
    rgb[0] = MeanChannel(node->totalRed, node->pixels);
    rgb[1] = MeanChannel(node->totalGreen, node->pixels);
    rgb[2] = MeanChannel(node->totalBlue, node->pixels);
    (*count)++;
}

/// Places of the hash table of colours, four times as many as it holds.
constexpr uint32_t kPlaceBits = 10, kPlaces = 1u << kPlaceBits;
/// 2^32 over the golden ratio (D. Knuth, "The Art of Computer Programming", volume 3, 1973).
constexpr uint32_t kHashFactor = 2654435761u;

/// Lists the colours of a picture as they appear from the top, 255 of them at most.
/// @return their number; the 256th is counted though it is not listed, and after it every pixel counts, so that a
/// picture which goes on has more than 256.
uint64_t ListColors(const ReadView &view, Palette768 *palette) {
    // Open addressing; a place holds the colour plus 1.
    uint32_t places[kPlaces] = {};
    uint32_t found = 0;
    uint32_t previous = 0;
    for (int32_t y = 0; y < view.height; y++) {
        const uint8_t *row = view.Row(y);
        for (int32_t x = 0; x < view.width; x++) {
            const uint8_t *bgr = row + static_cast<ptrdiff_t>(x) * 3;
            const uint32_t key = PackColor(bgr[2], bgr[1], bgr[0]) + 1;
            if (key == previous) continue;
            previous = key;
            uint32_t place = key * kHashFactor >> (32 - kPlaceBits);
            while (places[place] != 0 && places[place] != key) place = (place + 1) % kPlaces;
            if (places[place] == key) continue;
            if (found == kMostColors - 1) {
                const int64_t pixels = static_cast<int64_t>(view.width) * view.height;
                return static_cast<uint64_t>(kMostColors + pixels - 1 - (static_cast<int64_t>(y) * view.width + x));
            }
            places[place] = key;
            palette->rgb[found * 3] = bgr[2];
            palette->rgb[found * 3 + 1] = bgr[1];
            palette->rgb[found * 3 + 2] = bgr[0];
            found++;
        }
    }
    return found;
}

} // namespace

bool OctreePalette(const ReadView &picture, Palette768 *palette, uint32_t *count) {
    if (picture.bits != 24) return false;
    const uint32_t wanted = *count == 0 ? kMostColors : std::min<uint32_t>(*count, kMostColors);
    std::memset(palette->rgb, 0, sizeof palette->rgb);
    const uint64_t found = ListColors(picture, palette);
    if (found <= wanted) {
        *count = static_cast<uint32_t>(found);
        return true;
    }

    OctreeCube cube;
    cube.depth = DepthFor(wanted);
    cube.root = MakeNode(&cube, 0, 0, nullptr);
    if (cube.root == nullptr || !ClassifyPicture(&cube, picture) || !Reduce(&cube, wanted)) return false;
    std::memset(palette->rgb, 0, sizeof palette->rgb);
    *count = 0;
    AssignColors(cube.root, palette, count);
    return true;
}

} // namespace lmf
