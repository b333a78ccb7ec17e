// Sessions, options, version and the debug log, through the C API.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

TEST(Session, SlotsAreGivenOutLowestFirstUpToSixteen)
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
        EXPECT_EQ(ORTO_CloseSession(id), 0);
    EXPECT_TRUE(log.has("ORTO_OpenSession: session opened"));
}

TEST(Session, NewSessionOptionsAndLanguage)
{
    int16_t sid = ORTO_OpenSession();
    ASSERT_GE(sid, 0);
    EXPECT_EQ(ORTO_GetOption(sid, 0x18680), 1);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 24941);
    EXPECT_EQ(ORTO_GetOption(sid, 1), 0);
    // each default bit on, each other bit off
    for (uint32_t bit = 1; bit <= 0x10000; bit <<= 1)
        EXPECT_EQ(ORTO_GetOption(sid, bit), (0x18680u & bit) ? 1 : 0) << std::hex << bit;
    EXPECT_EQ(ORTO_DefaultOptions, 99968u);
    ORTO_CloseSession(sid);
}

TEST(Session, SetOptionSetsAllBitsAndReturnsThePreviousAnswer)
{
    int16_t sid = ORTO_OpenSession();
    EXPECT_EQ(ORTO_SetOption(sid, 3, 1), 0); // neither bit was set
    EXPECT_EQ(ORTO_GetOption(sid, 1), 1);
    EXPECT_EQ(ORTO_GetOption(sid, 2), 1);
    EXPECT_EQ(ORTO_SetOption(sid, 3, 0), 1);
    EXPECT_EQ(ORTO_GetOption(sid, 3), 0);
    ORTO_SetOption(sid, 2, 1);
    EXPECT_EQ(ORTO_SetOption(sid, 3, 7), 1); // one of the two was set; any non-zero value sets
    EXPECT_EQ(ORTO_GetOption(sid, 1), 1);
    // bits without meaning are stored all the same
    EXPECT_EQ(ORTO_SetOption(sid, 0x40000000, 1), 0);
    EXPECT_EQ(ORTO_GetOption(sid, 0x40000000), 1);

    // the language: low 16 bits stored, the old value returned sign-extended
    EXPECT_EQ(ORTO_SetOption(sid, ORTO_Language, 0x12346272), 24941);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), 0x6272);
    EXPECT_EQ(ORTO_SetOption(sid, ORTO_Language, 0x8001), 0x6272);
    EXPECT_EQ(ORTO_GetOption(sid, ORTO_Language), -32767);
    EXPECT_EQ(ORTO_SetOption(sid, ORTO_Language, 1), -32767);
    // the language is no bit of the mask
    EXPECT_EQ(ORTO_GetOption(sid, 2), 1);
    ORTO_CloseSession(sid);
}

TEST(Session, BadIdsAreLoggedByTheCallThatGotThem)
{
    DebugCapture log;
    char buf[64];
    EXPECT_EQ(ORTO_CheckWord(-1, "a", buf, sizeof buf), ORTO_BadSessionId);
    EXPECT_EQ(ORTO_CheckWord(16, "a", buf, sizeof buf), ORTO_BadSessionId);
    EXPECT_EQ(ORTO_GetOption(5, 1), ORTO_BadSessionId);
    EXPECT_EQ(ORTO_SetOption(5, 1, 1), ORTO_BadSessionId);
    EXPECT_EQ(ORTO_CloseSession(7), ORTO_BadSessionId);
    std::vector<std::string> expected = {
        "ORTO_CheckWord: bad session id -1", "ORTO_CheckWord: bad session id 16",
        "ORTO_GetOption: bad session id 5", "ORTO_SetOption: bad session id 5",
        "ORTO_CloseSession: bad session id 7"};
    std::vector<std::string> lines = log.lines();
    ASSERT_GE(lines.size(), 2u + expected.size()); // the start line and its empty line
    EXPECT_EQ(std::vector<std::string>(lines.end() - expected.size(), lines.end()), expected);

    // a bad session id wins over a bad lexicon or block id: one line only
    log.clear();
    EXPECT_EQ(ORTO_CloseBlock(9, 99), ORTO_BadSessionId);
    EXPECT_EQ(ORTO_GetLexInfo(9, -4, nullptr, nullptr, nullptr), ORTO_BadSessionId);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"ORTO_CloseBlock: bad session id 9",
                                                     "ORTO_GetLexInfo: bad session id 9"}));
}

