/*
 * shared_api.cpp -- the exported calls on the shared session: its id, the
 * statistics of the last check dialog, the temporary lexicon, two options
 * of the dialogs, and the ids of the dialogs' lexicons.
 */
#include "engine/string_helpers.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"

extern "C" int16_t ORTO_GetSid(void)
{
    i16 rc = startSharedSession();
    return rc < 0 ? rc : sharedSid;
}

extern "C" void ORTO_GetStatistics(uint32_t *checked, uint32_t *changed, uint32_t *found)
{
    if (checked)
        *checked = wordsChecked;
    if (changed)
        *changed = wordsChanged;
    if (found)
        *found = errorsFound;
}

extern "C" int16_t ORTO_ResetLex(void)
{
    if (busyFlag)
        return ORTO_DialogActive;
    RETURN_IF_NEG(startSharedSession());
    for (const DialogLexEntry &e : dialogLexTable)
        if (e.state == LexEntryTemporary && e.lexId >= 0)
            ORTO_ClearLex(sharedSid, e.lexId);
    return 0;
}

/* The getters read the store with 0 as the default, where a start of the
 * session takes 1 and 50: a host learns what the store holds. */
extern "C" int32_t ORTO_GetAutoCorrect(void)
{
    autoCorrect = Profile_GetInt("AutoCorrect", ProfileUser, 0);
    return autoCorrect;
}

extern "C" int16_t ORTO_SetAutoCorrect(int16_t value)
{
    autoCorrect = value;
    Profile_SetInt("AutoCorrect", ProfileUser, value);
    return 0;
}

extern "C" int16_t ORTO_GetMinSuggestDepth(void)
{
    minSuggestDepth = (i16)Profile_GetInt("MinSuggestDepth", ProfileUser, 0);
    return minSuggestDepth;
}

extern "C" int16_t ORTO_SetMinSuggestDepth(int16_t depth)
{
    minSuggestDepth = depth;
    Profile_SetInt("MinSuggestDepth", ProfileUser, depth);
    return 0;
}

extern "C" int16_t ORTO_GetLexId(const char *name)
{
    RETURN_IF_NEG(startSharedSession());
    name = orEmpty(name);
    for (const DialogLexEntry &e : dialogLexTable) {
        if (e.state == LexEntryFree)
            continue;
        const char *slash = StrFindLastChar(e.name, '/');
        if (StrCompareNoCase(e.name, name) == 0 || (slash && StrCompareNoCase(slash + 1, name) == 0))
            return e.lexId;
    }
    dialogLog("ORTO_GetLexId: No such lexicon: %s", name);
    return ORTO_FileOpenError;
}
