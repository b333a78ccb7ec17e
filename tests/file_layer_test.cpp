/*
 * The file layer on real files: the CR LF line rule, exclusive creation,
 * locks, time stamps, and the fault hook the other tests rely on.
 */
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/file.h"
#include "support/test_support.h"

namespace {

/* Every line fileReadLine gives for `bytes` with buffers of `size`. */
std::vector<std::string> readLines(const TempDir &dir, const std::string &bytes, int size)
{
    std::string name = dir.file("lines");
    writeFile(name, bytes);
    int h = fileOpen(name.c_str(), 0);
    EXPECT_GE(h, 0);
    std::vector<std::string> lines;
    std::vector<char> buf(size + 4, '!');
    int32_t n;
    while ((n = fileReadLine(h, buf.data(), size)) >= 0) {
        EXPECT_EQ((size_t)n, strlen(buf.data()));
        lines.emplace_back(buf.data(), n);
    }
    fileClose(h);
    return lines;
}

} // namespace

TEST(FileLayer, ReadLineEndsLinesAtCrLfOnly)
{
    TempDir dir;
    using L = std::vector<std::string>;
    struct Case {
        std::string bytes;
        int size;
        L lines;
    } cases[] = {
        {"", 80, L{}},
        {"ab\r\ncd\r\n", 80, L{"ab", "cd"}},
        {"ab\ncd\r\n", 80, L{"ab\ncd"}},          /* a lone LF is part of the line */
        {"ab\rcd\r\n\r\n", 80, L{"ab\rcd", ""}},  /* so is a lone CR; empty line */
        {"last", 80, L{"last"}},                  /* no CR LF at the end */
        {"abcdefghij\r\nk\r\n", 6, L{"abcde", "fghij", "", "k"}}, /* pieces */
        {"abcd\r\nxy\r\n", 7, L{"abcd", "xy"}},   /* line and CR LF just fit */
        {"abcd\r\nxy\r\n", 6, L{"abcd\r", "\nxy"}}, /* one byte short: CR and LF part */
        {"abcde\r\nxy\r\n", 6, L{"abcde", "", "xy"}}, /* CR LF in the next piece */
        {"a\r\r\nb", 80, L{"a\r", "b"}},
        {"ab", 1, L{}},                           /* no room for a byte */
    };
    for (const auto &c : cases)
        EXPECT_EQ(readLines(dir, c.bytes, c.size), c.lines) << c.bytes << " / " << c.size;
}

TEST(FileLayer, BufferedLinesAreTheLinesOfReadLine)
{
    /* random bytes rich in CR and LF, over the edges of the reader's
     * buffer, read with the sizes the lexicon code uses and odd ones */
    TempDir dir;
    std::string name = dir.file("random");
    unsigned seed = 7;
    const char alphabet[] = "\r\n\r\nab#\t";
    for (int round = 0; round < 6; round++) {
        std::string bytes;
        int length = round == 0 ? 0 : 1000 + rand_r(&seed) % 20000;
        for (int i = 0; i < length; i++)
            bytes += alphabet[rand_r(&seed) % (sizeof alphabet - 1)];
        writeFile(name, bytes);
        for (int size : {2, 3, 80, 131, 8193}) {
            int a = fileOpen(name.c_str(), 0), b = fileOpen(name.c_str(), 0);
            FileLines lines;
            fileLinesBegin(&lines, b);
            std::vector<char> x(size), y(size);
            int32_t n, m, count = 0;
            do {
                n = fileReadLine(a, x.data(), size);
                m = fileLinesNext(&lines, y.data(), size);
                ASSERT_EQ(n, m) << "size " << size << " line " << count;
                if (n >= 0) {
                    ASSERT_EQ(std::string(x.data(), n), std::string(y.data(), m));
                }
                count++;
            } while (n >= 0);
            fileClose(a);
            fileClose(b);
        }
    }
}

TEST(FileLayer, OpenAndCreate)
{
    TempDir dir;
    std::string name = dir.file("f");
    int h = fileOpen(name.c_str(), 4);
    EXPECT_EQ(fileWriteLine(h, "one"), 3);
    EXPECT_EQ(fileWrite(h, "z", 1), 1);
    fileClose(h);
    EXPECT_EQ(readFile(name), "one\r\nz");
    EXPECT_EQ(fileOpen(dir.file("none").c_str(), 0), -1);
    EXPECT_EQ(fileOpen(dir.path.c_str(), 0), -1); /* a folder is no file */
    EXPECT_EQ(fileModTime(dir.file("none").c_str()), 0);

    /* exclusive creation, with the permissions of a model file */
    chmod(name.c_str(), 0600);
    h = fileCreateNew(dir.file("new").c_str(), name.c_str());
    fileClose(h);
    struct stat st;
    ASSERT_EQ(stat(dir.file("new").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(fileCreateNew(dir.file("new").c_str(), nullptr), -1);
    EXPECT_TRUE(fileLastErrorWasExists());
}

TEST(FileLayer, LocksExcludeOtherHandlesOfTheProcess)
{
    TempDir dir;
    std::string name = dir.file("x.lock");
    int first = fileLock(name.c_str(), 0);
    ASSERT_GE(first, 0);
    EXPECT_EQ(fileLock(name.c_str(), 0), -2);
    EXPECT_EQ(fileLock(name.c_str(), 20), -2); /* waits, then gives up */
    fileUnlock(first);
    int second = fileLock(name.c_str(), 0);
    EXPECT_GE(second, 0);
    fileUnlock(second);
    EXPECT_TRUE(fileExists(name));
    EXPECT_EQ(fileLock(dir.file("no/x.lock").c_str(), 1000), -1);

    // each turn is counted in the lock file, and a waiter that sees the
    // count move keeps waiting past its bound: here the holder counts
    // turns for 1.5 s against a bound of 1 s, then lets go
    uint64_t turns = 0;
    memcpy(&turns, readFile(name).data(), sizeof turns);
    EXPECT_EQ(turns, 2u);
    int holder = fileLock(name.c_str(), 0);
    std::atomic<int> waiter{-9};
    std::thread wait([&] { waiter = fileLock(name.c_str(), 1000); });
    for (int i = 0; i < 150; i++) {
        uint64_t next = 4 + (uint64_t)i;
        ASSERT_EQ(pwrite(holder, &next, sizeof next, 0), (ssize_t)sizeof next);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(waiter, -9);
    fileUnlock(holder);
    wait.join();
    EXPECT_GE(waiter, 0);
    fileUnlock(waiter);
}
