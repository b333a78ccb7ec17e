// The lexicon compressor through the C API: the bytes it writes, its line
// numbers and messages, its states, and files that read back.
#include <dirent.h>
#include <gtest/gtest.h>

#include <string.h>

#include <algorithm>

#include <string>
#include <vector>

#include "lexicon/clex.h"
#include "lexicon/lexicon.h"
#include "orto.h"
#include "platform/file.h"
#include "support/test_support.h"

namespace {

std::string lines(const std::vector<std::string> &words)
{
    std::string text;
    for (const std::string &w : words)
        text += w + "\r\n";
    return text;
}

std::vector<std::string> dirEntries(const std::string &path)
{
    std::vector<std::string> names;
    DIR *d = opendir(path.c_str());
    while (dirent *e = d ? readdir(d) : nullptr)
        if (std::string(e->d_name) != "." && std::string(e->d_name) != "..")
            names.push_back(e->d_name);
    if (d)
        closedir(d);
    std::sort(names.begin(), names.end());
    return names;
}

std::string hex(const std::string &bytes)
{
    std::string out;
    char b[4];
    for (unsigned char c : bytes) {
        snprintf(b, sizeof b, "%02X ", c);
        out += b;
    }
    return out;
}

struct Session {
    int16_t sid = ORTO_OpenSession();
    ~Session() { ORTO_CloseSession(sid); }
};

// One session, lists in a temp dir, the output read back as bytes.
struct Compressor {
    TempDir dir;
    Session session;
    std::string out = dir.file("out.clx");
    uint32_t line = 99;

    int16_t init(const char *suffixes = nullptr, int16_t language = ORTO_LangAmerican)
    {
        std::string path;
        if (suffixes) {
            path = dir.file("suffixes.txt");
            writeFile(path, suffixes);
        }
        return ORTO_CompressLexInit(session.sid, out.c_str(), suffixes ? path.c_str() : nullptr,
                                    language, &line);
    }
    int16_t list(const std::string &text, const std::string &name = "words.txt")
    {
        writeFile(dir.file(name), text);
        return ORTO_CompressLexFile(session.sid, dir.file(name).c_str(), &line);
    }
    int16_t end() { return ORTO_CompressLexEnd(session.sid); }
    std::string bytes() { return readFile(out); }
};

// What the reader makes of a file: the text of section 5, and the
// directory as "key:offset+length " records.
std::string textOf(const std::string &path)
{
    CLex clex = {};
    if (CLex_Open(path.c_str(), 0, &clex) < 0)
        return "<unreadable>";
    std::string text = readFile(path).substr(clex.textOffset, clex.textLength);
    CLex_Close(&clex);
    return text;
}

std::string directoryOf(const std::string &path)
{
    CLex clex = {};
    if (CLex_Open(path.c_str(), 0, &clex) < 0)
        return "<unreadable>";
    std::string out;
    for (u32 i = 0; i < clex.segmentCount; i++) {
        const CLexSegment *seg = clex.segments[i];
        out += std::string(seg->key, strnlen(seg->key, 3)) + ":" + std::to_string(seg->offset) +
               "+" + std::to_string(seg->length) + " ";
    }
    CLex_Close(&clex);
    return out;
}



} // namespace

TEST(LexSq, TheReferenceExampleComesOutByteForByteAndReadsBack)
{
    Compressor c;
    ASSERT_EQ(c.init("s\r\ning\r\n"), 0);
    EXPECT_EQ(c.line, 2u);
    ASSERT_EQ(c.list(lines({"a", "walk", "walked", "walking", "walks", "wall"})), 0);
    EXPECT_EQ(c.line, 6u);
    ASSERT_EQ(c.end(), 0);

    EXPECT_EQ(hex(c.bytes()), hex(exampleLexicon())); // which clex_read_test reads back
    EXPECT_EQ(dirEntries(c.dir.path), (std::vector<std::string>{"out.clx", "suffixes.txt", "words.txt"}));
}

