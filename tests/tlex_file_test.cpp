/*
 * Text lexicon files through the C API, on real files in a temporary
 * folder: what is read, what is written back byte for byte, how clients
 * of one file stay in step, and how a failed rewrite is taken back.
 */
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "lexicon/tlex_file.h"
#include "orto.h"
#include "platform/file.h"
#include "support/test_support.h"

namespace {

using Lines = std::vector<std::string>;

struct Lex {
    int16_t sid = ORTO_OpenSession();
    TempDir dir;
    ~Lex() { ORTO_CloseSession(sid); }
    int16_t open(const std::string &name, const std::string &bytes) const
    {
        writeFile(dir.file(name), bytes);
        return ORTO_OpenLex(sid, dir.file(name).c_str(), 0);
    }
    /* Files in the folder: a left-over temporary file shows up here. */
    size_t files() const
    {
        size_t n = 0;
        for (const auto &e : std::filesystem::directory_iterator(dir.path))
            n += e.is_regular_file() ? 1 : 0;
        return n;
    }
};

/* ORTO_GetLex as "word\t<action><other>" strings. */
Lines listing(int16_t sid, int16_t lex)
{
    uint32_t size = 0;
    EXPECT_EQ(ORTO_GetLexInfo(sid, lex, &size, nullptr, nullptr), 0);
    std::vector<char> buf(size);
    int32_t n = ORTO_GetLex(sid, lex, buf.data(), size);
    Lines out;
    for (const char *p = buf.data(); n > 0 && *p; p += out.back().size() + 1)
        out.emplace_back(p);
    return out;
}

uint16_t languageOf(int16_t sid, int16_t lex)
{
    uint16_t lang = 0xFFFF;
    EXPECT_EQ(ORTO_GetLexInfo(sid, lex, nullptr, nullptr, &lang), 0);
    return lang;
}

} // namespace

TEST(TLexFile, FilesReadAndRewriteByteForByte)
{
    /* Each file is opened, "new" is added, and the rewrite must be exactly
     * `out`.  A file with a sentinel line must then read back into the
     * table that wrote it. */
    const std::string other70(70, 'o'), word63(63, 'w'), other63(63, 'x'), w200(200, 'q');
    struct Case {
        std::string in;
        uint16_t language;
        std::string out;
        bool readsBack = true; /* twins swap at each read */
    } cases[] = {
        {"#LID 25202\r\nword\r\n", 0x6272, "#LID 25202\r\nnew\ti\r\nword\ti\r\n"},
        {"#LID 24941\r\nteh\tAthe\r\nAda\ti\r\n", 0x616D, "#LID 24941\r\nAda\ti\r\nnew\ti\r\nteh\tAthe\r\n"},
        {"#LID 1033\r\n", 0x616D, "#LID 24941\r\nnew\ti\r\n"},
        {"#LID 1036\r\nchat\r\n", 0x6672, "#LID 26226\r\nchat\ti\r\nnew\ti\r\n"},
        {"#LID\r\n", 0, "#LID 0\r\nnew\ti\r\n"},
        {"# my words\r\nb\tcB\r\n", 0, "#LID 0\r\nb\tcB\r\nnew\ti\r\n"},
        {"#LID 40000\r\n", 40000, "#LID -25536\r\nnew\ti\r\n"},
        /* plain word lists: the words alone go back, sorted */
        {"", 0x616D, "new\r\n"},
        {"zeta\r\nalpha\r\nbeta\tcfoo\r\n#hidden\r\n", 0x616D, "alpha\r\nbeta\r\nnew\r\nzeta\r\n"},
        /* comments and empty lines go; a lone LF is part of a word; an
         * empty word; a TAB with no action; a last line without CR LF */
        {"#LID 0\r\n# c\r\n\r\nzed\r\na\nb\r\n\tc\r\nnil\t\r\nlast\tCend", 0,
         "#LID 0\r\n\tc\r\na\nb\ti\r\nlast\tCend\r\nnew\ti\r\nnil\t\r\nzed\ti\r\n"},
        {"#LID 0\r\nlong\ta" + other70 + "\r\n", 0, "#LID 0\r\nlong\ta" + other70.substr(0, 63) + "\r\nnew\ti\r\n"},
        /* a word twice: the later one first */
        {"#LID 0\r\ndup\tcone\r\ndup\tctwo\r\n", 0, "#LID 0\r\ndup\tctwo\r\ndup\tcone\r\nnew\ti\r\n", false},
        /* the longest line written comes back whole; a longer one from
         * elsewhere comes in pieces of 130 and is written cut to 128 */
        {"#LID 0\r\n" + word63 + "\ta" + other63 + "\r\n", 0, "#LID 0\r\nnew\ti\r\n" + word63 + "\ta" + other63 + "\r\n"},
        {w200 + "\r\n", 0x616D, "new\r\n" + w200.substr(0, 70) + "\r\n" + w200.substr(0, 128) + "\r\n"},
    };
    for (const auto &c : cases) {
        Lex t;
        int16_t lex = t.open("x.tlx", c.in);
        ASSERT_GE(lex, 0) << c.in;
        EXPECT_EQ(languageOf(t.sid, lex), c.language) << c.in;
        ASSERT_EQ(ORTO_AddToLex(t.sid, lex, "new", 'i', nullptr), 0);
        EXPECT_EQ(readFile(t.dir.file("x.tlx")), c.out) << c.in;
        EXPECT_EQ(t.files(), 2u) << "temporary file left over";
        if (c.out[0] == '#' && c.readsBack) {
            EXPECT_EQ(listing(t.sid, t.open("copy.tlx", c.out)), listing(t.sid, lex)) << c.in;
        }
    }
}

