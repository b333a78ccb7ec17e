/*
 * lsp_actions.cpp -- quick fixes for the problems under the cursor, and
 * the commands that add a word to a dictionary or ignore it.
 *
 * Replacements are edits the client applies; adding and ignoring are
 * commands the client sends back through workspace/executeCommand, since
 * they change the server's lexicons and not the text.  Suggestions come
 * from the program's own suggestion helpers, so that the server offers
 * what `orto -a` offers, in the same order.  A word added or ignored can
 * only clear problems, so after one only the lines with problems are
 * checked again; then every open document is published, before the
 * command is answered.
 */
#include "lsp.h"
#include "orto.h"
#include "suggestions.h"

const char *const ServerCommands[3] = {"orto.addToPersonalDictionary", "orto.addToProjectDictionary",
                                       "orto.ignoreInSession"};

static Json rangeJson(const Server &s, const Line &line, size_t lineIndex, uint32_t start, uint32_t end)
{
    return Json{{"start", {{"line", lineIndex}, {"character", clientColumn(line, start, s.encoding)}}},
                {"end", {{"line", lineIndex}, {"character", clientColumn(line, end, s.encoding)}}}};
}

static Json editAction(const std::string &title, const std::string &uri, const Json &range,
                       const std::string &newText, const Json &diagnostic, bool preferred)
{
    Json edit = {{"range", range}, {"newText", newText}};
    Json action = {{"title", title},
                   {"kind", "quickfix"},
                   {"diagnostics", Json::array({diagnostic})},
                   {"edit", {{"changes", {{uri, Json::array({edit})}}}}}};
    if (preferred)
        action["isPreferred"] = true;
    return action;
}

static Json commandAction(const std::string &title, const char *command, const std::string &word,
                          const Json &diagnostic)
{
    return Json{{"title", title},
                {"kind", "quickfix"},
                {"diagnostics", Json::array({diagnostic})},
                {"command", {{"title", title}, {"command", command}, {"arguments", Json::array({word})}}}};
}

/* The replacements of a misspelled word, best first. */
static std::vector<std::string> replacementsFor(Server *s, const Problem &p)
{
    std::vector<std::string> out;
    std::string word;
    if (!toEngineText(p.word, EncodingUtf8, &word))
        return out;
    std::vector<Suggestion> list;
    if (suggestWord(s->lexicons.sid, word, s->settings.check.depth, s->settings.check.maxSuggestions, &list) < 0)
        return out;
    keepLikelySuggestions(&list);
    for (const Suggestion &suggestion : list)
        out.push_back(fromEngineText(suggestion.word, EncodingUtf8));
    return out;
}

/* The range that removes a doubled word and the blanks in front of it
 * (or behind it, at the start of a line). */
static void doubledRange(const Line &line, const Problem &p, uint32_t *start, uint32_t *end)
{
    const std::string &t = line.engine;
    *start = p.start;
    *end = p.end;
    while (*start > 0 && (t[*start - 1] == ' ' || t[*start - 1] == '\t'))
        --*start;
    if (*start == 0)
        while (*end < t.size() && (t[*end] == ' ' || t[*end] == '\t'))
            ++*end;
}

