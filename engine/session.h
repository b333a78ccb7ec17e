/*
 * session.h -- the session record, the process-wide table of sessions and
 * the id validation that every exported call makes first.
 */
#ifndef ORTO_ENGINE_SESSION_H
#define ORTO_ENGINE_SESSION_H

#include "engine/types.h"
#include "orto.h"

struct Lexicon;
struct Block;
struct LexSq;

/* One client's checking context.  It holds lexicons and blocks only through
 * pointers, so a copy by value with other option bits is a valid scratch
 * session for lookups. */
struct Session {
    Lexicon *lexSlots[MaxLexicons]; /* index is the lexicon id; null: free */
    Block *blockSlots[MaxBlocks];   /* index is the block id; null: free */
    u16 language;                   /* the session's LanguageCode */
    LexSq *compressor;              /* running lexicon compression, or null */
    u32 options;                    /* the option mask */
};

/* The sessions of the process, by id; null: free.  The engine reads and
 * writes the slots with atomic loads and stores (session.cpp). */
extern Session *SessionTable[MaxSessions];

/* The validation rule: each logs "<call>: bad session id %hd" (or lex,
 * block) and gives null on failure; the caller then returns its code. */
Session *sessionFromId(i16 sid, const char *call);
Lexicon *lexFromId(Session *session, i16 lex, const char *call);
Block *blockFromId(Session *session, i16 block, const char *call);

#endif
