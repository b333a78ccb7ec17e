// Sessions on threads of their own, as a host may run them.  Eight threads
// each open a session with the bundled lexicon and a text lexicon, check
// words and a block, ask for suggestions and close, several times over;
// each thread must get the answers that the same work gets alone.  Six
// threads add 40 words each to one text lexicon file, each through a
// session of its own: all 240 must be in the file.  CI runs this under
// ThreadSanitizer too, where a data race fails it.
#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <thread>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

namespace {

const std::string Bundled = std::string(ORTO_BINARY_DIR) + "/data/en-US.clx";

std::string result(const char *what, long value) { return std::string(what) + std::to_string(value) + " "; }

// One session's work, told as a transcript of every answer it got.
std::string sessionWork(const std::string &userLex)
{
    std::string out;
    int16_t sid = ORTO_OpenSession();
    out += result("sid>=0:", sid >= 0);
    out += result("main:", ORTO_OpenLex(sid, Bundled.c_str(), 4096));
    out += result("user:", ORTO_OpenLex(sid, userLex.c_str(), 0));
    ORTO_SetOption(sid, ORTO_PhoneticSuggestions, 1);
    for (const char *w : {"receive", "recieve", "teh", "Zorblat", "walking", "colour"}) {
        char replacement[64] = "";
        out += result(w, ORTO_CheckWord(sid, w, replacement, sizeof replacement)) + replacement + " ";
    }
    for (const char *w : {"recieve", "definately", "wlak"}) {
        char list[512];
        int16_t scores[8];
        out += result(w, ORTO_Suggest(sid, w, 50, list, sizeof list, scores, 8));
        for (const char *s = list; *s; s += strlen(s) + 1)
            out += std::string(s) + " ";
    }
    char text[] = "the the quick brwn fox jumps over teh lazy dog";
    int16_t block = ORTO_OpenBlock(sid, text, sizeof text - 1, sizeof text, 1);
    out += result("block:", block);
    ORTO_SetOption(sid, ORTO_ReportDoubledWords, 1);
    for (int i = 0; i < 20; i++) {
        char word[64], replacement[64];
        int16_t mask = ORTO_CheckBlock(sid, block, word, sizeof word, replacement, sizeof replacement);
        if (mask & ORTO_EndOfBlock)
            break;
        out += result(word, mask);
        if (ORTO_NextBlockWord(sid, block) < 0)
            break;
    }
    out += result("close:", ORTO_CloseSession(sid));
    return out;
}

} // namespace

TEST(Threads, SessionsOnTheirOwnThreadsAnswerAsAlone)
{
    if (!fileExists(Bundled))
        GTEST_SKIP() << "no bundled lexicon at " << Bundled;
    TempDir dir;
    std::string userLex = dir.file("user.tlx");
    writeFile(userLex, "#LID 24941\r\nteh\tAthe\r\nZorblat\ti\r\ncolour\te\r\n");

    // all threads start at once, so that the first walks and the first
    // sessions meet; the transcript alone comes after
    const int Threads = 8, Rounds = 3;
    std::vector<std::vector<std::string>> got(Threads);
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; t++)
        threads.emplace_back([&, t] {
            for (int r = 0; r < Rounds; r++)
                got[t].push_back(sessionWork(userLex));
        });
    for (std::thread &t : threads)
        t.join();
    std::string alone = sessionWork(userLex);
    for (const char *answer : {"teh2 the ", "the128 ", "brwn1 ", "colour1 ", " receive "})
        EXPECT_NE(alone.find(answer), std::string::npos) << answer << " in " << alone;
    for (int t = 0; t < Threads; t++)
        for (int r = 0; r < Rounds; r++)
            EXPECT_EQ(got[t][r], alone) << "thread " << t << " round " << r;
}

TEST(Threads, ClientsOfOneFileOnSeparateThreadsLoseNoWord)
{
    TempDir dir;
    std::string path = dir.file("shared.tlx");
    int16_t sid = ORTO_OpenSession();
    ASSERT_GE(ORTO_CreateLex(sid, path.c_str(), ORTO_LangAmerican), 0);
    const int Threads = 6, Words = 40;
    std::vector<int> failures(Threads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; t++)
        threads.emplace_back([&, t] {
            int16_t own = ORTO_OpenSession();
            int16_t lex = ORTO_OpenLex(own, path.c_str(), 0);
            for (int i = 0; i < Words; i++) {
                std::string w = "t" + std::to_string(t) + "w" + std::to_string(i);
                failures[t] += ORTO_AddToLex(own, lex, w.c_str(), 'i', nullptr) != 0;
            }
            ORTO_CloseSession(own);
        });
    for (std::thread &t : threads)
        t.join();
    int16_t lex = ORTO_OpenLex(sid, path.c_str(), 0);
    for (int t = 0; t < Threads; t++) {
        EXPECT_EQ(failures[t], 0) << "thread " << t;
        for (int i = 0; i < Words; i++) {
            std::string w = "t" + std::to_string(t) + "w" + std::to_string(i);
            EXPECT_EQ(ORTO_FindLexWord(sid, lex, w.c_str(), nullptr, 0), 'i') << w;
        }
    }
    char buffer[8192];
    EXPECT_EQ(ORTO_GetLex(sid, lex, buffer, sizeof buffer), Threads * Words);
    ORTO_CloseSession(sid);
}
