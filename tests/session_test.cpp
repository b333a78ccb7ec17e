// Sessions, options, the version, the debug log, and the validation of
// ids that every exported call makes first, through the C API.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <string>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

using Lines = std::vector<std::string>;

TEST(Session, SlotsOptionsAndLanguage)
{
    DebugCapture log;
    std::vector<int16_t> ids;
    for (int i = 0; i < 16; i++)
        ids.push_back(ORTO_OpenSession());
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(ids[i], i);
    EXPECT_EQ(ORTO_OpenSession(), ORTO_GeneralError);
    EXPECT_TRUE(log.has("ORTO_OpenSession: too many sessions"));
    EXPECT_EQ(ORTO_CloseSession(3), 0);
    EXPECT_TRUE(log.has("ORTO_CloseSession: Session 3 closed"));
    EXPECT_EQ(ORTO_OpenSession(), 3);
    for (int16_t id : ids)
        if (id != 3)
            ORTO_CloseSession(id);
    EXPECT_TRUE(log.has("ORTO_OpenSession: session opened"));

    // each default bit on, each other off; a set returns the answer before
    int16_t sid = 3;
    for (uint32_t bit = 1; bit <= 0x10000; bit <<= 1)
        EXPECT_EQ(ORTO_GetOption(sid, bit), (0x18680u & bit) ? 1 : 0) << std::hex << bit;
    EXPECT_EQ(ORTO_GetOption(sid, 0x18680), 1);
    EXPECT_EQ(ORTO_SetOption(sid, 3, 1), 0); // two bits at once, neither set before
    EXPECT_EQ(ORTO_GetOption(sid, 2), 1);
    EXPECT_EQ(ORTO_SetOption(sid, 3, 0), 1);
    ORTO_SetOption(sid, 2, 1);
    EXPECT_EQ(ORTO_SetOption(sid, 3, 7), 1); // one of the two was set
    EXPECT_EQ(ORTO_SetOption(sid, 0x40000000, 1), 0); // bits without meaning are kept too
    EXPECT_EQ(ORTO_GetOption(sid, 0x40000000), 1);
    // the language: low 16 bits kept, the old one returned sign-extended
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 24941);
    EXPECT_EQ(ORTO_SetOption(sid, ORTO_Language, 0x12346272), 24941);
    EXPECT_EQ(ORTO_SetOption(sid, ORTO_Language, 0x8001), 0x6272);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), -32767);
    EXPECT_EQ(ORTO_GetOption(sid, 2), 1);

    // closing closes lexicons and blocks; the host's buffer stays
    char text[] = "some text";
    ASSERT_EQ(ORTO_CreateLex(sid, nullptr, ORTO_LangAny), 0);
    ASSERT_EQ(ORTO_OpenBlock(sid, text, 9, 10, 0), 0);
    EXPECT_EQ(ORTO_CloseSession(sid), 0);
    EXPECT_TRUE(log.has("ORTO_CloseLex: 0 closed"));
    EXPECT_EQ(ORTO_CloseLex(sid, 0), ORTO_BadSessionId);
    EXPECT_EQ(std::string(text), "some text");

    char version[8] = "xxxxxxx";
    const char *cut[] = {"", "5", "5.", "5.1", "5.1"};
    for (uint16_t size = 1; size <= 5; size++) {
        ORTO_Version(version, size);
        EXPECT_STREQ(version, cut[size - 1]) << size;
    }
    ORTO_Version(nullptr, 10); // nothing to write to
}

