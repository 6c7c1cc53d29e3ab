// `lmf sample` through the built program.
#include "host/lmf_program.h"

namespace lmf::testing {

namespace {

struct LmfSample : LmfProgram {};

} // namespace

TEST_F(LmfSample, DrawsTheSamePictureIntoEveryFormat) {
    ExpectSilence(Run({"sample", "a.png"}));
    const Bytes drawn = ReadRgba(In("a.png"));
    ASSERT_EQ(drawn.size(), 1280u * 853 * 4);
    ExpectSilence(Run({"sample", "b.bmp"}));
    ExpectSilence(Run({"apply", "Flip", "--then", "Flip", "b.bmp", "b.png"}));
    EXPECT_EQ(ReadRgba(In("b.png")), drawn);
    const ProgramRun piped = Run({"sample", "-"});
    EXPECT_EQ(piped.output, ReadText(In("a.png")));
}

TEST_F(LmfSample, LeavesWhatIsThere) {
    WriteText(In("photo.png"), "mine");
    Expect(4, Run({"sample", "photo.png"}), "photo.png: this file is there already");
    EXPECT_EQ(ReadText(In("photo.png")), "mine");
    Expect(4, Run({"sample", "none/photo.png"}), "none/photo.png: ");
    Expect(1, Run({"sample"}), "the name of the picture to write");
    EXPECT_EQ(Files(), Names{"photo.png"});
}

} // namespace lmf::testing
