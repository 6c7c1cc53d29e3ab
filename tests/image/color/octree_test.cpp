#include <memory>

#include "image/color/octree.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// The slow, obvious tree: every pass walks all of it.
struct SlowNode {
    double pixels = 0, sums[3] = {}, error = 0;
    SlowNode *parent = nullptr;
    std::unique_ptr<SlowNode> child[8];
};

struct SlowTree {
    SlowNode root;
    uint32_t colors = 0;
    double threshold = 0, next = 0;

    void Count(Color color, int32_t run, int32_t depth) {
        double middle[3] = {127.5, 127.5, 127.5}, bisect = 128;
        SlowNode *node = &root;
        for (int32_t level = 1; level <= depth; level++) {
            bisect /= 2;
            double distance = 0;
            int32_t id = 0;
            for (int32_t c : {1, 0, 2}) {
                const int32_t channel = color >> (8 * c) & 255, bit = channel >> (8 - level) & 1;
                id |= bit << (2 - c);
                middle[c] += bit ? bisect : -bisect;
                distance += (channel - middle[c]) * (channel - middle[c]);
            }
            if (!node->child[id]) {
                node->child[id] = std::make_unique<SlowNode>();
                node->child[id]->parent = node;
                colors += level == depth;
            }
            node = node->child[id].get();
            node->error += run * distance;
            root.error += node->error;
        }
        node->pixels += run;
        for (int32_t c = 0; c < 3; c++) node->sums[c] += static_cast<double>(color >> (8 * c) & 255) * run;
    }
    static void Merge(SlowNode *node) {
        for (auto &child : node->child) {
            if (child) Merge(child.get());
            child.reset();
        }
        node->parent->pixels += node->pixels;
        for (int32_t c = 0; c < 3; c++) node->parent->sums[c] += node->sums[c];
    }
    bool Pass(SlowNode *node) {
        for (auto &child : node->child) {
            if (child && Pass(child.get())) child.reset();
        }
        if (node != &root && node->error <= threshold) {
            Merge(node);
            return true;
        }
        colors += node->pixels > 0;
        next = std::min(next, node->error);
        return false;
    }
    void Reduce(uint32_t wanted) {
        while (colors > wanted) {
            threshold = next;
            next = root.error - 1;
            colors = 0;
            Pass(&root);
        }
    }
    void Assign(const SlowNode &node, Palette768 *palette, uint32_t *count) const {
        for (const auto &child : node.child) {
            if (child) Assign(*child, palette, count);
        }
        if (node.pixels == 0) return;
        uint8_t *rgb = palette->rgb + (*count)++ * 3;
        for (int32_t c = 0; c < 3; c++) rgb[c] = static_cast<uint8_t>((node.sums[c] + node.pixels * 0.5) / node.pixels);
    }
};

void ExpectSlowPalette(const ReadView &picture, uint32_t wanted) {
    const int32_t depth = wanted < 16 ? 2 : wanted < 64 ? 3 : wanted < 256 ? 4 : 5;
    SlowTree tree;
    for (int32_t y = picture.height - 1; y >= 0; y--) {
        for (int32_t x = 0, run = 1; x < picture.width; x += run) {
            const Color color = DibGetPixel(picture, x, y);
            for (run = 1; DibGetPixel(picture, x + run, y) == color;) run++;
            tree.Count(color, run, depth);
        }
    }
    tree.Reduce(wanted);
    Palette768 expected{}, palette;
    uint32_t expectedCount = 0, count = wanted;
    tree.Assign(tree.root, &expected, &expectedCount);
    ASSERT_TRUE(OctreePalette(picture, &palette, &count));
    EXPECT_TRUE(count == expectedCount && std::ranges::equal(palette.rgb, expected.rgb)) << wanted;
}

/// A picture of one row with `colors` different colours, then `more` pixels of the first again.
LockedDib RowOfColors(uint32_t colors, uint32_t more) {
    Pixels pixels;
    for (uint32_t i = 0; i < colors; i++) pixels.push_back(i * 70 + 5);
    pixels.insert(pixels.end(), more, 5);
    return MakePicture(static_cast<int32_t>(colors + more), 1, 24, pixels);
}

} // namespace

TEST(OctreePalette, AgreesWithTheSlowTree) {
    for (uint32_t wanted : {1u, 3u, 16u, 64u, 256u})
        ExpectSlowPalette(RandomPicture(61, 47, kModeTrueColor, 1), wanted);
    // Colours around the middles of the upper cells, so that nodes go before their descendants do, and few enough for
    // equal errors. Every number of colours, since passes end between any two.
    for (uint32_t levels : {8u, 24u}) {
        uint32_t state = levels;
        Pixels pixels(1500);
        for (uint32_t &pixel : pixels) {
            for (int32_t c = 0; c < 3; c++) pixel = pixel << 8 | (128 - levels / 2 + TestRandom(&state) / 64 % levels);
            if (TestRandom(&state) / 64 % 4 == 0) pixel ^= 0x404040;
        }
        const LockedDib picture = MakePicture(50, 30, 24, pixels);
        for (uint32_t wanted = 1; wanted <= 256; wanted++) ExpectSlowPalette(picture, wanted);
    }
}

TEST(OctreePalette, CountsWhatAPassVisited) {
    // The far corners of eight cells of the second level, each with an error of 2976.75.
    Pixels corners;
    for (uint32_t i = 0; i < 8; i++)
        corners.push_back(PackColor(128 + (i & 1) * 127, 128 + (i >> 1 & 1) * 127, 128 + (i >> 2) * 127));
    // Two colours around the middle of a cell of the first level, which goes before the cells below it: they count once
    // more, and their error of 2610.75 is the next threshold, for a pass that merges nothing.
    Pixels around = corners, equal = corners;
    around.insert(around.end(), {0x424242, 0x3D3D3D});
    // Twice two colours whose cells of both levels have an error of 1537.5: these go in one pass, the lower ones first.
    equal.insert(equal.end(),
                 {PackColor(47, 47, 48), PackColor(47, 48, 48), PackColor(175, 47, 48), PackColor(175, 48, 48)});
    for (const Pixels &pixels : {around, equal})
        ExpectSlowPalette(MakePicture(static_cast<int32_t>(pixels.size()), 1, 24, pixels), 9);
}

TEST(OctreePalette, FewColorsAreKeptInTheOrderOfAppearance) {
    for (uint32_t colors : {1u, 2u, 200u, 255u, 256u}) {
        Palette768 palette;
        uint32_t count = 256;
        ASSERT_TRUE(OctreePalette(RowOfColors(colors, colors == 256 ? 0 : 9), &palette, &count));
        EXPECT_EQ(count, colors);
        // The 256th colour has no place in the list: its entry stays black.
        for (uint32_t i = 0; i < 256; i++) ASSERT_EQ(palette.At(i), i < std::min(colors, 255u) ? i * 70 + 5 : 0) << i;
    }
    Palette768 palette;
    uint32_t count = 256;
    ASSERT_TRUE(OctreePalette(RowOfColors(256, 1), &palette, &count));
    EXPECT_NE(palette.At(0), 5u) << "256 colours and a pixel more go through the tree";
    EXPECT_FALSE(OctreePalette(RandomPicture(2, 2, kModeGrey, 1), &palette, &count));
}

} // namespace lmf::testing
