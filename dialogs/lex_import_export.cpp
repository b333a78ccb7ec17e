/*
 * lex_import_export.cpp -- the Dictionaries dialog's Import and Export.
 *
 * Import takes every word of a text file as an Ignore entry, whatever else
 * the file says: a word is a run of word characters, "#" and ";" start a
 * comment to the end of the line, and a word longer than the reader's
 * buffer comes in pieces.  Export writes the lexicon's listing, one entry
 * a line as the word, a TAB, the action letter and the other word.
 *
 * Export never leaves half a file: the listing goes into a new file in the
 * same folder, which is pushed to the disk and renamed over the name.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <set>
#include <string>

#include "dialogs/dialog_look.h"
#include "dialogs/edit_lex_dialog.h"
#include "engine/charclass.h"
#include "host/dialog_services.h"
#include "host/profile.h"
#include "host/shared_session.h"
#include "orto.h"
#include "platform/file.h"

enum { ImportWordSize = 81, TempNameTries = 100 };

int readImportWord(FILE *file, char *word, int size)
{
    int c;
    for (;;) {
        c = getc(file);
        if (c == EOF)
            return -1;
        if (IsWordChar((unsigned char)c))
            break;
        if (c == '#' || c == ';')
            while ((c = getc(file)) != EOF && c != '\n') {
            }
    }
    int length = 0;
    while (c != EOF && IsWordChar((unsigned char)c) && length < size - 1) {
        word[length++] = (char)c;
        c = getc(file);
    }
    /* the byte that stopped the word is used up; behind a full buffer that
     * is one more byte, and the rest of the word comes next time */
    word[length] = '\0';
    return length;
}

static void cantOpen(HWND dialog, const char *path)
{
    dialogMessage(dialog, "ErrorOpeningFileStr", "Can't open %s", "EditLexiconStr", "Edit dictionary", path, nullptr);
}

void importWords(HWND dialog, i16 lexId)
{
    char path[PathSize] = "";
    if (!askForFile(dialog, false, "ImportFileFilterStr", importFileFilterDefault, "ImportFileStr",
                    "Import Dictionary",
                    ORTO_OFN_HIDEREADONLY | ORTO_OFN_NOCHANGEDIR | ORTO_OFN_PATHMUSTEXIST | ORTO_OFN_FILEMUSTEXIST,
                    "txt", path)) {
        updateLexControls(dialog);
        return;
    }
    FILE *file = fopen(path, "r");
    if (!file) {
        cantOpen(dialog, path);
        return;
    }
    waitCursor(1);
    /* A word met again would only rewrite its own entry unchanged; each
     * add rewrites the lexicon file, so a repeat is passed over. */
    std::set<std::string> added;
    char word[ImportWordSize];
    while (readImportWord(file, word, sizeof word) >= 0) {
        if (!added.insert(word).second)
            continue;
        i16 rc = ORTO_AddToLex(sharedSid, lexId, word, ORTO_Ignore, nullptr);
        if (rc < 0) {
            if (rc == ORTO_OutOfMemory)
                dialogMessage(dialog, "LexFullErrorStr", "Dictionary is full", "EditLexiconStr", "Edit dictionary",
                              nullptr, nullptr);
            else
                dialogMessage(dialog, "ErrorAddingWordStr", "Can't add word", "EditLexiconStr", "Edit dictionary",
                              nullptr, nullptr);
            fclose(file);
            waitCursor(0);
            return;
        }
    }
    fclose(file);
    waitCursor(0);
    reloadWordList(dialog);
    updateLexControls(dialog);
}

/* A new file beside `path` for the export, or -1; `temp` gets its name. */
static int createExportFile(const char *path, char *temp, size_t tempSize)
{
    for (int attempt = 0; attempt < TempNameTries; attempt++) {
        snprintf(temp, tempSize, "%s.%ld.%d.tmp", path, (long)fileProcessId(), attempt);
        int handle = fileCreateNew(temp, path);
        if (handle >= 0 || !fileLastErrorWasExists())
            return handle;
    }
    return -1;
}

/* The listing, one entry a line; an empty file if it can't be had. */
static bool writeListing(int handle, i16 lexId)
{
    uint32_t size = 0;
    if (ORTO_GetLexInfo(sharedSid, lexId, &size, nullptr, nullptr) != 0 || size == 0)
        return true;
    char *listing = (char *)malloc(size);
    if (!listing)
        return true;
    bool ok = true;
    std::string out;
    if (ORTO_GetLex(sharedSid, lexId, listing, size) < 0)
        listing[0] = '\0';
    for (char *entry = listing; *entry && ok; entry += strlen(entry) + 1) {
        out.append(entry);
        out.push_back('\n');
        if (out.size() >= 65536) {
            ok = fileWrite(handle, out.data(), (int32_t)out.size()) == (int32_t)out.size();
            out.clear();
        }
    }
    if (ok && !out.empty())
        ok = fileWrite(handle, out.data(), (int32_t)out.size()) == (int32_t)out.size();
    free(listing);
    return ok;
}

void exportWords(HWND dialog, i16 lexId)
{
    char path[PathSize] = "";
    if (!askForFile(dialog, true, "ImportFileFilterStr", importFileFilterDefault, "ExportFileStr",
                    "Export Dictionary",
                    ORTO_OFN_OVERWRITEPROMPT | ORTO_OFN_HIDEREADONLY | ORTO_OFN_NOCHANGEDIR | ORTO_OFN_PATHMUSTEXIST,
                    "txt", path))
        return;
    char temp[PathSize + 32];
    int handle = createExportFile(path, temp, sizeof temp);
    if (handle < 0) {
        cantOpen(dialog, path);
        return;
    }
    waitCursor(1);
    bool ok = writeListing(handle, lexId) && fileSync(handle) == 0;
    ok = fileClose(handle) == 0 && ok;
    if (ok && fileRename(temp, path) == 0) {
        fileSyncDir(path);
    } else {
        fileDelete(temp);
        cantOpen(dialog, path);
    }
    waitCursor(0);
}
