#include "darkroom/paper.h"

#include "support/pictures.h"

namespace lmf::testing {

TEST(DarkroomPaper, LiesUnder32BitsOnly) {
    const LockedDib clear = MakePicture(2, 1, 32, {0x00123456, 0xFF123456});
    DarkroomPaperColor = 0x0000FF;
    EXPECT_EQ(PixelsOf(LockedDib(DibFlattenOnPaper(clear))), (Pixels{0x0000FF, 0x123456}));
    DarkroomPaperColor = 0xFFFFFF;
    EXPECT_EQ(DibFlattenOnPaper(MakePicture(1, 1, 24, {0})), nullptr);
}

} // namespace lmf::testing