static void actionsFor(Server *s, const Document &doc, size_t lineIndex, const Problem &p, Json *out)
{
    const Line &line = doc.lines[lineIndex];
    Json diagnostic = diagnosticJson(*s, line, lineIndex, p);
    Json range = rangeJson(*s, line, lineIndex, p.start, p.end);
    switch (p.kind) {
    case KindMisspelled: {
        bool first = true;
        for (const std::string &r : replacementsFor(s, p)) {
            out->push_back(editAction("Change to '" + r + "'", doc.uri, range, r, diagnostic, first));
            first = false;
        }
        out->push_back(commandAction("Add '" + p.word + "' to personal dictionary", ServerCommands[0], p.word,
                                     diagnostic));
        if (!s->projectPath.empty())
            out->push_back(commandAction("Add '" + p.word + "' to project dictionary", ServerCommands[1],
                                         p.word, diagnostic));
        out->push_back(
            commandAction("Ignore '" + p.word + "' in this session", ServerCommands[2], p.word, diagnostic));
        break;
    }
    case KindChange:
    case KindCapitalization:
        if (!p.replacement.empty() && p.replacement != p.word)
            out->push_back(editAction("Change to '" + p.replacement + "'", doc.uri, range, p.replacement,
                                      diagnostic, true));
        break;
    case KindDoubled: {
        uint32_t start, end;
        doubledRange(line, p, &start, &end);
        out->push_back(editAction("Remove doubled word", doc.uri, rangeJson(*s, line, lineIndex, start, end), "",
                                  diagnostic, true));
        break;
    }
    case ProblemKinds:
        break;
    }
}

Json codeActions(Server *s, const Json &id, const Json &params, bool *cancelled)
{
    *cancelled = false;
    Json actions = Json::array();
    std::string uri;
    const Json *document = member(params, "textDocument");
    const Json *range = member(params, "range");
    if (!document || !stringMember(*document, "uri", &uri) || !range || !s->haveLexicons)
        return actions;
    auto found = s->documents.find(uri);
    if (found == s->documents.end())
        return actions;
    Document &doc = found->second;
    const Json *start = member(*range, "start");
    const Json *end = member(*range, "end");
    int64_t startLine, startColumn, endLine, endColumn;
    if (!start || !end || !intMember(*start, "line", &startLine) || !intMember(*start, "character", &startColumn) ||
        !intMember(*end, "line", &endLine) || !intMember(*end, "character", &endColumn))
        return actions;
    if (startLine < 0)
        startLine = 0, startColumn = 0;
    for (int64_t l = startLine; l <= endLine && l < (int64_t)doc.lines.size(); l++) {
        checkLine(s, &doc, (size_t)l);
        const Line &line = doc.lines[(size_t)l];
        uint32_t from = l == startLine ? characterAt(line, startColumn, s->encoding) : 0;
        uint32_t to = l == endLine ? characterAt(line, endColumn, s->encoding) : UINT32_MAX;
        for (const Problem &p : line.problems) {
            if (p.end < from || p.start > to)
                continue;
            /* suggestions take their time: a cancel may be waiting */
            if (takeCancel(&s->io, id)) {
                *cancelled = true;
                return Json();
            }
            actionsFor(s, doc, (size_t)l, p, &actions);
        }
    }
    return actions;
}

bool executeCommand(Server *s, const Json &params, std::string *error)
{
    std::string command, engine;
    const Json *arguments = member(params, "arguments");
    if (!stringMember(params, "command", &command)) {
        *error = "no command";
        return false;
    }
    size_t which = 0;
    while (which < 3 && command != ServerCommands[which])
        which++;
    if (which == 3) {
        *error = "unknown command '" + command + "'";
        return false;
    }
    size_t foreign = 0;
    if (!arguments || !arguments->is_array() || arguments->empty() || !(*arguments)[0].is_string() ||
        !toEngineText((*arguments)[0].get<std::string>(), EncodingUtf8, &engine, &foreign)) {
        *error = command + " takes the word as its argument";
        return false;
    }
    if (foreign > 0) {
        showMessage(&s->io, MessageWarning,
                    "'" + (*arguments)[0].get<std::string>() + "' has letters the lexicons can't hold");
        return true;
    }
    bool done = which == 0   ? addToPersonalDictionary(s, engine)
                : which == 1 ? addToProjectDictionary(s, engine)
                             : ignoreForSession(s, engine);
    if (done)
        for (auto &entry : s->documents) {
            for (Line &line : entry.second.lines)
                if (!line.problems.empty())
                    line.checked = false;
            entry.second.published = false;
        }
    checkAndPublishAll(s);
    return true;
}
