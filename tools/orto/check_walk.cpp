/*
 * check_walk.cpp -- one text through the engine as a block, word by word.
 *
 * ORTO_CheckBlock walks from its cursor to the next word that has
 * something to report, so that a clean text costs one call.  `list` needs
 * no more.  The ispell pipe must answer for every word, the clean ones
 * too, so a second block on the same text walks all the words with
 * ORTO_GetBlockWord and ORTO_NextBlockWord: every word that it meets in
 * front of the word where the check stopped was clean.  Both blocks scan
 * the text with the same rules under the same options, so their word
 * positions agree; the check block alone holds the doubled-word and
 * first-word state.
 *
 * A word that touches a foreign-letter byte is a piece of a word the
 * engine can't see whole (encoding.cpp); it is left out of the results.
 * A reported word goes through the program's own rules for addresses,
 * dotted words and edge apostrophes (report_rules.cpp) on its way out.
 */
#include <string.h>

#include "check_walk.h"
#include "orto.h"
#include "report_rules.h"

static bool isFragment(const std::string &text, uint32_t offset, size_t length)
{
    if (offset > 0 && isForeignLetter((unsigned char)text[offset - 1]))
        return true;
    return offset + length < text.size() && isForeignLetter((unsigned char)text[offset + length]);
}

/* The scan block's position, for the word at or after its cursor. */
struct Scanner {
    int16_t block; /* -1 when the caller wants reported words only */
    bool done;
};

/* Adds every clean word of the scan block that begins before `limit`, and
 * steps over the word at `limit` itself when `skipLimitWord` is set. */
static int16_t scanUpTo(int16_t sid, Scanner *scan, const std::string &text, uint32_t limit,
                        bool skipLimitWord, std::vector<WalkWord> *words)
{
    while (!scan->done) {
        char word[64];
        int16_t behind = ORTO_GetBlockWord(sid, scan->block, word, sizeof word);
        if (behind == ORTO_NotFound) {
            scan->done = true;
            break;
        }
        if (behind < 0)
            return behind;
        uint32_t cursor = 0;
        int16_t rc = ORTO_GetBlockInfo(sid, scan->block, nullptr, nullptr, &cursor, nullptr);
        if (rc < 0)
            return rc;
        if (cursor > limit || (cursor == limit && !skipLimitWord))
            break;
        if (cursor < limit && !isFragment(text, cursor, strlen(word))) {
            WalkWord w;
            w.offset = cursor;
            w.word = word;
            w.mask = 0;
            words->push_back(w);
        }
        rc = ORTO_NextBlockWord(sid, scan->block);
        if (rc == ORTO_NotFound)
            scan->done = true;
        else if (rc < 0)
            return rc;
        if (cursor == limit)
            break;
    }
    return 0;
}

int16_t walkText(int16_t sid, std::string &text, bool allWords, std::vector<WalkWord> *words)
{
    words->clear();
    uint32_t length = (uint32_t)text.size();
    int16_t check = ORTO_OpenBlock(sid, &text[0], length, length, 0);
    if (check < 0)
        return check;
    Scanner scan = {-1, true};
    if (allWords) {
        scan.block = ORTO_OpenBlock(sid, &text[0], length, length, 0);
        if (scan.block < 0) {
            ORTO_CloseBlock(sid, check);
            return scan.block;
        }
        scan.done = false;
    }

    int16_t rc = 0;
    for (;;) {
        WalkWord w;
        char replacement[64];
        char word[64];
        int16_t mask = ORTO_CheckBlock(sid, check, word, sizeof word, replacement, sizeof replacement);
        if (mask < 0) {
            rc = mask;
            break;
        }
        if (mask & ORTO_EndOfBlock) {
            if (allWords)
                rc = scanUpTo(sid, &scan, text, length, false, words);
            break;
        }
        uint32_t cursor = 0;
        if ((rc = ORTO_GetBlockInfo(sid, check, nullptr, nullptr, &cursor, nullptr)) < 0)
            break;
        if (allWords && (rc = scanUpTo(sid, &scan, text, cursor, true, words)) < 0)
            break;
        if (!isFragment(text, cursor, strlen(word))) {
            w.offset = cursor;
            w.word = word;
            w.mask = mask;
            w.replacement = replacement;
            addReportedWord(sid, text, w, allWords, words);
        }
        int16_t next = ORTO_NextBlockWord(sid, check);
        if (next == ORTO_NotFound) {
            if (allWords)
                rc = scanUpTo(sid, &scan, text, length, false, words);
            break;
        }
        if (next < 0) {
            rc = next;
            break;
        }
    }
    if (scan.block >= 0)
        ORTO_CloseBlock(sid, scan.block);
    ORTO_CloseBlock(sid, check);
    return rc < 0 ? rc : 0;
}
