/*
 * shared_session.cpp -- start and stop of the dialogs' shared session,
 * and its table of lexicons.
 *
 * The start fills the session's slots in a fixed order: the temporary
 * lexicon first (slot 0), then each item of UserLexFiles, then each item
 * of MainLexFiles.  So a word check looks in the temporary and user
 * lexicons first, and the suggestion walk, which goes from the highest
 * slot down, asks the main lexicons first.  A listed file that doesn't
 * open keeps its entry (with a negative id) so that a later write of the
 * list still names it.
 *
 * The stop runs from the library's destructor too, at the end of a
 * process.  By then objects with destructors of their own may be gone, so
 * everything it reaches (this state, the store, the session table) is
 * plain arrays and locals.
 */
#include "host/shared_session.h"

#include <stdio.h>

#include "engine/string_helpers.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "orto.h"
#include "platform/file.h"

i16 sharedSid = -1;
DialogLexEntry dialogLexTable[MaxLexicons];
u32 busyFlag;
i16 minSuggestDepth;
i32 autoCorrect;
u32 wordsChecked, wordsChanged, errorsFound;
char mainLexPath[PathSize];
char userLexPath[PathSize];
char helpFile[HelpFileSize];
char debugFile[DebugFileSize];

enum { LexListSize = 8320, ListItemSize = 260 };

/* The options the store keeps, in the order they are read and written,
 * with their defaults at a start. */
struct StoredOption {
    const char *key;
    u32 bit;
    i32 startDefault;
};
static const StoredOption storedOptions[] = {
    {"IgnoreCappedWords", ORTO_IgnoreCappedWords, 0},
    {"IgnoreAllCapsWords", ORTO_IgnoreAllCapsWords, 0},
    {"IgnoreMixedDigits", ORTO_IgnoreMixedDigits, 0},
    {"IgnoreMixedCase", ORTO_IgnoreMixedCase, 0},
    {"ReportDoubledWords", ORTO_ReportDoubledWords, 1},
    {"CaseSensitive", ORTO_CaseSensitive, 1},
    {"PhoneticSuggestions", ORTO_PhoneticSuggestions, 0},
    {"TypographicalSuggestions", ORTO_TypographicalSuggestions, 1},
    {"SuggestSplitWords", ORTO_SuggestSplitWords, 1},
    {"SplitContractedWords", ORTO_SplitContractedWords, 0},
    {"SplitHyphenatedWords", ORTO_SplitHyphenatedWords, 1},
    {"SplitWords", ORTO_SplitWords, 0},
};

i16 findFreeLexEntry(void)
{
    for (i16 i = 0; i < MaxLexicons; i++)
        if (dialogLexTable[i].state == LexEntryFree)
            return i;
    return -1;
}

i16 findLexEntry(const char *name)
{
    for (i16 i = 0; i < MaxLexicons; i++)
        if (dialogLexTable[i].state != LexEntryFree && StrCompareNoCase(dialogLexTable[i].name, orEmpty(name)) == 0)
            return i;
    return -1;
}

i32 lookupPair(const i32 (*pairs)[2], i32 count, i32 key)
{
    for (i32 i = 0; i < count; i++)
        if (pairs[i][0] == key)
            return pairs[i][1];
    return -1;
}

/* Opens each lexicon of the list `listKey` into a free entry of kind
 * `state`; a name without a folder is looked for in `folder`. */
static void openListedLexicons(const char *listKey, const char *folder, u32 state)
{
    char list[LexListSize];
    char item[ListItemSize];
    char path[PathSize];
    Profile_GetString(listKey, state == LexEntryUser ? ProfileUser : ProfileMachine, "", list, sizeof list);
    for (const char *rest = nextListItem(list, item, sizeof item); rest;
         rest = nextListItem(rest, item, sizeof item)) {
        i16 entry = findFreeLexEntry();
        if (entry < 0) {
            /* all 32 slots of the session are taken: the item is left out,
             * and the table stays as it is */
            dialogLog("startSharedSession: no room for lexicon %s", item);
            continue;
        }
        if (StrFindChar(item, '/'))
            StrCopy(path, sizeof path, item);
        else
            snprintf(path, sizeof path, "%s/%s", folder, item);
        i16 lex = ORTO_OpenLex(sharedSid, path, 0);
        if (lex < 0) {
            waitCursor(0);
            dialogMessage(nullptr, "ErrorOpeningLexStr", "Error opening dictionary file %s", nullptr, nullptr,
                          path, nullptr);
            waitCursor(1);
        }
        DialogLexEntry *e = &dialogLexTable[entry];
        StrCopy(e->name, sizeof e->name, item);
        e->lexId = lex;
        e->state = state;
    }
}

