/*
 * cmd_lsp.cpp -- `orto lsp`: a language server on standard input and
 * output, for editors that speak the Language Server Protocol.
 *
 * One loop reads a message, dispatches it by a table of methods, and
 * checks the lines that edits left unchecked whenever no message waits,
 * a few hundred lines at a time, publishing each document whose lines are
 * all checked.  So diagnostics follow a burst of typing once, and a long
 * check gives way to the messages that come in meanwhile.
 *
 * Bad input never ends the server: a body that isn't JSON gets a
 * ParseError, a request before initialize ServerNotInitialized, an
 * unknown request MethodNotFound, and what can't be used in a
 * notification is logged by window/logMessage and dropped.
 */
#include <ctype.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "lsp.h"
#include "orto.h"

void printLspHelp(FILE *out)
{
    fputs("Usage: orto lsp [--stdio] [OPTION]...\n"
          "\n"
          "Runs a language server (LSP 3.17) on standard input and output, for\n"
          "editors such as Neovim, Helix, VS Code and Emacs (eglot).  It reports\n"
          "misspelled, doubled and miscapitalised words as diagnostics, and offers\n"
          "suggestions, \"Add to personal dictionary\", \"Add to project dictionary\"\n"
          "and \"Ignore in this session\" as code actions.  Markdown is checked\n"
          "without code, URLs, link targets, HTML tags and front matter; source code\n"
          "only in comments and strings.  The options give the defaults, which the\n"
          "editor's settings (initializationOptions, didChangeConfiguration)\n"
          "override: lexicons, personalDictionary, projectDictionary (a file in the\n"
          "workspace folder, default .orto-words.tlx), options, languages,\n"
          "severity, maxSuggestions.  --stdio is accepted and changes nothing.\n"
          "\n",
          out);
    printCheckOptionsHelp(out);
}

/* file:///a/b%20c -> /a/b c */
static std::string pathOfUri(const std::string &uri)
{
    if (uri.compare(0, 7, "file://") != 0)
        return std::string();
    std::string path;
    for (size_t i = 7; i < uri.size(); i++) {
        if (uri[i] == '%' && i + 2 < uri.size() && isxdigit((unsigned char)uri[i + 1]) &&
            isxdigit((unsigned char)uri[i + 2])) {
            path.push_back((char)strtol(uri.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            path.push_back(uri[i]);
        }
    }
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

static std::string workspaceRoot(const Json &params)
{
    std::string uri, path;
    const Json *folders = member(params, "workspaceFolders");
    if (folders && folders->is_array() && !folders->empty() && stringMember((*folders)[0], "uri", &uri))
        return pathOfUri(uri);
    if (stringMember(params, "rootUri", &uri))
        return pathOfUri(uri);
    if (stringMember(params, "rootPath", &path))
        return path;
    return std::string();
}

static PositionEncoding chooseEncoding(const Json &params, const char **name)
{
    const Json *capabilities = member(params, "capabilities");
    const Json *general = capabilities ? member(*capabilities, "general") : nullptr;
    const Json *offered = general ? member(*general, "positionEncodings") : nullptr;
    static const char *const Names[] = {"utf-8", "utf-32"};
    static const PositionEncoding Encodings[] = {PositionUtf8, PositionUtf32};
    for (int i = 0; i < 2 && offered && offered->is_array(); i++)
        for (const Json &e : *offered)
            if (e.is_string() && e.get_ref<const std::string &>() == Names[i]) {
                *name = Names[i];
                return Encodings[i];
            }
    *name = "utf-16";
    return PositionUtf16;
}

static bool languageChecked(const Server &s, const std::string &languageId)
{
    if (s.settings.languages.empty())
        return true;
    for (const std::string &l : s.settings.languages)
        if (l == languageId)
            return true;
    return false;
}

static void onInitialize(Server *s, const Json *id, const Json &params)
{
    if (s->initialized) {
        sendError(&s->io, *id, RpcInvalidRequest, "initialize was received already");
        return;
    }
    const char *encoding;
    s->encoding = chooseEncoding(params, &encoding);
    s->root = workspaceRoot(params);
    if (const Json *options = member(params, "initializationOptions"))
        s->initOptions = *options;
    s->initialized = true;
    applySettings(s);
    char version[16];
    ORTO_Version(version, sizeof version);
    Json capabilities = {
        {"positionEncoding", encoding},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}, {"save", {{"includeText", false}}}}},
        {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}},
        {"executeCommandProvider", {{"commands", {ServerCommands[0], ServerCommands[1], ServerCommands[2]}}}},
    };
    sendResult(&s->io, *id, Json{{"capabilities", capabilities}, {"serverInfo", {{"name", "orto"}, {"version", version}}}});
}

