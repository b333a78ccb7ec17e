/* PLACEHOLDER until the text lexicon file layer lands: no file-backed
 * lexicon can be made yet, so none of these is reached but TLex_CreateFile. */
#include "lexicon/tlex_file.h"
#include "orto.h"

i16 TLex_WriteFile(TLex *) { return ORTO_Unsupported; }
i16 syncLexFile(TLex *) { return ORTO_Unsupported; }
i16 lockFile(const char *) { return ORTO_WriteError; }
void unlockFile(i16) {}
void TLex_StampFile(TLex *) {}
i16 TLex_CreateFile(TLex *) { return ORTO_Unsupported; }