TEST(LexSq, LineNumbersCountCommentsAndEmptyLinesAndPointAtTheBadWord)
{
    const std::string word63(63, 'x');
    const std::string word64(64, 'x');
    struct Case {
        std::string list;
        int16_t code;
        uint32_t line;
        std::string message; // %s is the list's name
    } cases[] = {
        {"# header\r\n\r\nabc\r\nabd\r\n", 0, 4, ""},
        {"# header\r\n\r\nabc\r\n#\r\nabd\r\nabd\r\n", ORTO_OutOfSequence, 6,
         "word at line 6 in %s out of sequence "},
        {"zoo\r\napple\r\n", ORTO_OutOfSequence, 2, "word at line 2 in %s out of sequence "},
        {"Zoo\r\napple\r\n", 0, 2, ""},
        {"\xE9t\xE9\r\nzoo\r\n", ORTO_OutOfSequence, 2, "word at line 2 in %s out of sequence "},
        {"abc\r\n" + word63 + "\r\n", 0, 2, ""},
        {"abc\r\n\r\n" + word64 + "\r\n", ORTO_InvalidWord, 3, "word at line 3 in %s too long"},
        {"abc\r\nab\x85x\r\n", ORTO_InvalidWord, 2, "invalid word at line 2 in %s"},
        {"abc\r\nabc\tx\r\n", ORTO_InvalidWord, 2, "invalid word at line 2 in %s"},
        {"abc\ndef\n", ORTO_InvalidWord, 1, "invalid word at line 1 in %s"}, // LF is no line end
        {"ice cream\r\nice-cold\r\nice\xE9s\r\n3rd\r\n", ORTO_OutOfSequence, 4,
         "word at line 4 in %s out of sequence "},
        {"", 0, 0, ""},
    };
    for (const Case &k : cases) {
        DebugCapture log;
        Compressor c;
        ASSERT_EQ(c.init(), 0);
        EXPECT_EQ(c.line, 99u) << "no suffix file: the line number is left alone";
        EXPECT_EQ(c.list(k.list), k.code) << k.list;
        EXPECT_EQ(c.line, k.line) << k.list;
        if (!k.message.empty()) {
            std::string m = k.message;
            m.replace(m.find("%s"), 2, c.dir.file("words.txt"));
            EXPECT_TRUE(log.has(m)) << m;
        }
    }
}

TEST(LexSq, WordRecordsFrontCodingAndSuffixChoice)
{
    // suffixes: 30 simple ones (the 29th empty, the 30th cut to 8), then
    // extended ones; "ing" is in both tables, "s" only extended.
    std::string table = "# simple\r\ning\r\ned\r\n";
    for (int i = 2; i < 28; i++)
        table += "q" + std::to_string(i) + "\r\n";
    table += "\r\nabcdefghij\r\n# extended\r\ns\r\ning\r\nings\r\n";
    struct Case {
        std::vector<std::string> words;
        std::string text; // hex of the segment text of the last key
    } cases[] = {
        {{"walking"}, "00 6B 02 "},                        // longest suffix that ends the word
        {{"walking", "walkings"}, "00 6B 02 04 01 00 "},  // shared part never looked at
        {{"walkings"}, "00 6B 01 02 "},                    // "ings" extended beats a later "s"
        {{"walks"}, "00 6B 01 00 "},                       // extended 0 is 01 00
        {{"xxxabcdefgh"}, "00 1F "},                       // the cut suffix matches its 8
        {{"xxxabcdefghij"}, "00 61 62 63 64 65 66 67 68 69 6A 00 "},
        {{"ice", "ice cream"}, "00 00 00 20 63 72 65 61 6D 00 "}, // space as a literal
        {{"aaa", "aaab", "aaabed"}, "00 00 00 62 00 01 03 "},
    };
    for (const Case &k : cases) {
        Compressor c;
        ASSERT_EQ(c.init(table.c_str()), 0);
        EXPECT_EQ(c.line, 31u); // up to the end of the simple table, comment included
        ASSERT_EQ(c.list(lines(k.words)), 0);
        ASSERT_EQ(c.end(), 0);
        EXPECT_EQ(hex(textOf(c.out)), k.text) << k.words.back();
        CLex clex = {};
        ASSERT_EQ(CLex_Open(c.out.c_str(), 0, &clex), 0);
        for (const std::string &w : k.words)
            EXPECT_EQ(CLex_Find(w.c_str(), 1, &clex), 'i') << w;
        CLex_Close(&clex);
    }
}

