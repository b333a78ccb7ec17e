// The character tables row by row, the string helpers and the case
// pattern of a word.  These are internals: no exported call shows a class.
#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <vector>

#include "engine/charclass.h"
#include "engine/string_helpers.h"

namespace {

struct Range {
    int from, to;
};

// Every class value with the characters that have it, written as the
// ranges of the code page's documentation rather than derived from rules.
struct ClassRow {
    unsigned char value;
    std::vector<Range> chars;
};

std::vector<int> expand(const std::vector<Range> &ranges)
{
    std::vector<int> out;
    for (const Range &r : ranges)
        for (int c = r.from; c <= r.to; c++)
            out.push_back(c);
    return out;
}

std::vector<Range> lettersExcept(char first, char last, const char *except, bool keep)
{
    std::vector<Range> out;
    for (char c = first; c <= last; c++)
        if ((strchr(except, c) != nullptr) == keep)
            out.push_back({(unsigned char)c, (unsigned char)c});
    return out;
}

std::vector<Range> join(std::vector<Range> a, const std::vector<Range> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace

TEST(CharClass, EveryByteHasTheClassOfItsRow)
{
    std::vector<ClassRow> rows = {
        {0x00, {{0x00, 0x08}, {0x0B, 0x0B}, {0x0C, 0x0C}, {0x0E, 0x1F}, {0x80, 0x91}, {0x9D, 0xA0}}},
        {0x02, {{0x30, 0x39}}},
        {0x04, {{0x21, 0x2F}, {0x3A, 0x40}, {0x5B, 0x60}, {0x7B, 0x7F}, {0x92, 0x9C},
                {0xA1, 0xBF}, {0xD7, 0xD7}, {0xF7, 0xF7}}},
        {0x08, {{0x09, 0x0A}, {0x0D, 0x0D}, {0x20, 0x20}}},
        {0x11, join(lettersExcept('a', 'z', "aeiou", false),
                    {{0xE7, 0xE7}, {0xF1, 0xF1}, {0xFD, 0xFF}})},
        {0x21, join(lettersExcept('A', 'Z', "AEIOU", false),
                    {{0xC7, 0xC7}, {0xD0, 0xD1}, {0xDD, 0xDF}})},
        {0x51, join(lettersExcept('a', 'z', "aeiou", true),
                    {{0xE0, 0xE6}, {0xE8, 0xF0}, {0xF2, 0xF6}, {0xF8, 0xFC}})},
        {0x61, join(lettersExcept('A', 'Z', "AEIOU", true),
                    {{0xC0, 0xC6}, {0xC8, 0xCF}, {0xD2, 0xD6}, {0xD8, 0xDC}})},
    };
    int seen[256] = {0};
    for (const ClassRow &row : rows)
        for (int c : expand(row.chars)) {
            EXPECT_EQ(CharClass[c], row.value) << "byte 0x" << std::hex << c;
            seen[c]++;
        }
    for (int c = 0; c < 256; c++)
        EXPECT_EQ(seen[c], 1) << "byte 0x" << std::hex << c << " is in " << seen[c] << " rows";
}

TEST(CharClass, BaseLettersFoldAccentsAndCase)
{
    std::vector<std::pair<char, std::vector<Range>>> rows = {
        {'a', {{'A', 'A'}, {'a', 'a'}, {0xC0, 0xC6}, {0xE0, 0xE6}}},
        {'c', {{'C', 'C'}, {'c', 'c'}, {0xC7, 0xC7}, {0xE7, 0xE7}}},
        {'e', {{'E', 'E'}, {'e', 'e'}, {0xC8, 0xCB}, {0xE8, 0xEB}}},
        {'i', {{'I', 'I'}, {'i', 'i'}, {0xCC, 0xCF}, {0xEC, 0xEF}}},
        {'n', {{'N', 'N'}, {'n', 'n'}, {0xD1, 0xD1}, {0xF1, 0xF1}}},
        {'o', {{'O', 'O'}, {'o', 'o'}, {0xD2, 0xD6}, {0xD8, 0xD8}, {0xF2, 0xF6}, {0xF8, 0xF8}}},
        {'s', {{'S', 'S'}, {'s', 's'}, {0xDF, 0xDF}}},
        {'u', {{'U', 'U'}, {'u', 'u'}, {0xD9, 0xDC}, {0xF9, 0xFC}}},
        {'y', {{'Y', 'Y'}, {'y', 'y'}, {0xDD, 0xDD}, {0xFD, 0xFD}, {0xFF, 0xFF}}},
    };
    for (char c : std::string("bdfghjklmpqrtvwxz"))
        rows.push_back({c, {{c, c}, {c - 0x20, c - 0x20}}});
    int seen[256] = {0};
    for (const auto &row : rows)
        for (int c : expand(row.second)) {
            EXPECT_EQ(baseLetter[c], (unsigned char)row.first) << "byte 0x" << std::hex << c;
            seen[c]++;
        }
    for (int c = 0; c < 256; c++)
        if (!seen[c]) {
            EXPECT_EQ(baseLetter[c], 0) << "byte 0x" << std::hex << c; // 0xD0, 0xDE, 0xF0, 0xFE too
        }
}

TEST(CharClass, DerivedTestsAndConversions)
{
    EXPECT_EQ(ToUpper(0xFF), 0xDF);
    EXPECT_EQ(ToLower(0xDF), 0xFF);
    EXPECT_EQ(ToLower(0xD0), 0xF0);
    EXPECT_EQ(ToUpper(0xF0), 0xD0);
    EXPECT_EQ(ToUpper('1'), '1');
    EXPECT_EQ(ToLower(0xD7), 0xD7); // the multiplication sign is no letter
    EXPECT_TRUE(IsApostrophe(0x92));
    EXPECT_TRUE(IsPunct(0x92));
    EXPECT_TRUE(IsApostrophe('\''));
    EXPECT_FALSE(IsWordChar('\''));
    EXPECT_TRUE(IsWordChar('7'));
    EXPECT_TRUE(IsWordChar(0xE9));
    EXPECT_FALSE(IsSpace(0xA0));
    EXPECT_FALSE(IsSpace(0x0B));
    EXPECT_FALSE(IsVowel('y'));
    EXPECT_TRUE(IsPunct(0x7F));
}

TEST(StringHelpers, CopiesStayInsideTheirSize)
{
    char buf[8];
    memset(buf, 'x', sizeof buf);
    StrCopy(buf, 4, "abcdef");
    EXPECT_STREQ(buf, "abc");
    EXPECT_EQ(buf[4], 'x');
    StrCopyN(buf, 8, "abcdef", 2);
    EXPECT_STREQ(buf, "ab");
    StrCopy(buf, 1, "abc");
    EXPECT_STREQ(buf, "");

    StrCopy(buf, 8, "abc");
    StrAppend(buf, 6, "defgh");
    EXPECT_STREQ(buf, "abcde");
    StrCopy(buf, 8, "abcdefg"); // fills size - 1
    StrAppendChar(buf, 8, 'h');
    EXPECT_STREQ(buf, "abcdefg");
    StrCopy(buf, 8, "abc");
    StrAppendChar(buf, 8, 'd');
    EXPECT_STREQ(buf, "abcd");
    EXPECT_EQ(StrLen(buf), 4);
}

TEST(StringHelpers, SearchAndCompare)
{
    const char *s = "a-b-c";
    EXPECT_EQ(StrFindChar(s, '-'), s + 1);
    EXPECT_EQ(StrFindLastChar(s, '-'), s + 3);
    EXPECT_EQ(StrFindChar(s, 'x'), nullptr);
    EXPECT_EQ(StrFindChar(s, 0), s + 5); // the terminator is found
    EXPECT_EQ(StrFindLastChar(s, 'x'), nullptr);

    EXPECT_EQ(StrCompare("a", "B"), 1);
    EXPECT_EQ(StrCompareNoCase("a", "B"), -1);
    EXPECT_EQ(StrCompare("abc", "abc"), 0);
    EXPECT_EQ(StrCompare("ab", "abc"), -1); // a word sorts before its extensions
    EXPECT_EQ(StrCompare("\xE9", "z"), 1); // bytes are unsigned
    EXPECT_EQ(StrCompareNoCase("\xC9T\xC9", "\xE9t\xE9"), 0);

    char *dup = StrDup("copy");
    ASSERT_NE(dup, nullptr);
    EXPECT_STREQ(dup, "copy");
    free(dup);
}

TEST(StringHelpers, IntToDecimalKeepsTheLowDigits)
{
    struct Case {
        int32_t value;
        uint16_t size;
        const char *text;
    } cases[] = {
        {0, 8, "0"},       {42, 8, "42"},      {-42, 8, "-42"},
        {12345, 4, "345"}, {-12345, 4, "345"}, {-45, 3, "45"},
        {-45, 4, "-45"},   {7, 1, ""},         {INT32_MIN, 12, "-2147483648"},
    };
    for (const Case &c : cases) {
        char buf[16];
        IntToDecimal(c.value, buf, c.size);
        EXPECT_STREQ(buf, c.text) << c.value << " in " << c.size;
    }
}

TEST(CasePattern, MixedCaseAllCapsAndMatchCase)
{
    for (const char *w : {"", "Hello", "HELLO", "hELLO", "B2B", "a-b", "x", "1a"})
        EXPECT_FALSE(IsMixedCase(w)) << w;
    for (const char *w : {"HeLLo", "McDonald", "O'Neil", "eMail"})
        EXPECT_TRUE(IsMixedCase(w)) << w;
    for (const char *w : {"B2B", "1999", "HELLO", "O'NEIL", ""})
        EXPECT_TRUE(IsAllCaps(w)) << w;
    EXPECT_FALSE(IsAllCaps("HELLo"));

    struct Case {
        const char *word, *other, *result;
    } cases[] = {
        {"HELLO", "world", "WORLD"}, {"Hello", "world", "World"}, {"hello", "World", "World"},
        {"I", "we", "WE"},           {"Teh", "the", "The"},       {"teh", "The", "The"},
        {"THE", "the", "THE"},       {"Hello", "hello", "Hello"}, {"mcDonald", "x", "x"},
    };
    for (const Case &c : cases) {
        char other[64];
        StrCopy(other, sizeof other, c.other);
        MatchCase(c.word, other);
        EXPECT_STREQ(other, c.result) << c.word << " / " << c.other;
    }
}
