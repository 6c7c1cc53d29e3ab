// The built program and many files: where results go, what stays untouched, worker processes, interruptions and calls
// that fail.
#include <algorithm>
#include <csignal>
#include <filesystem>

#include "host/lmf_program.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define LMF_SANITIZED
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define LMF_SANITIZED
#endif

namespace lmf::testing {

namespace fs = std::filesystem;

namespace {

struct LmfBatch : LmfProgram {
    void SetUp() override {
        LmfProgram::SetUp();
        for (const char *name : {"in/sub", "in/.hidden", "other"}) fs::create_directories(In(name));
        for (const char *name : {"in/a.png", "in/b.PNG", "in/sub/a.png", "in/.hidden/c.png", "in/.d.png"})
            MakeGrey(name);
        WriteText(In("in/notes.txt"), "no picture");
        fs::create_directory_symlink("..", In("in/sub/up"));
    }

    // Gives the files that were not there at the start.
    Names Made() const {
        Names names = Files();
        std::erase_if(names, [](const std::string &name) { return name == "in/notes.txt" || name == "in/sub/up"; });
        for (const char *name : {"in/a.png", "in/b.PNG", "in/sub/a.png", "in/.hidden/c.png", "in/.d.png"})
            std::erase(names, name);
        return names;
    }

