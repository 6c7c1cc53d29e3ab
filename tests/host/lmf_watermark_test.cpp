// Pictures that `lmf` reads for the library.
#include "host/lmf_program.h"

namespace lmf::testing {

struct LmfWatermark : LmfProgram {};

TEST_F(LmfWatermark, PrintsEveryPictureFile) {
    PngFile page, palette, alpha;
    page.type = PNG_COLOR_TYPE_RGB;
    page.samples.assign(48, 100);
    WritePng(In("page.png"), page);
    palette.type = PNG_COLOR_TYPE_PALETTE;
    palette.palette = {{1, 2, 3}, {200, 50, 255}};
    palette.samples.assign(16, 1);
    WritePng(In("palette.png"), palette);
    alpha.type = PNG_COLOR_TYPE_GRAY_ALPHA;
    for (int i = 0; i < 16; i++) alpha.samples.insert(alpha.samples.end(), {40, 51});
    WritePng(In("alpha.png"), alpha);
    WriteText(In("bad.png"), "no");
    const auto run = [&](const std::string &mark) {
        return Run({"apply", "Watermark", "page.png", "out.png", "--set", "FilterWatermarkImagePath=" + mark, "--set",
                    "FilterWatermarkImageUse=1"});
    };
    ExpectSilence(run("palette.png"));
    EXPECT_EQ(ReadRgba(In("out.png")).at(1), 50);
    ExpectSilence(run("alpha.png"));
    EXPECT_EQ(ReadRgba(In("out.png")).at(1), 100 * 204 / 255 + 40 * 51 / 255);
    Expect(0, run("bad.png"), "warning: bad.png: ");
}

} // namespace lmf::testing