TEST(TLexFile, SentinelNumbers)
{
    struct Case {
        const char *line;
        uint16_t language;
    } cases[] = {
        {"#LID 2070", 0x706F}, {"#LID 1053", 0x7377}, {"#", 0},       {"#LID -5", 65531},
        {"#LID 12x", 12},      {"#LID x12", 0},       {"#LID -", 0},  {"#LID 1234567890", 52501},
        {"  #LID\t 1040 ", 0x6974}, {"#X 7 8", 7},
    };
    for (const auto &c : cases) {
        uint16_t lang = 0xABCD;
        TLex_ParseSentinel(c.line, &lang);
        EXPECT_EQ(lang, c.language) << c.line;
    }
}

TEST(TLexFile, PlainListKeepsActionsInMemoryOnly)
{
    Lex t;
    int16_t lex = t.open("w.txt", "beta\tcfoo\r\n");
    char other[64] = "";
    EXPECT_EQ(ORTO_FindLexWord(t.sid, lex, "beta", other, sizeof other), 'c');
    EXPECT_STREQ(other, "foo");
    ASSERT_EQ(ORTO_AddToLex(t.sid, lex, "gamma", 'a', "delta"), 0);
    EXPECT_EQ(readFile(t.dir.file("w.txt")), "beta\r\ngamma\r\n");
    ASSERT_EQ(ORTO_ClearLex(t.sid, lex), 0);
    EXPECT_EQ(readFile(t.dir.file("w.txt")), "");
}

TEST(TLexFile, CreateOpenAndClear)
{
    Lex t;
    DebugCapture log;
    std::string name = t.dir.file("new.tlx");
    int16_t lex = ORTO_CreateLex(t.sid, name.c_str(), 0x7878);
    ASSERT_EQ(lex, 0);
    EXPECT_EQ(readFile(name), "#LID 30840\r\n");
    ASSERT_EQ(ORTO_AddToLex(t.sid, lex, "one", 'i', nullptr), 0);
    EXPECT_EQ(ORTO_CreateLex(t.sid, name.c_str(), 0x616D), ORTO_FileExists);
    EXPECT_TRUE(log.has("lexicons " + name + " exists"));
    EXPECT_EQ(readFile(name), "#LID 30840\r\none\ti\r\n");
    EXPECT_EQ(ORTO_CreateLex(t.sid, t.dir.file("nowhere/x.tlx").c_str(), 0x616D), ORTO_OpenError);
    EXPECT_FALSE(fileExists(t.dir.file("nowhere")));
    std::string tooLong = t.dir.file(std::string(600, 'n'));
    EXPECT_EQ(ORTO_CreateLex(t.sid, tooLong.c_str(), 0x616D), ORTO_OpenError);
    EXPECT_EQ(ORTO_OpenLex(t.sid, tooLong.c_str(), 0), ORTO_FileOpenError);
    EXPECT_EQ(ORTO_OpenLex(t.sid, t.dir.file("missing").c_str(), 0), ORTO_FileOpenError);
    EXPECT_EQ(ORTO_OpenLex(t.sid, nullptr, 0), ORTO_FileOpenError);
    EXPECT_EQ(ORTO_OpenLex(-1, name.c_str(), 0), ORTO_BadSessionId);
    EXPECT_TRUE(log.has("ORTO_OpenLex: bad session id -1"));

    /* the failures took no slot; 31 more fill the session */
    for (int16_t i = 1; i < 32; i++)
        ASSERT_EQ(ORTO_OpenLex(t.sid, name.c_str(), 0), i);
    EXPECT_TRUE(log.has("ORTO_OpenLex: " + name + " opened; id=31"));
    EXPECT_EQ(ORTO_OpenLex(t.sid, name.c_str(), 0), ORTO_TooManyLexicons);
    EXPECT_TRUE(log.has("ORTO_OpenLex: too many lexicons"));

    ASSERT_EQ(ORTO_ClearLex(t.sid, lex), 0);
    EXPECT_EQ(readFile(name), "#LID 30840\r\n");
    EXPECT_EQ(listing(t.sid, lex), Lines{});
}