static void onShutdown(Server *s, const Json *id, const Json &)
{
    s->shutdown = true;
    sendResult(&s->io, *id, nullptr);
}

static void onDidOpen(Server *s, const Json *, const Json &params)
{
    const Json *item = member(params, "textDocument");
    std::string uri, text;
    if (!item || !stringMember(*item, "uri", &uri) || !stringMember(*item, "text", &text)) {
        logMessage(&s->io, MessageWarning, "didOpen without a uri or a text");
        return;
    }
    Document &doc = s->documents[uri];
    doc.uri = uri;
    doc.languageId.clear();
    stringMember(*item, "languageId", &doc.languageId);
    doc.version = 0;
    intMember(*item, "version", &doc.version);
    doc.enabled = languageChecked(*s, doc.languageId);
    chooseScope(&doc);
    setDocumentText(&doc, text);
}

static Document *openDocument(Server *s, const Json &params, const char *method)
{
    const Json *item = member(params, "textDocument");
    std::string uri;
    if (!item || !stringMember(*item, "uri", &uri)) {
        logMessage(&s->io, MessageWarning, std::string(method) + " without a uri");
        return nullptr;
    }
    auto found = s->documents.find(uri);
    if (found == s->documents.end()) {
        logMessage(&s->io, MessageWarning, std::string(method) + " for " + uri + ", which isn't open");
        return nullptr;
    }
    return &found->second;
}

static void onDidChange(Server *s, const Json *, const Json &params)
{
    Document *doc = openDocument(s, params, "didChange");
    const Json *changes = member(params, "contentChanges");
    if (!doc)
        return;
    if (!changes || !changes->is_array()) {
        logMessage(&s->io, MessageWarning, "didChange without contentChanges");
        return;
    }
    intMember(*member(params, "textDocument"), "version", &doc->version);
    for (const Json &change : *changes) {
        std::string note;
        applyChange(doc, change, s->encoding, &note);
        if (!note.empty())
            logMessage(&s->io, MessageWarning, doc->uri + ": " + note);
    }
}

static void onDidSave(Server *s, const Json *, const Json &params)
{
    std::string text;
    Document *doc = openDocument(s, params, "didSave");
    if (doc && stringMember(params, "text", &text))
        setDocumentText(doc, text);
}

static void onDidClose(Server *s, const Json *, const Json &params)
{
    Document *doc = openDocument(s, params, "didClose");
    if (!doc)
        return;
    sendNotification(&s->io, "textDocument/publishDiagnostics",
                     Json{{"uri", doc->uri}, {"diagnostics", Json::array()}});
    s->documents.erase(doc->uri);
}

static void onDidChangeConfiguration(Server *s, const Json *, const Json &params)
{
    const Json *settings = member(params, "settings");
    if (!settings || settings->is_null())
        return;
    const Json *orto = member(*settings, "orto");
    const Json &layer = orto && orto->is_object() ? *orto : *settings;
    if (!layer.is_object()) {
        showMessage(&s->io, MessageWarning, "the settings must be a JSON object");
        return;
    }
    if (!s->configuration.is_object())
        s->configuration = Json::object();
    for (auto it = layer.begin(); it != layer.end(); ++it)
        s->configuration[it.key()] = it.value();
    if (!applySettings(s))
        return;
    for (auto &entry : s->documents) {
        entry.second.enabled = languageChecked(*s, entry.second.languageId);
        invalidateDocument(&entry.second, true);
    }
}

static void onCodeAction(Server *s, const Json *id, const Json &params)
{
    bool cancelled;
    Json actions = codeActions(s, *id, params, &cancelled);
    if (cancelled)
        sendError(&s->io, *id, RpcRequestCancelled, "cancelled");
    else
        sendResult(&s->io, *id, actions);
}

static void onExecuteCommand(Server *s, const Json *id, const Json &params)
{
    std::string error;
    if (executeCommand(s, params, &error))
        sendResult(&s->io, *id, nullptr);
    else
        sendError(&s->io, *id, RpcInvalidParams, error);
}

static void ignoreMessage(Server *, const Json *, const Json &)
{
}

struct Method {
    const char *name;
    bool request; /* answered; else a notification */
    void (*run)(Server *s, const Json *id, const Json &params);
};

