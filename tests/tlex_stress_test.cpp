/*
 * Several processes change one lexicon file at the same time, each adding
 * and deleting words of its own, while another process keeps reading the
 * file.  No change may be lost, and no reader may ever see a file that is
 * not whole.  The second run makes rewrites fail at random (by the file
 * layer's fault hook, which works where permissions don't, e.g. as root).
 */
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "orto.h"
#include "platform/file.h"
#include "support/test_support.h"

namespace {

const int Workers = 4;
const int Rounds = 15;
const int BaseWords = 10;
const char Sentinel[] = "#LID 24941\r\n";

std::string ownWord(int worker, int round)
{
    return "p" + std::to_string(worker) + "w" + std::to_string(round);
}

std::string baseWord(int i) { return "zz" + std::to_string(i); }

bool fileHoldsLine(const std::string &name, const std::string &line)
{
    return readFile(name).find("\n" + line + "\r\n") != std::string::npos;
}

/* An add or delete, first tried with a fault armed now and then, which
 * must leave the word as it was in memory and on disk.  False on any
 * unexpected result. */
bool change(int16_t sid, int16_t lex, const std::string &name, const std::string &word, bool add,
            bool inject, unsigned *seed)
{
    if (inject && rand_r(seed) % 3 == 0) {
        fileInjectFault(rand_r(seed) % 4, 1); /* write, create, rename or sync */
        int16_t rc = add ? ORTO_AddToLex(sid, lex, word.c_str(), 'i', nullptr)
                         : ORTO_DelFromLex(sid, lex, word.c_str());
        if (rc != ORTO_WriteError && rc != ORTO_OpenError)
            return false;
        bool inTable = ORTO_FindLexWord(sid, lex, word.c_str(), nullptr, 0) == 'i';
        if (inTable == add || fileHoldsLine(name, word + "\ti") == add)
            return false;
    }
    int16_t rc = add ? ORTO_AddToLex(sid, lex, word.c_str(), 'i', nullptr)
                     : ORTO_DelFromLex(sid, lex, word.c_str());
    if (rc != 0)
        return false;
    bool inTable = ORTO_FindLexWord(sid, lex, word.c_str(), nullptr, 0) == 'i';
    return inTable == add;
}

/* One client: adds a word each round and deletes the one of two rounds
 * before, so that its last two words remain. */
int worker(const std::string &name, int id, bool inject)
{
    unsigned seed = 1234u + (unsigned)id;
    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_OpenLex(sid, name.c_str(), 0);
    if (sid < 0 || lex < 0)
        return 2;
    for (int r = 0; r < Rounds; r++) {
        if (!change(sid, lex, name, ownWord(id, r), true, inject, &seed))
            return 3;
        if (r >= 2 && !change(sid, lex, name, ownWord(id, r - 2), false, inject, &seed))
            return 4;
    }
    ORTO_CloseSession(sid);
    return 0;
}

/* Reads the file over and over until `stopFile` appears: each snapshot
 * must be a whole lexicon, sentinel first, base words last. */
int reader(const std::string &name, const std::string &stopFile)
{
    std::string tail;
    for (int i = 0; i < BaseWords; i++)
        tail += baseWord(i) + "\ti\r\n";
    int snapshots = 0;
    while (!fileExists(stopFile) || snapshots == 0) {
        std::string bytes = readFile(name);
        snapshots++;
        if (bytes.compare(0, sizeof Sentinel - 1, Sentinel) != 0)
            return 5;
        if (bytes.size() < tail.size() || bytes.compare(bytes.size() - tail.size(), tail.size(), tail) != 0)
            return 6;
    }
    return 0;
}

void runClients(bool inject)
{
    TempDir dir;
    std::string name = dir.file("shared.tlx"), stop = dir.file("stop");
    std::string initial = Sentinel;
    for (int i = 0; i < BaseWords; i++)
        initial += baseWord(i) + "\ti\r\n";
    writeFile(name, initial);

    pid_t readerPid = fork();
    ASSERT_GE(readerPid, 0);
    if (readerPid == 0)
        _exit(reader(name, stop));
    std::vector<pid_t> pids;
    for (int id = 0; id < Workers; id++) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0)
            _exit(worker(name, id, inject));
        pids.push_back(pid);
    }
    for (int id = 0; id < Workers; id++) {
        int status = 0;
        ASSERT_EQ(waitpid(pids[id], &status, 0), pids[id]);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0) << "worker " << id;
    }
    writeFile(stop, "");
    int status = 0;
    ASSERT_EQ(waitpid(readerPid, &status, 0), readerPid);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "reader saw a file that wasn't whole";

    std::vector<std::string> words;
    for (int i = 0; i < BaseWords; i++)
        words.push_back(baseWord(i));
    for (int id = 0; id < Workers; id++) {
        words.push_back(ownWord(id, Rounds - 2));
        words.push_back(ownWord(id, Rounds - 1));
    }
    std::sort(words.begin(), words.end());
    std::string expected = Sentinel;
    for (const auto &w : words)
        expected += w + "\ti\r\n";
    EXPECT_EQ(readFile(name), expected);

    /* no temporary file is left behind */
    for (const char *n : {"shared.tlx", "shared.tlx.lock", "stop"})
        EXPECT_TRUE(fileExists(dir.file(n))) << n;
    int entries = 0;
    for (const auto &e : std::filesystem::directory_iterator(dir.path))
        entries += e.is_regular_file() ? 1 : 0;
    EXPECT_EQ(entries, 3);
}

} // namespace

TEST(TLexStress, ConcurrentClientsLoseNoChange)
{
    runClients(false);
}

TEST(TLexStress, FailedRewritesAmongConcurrentClients)
{
    runClients(true);
}