TEST(LexSq, SectionsWithoutSuffixesOrWords)
{
    Compressor c;
    ASSERT_EQ(c.init(nullptr, (int16_t)0x8000), 0);
    ASSERT_EQ(c.list("# nothing but comments\r\n\r\n"), 0);
    ASSERT_EQ(c.end(), 0);
    // magic; language 0x8000 sign-extended; character size; empty tables;
    // empty text; a directory of no segment
    std::string expected("\x57\x00\x05\x01" "\0\0\0\1\0\0\0\4\xFF\xFF\x80\0" "\0\0\0\2\0\0\0\4\0\0\0\1"
                         "\0\0\0\3\0\0\0\x08\0\0\0\0\0\0\0\0" "\0\0\0\5\0\0\0\0" "\0\0\0\4\0\0\0\4\0\0\0\0",
                         64);
    EXPECT_EQ(hex(c.bytes()), hex(expected));

    Compressor none; // no list at all
    ASSERT_EQ(none.init(), 0);
    ASSERT_EQ(none.end(), 0);
    EXPECT_EQ(none.bytes().size(), expected.size());
    CLex clex = {};
    ASSERT_EQ(CLex_Open(none.out.c_str(), 0, &clex), 0);
    EXPECT_EQ(clex.segmentCount, 0u);
    EXPECT_EQ(CLex_Find("abc", 1, &clex), ORTO_NotFound);
    CLex_Close(&clex);
}

TEST(LexSq, SeveralListsShareOneDirectory)
{
    const std::string first = lines({"apple", "apples", "bat"});
    const std::string second = lines({"able", "cat", "cats"}); // may begin below the first's end

    Compressor ab;
    ASSERT_EQ(ab.init(), 0);
    ASSERT_EQ(ab.list(first, "1.txt"), 0);
    ASSERT_EQ(ab.list(second, "2.txt"), 0);
    ASSERT_EQ(ab.end(), 0);
    Compressor ba;
    ASSERT_EQ(ba.init(), 0);
    ASSERT_EQ(ba.list(second, "2.txt"), 0);
    ASSERT_EQ(ba.list(first, "1.txt"), 0);
    ASSERT_EQ(ba.end(), 0);
    // same keys in the same order, the text where each list put it
    EXPECT_EQ(directoryOf(ab.out), "abl:9+3 app:0+7 bat:7+2 cat:12+5 ");
    EXPECT_EQ(directoryOf(ba.out), "abl:0+3 app:8+7 bat:15+2 cat:3+5 ");

    CLex clex = {};
    ASSERT_EQ(CLex_Open(ba.out.c_str(), 0, &clex), 0);
    for (const char *w : {"apple", "apples", "bat", "able", "cat", "cats"})
        EXPECT_EQ(CLex_Find(w, 1, &clex), 'i') << w;
    EXPECT_EQ(CLex_Find("catss", 1, &clex), ORTO_NotFound);
    CLex_Close(&clex);

    DebugCapture log;
    Compressor dup;
    ASSERT_EQ(dup.init(), 0);
    ASSERT_EQ(dup.list(lines({"apple", "bat"}), "1.txt"), 0);
    EXPECT_EQ(dup.list(lines({"applied", "zoo"}), "2.txt"), ORTO_OutOfSequence);
    EXPECT_EQ(dup.line, 2u); // the segment ends at the next key
    EXPECT_TRUE(log.has("addSegment: duplicate segment"));
    // End keeps what was finished before
    ASSERT_EQ(dup.end(), 0);
    EXPECT_EQ(directoryOf(dup.out), "app:0+4 bat:4+2 ");
}