    uint8_t ValueOf(const std::string &name) { return ReadPng(In(name)).samples.at(0); }
};

} // namespace

TEST_F(LmfBatch, OutputsGoWhereTheyAreSaid) {
    const std::pair<Names, Names> cases[] = {
        {{"--out-dir", "o", "in/a.png", "in/b.PNG"}, {"o/a.png", "o/b.PNG"}},
        {{"--out-dir", "o", "--suffix", "-n", "--format", "bmp", "in/b.PNG"}, {"o/b-n.bmp"}},
        {{"--suffix", "_1.5", "in/a.png"}, {"in/a_1.5.png"}},
        {{"--out-dir", "o", "-r", "--keep-tree", "./in/"}, {"o/in/a.png", "o/in/b.PNG", "o/in/sub/a.png"}},
        {{"--out-dir", "o", "-r", "--on-conflict", "rename", "in"}, {"o/a-2.png", "o/a.png", "o/b.PNG"}},
        {{"--out-dir", "in/out", "-r", "--keep-tree", "in"},
         {"in/out/in/a.png", "in/out/in/b.PNG", "in/out/in/sub/a.png"}},
        {{"--out-dir", "in", "--on-conflict", "rename", "in/a.png"}, {"in/a-2.png"}},
        {{"in/a.png", "in/b.PNG", "--on-conflict", "rename"}, {"in/b-2.PNG"}},
        {{"--out-dir", "o", "--keep-tree", In("in/a.png")}, {std::string("o").append(In("in/a.png"))}},
    };
    for (const auto &[arguments, made] : cases) {
        const ProgramRun run = Invert(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(Made(), made) << arguments[1];
        for (const std::string &name : made) fs::remove(In(name));
    }
    // A second run does not take the results of the first for pictures.
    const Names again = {"--out-dir", "in/out", "-r", "--keep-tree", "in"};
    Invert(again);
    Expect(0, Invert(again), "3 of 3 pictures written");
}

TEST_F(LmfBatch, NoResultTakesThePlaceOfAnInputUnasked) {
    fs::create_directory(In("empty"));
    fs::create_hard_link(In("in/a.png"), In("other/a.png"));
    fs::create_symlink("../in", In("other/way"));
    MakeGrey("in/a-n.png");
    const Names before = Files();
    const std::pair<Names, std::string> cases[] = {
        {{"--out-dir", "in", "in/a.png"}, "--in-place allows that"},
        {{"--out-dir", "other/way", "in/./a.png"}, "--in-place allows that"},
        {{"--out-dir", "other", "in/a.png"}, "--in-place allows that"}, // under a second name
        {{"--suffix", "-n", "in/a-n.png", "in/a.png"}, "take the place of another input, \"in/a-n.png\""},
        {{"--suffix", "-n", "--in-place", "in/a-n.png", "in/a.png"}, "of another input"},
        {{"--out-dir", "o", "-r", "in"}, "--keep-tree or --on-conflict rename tells them apart"},
        {{"--out-dir", "o", "--keep-tree", "../x.png"}, "--keep-tree has no place"},
        {{"-r", "in"}, "say where the results go"},
        {{"--out-dir", "o", "-r", "empty"}, "there are no pictures"},
        {{"--suffix", "/x", "in/a.png"}, "has no /"},
        {{"--keep-tree", "--suffix", "x", "in/a.png"}, "--keep-tree needs --out-dir"},
        {{"--on-conflict", "ask", "in/a.png", "o.png"}, "takes fail, skip, rename or overwrite"},
        {{"--jobs", "0", "in/a.png", "o.png"}, "--jobs"},
    };
    for (const auto &[arguments, message] : cases) Expect(1, Invert(arguments), message);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(ValueOf("in/a.png"), 40);
    Expect(0, Invert({"--in-place", "in/a.png", "in/b.PNG"}), "2 of 2");
    Expect(0, Invert({"--in-place", "--out-dir", "in", "in/a.png", "in/b.PNG"}), "2 of 2");
    ExpectSilence(Invert({"in/b.PNG", "in/b.PNG"}));
    EXPECT_EQ(ValueOf("in/a.png"), 40);
    EXPECT_EQ(ValueOf("in/b.PNG"), 215);
}

TEST_F(LmfBatch, NamesThatAreTaken) {
    fs::create_directory(In("o"));
    MakeGrey("o/a.png", 7);
    const Names one = {"in/a.png", "o/a.png", "--on-conflict"};
    const Names many = {"in/a.png", "in/b.PNG", "--out-dir", "o", "--on-conflict"};
    const auto with = [](Names arguments, const std::string &word) {
        arguments.push_back(word);
        return arguments;
    };
    ExpectSilence(Invert(with(one, "skip")));
    Expect(4, Invert(with(one, "fail")), "in/a.png: o/a.png is there already");
    Expect(4, Invert(with(many, "fail")), "1 of 2 pictures written, 1 failed");
    Expect(0, Invert(with(many, "skip")), "0 of 2 pictures written, 2 skipped");
    EXPECT_EQ(ValueOf("o/a.png"), 7);
    Expect(0, Invert(with(many, "overwrite")), "2 of 2 pictures written");
    EXPECT_EQ(ValueOf("o/a.png"), 215);
}

TEST_F(LmfBatch, NamesFromAFileOrStandardInput) {
    MakeGrey("in/new\nline.png");
    WriteText(In("lines"), "in/a.png\n\nin/sub/a.png");
    WriteText(In("nuls"), std::string("in/new\nline.png\0in/sub\0", 23));
    Expect(0, Invert({"--suffix", "-1", "--files-from", "lines", "in/b.PNG"}), "3 of 3");
    input = In("nuls");
    Expect(0, Invert({"--suffix", "-2", "--files-from", "-", "-0r"}), "lmf: 3 of 3");
    EXPECT_TRUE(fs::exists(In("in/new\nline-2.png")));
    Expect(2, Invert({"--suffix", "-3", "--files-from", "missing"}), "missing: No such file");
    Expect(1, Invert({"--suffix", "-3", "--files-from", "/dev/null"}), "there are no pictures");
}

// However many processes share the work, the run says and writes the same, and one that dies costs its picture alone.
TEST_F(LmfBatch, WorkersChangeNothingAndDieAlone) {
    PngFile wide;
    wide.width = 5;
    wide.samples.assign(20, 9);
    Names arguments = {"apply", "Flip", "--json", "--out-dir", "o"};
    for (int i = 0; i < 12; ++i) {
        const std::string name = std::to_string(i) + ".png";
        if (i == 4 || i == 9)
            WritePng(In(name), wide);
        else if (i == 6)
            WriteText(In(name), "no picture");
        else
            MakeGrey(name, uint8_t(i));
        arguments.push_back(name);
    }
    std::string errors, lines;
    for (const std::string jobs : {"1", "3", "20"}) {
        Names some = arguments;
        some.insert(some.end(), {"--jobs", jobs});
        const ProgramRun run = Run(some, {{"LMF_LIBRARY", LMF_FAKE_LIBRARY_FILE}, {"LMF_FAKE", "crash at 5"}});
        Expect(3, run, "4.png: the work on it crashed (Aborted)");
        EXPECT_TRUE(Has(run.errors, "9 of 12 pictures written, 3 failed")) << run.errors;
        std::string told; // without the times
        for (size_t at = 0, end = 0; (end = run.output.find('\n', at)) != std::string::npos; at = end + 1) {
            const std::string line = run.output.substr(at, end - at);
            told += line.substr(0, line.find(",\"bits\"")) + "\n";
        }
        if (errors.empty()) {
            errors = run.errors;
            lines = told;
        }
        EXPECT_EQ(run.errors, errors);
        EXPECT_EQ(told, lines);
    }
    EXPECT_EQ(ValueOf("o/11.png"), 11);
    EXPECT_LT(lines.find("10.png"), lines.find("11.png"));
}

TEST_F(LmfBatch, InterruptedRunsSayHowFarTheyCame) {
    PngFile wide;
    wide.width = 5;
    wide.samples.assign(20, 9);
    WritePng(In("wide.png"), wide);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM, SIGUSR1, SIGXCPU}) {
        const std::map<std::string, std::string> wish = {{"LMF_LIBRARY", LMF_FAKE_LIBRARY_FILE},
                                                         {"LMF_FAKE", "signal at 5:" + std::to_string(signal)}};
        Expect(128 + signal, Run({"apply", "Flip", "-j1", "--out-dir", "o", "in/a.png", "wide.png", "in/b.PNG"}, wish),
               "lmf: interrupted: 1 of 3 pictures written; --on-conflict skip goes on with the rest\n");
    }
    EXPECT_EQ(Made(), (Names{"o/a.png", "seen.ini", "wide.png"}));
}

