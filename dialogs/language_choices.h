/*
 * language_choices.h -- the languages a lexicon can have, in the order of
 * the New Dictionary dialog's language box, with the string ids and
 * default texts of their names.
 */
#ifndef ORTO_DIALOGS_LANGUAGE_CHOICES_H
#define ORTO_DIALOGS_LANGUAGE_CHOICES_H

#include "engine/types.h"

struct LanguageChoice {
    u16 code;                     /* two letters, the first in the high byte */
    const char *stringId;
    const char *defaultText;
};

enum { LanguageChoiceCount = 20, LanguageNameSize = 51 };
extern const LanguageChoice LanguageChoices[LanguageChoiceCount];

/* The name of a language as the Dictionaries dialog shows it (51 bytes):
 * the table's text, or that of "Any" for a code not in the table. */
void languageName(u16 code, char *buffer, u16 size);

#endif