TEST(LexSq, MoreThan65535KeysAreRefused)
{
    std::string list;
    int n = 0;
    for (int a = 'A'; a <= 'z' && n <= 65535; a++)
        for (int b = 'A'; b <= 'z' && n <= 65535; b++)
            for (int c = 'A'; c <= 'z' && n <= 65535; c++, n++)
                list += std::string{(char)a, (char)b, (char)c} + "\r\n";
    ASSERT_EQ(n, 65536);
    DebugCapture log;
    Compressor c;
    ASSERT_EQ(c.init(), 0);
    EXPECT_EQ(c.list(list.substr(0, list.size() - 5)), 0); // 65,535 keys fit
    ASSERT_EQ(c.end(), 0);
    Compressor over;
    ASSERT_EQ(over.init(), 0);
    EXPECT_EQ(over.list(list), ORTO_OutOfMemory);
    EXPECT_EQ(over.line, 65536u);
    EXPECT_TRUE(log.has("addSegment: too many segments"));
}

TEST(LexSq, CallsOutOfOrderAndMissingFiles)
{
    DebugCapture log;
    Compressor c;
    uint32_t line = 0;
    EXPECT_EQ(ORTO_CompressLexEnd(c.session.sid), 0);
    EXPECT_EQ(c.list("abc\r\n"), ORTO_Unsupported);
    EXPECT_TRUE(log.has("ORTO_CompressLexFile: call ORTO_CompressLexInit first"));

    // a second start while writing is refused and spoils nothing
    ASSERT_EQ(c.init(), 0);
    EXPECT_EQ(c.init(), ORTO_Unsupported);
    EXPECT_TRUE(log.has("ORTO_CompressLexInit: compression already running"));
    ASSERT_EQ(c.list("abc\r\n"), 0);
    ASSERT_EQ(c.end(), 0);
    EXPECT_EQ(directoryOf(c.out), "abc:0+2 ");

    // missing files
    EXPECT_EQ(c.init(), 0);
    EXPECT_EQ(ORTO_CompressLexFile(c.session.sid, c.dir.file("none.txt").c_str(), &line),
              ORTO_OpenError);
    EXPECT_TRUE(log.has("can't open " + c.dir.file("none.txt")));
    EXPECT_EQ(ORTO_CompressLexFile(c.session.sid, nullptr, nullptr), ORTO_OpenError);
    ORTO_CompressLexAbort(c.session.sid);
    EXPECT_EQ(ORTO_CompressLexInit(c.session.sid, c.dir.file("no/such/dir.clx").c_str(), nullptr,
                                   0, &line),
              ORTO_OpenError);
    EXPECT_TRUE(log.has("can't open " + c.dir.file("no/such/dir.clx")));
    EXPECT_EQ(ORTO_CompressLexInit(c.session.sid, nullptr, nullptr, 0, nullptr), ORTO_OpenError);
    EXPECT_EQ(ORTO_CompressLexInit(c.session.sid, std::string(516, 'x').c_str(), nullptr, 0, nullptr),
              ORTO_OpenError);
}

