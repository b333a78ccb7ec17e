/* The public header compiles as C99 and the shared library answers through
 * it: a small host written in C. */
#include <stdio.h>
#include <string.h>

#include "orto.h"

int main(void)
{
    char version[8];
    char replacement[64];
    int16_t sid, lex;
    ORTO_Version(version, sizeof version);
    if (strcmp(version, "5.1") != 0) {
        fprintf(stderr, "version %s\n", version);
        return 1;
    }
    sid = ORTO_OpenSession();
    if (sid < 0)
        return 2;
    lex = ORTO_CreateLex(sid, NULL, ORTO_LangAny);
    if (lex < 0 || ORTO_AddToLex(sid, lex, "teh", ORTO_AutoChangePreserveCase, "the") != 0)
        return 3;
    if (ORTO_CheckWord(sid, "Teh", replacement, sizeof replacement) != ORTO_AutoChangeWord ||
        strcmp(replacement, "The") != 0)
        return 4;
    if (ORTO_CheckWord(sid, "xyzzy", NULL, 0) != ORTO_MisspelledWord)
        return 5;
    if (ORTO_CloseSession(sid) != 0 || ORTO_CheckWord(sid, "a", NULL, 0) != ORTO_BadSessionId)
        return 6;
    puts("C host: ok");
    return 0;
}
