// The character tables byte by byte, the string helpers and the case
// pattern of a word.  These are internals: no exported call shows a class.
#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "engine/charclass.h"
#include "engine/string_helpers.h"

// Sixteen bytes a row, from 0x00: '.' no class, d digit, p punctuation,
// s space, c and C small and capital consonant, v and V small and capital
// vowel.  Then the base letter of each byte, '.' for none.
TEST(CharClass, EveryByteHasItsClassAndBaseLetter)
{
    const char *classes =
        ".........ss..s.." "................" "sppppppppppppppp" "ddddddddddpppppp"
        "pVCCCVCCCVCCCCCV" "CCCCCVCCCCCppppp" "pvcccvcccvcccccv" "cccccvcccccppppp"
        "................" "..ppppppppppp..." ".ppppppppppppppp" "pppppppppppppppp"
        "VVVVVVVCVVVVVVVV" "CCVVVVVpVVVVVCCC" "vvvvvvvcvvvvvvvv" "vcvvvvvpvvvvvccc";
    const char *bases =
        "................" "................" "................" "................"
        ".abcdefghijklmno" "pqrstuvwxyz....." ".abcdefghijklmno" "pqrstuvwxyz....."
        "................" "................" "................" "................"
        "aaaaaaaceeeeiiii" ".nooooo.ouuuuy.s" "aaaaaaaceeeeiiii" ".nooooo.ouuuuy.y";
    const std::string codes = ".dpscCvV";
    const unsigned char values[] = {0x00, 0x02, 0x04, 0x08, 0x11, 0x21, 0x51, 0x61};
    for (int c = 0; c < 256; c++) {
        EXPECT_EQ(CharClass[c], values[codes.find(classes[c])]) << "byte 0x" << std::hex << c;
        EXPECT_EQ(baseLetter[c], bases[c] == '.' ? 0 : bases[c]) << "byte 0x" << std::hex << c;
    }
    // the conversions and tests built on the table, where it surprises
    EXPECT_EQ(ToUpper(0xFF), 0xDF);
    EXPECT_EQ(ToLower(0xDF), 0xFF);
    EXPECT_EQ(ToLower(0xD0), 0xF0);
    EXPECT_EQ(ToLower(0xD7), 0xD7);
    EXPECT_TRUE(IsApostrophe(0x92) && IsPunct(0x92) && IsApostrophe('\''));
    EXPECT_FALSE(IsWordChar('\''));
    EXPECT_TRUE(IsWordChar('7') && IsWordChar(0xE9));
}

TEST(StringHelpers, CopiesStayInsideTheirSizeAndComparesAreUnsigned)
{
    char buf[8];
    memset(buf, 'x', sizeof buf);
    StrCopy(buf, 4, "abcdef");
    EXPECT_STREQ(buf, "abc");
    EXPECT_EQ(buf[4], 'x');
    StrCopyN(buf, 8, "abcdef", 2);
    EXPECT_STREQ(buf, "ab");
    StrAppend(buf, 6, "cdefgh");
    EXPECT_STREQ(buf, "abcde");
    StrCopy(buf, 8, "abcdefg"); // fills size - 1
    StrAppendChar(buf, 8, 'h');
    EXPECT_STREQ(buf, "abcdefg");
    StrCopy(buf, 8, "abc");
    StrAppendChar(buf, 8, 'd');
    EXPECT_STREQ(buf, "abcd");
    EXPECT_EQ(StrLen(buf), 4);

    const char *s = "a-b-c";
    EXPECT_EQ(StrFindChar(s, '-'), s + 1);
    EXPECT_EQ(StrFindLastChar(s, '-'), s + 3);
    EXPECT_EQ(StrFindChar(s, 0), s + 5); // the terminator is found
    EXPECT_EQ(StrFindLastChar(s, 'x'), nullptr);
    EXPECT_EQ(StrCompare("a", "B"), 1);
    EXPECT_EQ(StrCompareNoCase("a", "B"), -1);
    EXPECT_EQ(StrCompare("ab", "abc"), -1);
    EXPECT_EQ(StrCompare("\xE9", "z"), 1);
    EXPECT_EQ(StrCompareNoCase("\xC9T\xC9", "\xE9t\xE9"), 0);
    char *dup = StrDup("copy");
    EXPECT_STREQ(dup, "copy");
    free(dup);

    // digits from the low end; the minus sign only where there is room
    struct {
        int32_t value;
        uint16_t size;
        const char *text;
    } decimals[] = {{0, 8, "0"},       {-42, 8, "-42"}, {12345, 4, "345"}, {-45, 3, "45"},
                    {-45, 4, "-45"},   {7, 1, ""},      {INT32_MIN, 12, "-2147483648"}};
    for (const auto &d : decimals) {
        char out[16];
        IntToDecimal(d.value, out, d.size);
        EXPECT_STREQ(out, d.text) << d.value << " in " << d.size;
    }
}

TEST(CasePattern, MixedCaseAllCapsAndMatchCase)
{
    for (const char *w : {"", "Hello", "HELLO", "hELLO", "B2B", "a-b", "x", "1a"})
        EXPECT_FALSE(IsMixedCase(w)) << w;
    for (const char *w : {"HeLLo", "McDonald", "O'Neil", "eMail"})
        EXPECT_TRUE(IsMixedCase(w)) << w;
    for (const char *w : {"B2B", "1999", "O'NEIL", ""})
        EXPECT_TRUE(IsAllCaps(w)) << w;
    EXPECT_FALSE(IsAllCaps("HELLo"));

    const char *cases[][3] = {
        {"HELLO", "world", "WORLD"}, {"Hello", "world", "World"}, {"hello", "World", "World"},
        {"I", "we", "WE"},           {"teh", "The", "The"},       {"Hello", "hello", "Hello"},
        {"mcDonald", "x", "x"},
    };
    for (const auto &c : cases) {
        char other[64];
        StrCopy(other, sizeof other, c[1]);
        MatchCase(c[0], other);
        EXPECT_STREQ(other, c[2]) << c[0] << " / " << c[1];
    }
}