TEST(TLexFile, WordsThatCantLiveInAFileAreRefused)
{
    Lex t;
    DebugCapture log;
    int16_t lex = ORTO_CreateLex(t.sid, t.dir.file("w.tlx").c_str(), 0x616D);
    const char *bad[][2] = {{"#tag", nullptr}, {"a\tb", nullptr}, {"a\rb", nullptr},
                            {"a\nb", nullptr}, {"ok", "x\ry"},    {"ok", "x\ty"}};
    for (const auto &c : bad) {
        log.clear();
        EXPECT_EQ(ORTO_AddToLex(t.sid, lex, c[0], 'a', c[1]), ORTO_InvalidWord) << c[0];
        EXPECT_TRUE(log.has("ORTO_AddToLex: invalid word"));
    }
    EXPECT_EQ(readFile(t.dir.file("w.tlx")), "#LID 24941\r\n");
    /* what is cut off the other word doesn't count; memory takes anything */
    EXPECT_EQ(ORTO_AddToLex(t.sid, lex, "c#", 'a', (std::string(63, 'o') + "\tcut").c_str()), 0);
    int16_t temp = ORTO_CreateLex(t.sid, nullptr, 0x7878);
    EXPECT_EQ(ORTO_AddToLex(t.sid, temp, "#tag", 'a', "x\ty"), 0);
}

TEST(TLexFile, TwoClientsOfOneFileStayInStep)
{
    Lex t;
    std::string name = t.dir.file("shared.tlx");
    int16_t other = ORTO_OpenSession();
    int16_t a = t.open("shared.tlx", "#LID 24941\r\nbase\ti\r\n");
    int16_t b = ORTO_OpenLex(other, name.c_str(), 0);
    /* each change is made to the latest file, even within one second */
    for (int round = 0; round < 3; round++) {
        std::string wa = "a" + std::to_string(round), wb = "b" + std::to_string(round);
        ASSERT_EQ(ORTO_AddToLex(t.sid, a, wa.c_str(), 'i', nullptr), 0);
        EXPECT_EQ(ORTO_FindLexWord(other, b, wa.c_str(), nullptr, 0), ORTO_NotFound);
        ASSERT_EQ(ORTO_AddToLex(other, b, wb.c_str(), 'i', nullptr), 0);
        EXPECT_EQ(ORTO_FindLexWord(other, b, wa.c_str(), nullptr, 0), 'i');
    }
    ASSERT_EQ(ORTO_DelFromLex(t.sid, a, "b1"), 0);
    EXPECT_EQ(ORTO_DelFromLex(other, b, "b1"), ORTO_NotFound);
    const std::string five = "#LID 24941\r\na0\ti\r\na1\ti\r\na2\ti\r\nb0\ti\r\nb2\ti\r\nbase\ti\r\n";
    EXPECT_EQ(readFile(name), five);

    /* a file deleted behind a client's back is written anew from its table */
    ASSERT_EQ(fileDelete(name.c_str()), 0);
    ASSERT_EQ(ORTO_AddToLex(other, b, "c", 'e', nullptr), 0);
    EXPECT_EQ(readFile(name), five + "c\te\r\n");
    /* clearing doesn't reload first: what B added is gone too */
    ASSERT_EQ(ORTO_ClearLex(t.sid, a), 0);
    ASSERT_EQ(ORTO_AddToLex(other, b, "after", 'i', nullptr), 0);
    EXPECT_EQ(readFile(name), "#LID 24941\r\nafter\ti\r\n");
    ORTO_CloseSession(other);
}

TEST(TLexFile, ARewriteIsAlwaysNewerThanTheFileItReplaces)
{
    /* The file's time stands ahead, as a clock that stepped back or a
     * coarse file system clock leaves it: each rewrite must still look
     * newer, or the other client never reloads it. */
    Lex t;
    std::string name = t.dir.file("clock.tlx");
    int16_t other = ORTO_OpenSession();
    int16_t a = t.open("clock.tlx", "#LID 24941\r\n");
    int16_t b = ORTO_OpenLex(other, name.c_str(), 0);
    int64_t ahead = fileNowNs() + 100LL * 1000000000;
    struct timespec ts = {(time_t)(ahead / 1000000000), (long)(ahead % 1000000000)}, both[2] = {ts, ts};
    ASSERT_EQ(utimensat(AT_FDCWD, name.c_str(), both, 0), 0);
    ASSERT_EQ(ORTO_AddToLex(other, b, "first", 'i', nullptr), 0);
    EXPECT_EQ(fileModTimeNs(name.c_str()), ahead + 1);
    ASSERT_EQ(ORTO_AddToLex(t.sid, a, "second", 'i', nullptr), 0);
    ASSERT_EQ(ORTO_AddToLex(other, b, "third", 'i', nullptr), 0);
    EXPECT_EQ(readFile(name), "#LID 24941\r\nfirst\ti\r\nsecond\ti\r\nthird\ti\r\n");
    ORTO_CloseSession(other);
}

