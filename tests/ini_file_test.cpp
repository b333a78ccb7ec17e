// The INI reader and writer under the settings store: names, values and
// the bytes around them, damaged and unreadable files, and two processes
// writing one file at once.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/ini_fuzz_one.h"
#include "platform/file.h"
#include "platform/ini_file.h"
#include "support/test_support.h"

namespace {

const char *const Default = "(default)";

std::string readKey(const std::string &file, const char *section, const char *key, uint32_t size = 256)
{
    std::vector<char> buffer(size, '#'); // exactly `size`: a write past it is caught
    uint32_t n = GetPrivateProfileStringA(section, key, Default, buffer.data(), size, file.c_str());
    EXPECT_LT(n, size);
    EXPECT_EQ(buffer[n], 0);
    return std::string(buffer.data(), n);
}

} // namespace

TEST(IniFile, ReadsNamesCaseBlindAndValuesAsTheyStand)
{
    struct Case {
        std::string text;
        const char *section, *key, *expected;
    } cases[] = {
        {"[ORTO]\r\nMainLexPath=/a b \r\n", "orto", "MAINLEXPATH", "/a b "},
        {"  [ orto user ]  \n\tKey = v\n", "ORTO User", "key", " v"},
        {"[ORTO]\nkey=a=b\n", "ORTO", "key", "a=b"},
        {"[ORTO]\nkey=\n", "ORTO", "key", ""},
        {"[ORTO]\nkey=last line", "ORTO", "key", "last line"},
        {"[ORTO]\r\nkey=v\r\r\n", "ORTO", "key", "v\r"},   // only the CR of CR LF goes
        {"key=x\n[ORTO]\n", "ORTO", "key", Default},       // before any section
        {"[ORTO]\n;key=c\n", "ORTO", "key", Default},
        {"[ORTO User]\nkey=u\n[ORTO]\nkey=m\n", "ORTO", "key", "m"},
        {"[ORTO]\nkey=1\nKEY=2\n[orto]\nkey=3\n", "ORTO", "key", "1"},
        {"[ORTO]\nother=1\n[orto]\nkey=3\n", "ORTO", "key", Default}, // the first section counts
        {"[ORTO\nkey=y\n", "ORTO", "key", "y"},              // a header without ']'
        {"", "ORTO", "key", Default},
    };
    TempDir dir;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        writeFile(dir.file("a.ini"), c.text);
        EXPECT_EQ(readKey(dir.file("a.ini"), c.section, c.key), c.expected);
    }
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO", "key", 4), "(de"); // cut to the buffer
    EXPECT_EQ(readKey(dir.file("missing.ini"), "ORTO", "key"), Default);
}

TEST(IniFile, DamagedLinesAreSkipped)
{
    TempDir dir;
    std::string text = "[ORTO]\n" + std::string(100000, 'x') + "\nno equals\n";
    text += std::string("\x01\xff\x00=\x00\n", 6) + "=\n[\n[]\n]=]\n" + std::string(70000, '[') + "\n";
    text += "[ORTO User]\n" + std::string(100000, 'k') + "=" + std::string(100000, 'v') + "\nkey=ok\n";
    writeFile(dir.file("a.ini"), text);
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO User", "key"), "ok");
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO User", std::string(100000, 'k').c_str(), 6), "vvvvv");
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO", "no equals"), Default);
}

TEST(IniFile, WriteChangesOnlyItsLine)
{
    const std::string base = "; comment\r\n[ORTO]\r\nA=1\r\n\r\n[ORTO User]\r\nB=2\r\n";
    struct Case {
        std::string before;
        const char *section, *key, *value;
        std::string after;
    } cases[] = {
        {base, "orto", "a", "9", "; comment\r\n[ORTO]\r\nA=9\r\n\r\n[ORTO User]\r\nB=2\r\n"},
        {base, "ORTO", "C", "3", "; comment\r\n[ORTO]\r\nA=1\r\nC=3\r\n\r\n[ORTO User]\r\nB=2\r\n"},
        {base, "New", "k", "v", base + "[New]\r\nk=v\r\n"},
        {base, "ORTO", "A", nullptr, "; comment\r\n[ORTO]\r\n\r\n[ORTO User]\r\nB=2\r\n"},
        {"[ORTO]\n  A = old \n", "ORTO", "A", "new", "[ORTO]\n  A =new\n"},
        {"[ORTO]\nA=1", "ORTO", "B", "2", "[ORTO]\nA=1\nB=2\n"},
        {"[X]", "ORTO", "B", "2", "[X]\n[ORTO]\nB=2\n"},
        {"", "ORTO", "A", "x\r\ny", "[ORTO]\nA=x\n"},          // a value ends at a line end
        {"[ORTO]\nA=1\n", "ORTO", "A", "1", "[ORTO]\nA=1\n"},
    };
    TempDir dir;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.before + " / " + c.key);
        writeFile(dir.file("a.ini"), c.before);
        EXPECT_EQ(WritePrivateProfileStringA(c.section, c.key, c.value, dir.file("a.ini").c_str()), 1);
        EXPECT_EQ(readFile(dir.file("a.ini")), c.after);
    }
    // names that could not be read back are refused, the file untouched
    for (auto names : {std::make_pair("ORTO", "a=b"), std::make_pair("x]", "a"), std::make_pair("ORTO", ""),
                       std::make_pair("ORTO", " a"), std::make_pair("ORTO", ";a")}) {
        EXPECT_EQ(WritePrivateProfileStringA(names.first, names.second, "v", dir.file("a.ini").c_str()), 0);
        EXPECT_EQ(readFile(dir.file("a.ini")), "[ORTO]\nA=1\n");
    }
}