TEST(Session, CloseSessionClosesLexiconsAndBlocks)
{
    DebugCapture log;
    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAny);
    ASSERT_EQ(lex, 0);
    char text[] = "some text";
    ASSERT_EQ(ORTO_OpenBlock(sid, text, 9, 9, 1), 0);
    ASSERT_EQ(ORTO_OpenBlock(sid, text, 9, 10, 0), 1);
    EXPECT_EQ(ORTO_CloseSession(sid), 0);
    EXPECT_TRUE(log.has("ORTO_CloseLex: 0 closed"));
    EXPECT_EQ(ORTO_CheckWord(sid, "text", nullptr, 0), ORTO_BadSessionId);
    EXPECT_TRUE(log.has("ORTO_CheckWord: bad session id " + std::to_string(sid)));
    EXPECT_EQ(ORTO_CloseLex(sid, lex), ORTO_BadSessionId);
    EXPECT_EQ(std::string(text), "some text"); // the host's buffer is left alone
}

TEST(Session, VersionIsCutToTheBuffer)
{
    char buf[8] = "xxxxxxx";
    ORTO_Version(buf, 2);
    EXPECT_STREQ(buf, "5");
    ORTO_Version(buf, 4);
    EXPECT_STREQ(buf, "5.1");
    ORTO_Version(buf, sizeof buf);
    EXPECT_STREQ(buf, "5.1");
    ORTO_Version(buf, 1);
    EXPECT_STREQ(buf, "");
    ORTO_Version(nullptr, 10); // no crash, nothing to write to
}

TEST(DebugLog, StartAndStopLinesCarryTheDateAndAnEmptyLine)
{
    TempDir dir;
    std::string first = dir.file("first.log"), second = dir.file("second.log");
    ORTO_SetDebugFile(first.c_str());
    ORTO_SetDebugFile(second.c_str()); // nothing goes into the old file
    ORTO_CheckWord(-1, "x", nullptr, 0);
    ORTO_SetDebugFile(nullptr);
    ORTO_CheckWord(-2, "x", nullptr, 0); // not logged: debugging is off

    std::string text = readFile(second);
    // "HH:MM:SS Debugging started at Www Mmm dd hh:mm:ss yyyy\n\n"
    const char *pattern =
        "^[0-2][0-9]:[0-5][0-9]:[0-6][0-9] Debugging started at "
        "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
        "[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\n\n"
        "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] ORTO_CheckWord: bad session id -1\n"
        "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] Debugging stopped at "
        "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
        "[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\n\n$";
    EXPECT_THAT(text, ::testing::MatchesRegex(pattern));
    std::vector<std::string> firstLines = logLines(first);
    ASSERT_EQ(firstLines.size(), 2u);
    EXPECT_EQ(firstLines[0].rfind("Debugging started at ", 0), 0u);

    // the empty name stops logging without a message
    std::string third = dir.file("third.log");
    ORTO_SetDebugFile(third.c_str());
    ORTO_SetDebugFile("");
    EXPECT_EQ(logLines(third).size(), 2u);
}

TEST(DebugLog, AFileThatCantBeOpenedLosesTheLineAndKeepsTheName)
{
    TempDir dir;
    std::string later = dir.file("later/debug.log"); // folder not there yet
    ORTO_SetDebugFile(later.c_str());
    ORTO_CheckWord(-1, "x", nullptr, 0);
    ASSERT_EQ(mkdir(dir.file("later").c_str(), 0700), 0);
    ORTO_CheckWord(-3, "x", nullptr, 0);
    ORTO_SetDebugFile("");
    EXPECT_EQ(logLines(later), (std::vector<std::string>{"ORTO_CheckWord: bad session id -3"}));
}
