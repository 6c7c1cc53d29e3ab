#include <gtest/gtest.h>

#include <memory>

#include "image/octree.h"
#include "support/pictures.h"

namespace lmf::testing {

/// The slow, obvious tree: every pass walks all of it.
struct SlowNode {
    double pixels = 0, red = 0, green = 0, blue = 0, error = 0;
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
            int32_t id = 0;
            double distance = 0;
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
        node->red += static_cast<double>(RedOf(color)) * run;
        node->green += static_cast<double>(GreenOf(color)) * run;
        node->blue += static_cast<double>(BlueOf(color)) * run;
    }
    static void Merge(SlowNode *node) {
        for (auto &child : node->child) {
            if (!child) continue;
            Merge(child.get());
            child.reset();
        }
        node->parent->pixels += node->pixels;
        node->parent->red += node->red;
        node->parent->green += node->green;
        node->parent->blue += node->blue;
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
        rgb[0] = static_cast<uint8_t>((node.red + node.pixels * 0.5) / node.pixels);
        rgb[1] = static_cast<uint8_t>((node.green + node.pixels * 0.5) / node.pixels);
        rgb[2] = static_cast<uint8_t>((node.blue + node.pixels * 0.5) / node.pixels);
    }
};

static void ExpectSlowPalette(DibHandle picture, uint32_t wanted, int32_t depth) {
    SlowTree tree;
    DibLock lock(picture);
    for (int32_t y = lock.view.height - 1; y >= 0; y--) {
        for (int32_t x = 0, run = 1; x < lock.view.width; x += run) {
            const Color color = DibGetPixel(lock.image, x, y);
            for (run = 1; x + run < lock.view.width && DibGetPixel(lock.image, x + run, y) == color;) run++;
            tree.Count(color, run, depth);
        }
    }
    tree.Reduce(wanted);
    Palette768 expected{}, palette;
    uint32_t expectedCount = 0, count = wanted;
    tree.Assign(tree.root, &expected, &expectedCount);
    ASSERT_TRUE(OctreePalette(picture, &palette, &count));
    EXPECT_EQ(count, expectedCount) << wanted;
    EXPECT_TRUE(std::equal(std::begin(palette.rgb), std::end(palette.rgb), expected.rgb)) << wanted;
}

TEST(OctreePalette, AgreesWithTheSlowTree) {
    struct Wanted {
        uint32_t colors;
        int32_t depth;
    };
    for (const Wanted &wanted : {Wanted{256, 5}, Wanted{64, 4}, Wanted{16, 3}, Wanted{3, 2}, Wanted{1, 2}}) {
        for (uint32_t seed : {1u, 2u}) {
            ExpectSlowPalette(RandomPicture(61, 47, kModeTrueColor, seed).handle, wanted.colors, wanted.depth);
            // Colours close to the middles of the upper cells, so that nodes go before their descendants do, and
            // levels so few that many errors are equal.
            for (uint32_t levels : {4u, 24u}) {
                uint32_t state = seed;
                std::vector<uint32_t> pixels(3000);
                for (uint32_t &pixel : pixels) {
                    pixel = 0;
                    for (int32_t c = 0; c < 3; c++) pixel = pixel << 8 | (120 + TestRandom(&state) / 64 % levels);
                    if (TestRandom(&state) / 64 % 4 == 0) pixel ^= 0x404040;
                }
                DibOwner picture = MakePicture(60, 50, 24, pixels);
                Palette768 palette;
                uint32_t count = wanted.colors;
                ASSERT_TRUE(OctreePalette(picture.handle, &palette, &count));
                if (levels * levels * levels > 256)
                    ExpectSlowPalette(picture.handle, wanted.colors, wanted.depth);
                else if (count < 128)
                    ExpectSlowPalette(picture.handle, std::min(wanted.colors, 64u), wanted.depth);
            }
        }
    }
}

/// A picture of one row with `colors` different colours, then `more` pixels of the first again.
static DibOwner RowOfColors(uint32_t colors, uint32_t more) {
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < colors; i++) pixels.push_back(i * 70 + 5);
    pixels.insert(pixels.end(), more, 5);
    return MakePicture(static_cast<int32_t>(colors + more), 1, 24, pixels);
}

TEST(OctreePalette, FewColorsAreKeptInTheOrderOfAppearance) {
    for (uint32_t colors : {1u, 2u, 200u, 255u, 256u}) {
        Palette768 palette;
        uint32_t count = 256;
        ASSERT_TRUE(OctreePalette(RowOfColors(colors, colors == 256 ? 0 : 9).handle, &palette, &count));
        EXPECT_EQ(count, colors);
        // The 256th colour has no place in the list: its entry stays black.
        for (uint32_t i = 0; i < 256; i++) ASSERT_EQ(palette.At(i), i < std::min(colors, 255u) ? i * 70 + 5 : 0) << i;
    }
    Palette768 palette;
    uint32_t count = 256;
    ASSERT_TRUE(OctreePalette(RowOfColors(256, 1).handle, &palette, &count));
    EXPECT_NE(palette.At(0), 5u) << "256 colours and a pixel more go through the tree";
    EXPECT_FALSE(OctreePalette(RandomPicture(2, 2, kModeGrey, 1).handle, &palette, &count));
    EXPECT_FALSE(OctreePalette(nullptr, &palette, &count));
}

} // namespace lmf::testing