// Every call that takes ids tests them in the order session, lexicon,
// block, logs the first bad one under its own name, and changes nothing.
TEST(Session, EveryCallValidatesItsIds)
{
    DebugCapture log;
    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny); // 0
    ASSERT_EQ(ORTO_AddToLex(sid, lex, "kept", 'i', nullptr), 0);
    char text[] = "hello";
    int16_t block = ORTO_OpenBlock(sid, text, 5, 6, 1); // 0
    char buf[64];
    uint32_t u = 0;
    uint16_t h = 0;
    int16_t scores[4];
    enum { S, L, B };
    struct Call {
        const char *name;
        int ids;
        std::function<int32_t(int16_t, int16_t)> run;
    };
    const Call calls[] = {
        {"ORTO_CheckWord", S, [&](int16_t s, int16_t) { return ORTO_CheckWord(s, "a", buf, 64); }},
        {"ORTO_CloseSession", S, [&](int16_t s, int16_t) { return ORTO_CloseSession(s); }},
        {"ORTO_GetOption", S, [&](int16_t s, int16_t) { return ORTO_GetOption(s, 1); }},
        {"ORTO_SetOption", S, [&](int16_t s, int16_t) { return ORTO_SetOption(s, 1, 1); }},
        {"ORTO_CreateLex", S, [&](int16_t s, int16_t) { return ORTO_CreateLex(s, nullptr, 0); }},
        {"ORTO_OpenLex", S, [&](int16_t s, int16_t) { return ORTO_OpenLex(s, "x", 0); }},
        {"ORTO_OpenBlock", S, [&](int16_t s, int16_t) { return ORTO_OpenBlock(s, buf, 0, 0, 0); }},
        {"ORTO_Suggest", S, [&](int16_t s, int16_t) { return ORTO_Suggest(s, "a", 0, buf, 64, scores, 4); }},
        {"ORTO_CompressLexInit", S, [&](int16_t s, int16_t) { return ORTO_CompressLexInit(s, "x", nullptr, 0, &u); }},
        {"ORTO_CompressLexFile", S, [&](int16_t s, int16_t) { return ORTO_CompressLexFile(s, "x", &u); }},
        {"ORTO_CompressLexEnd", S, [&](int16_t s, int16_t) { return ORTO_CompressLexEnd(s); }},
        {"ORTO_CompressLexAbort", S, [&](int16_t s, int16_t) { ORTO_CompressLexAbort(s); return ORTO_BadSessionId; }},
        {"ORTO_AddToLex", L, [&](int16_t s, int16_t k) { return ORTO_AddToLex(s, k, "w", 'i', nullptr); }},
        {"ORTO_ClearLex", L, [&](int16_t s, int16_t k) { return ORTO_ClearLex(s, k); }},
        {"ORTO_CloseLex", L, [&](int16_t s, int16_t k) { return ORTO_CloseLex(s, k); }},
        {"ORTO_DelFromLex", L, [&](int16_t s, int16_t k) { return ORTO_DelFromLex(s, k, "kept"); }},
        {"ORTO_FindLexWord", L, [&](int16_t s, int16_t k) { return ORTO_FindLexWord(s, k, "w", buf, 64); }},
        {"ORTO_GetLex", L, [&](int16_t s, int16_t k) { return ORTO_GetLex(s, k, buf, 64); }},
        {"ORTO_GetLexInfo", L, [&](int16_t s, int16_t k) { return ORTO_GetLexInfo(s, k, &u, &h, &h); }},
        {"ORTO_CheckBlock", B, [&](int16_t s, int16_t k) { return ORTO_CheckBlock(s, k, buf, 64, buf, 64); }},
        {"ORTO_CloseBlock", B, [&](int16_t s, int16_t k) { return ORTO_CloseBlock(s, k); }},
        {"ORTO_DelBlockText", B, [&](int16_t s, int16_t k) { return ORTO_DelBlockText(s, k, 1); }},
        {"ORTO_DelBlockWord", B, [&](int16_t s, int16_t k) { return ORTO_DelBlockWord(s, k, buf, 64); }},
        {"ORTO_GetBlock", B, [&](int16_t s, int16_t k) { return ORTO_GetBlock(s, k, buf, 64); }},
        {"ORTO_GetBlockInfo", B, [&](int16_t s, int16_t k) { return ORTO_GetBlockInfo(s, k, &u, &u, &u, &u); }},
        {"ORTO_GetBlockWord", B, [&](int16_t s, int16_t k) { return ORTO_GetBlockWord(s, k, buf, 64); }},
        {"ORTO_InsertBlockText", B, [&](int16_t s, int16_t k) { return ORTO_InsertBlockText(s, k, "x"); }},
        {"ORTO_NextBlockWord", B, [&](int16_t s, int16_t k) { return ORTO_NextBlockWord(s, k); }},
        {"ORTO_ReplaceBlockWord", B, [&](int16_t s, int16_t k) { return ORTO_ReplaceBlockWord(s, k, "x"); }},
        {"ORTO_SetBlockCursor", B, [&](int16_t s, int16_t k) { return ORTO_SetBlockCursor(s, k, 1); }},
    };
    for (const Call &c : calls) {
        std::string name = c.name;
        for (int16_t badSid : {-1, 16, 5}) { // out of range both ways, and a free slot
            log.clear();
            EXPECT_EQ(c.run(badSid, 99), ORTO_BadSessionId) << name;
            EXPECT_EQ(log.lines(), Lines{name + ": bad session id " + std::to_string(badSid)});
        }
        if (c.ids == S)
            continue;
        const char *kind = c.ids == L ? ": bad lex id " : ": bad block id ";
        for (int16_t bad : {-1, c.ids == L ? 32 : 4, 1}) { // out of range, and a free slot
            log.clear();
            EXPECT_EQ(c.run(sid, bad), c.ids == L ? ORTO_BadLexId : ORTO_BadBlockId) << name;
            EXPECT_EQ(log.lines(), Lines{name + kind + std::to_string(bad)});
        }
    }
    // none of it touched the session, its lexicon or its block
    EXPECT_EQ(ORTO_FindLexWord(sid, lex, "kept", nullptr, 0), 'i');
    EXPECT_EQ(ORTO_GetBlock(sid, block, buf, 64), 5);
    EXPECT_EQ(std::string(buf, 5), "hello");
    EXPECT_EQ(ORTO_GetOption(sid, 1), 0);
    ORTO_CloseSession(sid);
}