TEST(TLexFile, AFailedChangeLeavesTheOldFileAndSetsTheTableBack)
{
    Lex t;
    DebugCapture log;
    std::string name = t.dir.file("f.tlx");
    const std::string original = "#LID 24941\r\nkeep\tcKept\r\nold\ti\r\nzero\t\r\n";
    int16_t lex = t.open("f.tlx", original);
    chmod(name.c_str(), 0640);

    /* add: the new word leaves memory again; the entry it was to replace
     * stays out of memory, though the file still holds it */
    for (int kind : {FaultWrite, FaultSync, FaultRename, FaultCreate}) {
        fileInjectFault(kind, 1);
        int16_t rc = ORTO_AddToLex(t.sid, lex, "keep", 'i', nullptr);
        EXPECT_EQ(rc, kind == FaultCreate ? ORTO_OpenError : ORTO_WriteError) << kind;
        EXPECT_EQ(readFile(name), original);
        EXPECT_EQ(listing(t.sid, lex), (Lines{"old\ti", "zero\t"}));
    }
    EXPECT_EQ(t.files(), 2u) << "temporary file left over";
    bool writeErr = false, openErr = false;
    for (const auto &l : log.lines()) {
        writeErr |= l.rfind(t.dir.path + "/X", 0) == 0 && l.find(": file write err") != std::string::npos;
        openErr |= l.rfind("error opening " + t.dir.path + "/X", 0) == 0;
    }
    EXPECT_TRUE(writeErr && openErr);

    /* a good rewrite keeps the file's mode */
    ASSERT_EQ(ORTO_AddToLex(t.sid, lex, "keep", 'c', "Kept"), 0);
    struct stat st;
    ASSERT_EQ(stat(name.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);

    /* delete: the word comes back with its action and other word */
    for (const char *word : {"keep", "zero"}) {
        fileInjectFault(FaultWrite, 1);
        EXPECT_EQ(ORTO_DelFromLex(t.sid, lex, word), ORTO_WriteError);
    }
    char other[64] = "?";
    EXPECT_EQ(ORTO_FindLexWord(t.sid, lex, "zero", other, sizeof other), 0);
    EXPECT_STREQ(other, "");
    /* a lock not had in time: nothing happens at all */
    fileInjectFault(FaultLock, 1);
    EXPECT_EQ(ORTO_AddToLex(t.sid, lex, "late", 'i', nullptr), ORTO_WriteError);
    EXPECT_TRUE(log.has("TLex_Add: can't lock " + name));
    fileInjectFault(FaultLock, 1);
    EXPECT_EQ(ORTO_DelFromLex(t.sid, lex, "old"), ORTO_WriteError);
    EXPECT_TRUE(log.has("can't lock " + name));
    EXPECT_EQ(listing(t.sid, lex), (Lines{"keep\tcKept", "old\ti", "zero\t"}));
    EXPECT_EQ(readFile(name), original);

    /* a reload that can't read the newer file makes no change (a folder
     * stands in the file's place: as root nothing is unreadable) */
    int16_t late = t.open("f.tlx", original);
    ASSERT_EQ(ORTO_AddToLex(t.sid, late, "x", 'i', nullptr), 0);
    ASSERT_EQ(fileDelete(name.c_str()), 0);
    ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
    EXPECT_EQ(ORTO_AddToLex(t.sid, lex, "y", 'i', nullptr), ORTO_FileOpenError);
    EXPECT_TRUE(log.has("syncLexFile: file open error; file=" + name));
    EXPECT_EQ(listing(t.sid, lex), (Lines{"keep\tcKept", "old\ti", "zero\t"}));
    rmdir(name.c_str());

    /* clear: the file stays, the table stays empty */
    writeFile(name, original);
    fileInjectFault(FaultWrite, 1);
    EXPECT_EQ(ORTO_ClearLex(t.sid, lex), ORTO_WriteError);
    EXPECT_EQ(readFile(name), original);
    EXPECT_EQ(listing(t.sid, lex), Lines{});
}
