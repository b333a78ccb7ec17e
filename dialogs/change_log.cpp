/*
 * change_log.cpp -- what the Check Spelling dialog changed in its block,
 * for Undo, and the mirror control that repeats each change where the
 * user sees the text.
 *
 * A record holds where a change was made, the text that stood there (a
 * replaced word, or a deleted word with the white space before it) and the
 * length of what stands there now, which is all an undo needs: delete the
 * new text, insert the old, and do the same in the mirror control.
 */
#include <stdlib.h>
#include <string.h>

#include "dialogs/check_dialog.h"
#include "engine/charclass.h"
#include "engine/debug_log.h"
#include "engine/string_helpers.h"
#include "host/shared_session.h"
#include "orto.h"

ChangeLog changeLog;

void startChangeLog(void)
{
    freeChangeLog();
    changeLog.records = (ChangeRecord *)malloc(ChangeLogStart * sizeof(ChangeRecord));
    changeLog.capacity = changeLog.records ? ChangeLogStart : 0;
}

void freeChangeLog(void)
{
    free(changeLog.records);
    changeLog = ChangeLog{nullptr, 0, 0};
}

/* A change that can't be logged has been made all the same: it stands,
 * and only Undo can't reach it. */
void logChange(u32 offset, const char *oldText, i16 newLen)
{
    if (changeLog.count == changeLog.capacity) {
        u32 capacity = changeLog.count + ChangeLogGrowth;
        ChangeRecord *grown = (ChangeRecord *)malloc(capacity * sizeof(ChangeRecord));
        if (!grown) {
            DebugLog("out of memory");
            return;
        }
        if (changeLog.count)
            memcpy(grown, changeLog.records, changeLog.count * sizeof(ChangeRecord));
        free(changeLog.records);
        changeLog.records = grown;
        changeLog.capacity = capacity;
    }
    ChangeRecord &r = changeLog.records[changeLog.count++];
    r.offset = offset;
    StrCopy(r.oldText, sizeof r.oldText, oldText);
    r.newLen = newLen;
}

void selectInMirror(u32 offset, u32 length)
{
    HWND mirror = checkParams ? checkParams->mirrorCtrl : nullptr;
    if (!mirror)
        return;
    u32 start = offset + checkParams->mirrorBase;
    SendMessageA(mirror, ORTO_EM_SETSEL, start, (intptr_t)(start + length));
    SendMessageA(mirror, ORTO_EM_SCROLLCARET, 0, 0);
}

int replaceInMirror(u32 offset, u32 oldLength, const char *newText)
{
    selectInMirror(offset, oldLength);
    HWND mirror = checkParams ? checkParams->mirrorCtrl : nullptr;
    if (!mirror)
        return 0;
    int64_t before = GetWindowTextLengthA(mirror);
    SendMessageA(mirror, ORTO_EM_REPLACESEL, 0, (intptr_t)newText);
    int64_t after = GetWindowTextLengthA(mirror);
    return after - before + (int64_t)oldLength == (int64_t)strlen(newText) ? 0 : -1;
}

int undoLastChange(void)
{
    if (changeLog.count == 0)
        return 0;
    ChangeRecord r = changeLog.records[--changeLog.count];
    i16 block = checkParams->block;
    ORTO_SetBlockCursor(sharedSid, block, r.offset);
    if (r.newLen > 0)
        ORTO_DelBlockText(sharedSid, block, (uint32_t)r.newLen);
    ORTO_InsertBlockText(sharedSid, block, r.oldText);
    /* A deleted word comes back behind its white space; the next check
     * must find the cursor on the word itself, where a replacement starts. */
    u32 lead = 0;
    while (r.oldText[lead] && !IsWordChar((unsigned char)r.oldText[lead]))
        lead++;
    if (lead > 0 && r.oldText[lead])
        ORTO_SetBlockCursor(sharedSid, block, r.offset + lead);
    i16 temp = tempLexId();
    if (temp >= 0) {
        char scratch[WordSize];
        if (ORTO_FindLexWord(sharedSid, temp, r.oldText, scratch, sizeof scratch) == ORTO_AutoChangePreserveCase)
            ORTO_DelFromLex(sharedSid, temp, r.oldText);
    }
    return replaceInMirror(r.offset, (u32)r.newLen, r.oldText) < 0 ? ORTO_BufferTooSmall : 0;
}