TEST(DebugLog, StartStopAndALogThatCantBeOpened)
{
    TempDir dir;
    std::string first = dir.file("first.log"), second = dir.file("second.log");
    ORTO_SetDebugFile(first.c_str());
    ORTO_SetDebugFile(second.c_str()); // nothing goes into the old file
    ORTO_CheckWord(-1, "x", nullptr, 0);
    ORTO_SetDebugFile(nullptr);
    ORTO_CheckWord(-2, "x", nullptr, 0); // not logged: debugging is off
    const std::string time = "[0-2][0-9]:[0-5][0-9]:[0-6][0-9]";
    const std::string date = "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|"
                             "Oct|Nov|Dec) [0-3][0-9] " + time + " [0-9]{4}\n\n";
    EXPECT_THAT(readFile(second),
                ::testing::MatchesRegex("^" + time + " Debugging started at " + date + time +
                                        " ORTO_CheckWord: bad session id -1\n" + time +
                                        " Debugging stopped at " + date + "$"));
    EXPECT_EQ(logLines(first).size(), 2u);

    // the empty name stops logging without a message; a file that can't be
    // opened loses its line and keeps its name for the next
    std::string later = dir.file("later/debug.log");
    ORTO_SetDebugFile(later.c_str());
    ORTO_CheckWord(-1, "x", nullptr, 0);
    ASSERT_EQ(mkdir(dir.file("later").c_str(), 0700), 0);
    ORTO_CheckWord(-3, "x", nullptr, 0);
    ORTO_SetDebugFile("");
    ORTO_CheckWord(-4, "x", nullptr, 0);
    EXPECT_EQ(logLines(later), Lines{"ORTO_CheckWord: bad session id -3"});
}
