/*
 * suggestion_list.cpp -- addSuggestion, the one way into the working list.
 *
 * The list stays sorted by score, highest first; a newcomer goes behind
 * every entry of its own score, so that among equals the first to arrive
 * stays first.  A text that is in the list already is refused, whatever its
 * new score: the walk that found it first keeps it.  Entries are fixed
 * 64-byte records, so making room is one block move and never allocates.
 */
#include "suggest/suggest.h"

#include <string.h>

#include "engine/string_helpers.h"

void addSuggestion(const char *text, i16 score, SuggestionList *list)
{
    if (list->capacity == 0)
        return;
    bool full = list->count >= list->capacity;
    /* before any comparison of text: this is what keeps bad candidates cheap */
    if (full && list->entries[list->count - 1].score >= score)
        return;

    u16 place = 0;
    while (place < list->count && list->entries[place].score >= score)
        place++;

    /* compared as it would be stored, cut to 63 characters, so that the
     * list never holds one text twice */
    for (u16 i = 0; i < list->count; i++)
        if (strncmp(list->entries[i].word, text, WordSize - 1) == 0)
            return;

    u16 moved = full ? (u16)(list->count - 1 - place) : (u16)(list->count - place);
    memmove(&list->entries[place + 1], &list->entries[place], moved * sizeof(SuggestionEntry));
    StrCopy(list->entries[place].word, WordSize, text);
    list->entries[place].score = score;
    if (!full)
        list->count++;
}