// One call of a run fails, or a signal comes after it: then the result is right, or the old one stays and a message
// tells. Neither leaves anything else behind.
TEST_F(LmfBatch, CallsThatFailLoseNothing) {
#ifdef LMF_SANITIZED
    GTEST_SKIP() << "the sanitizer stands before the C library itself";
#endif
    Run({"apply", "Resize", "--set", "Width=32", kPhotograph, "p.png"});
    for (const std::string name : {"out.png", "out.jpg"}) {
        ExpectSilence(Run({"apply", "Flip", "p.png", name}));
        const std::string right = ReadText(In(name));
        const Names arguments = {"apply", "Flip", "p.png", name};
        const std::pair<std::string, long> kinds[] = {{"file", 100}, {"signal", 100}, {"memory", 60}};
        for (const auto &[kind, most] : kinds) {
            std::map<std::string, std::string> environment = {
                {"LD_PRELOAD", LMF_FAILING_CALLS_FILE}, {"FAIL_KIND", kind}, {"FAIL_COUNT", In("count")}};
            ExpectSilence(Run(arguments, environment));
            const long calls = std::stol(ReadText(In("count")));
            fs::remove(In("count"));
            environment.erase("FAIL_COUNT");
            ASSERT_GT(calls, 5) << kind;
            const Names before = Files();
            // The last calls are those of the picture, and all are tried; of those before them some are.
            for (long at = calls; at > 0; at -= calls - at < 40 ? 1 : std::max(1L, calls / most)) {
                WriteText(In(name), "old");
                environment["FAIL_AT"] = std::to_string(at);
                const ProgramRun run = Run(arguments, environment);
                const std::string what = name + ", " + kind + " call " + std::to_string(at) + ": " + run.errors;
                const std::string found = ReadText(In(name));
                if (run.exitCode == 0) {
                    EXPECT_TRUE(found == right) << what;
                } else if (kind == "signal") {
                    EXPECT_EQ(run.exitCode, 128 + SIGTERM) << what;
                    EXPECT_TRUE(found == right || found == "old") << what;
                } else {
                    EXPECT_TRUE(run.exitCode <= 4) << run.exitCode << what;
                    EXPECT_TRUE(Has(run.errors, "lmf: ")) << what;
                    const bool late = Has(run.errors, "lmf: standard output"); // its end is looked at last of all
                    EXPECT_TRUE(found == "old" || late) << what;
                }
                EXPECT_EQ(Files(), before) << what;
            }
        }
    }
}

} // namespace lmf::testing