TEST(IniFile, WriteMakesFoldersAndKeepsLinksAndFailuresLeaveTheFile)
{
    TempDir dir;
    std::string deep = dir.file("a/b/ORTO.INI");
    EXPECT_EQ(WritePrivateProfileStringA("ORTO", "k", "v", deep.c_str()), 1);
    EXPECT_EQ(readFile(deep), "[ORTO]\nk=v\n");
    struct stat st;
    ASSERT_EQ(stat(dir.file("a/b").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);

    // a linked file stays linked; the file it points to changes
    ASSERT_EQ(symlink(deep.c_str(), dir.file("link.ini").c_str()), 0);
    EXPECT_EQ(WritePrivateProfileStringA("ORTO", "k", "w", dir.file("link.ini").c_str()), 1);
    ASSERT_EQ(lstat(dir.file("link.ini").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    EXPECT_EQ(readFile(deep), "[ORTO]\nk=w\n");

    // a failed rename, sync or lock: the file as it was, no temporary left
    for (int fault : {FaultRename, FaultSync, FaultLock, FaultCreate}) {
        fileInjectFault(fault, 1);
        EXPECT_EQ(WritePrivateProfileStringA("ORTO", "k", "x", deep.c_str()), 0) << fault;
        fileInjectFault(fault, 0);
        EXPECT_EQ(readFile(deep), "[ORTO]\nk=w\n");
    }
    int files = 0;
    for (const auto &e : std::filesystem::directory_iterator(dir.file("a/b")))
        files += e.path().filename() != "ORTO.INI" && e.path().filename() != "ORTO.INI.lock";
    EXPECT_EQ(files, 0);

    // what can't be read is empty to a reader, and a writer leaves it alone
    mkdir(dir.file("folder.ini").c_str(), 0700);
    EXPECT_EQ(readKey(dir.file("folder.ini"), "ORTO", "k"), Default);
    EXPECT_EQ(WritePrivateProfileStringA("ORTO", "k", "v", dir.file("folder.ini").c_str()), 0);
    std::string huge = "[ORTO]\nk=v\n" + std::string(9 << 20, ';');
    writeFile(dir.file("huge.ini"), huge);
    EXPECT_EQ(readKey(dir.file("huge.ini"), "ORTO", "k"), Default);
    EXPECT_EQ(WritePrivateProfileStringA("ORTO", "k", "w", dir.file("huge.ini").c_str()), 0);
    EXPECT_EQ(readFile(dir.file("huge.ini")).size(), huge.size());
}

TEST(IniFile, TwoProcessesWritingAtOnceLoseNoKey)
{
    TempDir dir;
    std::string name = dir.file("ORTO.INI");
    writeFile(name, "; shared\n[ORTO]\nkeep=1\n");
    const int Keys = 40;
    pid_t children[2];
    for (int c = 0; c < 2; c++) {
        children[c] = fork();
        ASSERT_GE(children[c], 0);
        if (children[c] == 0) {
            int failed = 0;
            for (int k = 0; k < Keys; k++) {
                std::string key = "p" + std::to_string(c) + "k" + std::to_string(k);
                failed += WritePrivateProfileStringA(c ? "ORTO User" : "ORTO", key.c_str(), "v", name.c_str()) != 1;
            }
            _exit(failed);
        }
    }
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_EQ(readKey(name, "ORTO", "keep"), "1");
    for (int c = 0; c < 2; c++)
        for (int k = 0; k < Keys; k++) {
            std::string key = "p" + std::to_string(c) + "k" + std::to_string(k);
            EXPECT_EQ(readKey(name, c ? "ORTO User" : "ORTO", key.c_str()), "v") << key;
        }
}

// The fuzz target's corpus, replayed without libFuzzer.
TEST(IniFile, FuzzCorpusRunsClean)
{
    int files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(std::string(ORTO_SOURCE_DIR) + "/fuzz/corpus/ini")) {
        SCOPED_TRACE(entry.path().string());
        std::string bytes = readFile(entry.path().string());
        inifuzz::runOne((const uint8_t *)bytes.data(), bytes.size());
        files++;
    }
    EXPECT_GE(files, 9);
}