static const Method Methods[] = {
    {"initialize", true, onInitialize},
    {"initialized", false, ignoreMessage},
    {"shutdown", true, onShutdown},
    {"textDocument/didOpen", false, onDidOpen},
    {"textDocument/didChange", false, onDidChange},
    {"textDocument/didSave", false, onDidSave},
    {"textDocument/didClose", false, onDidClose},
    {"workspace/didChangeConfiguration", false, onDidChangeConfiguration},
    {"textDocument/codeAction", true, onCodeAction},
    {"workspace/executeCommand", true, onExecuteCommand},
    {"$/cancelRequest", false, ignoreMessage}, /* its request was answered already */
};

static void dispatch(Server *s, const Incoming &in)
{
    static const Json NoId;
    if (!in.error.empty()) {
        logMessage(&s->io, MessageError, "a message can't be read: " + in.error);
        sendError(&s->io, NoId, RpcParseError, "Parse error: " + in.error);
        return;
    }
    const Json &m = in.message;
    const Json *id = member(m, "id");
    std::string name;
    if (!stringMember(m, "method", &name)) {
        if (id && (member(m, "result") || member(m, "error")))
            return; /* an answer, though the server asks nothing */
        sendError(&s->io, id && (id->is_string() || id->is_number_integer()) ? *id : NoId, RpcInvalidRequest,
                  "a message needs a method");
        return;
    }
    if (id && !id->is_string() && !id->is_number_integer()) {
        sendError(&s->io, NoId, RpcInvalidRequest, "a request id is a number or a string");
        return;
    }
    if (name == "exit") {
        s->exitRequested = true;
        return;
    }
    if (!s->initialized && name != "initialize") {
        if (id)
            sendError(&s->io, *id, RpcServerNotInitialized, "the server is not initialized");
        return;
    }
    if (s->shutdown && id) {
        sendError(&s->io, *id, RpcInvalidRequest, "the server is shutting down");
        return;
    }
    const Method *method = nullptr;
    for (const Method &candidate : Methods)
        if (name == candidate.name)
            method = &candidate;
    if (!method || method->request != (id != nullptr)) {
        if (id)
            sendError(&s->io, *id, RpcMethodNotFound, "no method " + name);
        return;
    }
    if (id && takeCancel(&s->io, *id)) {
        sendError(&s->io, *id, RpcRequestCancelled, "cancelled");
        return;
    }
    const Json *params = member(m, "params");
    static const Json NoParams = Json::object();
    /* the JSON library reports misuse by exceptions; one that a message
     * trips answers that message and no more */
    try {
        method->run(s, id, params ? *params : NoParams);
    } catch (const std::exception &e) {
        logMessage(&s->io, MessageError, name + " failed: " + e.what());
        if (id)
            sendError(&s->io, *id, RpcInternalError, e.what());
    }
}

static bool anyUnpublished(const Server &s)
{
    for (const auto &entry : s.documents)
        if (!entry.second.published)
            return true;
    return false;
}

int runLsp(int argc, char **argv, int first)
{
    Server s;
    s.encoding = PositionUtf16;
    s.initialized = s.shutdown = s.exitRequested = false;
    s.haveLexicons = false;
    s.projectLex = -1;
    s.projectIsWordList = false;
    s.projectUtf8 = true;
    initCheckOptions(&s.startOptions);
    s.startOptions.maxSuggestions = 5; /* a menu, not a list */
    std::vector<char *> args(argv, argv + argc);
    args.erase(std::remove_if(args.begin() + first, args.end(),
                              [](const char *a) { return strcmp(a, "--stdio") == 0; }),
               args.end());
    if (!parseCheckOptions((int)args.size(), args.data(), first, "lsp", &s.startOptions))
        return ExitUsage;
    if (s.startOptions.help) {
        printLspHelp(stdout);
        return ExitOk;
    }
    if (!s.startOptions.operands.empty()) {
        printError("lsp takes no file (try 'orto lsp --help')");
        return ExitUsage;
    }
    /* the server doubles words across lines, which editors' users expect */
    s.startOptions.settings.insert(s.startOptions.settings.begin(), OptionSetting{ORTO_ReportDoubledWords, 1});
    s.settings.check = s.startOptions;
    for (int &k : s.settings.severity)
        k = 0;
    signal(SIGPIPE, SIG_IGN);
    initTransport(&s.io, 0, 1);

    static const size_t LinesPerTurn = 500;
    while (!s.exitRequested && !s.io.broken) {
        Incoming in;
        if (nextMessage(&s.io, &in, !anyUnpublished(s))) {
            dispatch(&s, in);
            continue;
        }
        if (s.io.eof)
            break;
        checkSome(&s, LinesPerTurn);
    }
    closeServerLexicons(&s);
    return s.shutdown ? ExitOk : ExitFailure;
}
