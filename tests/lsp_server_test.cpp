// `orto lsp` spoken to as an editor speaks to it: the real program through
// pipes, in a temporary folder that is its workspace and its HOME.
// Diagnostics are compared as "line:column word (code)" lines.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/lsp_client.h"
#include "support/test_support.h"

namespace {

using nlohmann::json;

struct Server {
    TempDir dir;
    LspClient c;
    explicit Server(const std::vector<std::string> &args = {})
    {
        std::vector<std::string> all = {"lsp"};
        all.insert(all.end(), args.begin(), args.end());
        c.start(ORTO_PROGRAM, all, dir.path, dir.path, dir.file("stderr.txt"));
    }
    std::string uri(const std::string &name) const { return "file://" + dir.path + "/" + name; }
    json initialize(const json &options = nullptr, const json &encodings = nullptr)
    {
        json capabilities = json::object();
        if (!encodings.is_null())
            capabilities["general"] = {{"positionEncodings", encodings}};
        c.request(1, "initialize",
                  {{"rootUri", "file://" + dir.path}, {"capabilities", capabilities}, {"initializationOptions", options}});
        json r = c.response(1);
        c.notify("initialized", json::object());
        return r;
    }
    json open(const std::string &name, const std::string &language, const std::string &text)
    {
        c.notify("textDocument/didOpen",
                 {{"textDocument", {{"uri", uri(name)}, {"languageId", language}, {"version", 1}, {"text", text}}}});
        return c.diagnostics(uri(name));
    }
    json change(const std::string &name, const json &changes)
    {
        c.notify("textDocument/didChange", {{"textDocument", {{"uri", uri(name)}, {"version", 2}}}, {"contentChanges", changes}});
        return c.diagnostics(uri(name));
    }
    json codeActions(int id, const std::string &name, int line, int column)
    {
        json at = {{"line", line}, {"character", column}};
        c.request(id, "textDocument/codeAction",
                  {{"textDocument", {{"uri", uri(name)}}}, {"range", {{"start", at}, {"end", at}}}, {"context", {{"diagnostics", json::array()}}}});
        return c.response(id);
    }
    int stop()
    {
        c.request(99, "shutdown", nullptr);
        EXPECT_TRUE(c.response(99).contains("result"));
        c.notify("exit", nullptr);
        return c.finish();
    }
};

json range(int line, int start, int endLine, int end)
{
    return {{"start", {{"line", line}, {"character", start}}}, {"end", {{"line", endLine}, {"character", end}}}};
}

// "line:column word (code)" for each diagnostic of a publishDiagnostics.
std::vector<std::string> summary(const json &publish)
{
    std::vector<std::string> out;
    if (publish.is_null())
        return {"no publishDiagnostics"};
    for (const json &d : publish["params"]["diagnostics"]) {
        std::string message = d["message"];
        out.push_back(std::to_string(d["range"]["start"]["line"].get<int>()) + ":" +
                      std::to_string(d["range"]["start"]["character"].get<int>()) + " " +
                      message.substr(message.find(": ") + 2) + " (" + d["code"].get<std::string>() + ")");
    }
    return out;
}

std::vector<std::string> titles(const json &response)
{
    std::vector<std::string> out;
    for (const json &a : response["result"])
        out.push_back(a["title"]);
    return out;
}

TEST(LspServer, LifecycleAndErrors)
{
    Server s;
    s.c.request(1, "textDocument/codeAction", json::object());
    EXPECT_EQ(s.c.response(1)["error"]["code"], -32002); // before initialize
    json init = s.initialize();
    EXPECT_EQ(init["result"]["capabilities"]["positionEncoding"], "utf-16");
    EXPECT_EQ(init["result"]["capabilities"]["textDocumentSync"]["change"], 2);
    EXPECT_EQ(init["result"]["serverInfo"]["name"], "orto");
    s.c.request(2, "initialize", json::object());
    EXPECT_EQ(s.c.response(2)["error"]["code"], -32600);
    s.c.notify("no/suchNotification", json::object()); // ignored: the next answer is for 3
    s.c.request(3, "no/suchRequest", json::object());
    EXPECT_EQ(s.c.response(3)["error"]["code"], -32601);
    s.c.request(4, "shutdown", nullptr);
    EXPECT_TRUE(s.c.response(4)["result"].is_null());
    s.c.request(5, "textDocument/codeAction", json::object());
    EXPECT_EQ(s.c.response(5)["error"]["code"], -32600); // after shutdown
    s.c.notify("exit", nullptr);
    EXPECT_EQ(s.c.finish(), 0);

    Server t; // exit without shutdown
    t.initialize();
    t.c.notify("exit", nullptr);
    EXPECT_EQ(t.c.finish(), 1);
}

TEST(LspServer, PositionsInTheNegotiatedEncoding)
{
    // the dash is 3 bytes and 1 UTF-16 unit, the emoji 4 bytes and 2 units
    struct Case {
        json offered;
        std::string chosen;
        int column; // of "recieve"
    } cases[] = {{nullptr, "utf-16", 4}, {{"utf-16", "utf-32"}, "utf-32", 3}, {{"utf-32", "utf-8"}, "utf-8", 8}};
    for (const Case &k : cases) {
        Server s;
        EXPECT_EQ(s.initialize(nullptr, k.offered)["result"]["capabilities"]["positionEncoding"], k.chosen);
        std::string col = std::to_string(k.column);
        EXPECT_EQ(summary(s.open("a.txt", "plaintext", "–😀 recieve wrold\n")),
                  (std::vector<std::string>{"0:" + col + " recieve (misspelled)",
                                            "0:" + std::to_string(k.column + 8) + " wrold (misspelled)"}))
            << k.chosen;
        json publish = s.change("a.txt", {{{"range", range(0, k.column, 0, k.column + 7)}, {"text", "receive"}}});
        EXPECT_EQ(summary(publish), std::vector<std::string>{"0:" + std::to_string(k.column + 8) + " wrold (misspelled)"})
            << k.chosen;
        EXPECT_EQ(publish["params"]["diagnostics"][0]["range"]["end"]["character"], k.column + 13);
        EXPECT_EQ(s.stop(), 0);
    }
}

TEST(LspServer, WhatIsCheckedByLanguage)
{
    struct Case {
        const char *language;
        std::vector<std::string> lines;
        std::vector<std::string> expected;
    } cases[] = {
        {"plaintext", {"Teh cat saw teh `wrold`."}, {"0:0 Teh", "0:12 teh", "0:17 wrold"}},
        {"markdown",
         {"---", "title: mispeled", "---", "# A recieve heading", "Some `wrold` code and https://exmple.com/lnik here.",
          "A [lnik](http://exmple.com/wrold) and <span class=\"mispeled\">seperate</span>.", "```", "int wrold;", "```",
          "[ref]: http://exmple.com \"definately\"", "x ][y `cdoe` then https://exmple.com wrold", "",
          "    indented cdoe", "A paragraph", "    contnued here", "- an item", "", "  item paragrph", "",
          "      item cdoe", "back at the margn"},
         {"3:4 recieve", "5:3 lnik", "5:61 seperate", "9:26 definately", "10:37 wrold", "14:4 contnued",
          "17:7 paragrph", "20:12 margn"}},
        {"c",
         {"#include \"stdoi.h\"", "/* getUserName is fine, getUsrName is not,", "   a multi-line comnt */",
          "int mian(void) { puts(\"helo %d wrold\\n\"); } // a trailing coment",
          "char *s = \"getUserName parseHTTPHeader base64Dcode\";"},
         {"1:27 Usr", "2:16 comnt", "3:23 helo", "3:31 wrold", "3:58 coment", "4:45 Dcode"}},
        {"python",
         {"#!/usr/bin/env pyhton", "x = '''a long strng", "over lnes''' # a commnt",
          "def fooBar(): return \"it is parseHTTPHeader and wrold\""},
         {"1:14 strng", "2:5 lnes", "2:17 commnt", "3:48 wrold"}},
        {"go", {"s := `raw strng", "still raw wrold` + \"mian\" // getUsrName"}, {"0:10 strng", "1:10 wrold", "1:20 mian", "1:32 Usr"}},
        {"cobol", {"int mian; // wrold"}, {"0:4 mian", "0:13 wrold"}}, // not in the table: plain text
    };
    Server s;
    s.initialize();
    for (const Case &k : cases) {
        std::string text;
        for (const std::string &l : k.lines)
            text += l + "\n";
        std::vector<std::string> expected;
        for (const std::string &e : k.expected)
            expected.push_back(e + " (misspelled)");
        EXPECT_EQ(summary(s.open(std::string("f.") + k.language, k.language, text)), expected) << k.language;
    }
    EXPECT_EQ(s.stop(), 0);
}

TEST(LspServer, IncrementalChangesAgreeWithAFreshOpen)
{
    Server s;
    s.initialize();
    EXPECT_EQ(summary(s.open("a.md", "markdown", "Intro line with wrold.\nthe\nthe end\n```\nno chek here\n```\nlast lnie\n")),
              (std::vector<std::string>{"0:16 wrold (misspelled)", "2:0 the (doubled)", "6:5 lnie (misspelled)"}));
    struct Step {
        json change;
        std::vector<std::string> expected;
    } steps[] = {
        {{{"range", range(0, 16, 0, 21)}, {"text", "world"}}, {"2:0 the (doubled)", "6:5 lnie (misspelled)"}},
        {{{"range", range(1, 0, 1, 0)}, {"text", "new mispeled line\n"}},
         {"1:4 mispeled (misspelled)", "3:0 the (doubled)", "7:5 lnie (misspelled)"}},
        // the fence loses its opener: its closer opens a fence to the end
        {{{"range", range(4, 0, 5, 0)}, {"text", ""}}, {"1:4 mispeled (misspelled)", "3:0 the (doubled)", "4:3 chek (misspelled)"}},
        // two lines joined: the doubled word is now inside one line
        {{{"range", range(2, 3, 3, 0)}, {"text", " "}}, {"1:4 mispeled (misspelled)", "2:4 the (doubled)", "3:3 chek (misspelled)"}},
    };
    for (const Step &step : steps)
        EXPECT_EQ(summary(s.change("a.md", json::array({step.change}))), step.expected) << step.change.dump();
    EXPECT_EQ(summary(s.open("b.md", "markdown", "Intro line with world.\nnew mispeled line\nthe the end\nno chek here\n```\nlast lnie\n")),
              steps[3].expected);
    // several changes in one message, then the whole text
    json two = json::array({{{"range", range(1, 4, 1, 12)}, {"text", "misspelled"}}, {{"range", range(3, 3, 3, 7)}, {"text", "check"}}});
    EXPECT_EQ(summary(s.change("a.md", two)), std::vector<std::string>{"2:4 the (doubled)"});
    EXPECT_EQ(summary(s.change("a.md", json::array({{{"text", "All new txt\n"}}}))), std::vector<std::string>{"0:8 txt (misspelled)"});
    EXPECT_EQ(s.stop(), 0);
}

TEST(LspServer, CodeActionsAndDictionaries)
{
    Server s;
    s.initialize();
    s.open("a.md", "markdown", "We recieve mail from Xyzzyq.\n");
    s.open("b.txt", "plaintext", "Did you recieve it? Ask Xyzzyq or Qwrtzu.\n");
    json actions = s.codeActions(2, "a.md", 0, 5);
    std::vector<std::string> expected;
    for (const std::string &w : pipeSuggestions(ORTO_PROGRAM, s.dir.path, "recieve"))
        expected.push_back("Change to '" + w + "'");
    ASSERT_FALSE(expected.empty());
    expected.insert(expected.end(), {"Add 'recieve' to personal dictionary", "Add 'recieve' to project dictionary",
                                     "Ignore 'recieve' in this session"});
    EXPECT_EQ(titles(actions), expected);
    json first = actions["result"][0];
    EXPECT_EQ(first["isPreferred"], true);
    EXPECT_EQ(first["edit"]["changes"][s.uri("a.md")][0], json({{"range", range(0, 3, 0, 10)}, {"newText", expected[0].substr(11, expected[0].size() - 12)}}));
    EXPECT_EQ(titles(s.codeActions(3, "a.md", 0, 2)), std::vector<std::string>{}); // no problem there

    // each command republishes both documents before its answer
    struct Command {
        const char *name, *word;
        std::vector<std::string> left; // in b.txt
    } commands[] = {
        {"orto.addToPersonalDictionary", "recieve", {"0:24 Xyzzyq (misspelled)", "0:34 Qwrtzu (misspelled)"}},
        {"orto.addToProjectDictionary", "Xyzzyq", {"0:34 Qwrtzu (misspelled)"}},
        {"orto.ignoreInSession", "Qwrtzu", {}},
    };
    int id = 10;
    for (const Command &k : commands) {
        size_t before = s.c.log.size();
        s.c.request(id, "workspace/executeCommand", {{"command", k.name}, {"arguments", {k.word}}});
        json answer = s.c.response(id++);
        EXPECT_TRUE(answer.contains("result")) << answer.dump();
        std::vector<std::string> published;
        json last;
        for (size_t i = before; i < s.c.log.size(); i++)
            if (s.c.log[i].value("method", "") == "textDocument/publishDiagnostics") {
                published.push_back(s.c.log[i]["params"]["uri"]);
                if (published.back() == s.uri("b.txt"))
                    last = s.c.log[i];
            }
        EXPECT_EQ(published, (std::vector<std::string>{s.uri("a.md"), s.uri("b.txt")})) << k.name;
        EXPECT_EQ(summary(last), k.left) << k.name;
    }
    s.c.request(id, "workspace/executeCommand", {{"command", "orto.noSuchCommand"}, {"arguments", {"x"}}});
    EXPECT_EQ(s.c.response(id)["error"]["code"], -32602);
    EXPECT_EQ(s.stop(), 0);
    EXPECT_NE(readFile(s.dir.file("config/orto/personal.tlx")).find("recieve"), std::string::npos);
    EXPECT_NE(readFile(s.dir.file(".orto-words.tlx")).find("Xyzzyq"), std::string::npos);

    // the next run keeps the dictionaries, not what was ignored
    LspClient again;
    again.start(ORTO_PROGRAM, {"lsp"}, s.dir.path, s.dir.path, s.dir.file("stderr.txt"));
    again.request(1, "initialize", {{"rootUri", "file://" + s.dir.path}, {"capabilities", json::object()}});
    again.response(1);
    again.notify("textDocument/didOpen",
                 {{"textDocument", {{"uri", s.uri("b.txt")}, {"languageId", "plaintext"}, {"version", 1},
                                    {"text", "Did you recieve it? Ask Xyzzyq or Qwrtzu.\n"}}}});
    EXPECT_EQ(summary(again.diagnostics(s.uri("b.txt"))), std::vector<std::string>{"0:34 Qwrtzu (misspelled)"});
}

TEST(LspServer, DoubledAndCapitalisedWords)
{
    Server s;
    s.initialize({{"options", {{"ReportUncappedWords", true}}}});
    EXPECT_EQ(summary(s.open("a.txt", "plaintext", "hello the the world\n")),
              (std::vector<std::string>{"0:0 hello (capitalization)", "0:10 the (doubled)"}));
    json capital = s.codeActions(2, "a.txt", 0, 1);
    EXPECT_EQ(titles(capital), std::vector<std::string>{"Change to 'Hello'"});
    json doubled = s.codeActions(3, "a.txt", 0, 11)["result"][0];
    EXPECT_EQ(doubled["title"], "Remove doubled word");
    EXPECT_EQ(doubled["edit"]["changes"][s.uri("a.txt")][0], json({{"range", range(0, 9, 0, 13)}, {"newText", ""}}));
    // a Markdown heading ends its block: no doubled word across it
    EXPECT_EQ(summary(s.open("a.md", "markdown", "## Usage\nUsage is simple.\nthe\nthe end\n")),
              std::vector<std::string>{"3:0 the (doubled)"});
    EXPECT_EQ(s.stop(), 0);
}

TEST(LspServer, Settings)
{
    Server s;
    writeFile(s.dir.file("words.txt"), "frobnicate\n");
    json options = {{"severity", {{"misspelled", "error"}, {"doubled", "hint"}}},
                    {"languages", {"markdown"}},
                    {"maxSuggestions", 2},
                    {"lexicons", {"en-US", "words.txt"}},
                    {"frob", 1},
                    {"options", {{"NoSuchOption", true}}}};
    s.initialize(options);
    std::vector<std::string> warnings;
    for (const json &m : s.c.log)
        if (m.value("method", "") == "window/showMessage" && m["params"]["type"] == 2)
            warnings.push_back(m["params"]["message"]);
    EXPECT_EQ(warnings, (std::vector<std::string>{
                            "orto: unknown setting 'frob'",
                            "orto: bad option 'NoSuchOption': give an option name of 'orto list --help' with true or false"}));
    json publish = s.open("a.md", "markdown", "We frobnicate the the recieve.\n");
    EXPECT_EQ(summary(publish), (std::vector<std::string>{"0:18 the (doubled)", "0:22 recieve (misspelled)"}));
    EXPECT_EQ(publish["params"]["diagnostics"][0]["severity"], 4);
    EXPECT_EQ(publish["params"]["diagnostics"][1]["severity"], 1);
    EXPECT_EQ(publish["params"]["diagnostics"][1]["source"], "orto");
    EXPECT_EQ(summary(s.open("a.txt", "plaintext", "recieve\n")), std::vector<std::string>{}); // not a checked language
    EXPECT_EQ(titles(s.codeActions(2, "a.md", 0, 22)).size(), 2u + 3u);

    // a later configuration overrides key by key; a bad value keeps the old one
    s.c.notify("workspace/didChangeConfiguration",
               {{"settings",
                 {{"orto", {{"options", {{"ReportDoubledWords", false}}}, {"maxSuggestions", "many"}, {"lexicons", 7}}}}}});
    auto shown = [&s]() {
        return s.c.waitFor([](const json &m) { return m.value("method", "") == "window/showMessage"; })["params"]["message"];
    };
    EXPECT_EQ(shown(), "orto: bad setting 'lexicons': it takes a list of lexicon names or files");
    EXPECT_EQ(shown(), "orto: bad setting 'maxSuggestions': it takes a whole number from 1 to 100");
    publish = s.c.diagnostics(s.uri("a.md"));
    EXPECT_EQ(summary(publish), std::vector<std::string>{"0:22 recieve (misspelled)"});
    EXPECT_EQ(publish["params"]["diagnostics"][0]["severity"], 1);
    EXPECT_EQ(titles(s.codeActions(3, "a.md", 0, 22)).size(), 2u + 3u);
    EXPECT_EQ(s.stop(), 0);
}

TEST(LspServer, BadInputNeverEndsTheServer)
{
    Server s;
    s.initialize();
    s.open("a.txt", "plaintext", "one\n");
    auto body = [](int id) { return json({{"jsonrpc", "2.0"}, {"id", id}, {"method", "no/such"}}).dump(); };
    auto header = [](size_t n) { return "Content-Length: " + std::to_string(n) + "\r\n\r\n"; };
    s.c.sendRaw(header(5) + "{bad}");
    json parse = s.c.waitFor([](const json &m) { return m.contains("error"); });
    EXPECT_EQ(parse["error"]["code"], -32700);
    EXPECT_TRUE(parse["id"].is_null());
    // a length too short, one too long, and bytes that are no message: each
    // loses nothing but itself
    s.c.sendRaw(header(body(2).size() - 5) + body(2) + header(body(3).size() + 40) + body(3) + header(body(4).size()) +
                body(4) + "junk\r\n\r\n" + header(body(5).size()) + body(5));
    for (int id = 2; id <= 5; id++)
        EXPECT_EQ(s.c.response(id)["error"]["code"], -32601) << id;
    std::string deep = std::string(100000, '[') + std::string(100000, ']'); // would overflow the stack
    s.c.sendRaw(header(deep.size()) + deep);
    EXPECT_EQ(s.c.waitFor([](const json &m) { return m.contains("error"); })["error"]["code"], -32700);
    s.c.sendRaw(header(28) + "{\"id\":{},\"method\":\"x/y\"}    ");
    EXPECT_EQ(s.c.waitFor([](const json &m) { return m.contains("error"); })["error"]["code"], -32600);

    // invalid UTF-8 in a change is refused whole
    std::string bad = R"({"jsonrpc":"2.0","method":"textDocument/didChange","params":{"textDocument":{"uri":")" +
                      s.uri("a.txt") + R"(","version":2},"contentChanges":[{"text":"wrold \xff"}]}})";
    s.c.sendRaw(header(bad.size()) + bad);
    EXPECT_EQ(s.c.waitFor([](const json &m) { return m.contains("error"); })["error"]["code"], -32700);
    // a range past the end is taken back to the end, with a log line
    json publish = s.change("a.txt", {{{"range", range(99, 0, 99, 4)}, {"text", " wrold"}}});
    EXPECT_EQ(summary(publish), std::vector<std::string>{"1:1 wrold (misspelled)"});
    bool logged = false;
    for (const json &m : s.c.log)
        logged = logged || (m.value("method", "") == "window/logMessage" &&
                            m["params"]["message"].get<std::string>().find("line 99 is past the end") != std::string::npos);
    EXPECT_TRUE(logged);
    s.c.notify("textDocument/didOpen", {{"textDocument", {{"uri", 5}}}});
    s.c.notify("textDocument/didChange", {{"textDocument", {{"uri", "file:///not/open"}}}, {"contentChanges", json::array()}});
    EXPECT_EQ(s.codeActions(6, "not-open.txt", 0, 0)["result"], json::array());

    // a document of some megabytes
    std::string big;
    while (big.size() < 3 * 1024 * 1024)
        big += "Some plain words of text, and nothing else on the line.\n";
    big += "last wrold\n";
    size_t lines = (size_t)std::count(big.begin(), big.end(), '\n');
    EXPECT_EQ(summary(s.open("big.txt", "plaintext", big)),
              std::vector<std::string>{std::to_string(lines - 1) + ":5 wrold (misspelled)"});
    EXPECT_EQ(s.stop(), 0);
}

TEST(LspServer, CancelledRequest)
{
    Server s;
    s.initialize();
    s.open("a.txt", "plaintext", "recieve wrold seperate\n");
    json at = {{"line", 0}, {"character", 0}}, end = {{"line", 0}, {"character", 22}};
    json request = {{"jsonrpc", "2.0"}, {"id", 7}, {"method", "textDocument/codeAction"},
                    {"params", {{"textDocument", {{"uri", s.uri("a.txt")}}}, {"range", {{"start", at}, {"end", end}}}}}};
    json cancel = {{"jsonrpc", "2.0"}, {"method", "$/cancelRequest"}, {"params", {{"id", 7}}}};
    s.c.sendRaw(LspClient::frame(request) + LspClient::frame(cancel));
    EXPECT_EQ(s.c.response(7)["error"]["code"], -32800);
    EXPECT_EQ(s.stop(), 0);
}

} // namespace
