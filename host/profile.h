/*
 * profile.h -- the settings store of the dialogs: named strings and
 * integers in two scopes, and the string table of the texts they show.
 *
 * On this system the store is one INI file (there is no registry): the
 * section "ORTO" holds the machine scope, "ORTO User" the user scope, and
 * the section named by `stringTableName` the string table.  Reads never
 * fail (a missing key gives the caller's default); writes fail in silence.
 */
#ifndef ORTO_HOST_PROFILE_H
#define ORTO_HOST_PROFILE_H

#include "engine/types.h"

enum ProfileScope {
    ProfileMachine = 0,  /* section "ORTO" */
    ProfileUser = 1      /* section "ORTO User" */
};

enum { StringTableNameSize = 256 };

extern char iniFile[PathSize];                       /* the store's file; empty: not found out yet */
extern char regTreeName[PathSize];                   /* kept for ORTO_GetRegTreeName; no store reads it here */
extern char stringTableName[StringTableNameSize];   /* section of the string table */

/* True if the registry is the store: never on this system. */
bool Profile_UsesRegistry(void);
/* Makes sure that `iniFile` names the store's file. */
void Profile_IniPath(void);

/* The value of `key` in `scope` into `buffer` (cut to `size` - 1), or
 * `defaultValue`.  A null buffer or size 0 gets nothing. */
void Profile_GetString(const char *key, int scope, const char *defaultValue, char *buffer, u16 size);
/* The value read as a decimal number (blanks first, a sign, digits up to
 * the first other character), or `defaultValue` if the key is missing. */
i32 Profile_GetInt(const char *key, int scope, i32 defaultValue);
void Profile_SetString(const char *key, int scope, const char *value);
/* Written as an unsigned number ("%lu"); Profile_GetInt reads it back to
 * the same 32 bits. */
void Profile_SetInt(const char *key, int scope, i32 value);
/* The text of string id `id` in the string table, or `defaultValue`. */
void Profile_GetText(const char *id, const char *defaultValue, char *buffer, u16 size);

/* Copies the next item of a comma-separated lexicon list into `item` (at
 * most `itemSize` - 1 characters; a longer item goes on as the next one)
 * and gives back where the rest of the list starts, or null when the list
 * is used up (`item` then untouched). */
const char *nextListItem(const char *list, char *item, u16 itemSize);

#endif