i16 startSharedSession(void)
{
    if (sharedSid >= 0)
        return 0;
    waitCursor(1);
    Profile_GetString("DebugFile", ProfileMachine, "", debugFile, sizeof debugFile);
    ORTO_SetDebugFile(debugFile);
    dialogLog("client id %ld", (long)fileProcessId());
    for (DialogLexEntry &e : dialogLexTable)
        e.state = LexEntryFree;

    sharedSid = ORTO_OpenSession();
    if (sharedSid < 0) {
        i16 rc = sharedSid;
        dialogLog("%hd error opening session", rc);
        waitCursor(0);
        return rc;
    }
    i16 entry = findFreeLexEntry();
    i16 temp = ORTO_CreateLex(sharedSid, nullptr, ORTO_LangAny);
    if (temp < 0) {
        /* the session stays open without a temporary lexicon, and without
         * what the store says, until a stop */
        dialogLog("%hd error opening temp lexicon", temp);
        waitCursor(0);
        return temp;
    }
    dialogLexTable[entry].name[0] = 0;
    dialogLexTable[entry].lexId = temp;
    dialogLexTable[entry].state = LexEntryTemporary;

    Profile_GetString("MainLexPath", ProfileMachine, "", mainLexPath, sizeof mainLexPath);
    if (!mainLexPath[0])
        Profile_GetString("LexPath", ProfileMachine, ".", mainLexPath, sizeof mainLexPath);
    Profile_GetString("UserLexPath", ProfileUser, mainLexPath, userLexPath, sizeof userLexPath);
    openListedLexicons("UserLexFiles", userLexPath, LexEntryUser);
    openListedLexicons("MainLexFiles", mainLexPath, LexEntryMain);

    for (const StoredOption &o : storedOptions)
        ORTO_SetOption(sharedSid, o.bit, (u32)Profile_GetInt(o.key, ProfileUser, o.startDefault));
    minSuggestDepth = (i16)Profile_GetInt("MinSuggestDepth", ProfileUser, 50);
    autoCorrect = Profile_GetInt("AutoCorrect", ProfileUser, 1);
    ORTO_SetOption(sharedSid, ORTO_Language, (u32)Profile_GetInt("Language", ProfileUser, ORTO_LangAmerican));
    Profile_GetString("HelpFile", ProfileMachine, "orto.hlp", helpFile, sizeof helpFile);
    Profile_GetString("StringTableName", ProfileUser, "English", stringTableName, sizeof stringTableName);
    waitCursor(0);
    return 0;
}

void stopSharedSession(void)
{
    if (sharedSid < 0)
        return;
    for (DialogLexEntry &e : dialogLexTable) {
        if (e.state != LexEntryFree && e.lexId >= 0) {
            ORTO_CloseLex(sharedSid, e.lexId);
            e.state = LexEntryFree;
            e.lexId = -1;
        }
    }
    for (const StoredOption &o : storedOptions)
        Profile_SetInt(o.key, ProfileUser, ORTO_GetOption(sharedSid, o.bit));
    Profile_SetInt("Language", ProfileUser, ORTO_GetOption(sharedSid, ORTO_Language));
    ORTO_CloseSession(sharedSid);
    sharedSid = -1;
}

/* The library's detach: a process that ends normally (or unloads the
 * library) gets the options of its dialogs into the store. */
__attribute__((destructor)) static void libraryDetach(void)
{
    stopSharedSession();
}
