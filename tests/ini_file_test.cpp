// The INI reader and writer under the settings store: names, values and
// the bytes around them, damaged and unreadable files, and two processes
// writing one file at once.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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
    EXPECT_TRUE(n < size && buffer[n] == 0);
    return std::string(buffer.data(), n);
}

int write(const std::string &file, const char *section, const char *key, const char *value)
{
    return WritePrivateProfileStringA(section, key, value, file.c_str());
}

} // namespace

TEST(IniFile, ReadsNamesCaseBlindAndValuesAsTheyStand)
{
    struct Case {
        std::string text;
        const char *section, *key, *expected;
    } cases[] = {
        {"[ORTO]\r\nMainLexPath=/a b \r\n", "orto", "MAINLEXPATH", "/a b "},
        {"  [ orto user ]  \n\tKey = a=b\n", "ORTO User", "key", " a=b"},
        {"[ORTO]\r\nkey=v\r\r\n[x]", "ORTO", "key", "v\r"}, // only the CR of CR LF goes
        {"[ORTO]\nkey=", "ORTO", "key", ""},
        {"key=x\n[ORTO]\n;key=c\n", "ORTO", "key", Default}, // before any section; a comment
        {"[ORTO]\nkey=1\nKEY=2\n[orto]\nkey=3\n[a]\nb=4", "ORTO", "key", "1"},
        {"[ORTO]\nother=1\n[orto]\nkey=3\n", "ORTO", "key", Default}, // the first section counts
    };
    TempDir dir;
    for (const Case &c : cases) {
        writeFile(dir.file("a.ini"), c.text);
        EXPECT_EQ(readKey(dir.file("a.ini"), c.section, c.key), c.expected) << c.text;
    }
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO", "key", 4), "(de"); // cut to the buffer
    EXPECT_EQ(readKey(dir.file("missing.ini"), "ORTO", "key"), Default);

    // damaged lines are no keys, whatever their length or bytes
    std::string damaged = "[ORTO]\n" + std::string(100000, 'x') + "\nno equals\n" +
                          std::string("\x01\xff\x00=\x00\n[\n", 8) + std::string(70000, '[') + "\n";
    writeFile(dir.file("a.ini"), damaged + "[ORTO User]\n" + std::string(100000, 'k') + "=vvvvvv\nkey=ok\n");
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO User", "key"), "ok");
    EXPECT_EQ(readKey(dir.file("a.ini"), "ORTO User", std::string(100000, 'k').c_str(), 6), "vvvvv");
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
        {"", "ORTO", "A", "x\r\ny", "[ORTO]\nA=x\n"}, // a value ends at a line end
    };
    TempDir dir;
    std::string name = dir.file("a.ini");
    for (const Case &c : cases) {
        writeFile(name, c.before);
        EXPECT_EQ(write(name, c.section, c.key, c.value), 1);
        EXPECT_EQ(readFile(name), c.after) << c.before << " / " << c.key;
    }
    // names that couldn't be read back are refused, the file untouched
    for (auto names : {std::make_pair("ORTO", "a=b"), std::make_pair("x]", "a"), std::make_pair("ORTO", " a")})
        EXPECT_EQ(write(name, names.first, names.second, "v"), 0);
    EXPECT_EQ(readFile(name), "[ORTO]\nA=x\n");
}

TEST(IniFile, LinksStayAndFailuresLeaveTheFileAsItWas)
{
    TempDir dir;
    std::string real = dir.file("real.ini");
    writeFile(real, "[ORTO]\nk=v\n");
    ASSERT_EQ(symlink(real.c_str(), dir.file("link.ini").c_str()), 0);
    EXPECT_EQ(write(dir.file("link.ini"), "ORTO", "k", "w"), 1);
    struct stat st;
    ASSERT_EQ(lstat(dir.file("link.ini").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    EXPECT_EQ(readFile(real), "[ORTO]\nk=w\n");

    for (int fault : {FaultCreate, FaultWrite, FaultSync, FaultRename, FaultLock}) {
        fileInjectFault(fault, 1);
        EXPECT_EQ(write(real, "ORTO", "k", "x"), 0) << fault;
        fileInjectFault(fault, 0);
    }
    EXPECT_EQ(readFile(real), "[ORTO]\nk=w\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path), {}), 3); // no temporary left

    // what can't be read is empty to a reader, and a writer leaves it alone
    std::string huge = "[ORTO]\nk=v\n" + std::string(9 << 20, ';');
    writeFile(dir.file("huge.ini"), huge);
    mkdir(dir.file("folder.ini").c_str(), 0700);
    for (const char *name : {"huge.ini", "folder.ini"}) {
        EXPECT_EQ(readKey(dir.file(name), "ORTO", "k"), Default);
        EXPECT_EQ(write(dir.file(name), "ORTO", "k", "w"), 0);
    }
    EXPECT_EQ(readFile(dir.file("huge.ini")), huge);
}

TEST(IniFile, TwoProcessesWritingAtOnceLoseNoKey)
{
    TempDir dir;
    std::string name = dir.file("ORTO.INI");
    writeFile(name, "; shared\n[ORTO]\nkeep=1\n");
    const int Keys = 40;
    auto key = [](int process, int k) { return "p" + std::to_string(process) + "k" + std::to_string(k); };
    pid_t children[2];
    for (int c = 0; c < 2; c++) {
        children[c] = fork();
        ASSERT_GE(children[c], 0);
        if (children[c] == 0) {
            int failed = 0;
            for (int k = 0; k < Keys; k++)
                failed += write(name, c ? "ORTO User" : "ORTO", key(c, k).c_str(), "v") != 1;
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
        for (int k = 0; k < Keys; k++)
            EXPECT_EQ(readKey(name, c ? "ORTO User" : "ORTO", key(c, k).c_str()), "v") << key(c, k);
}

// The fuzz target's corpus, replayed without libFuzzer.
TEST(IniFile, FuzzCorpusRunsClean)
{
    int files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(std::string(ORTO_SOURCE_DIR) + "/fuzz/corpus/ini")) {
        std::string bytes = readFile(entry.path().string());
        inifuzz::runOne((const uint8_t *)bytes.data(), bytes.size());
        files++;
    }
    EXPECT_GE(files, 9);
}
