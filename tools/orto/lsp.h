/*
 * lsp.h -- what the parts of `orto lsp`, the language server, share.
 *
 * The server keeps each open document as lines.  A line carries its text
 * as the client sent it (UTF-8), the engine text of what is to be checked
 * in it (lsp_scope.cpp hides code, URLs and the like by a punctuation
 * byte, so that positions stay character positions of the line), and the
 * problems found in it.  An edit marks the lines it touched; the main loop
 * checks marked lines when no message is waiting and publishes a document
 * once all its lines are checked.  So a one-character change costs the
 * check of one or two lines, and a burst of changes costs one check.
 */
#ifndef ORTO_LSP_H
#define ORTO_LSP_H

#include <stdint.h>

#include <deque>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "lexicons.h"
#include "program.h"

typedef nlohmann::json Json;

/* Error codes of JSON-RPC and of the protocol. */
enum {
    RpcParseError = -32700,
    RpcInvalidRequest = -32600,
    RpcMethodNotFound = -32601,
    RpcInvalidParams = -32602,
    RpcInternalError = -32603,
    RpcServerNotInitialized = -32002,
    RpcRequestCancelled = -32800,
};

/* window/logMessage and window/showMessage types. */
enum { MessageError = 1, MessageWarning = 2, MessageInfo = 3, MessageLog = 4 };

/* ---- lsp_transport.cpp: messages with Content-Length framing. ---- */

struct Incoming {
    Json message;       /* the parsed message; null when `error` is set */
    std::string error;  /* why the body couldn't be read as JSON */
};

struct Transport {
    int in, out;                 /* file descriptors */
    std::string buffer;          /* bytes read and not yet taken as messages */
    size_t scanned;              /* bytes of `buffer` known to hold no header end */
    std::deque<Incoming> queue;  /* messages read ahead of their turn */
    std::vector<std::string> notes; /* framing trouble to log */
    bool eof;                    /* the input has ended */
    bool broken;                 /* the output can't be written any more */
};

void initTransport(Transport *t, int in, int out);

/* The next message: from the queue, else from the input, waiting for it
 * when `wait` is set.  False when none is there (or the input ended). */
bool nextMessage(Transport *t, Incoming *m, bool wait);

/* Reads what the input holds without waiting, into the queue. */
void pumpInput(Transport *t);

/* True, and the notification taken from the queue, when the input holds a
 * $/cancelRequest for request `id`. */
bool takeCancel(Transport *t, const Json &id);

void sendMessage(Transport *t, const Json &message);
void sendBody(Transport *t, const std::string &body);
void sendResult(Transport *t, const Json &id, const Json &result);
void sendError(Transport *t, const Json &id, int code, const std::string &text);
void sendNotification(Transport *t, const char *method, const Json &params);
void logMessage(Transport *t, int type, const std::string &text);
void showMessage(Transport *t, int type, const std::string &text);

/* ---- JSON access that never throws: a missing member or one of another
 * type reads as absent. ---- */

const Json *member(const Json &object, const char *key);
bool stringMember(const Json &object, const char *key, std::string *out);
bool intMember(const Json &object, const char *key, int64_t *out);

/* ---- lsp_document.cpp: documents as lines, positions, edits. ---- */

enum PositionEncoding { PositionUtf8, PositionUtf16, PositionUtf32 };

enum ProblemKind { KindMisspelled, KindChange, KindCapitalization, KindDoubled, ProblemKinds };

struct Problem {
    uint32_t start, end;     /* character positions in the line */
    ProblemKind kind;
    std::string word;        /* UTF-8 */
    std::string replacement; /* UTF-8; what the check puts in the word's place, for
                                KindChange and KindCapitalization */
};

struct Line {
    std::string text;              /* UTF-8, without its line end */
    std::string engine;            /* engine text of the line, hidden parts as punctuation */
    uint32_t entryState, exitState; /* the scanner state at its start and end */
    bool scanned;                  /* `engine` and `exitState` are up to date */
    bool checked;                  /* `problems` are up to date */
    std::vector<Problem> problems;
    std::string published;         /* its diagnostics as serialised JSON, comma-separated */
    size_t publishedAs;            /* the line number in `published`; SIZE_MAX when stale */
};

enum ScopeKind { ScopePlain, ScopeMarkdown, ScopeCode };
struct CodeSyntax;

struct Document {
    std::string uri;
    std::string languageId;
    int64_t version;
    ScopeKind scope;
    const CodeSyntax *syntax;   /* for ScopeCode */
    bool enabled;               /* its languageId is checked at all */
    bool published;             /* the client has its current diagnostics */
    std::vector<Line> lines;
};

/* Sets the whole text. */
void setDocumentText(Document *doc, const std::string &text);