TEST(LexSq, FailedOrAbortedCompressionLeavesTheOldFileAndNoTemporary)
{
    DebugCapture log;
    Compressor c;
    writeFile(c.out, "old lexicon");
    writeFile(c.dir.file("words.txt"), "abc\r\n");
    const std::vector<std::string> before = {"out.clx", "words.txt"};

    // a missing suffix file: nothing open, nothing written, File and End refuse
    EXPECT_EQ(ORTO_CompressLexInit(c.session.sid, c.out.c_str(), c.dir.file("nosuf").c_str(), 0,
                                   &c.line),
              ORTO_OpenError);
    EXPECT_TRUE(log.has("can't open " + c.dir.file("nosuf")));
    EXPECT_EQ(dirEntries(c.dir.path), before);
    EXPECT_EQ(ORTO_CompressLexFile(c.session.sid, c.dir.file("words.txt").c_str(), &c.line),
              ORTO_Unsupported);
    EXPECT_TRUE(log.has("LexSq_Init not called"));
    EXPECT_EQ(c.end(), ORTO_Unsupported);
    EXPECT_EQ(c.end(), 0); // the state is gone after End

    // abort mid-way, and a session closed mid-way
    ASSERT_EQ(c.init(), 0);
    EXPECT_EQ(dirEntries(c.dir.path).size(), 3u); // the temporary file
    ASSERT_EQ(c.list("abc\r\n"), 0);
    ORTO_CompressLexAbort(c.session.sid);
    EXPECT_EQ(dirEntries(c.dir.path), before);
    EXPECT_EQ(c.end(), 0);
    {
        Session other;
        ASSERT_EQ(ORTO_CompressLexInit(other.sid, c.out.c_str(), nullptr, 0, nullptr), 0);
    }
    EXPECT_EQ(dirEntries(c.dir.path), before);
    EXPECT_EQ(readFile(c.out), "old lexicon");

    // a fault at each kind of step: the old file stays, no temporary is left
    struct Fault {
        int kind, nth;
        int16_t init, list, end; // end: only when the list went in
        const char *message; // %s is the output
    } faults[] = {
        {FaultCreate, 1, ORTO_OpenError, ORTO_Unsupported, 0, "can't open %s"},
        {FaultWrite, 1, ORTO_WriteError, ORTO_Unsupported, 0, "can't write to %s"},
        {FaultWrite, 2, ORTO_WriteError, ORTO_Unsupported, 0, "error writing to %s"},
        {FaultWrite, 10, ORTO_WriteError, ORTO_Unsupported, 0, "error writing to %s"},
        {FaultWrite, 11, 0, ORTO_WriteError, 0, "error writing to %s"}, // the word
        {FaultWrite, 12, 0, 0, ORTO_WriteError, "error writing to %s"}, // section 5's length
        {FaultWrite, 16, 0, 0, ORTO_WriteError, "error writing to %s"}, // the records
        {FaultSync, 1, 0, 0, ORTO_WriteError, "error writing to %s"},
        {FaultRename, 1, 0, 0, ORTO_WriteError, "LexSq_End: can't rename %s"},
    };
    for (const Fault &f : faults) {
        log.clear();
        fileInjectFault(f.kind, f.nth);
        EXPECT_EQ(c.init(), f.init) << f.kind << "/" << f.nth;
        EXPECT_EQ(c.list("abc\r\n"), f.list) << f.kind << "/" << f.nth;
        if (f.list < 0)
            ORTO_CompressLexAbort(c.session.sid); // End would keep what was done
        else
            EXPECT_EQ(c.end(), f.end) << f.kind << "/" << f.nth;
        fileInjectFault(f.kind, 0);
        std::string m = f.message;
        m.replace(m.find("%s"), 2, c.out);
        bool found = false;
        for (const std::string &l : log.lines())
            found = found || l.rfind(m, 0) == 0;
        EXPECT_TRUE(found) << m;
        EXPECT_EQ(dirEntries(c.dir.path), before) << f.kind << "/" << f.nth;
        EXPECT_EQ(readFile(c.out), "old lexicon");
    }

    // and with no fault the new lexicon replaces the old
    ASSERT_EQ(c.init(), 0);
    ASSERT_EQ(c.list("abc\r\n"), 0);
    ASSERT_EQ(c.end(), 0);
    EXPECT_EQ(dirEntries(c.dir.path), before);
    EXPECT_EQ(directoryOf(c.out), "abc:0+2 ");
}