/* Applies one change of didChange: a range and its new text, or without
 * a range the whole text.  Positions past a line's end or the document's
 * end are taken back to that end (as the protocol says for the column);
 * `note` then tells what was out of range. */
void applyChange(Document *doc, const Json &change, PositionEncoding encoding, std::string *note);

/* The column of character `offset` of `line` in the client's units. */
uint32_t clientColumn(const Line &line, uint32_t offset, PositionEncoding encoding);

/* The character position of a client column in `line`, clamped. */
uint32_t characterAt(const Line &line, int64_t column, PositionEncoding encoding);

/* Makes `engine` and the states right from line `from` on, as far as a
 * change reaches; lines whose engine text changed, and the line after each
 * (whose doubled-word test looks back), lose their check. */
void rescanFrom(Document *doc, size_t from);

/* Marks every line to be checked (and scanned, with `rescan`) again. */
void invalidateDocument(Document *doc, bool rescan);

/* ---- lsp_scope.cpp: what of a line is checked, by languageId. ---- */

/* Sets doc->scope and doc->syntax for its languageId. */
void chooseScope(Document *doc);

/* Hides in `engine` (the line's engine text) what isn't checked, and
 * returns the state for the next line. */
uint32_t scanLine(const Document &doc, size_t lineIndex, uint32_t state, std::string *engine);

/* True when line `i` ends a block of text, so that the next line's first
 * word doesn't follow its last one (a Markdown heading). */
bool endsBlock(const Document &doc, size_t i);

/* The punctuation byte that stands for a hidden character. */
const char HiddenByte = '|';

/* ---- settings and the lexicons of the server (lsp_settings.cpp). ---- */

struct ServerSettings {
    CheckOptions check;                  /* lexicons, personal path, option bits, depth, max */
    std::string projectName;             /* the project dictionary: a path from the root */
    std::vector<std::string> languages;  /* languageIds checked; empty for all */
    int severity[ProblemKinds];          /* DiagnosticSeverity, 1..4 */
};

struct Server {
    Transport io;
    PositionEncoding encoding;
    bool initialized;            /* initialize has been answered */
    bool shutdown;               /* shutdown has been answered */
    bool exitRequested;
    CheckOptions startOptions;   /* what the command line gave */
    Json initOptions;            /* initializationOptions */
    Json configuration;          /* the settings of didChangeConfiguration, merged */
    ServerSettings settings;
    std::vector<std::string> warnings; /* about the settings in force, shown once */
    bool haveLexicons;
    LexiconSet lexicons;
    std::string root;            /* the workspace folder; empty when none */
    std::string projectPath;     /* the project dictionary's file; empty without root */
    int16_t projectLex;          /* -1 while not open */
    bool projectIsWordList;      /* LF word list read by the program: adds append lines */
    bool projectUtf8;            /* ... in UTF-8 */
    std::vector<std::string> ignored; /* words ignored in this session (engine text) */
    std::map<std::string, Document> documents;
    std::string publishing;      /* the last publishDiagnostics; its room is kept */
};

/* Reads the settings from the command line, initializationOptions and the
 * latest configuration, warns about bad ones, and (re)opens the lexicons
 * if what they depend on changed.  True when the checks may have changed. */
bool applySettings(Server *s);

/* Adds `word` (engine text) to the personal or project dictionary, or
 * ignores it for the session.  False, with a message to the user, when it
 * can't be done. */
bool addToPersonalDictionary(Server *s, const std::string &word);
bool addToProjectDictionary(Server *s, const std::string &word);
bool ignoreForSession(Server *s, const std::string &word);

void closeServerLexicons(Server *s);

/* ---- lsp_check.cpp: checking lines and publishing diagnostics. ---- */

/* Checks line `i` of `doc` if it isn't checked. */
void checkLine(Server *s, Document *doc, size_t i);

/* True when some line of `doc` waits for its check. */
bool needsCheck(const Document &doc);

/* Checks at most `budget` lines of the documents, publishing each document
 * whose lines are all checked; returns the lines left for the budget. */
size_t checkSome(Server *s, size_t budget);

/* Checks everything that waits and publishes every document that isn't. */
void checkAndPublishAll(Server *s);

void publishDiagnostics(Server *s, Document *doc);

/* The diagnostic of a problem on line `lineIndex`. */
Json diagnosticJson(const Server &s, const Line &line, size_t lineIndex, const Problem &p);

/* ---- lsp_actions.cpp: code actions and the commands they carry. ---- */

Json codeActions(Server *s, const Json &id, const Json &params, bool *cancelled);

/* Runs workspace/executeCommand; false with `error` for a bad request. */
bool executeCommand(Server *s, const Json &params, std::string *error);

/* The commands that executeCommand takes. */
extern const char *const ServerCommands[3];

#endif
