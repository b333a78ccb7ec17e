// `orto lsp` as an editor sees it: the real program through pipes, timed
// from the message sent until the diagnostics have arrived whole (the
// client's parsing of them left out).
//
//   open    didOpen of a Markdown file of 10,000 lines (front matter,
//           headings, paragraphs with inline code, links and URLs, lists,
//           fenced code; every 40th word misspelled) until its
//           publishDiagnostics: 10 runs
//   change  a one-character edit in the middle of that file until the
//           next publishDiagnostics: 100 runs, inserting and deleting in
//           turn
//
// Prints median and worst of each, and the server's mean processor time a
// run (which other load on the machine doesn't stretch); the targets are
// open < 100 ms and change < 5 ms.  The words come from the bundled en-US list (lower-case
// ASCII ones), picked by a fixed generator, so every run checks the same text.
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/lsp_client.h"

namespace {

using nlohmann::json;

struct Words {
    std::vector<std::string> list;
    uint32_t seed = 12345;
    size_t count = 0;
    const std::string &pick()
    {
        seed = seed * 1103515245u + 12345u;
        return list[(seed >> 8) % list.size()];
    }
    std::string word()
    {
        std::string w = pick();
        if (++count % 40 == 0 && w.size() > 3)
            std::swap(w[1], w[2]);
        return w;
    }
    std::string sentence(int n)
    {
        std::string s;
        for (int i = 0; i < n; i++)
            s += (i ? " " : "") + word();
        return s;
    }
};

std::string markdown(Words *w, size_t lines)
{
    std::vector<std::string> out = {"---", "title: " + w->sentence(3), "tags: [a, b]", "---", ""};
    for (size_t block = 0; out.size() < lines; block++) {
        out.push_back("## " + w->sentence(4));
        out.push_back("");
        for (int i = 0; i < 6; i++) {
            std::string line = w->sentence(6) + " `" + w->pick() + "_" + w->pick() + "()` " + w->sentence(3);
            if (i == 2)
                line += " [" + w->sentence(2) + "](https://example.com/" + w->pick() + ")";
            if (i == 4)
                line += " see https://example.org/" + w->pick() + "/" + w->pick() + " " + w->sentence(2);
            out.push_back(line + ".");
        }
        out.push_back("");
        for (int i = 0; i < 3; i++)
            out.push_back("- " + w->sentence(5));
        out.push_back("");
        if (block % 3 == 0) {
            out.push_back("```c");
            for (int i = 0; i < 4; i++)
                out.push_back("int " + w->pick() + " = " + std::to_string(i) + "; // " + w->sentence(3));
            out.push_back("```");
            out.push_back("");
        }
    }
    out.resize(lines);
    std::string text;
    for (const std::string &l : out)
        text += l + "\n";
    return text;
}

// The processor time the server has used so far, in ms (10 ms steps).
double serverCpu(pid_t pid)
{
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string field;
    std::vector<std::string> fields;
    while (stat >> field)
        fields.push_back(field);
    if (fields.size() < 15)
        return 0;
    return (std::stod(fields[13]) + std::stod(fields[14])) * 1000.0 / (double)sysconf(_SC_CLK_TCK);
}

struct Figures {
    double median, worst;
};

Figures figures(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

} // namespace

int main()
{
    Words words;
    std::ifstream list(std::string(ORTO_SOURCE_DIR) + "/data/en-US.txt");
    for (std::string line; std::getline(list, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.size() >= 3 && std::all_of(line.begin(), line.end(), [](char ch) { return ch >= 'a' && ch <= 'z'; }))
            words.list.push_back(line);
    }
    if (words.list.empty()) {
        fprintf(stderr, "lsp_bench: data/en-US.txt is missing\n");
        return 1;
    }
    const size_t Lines = 10000;
    std::string text = markdown(&words, Lines);
    char dir[] = "/tmp/orto-lsp-bench-XXXXXX";
    if (!mkdtemp(dir))
        return 1;

    LspClient c;
    c.start(std::string(ORTO_BINARY_DIR) + "/bin/orto", {"lsp"}, dir, dir, "/dev/null");
    c.request(1, "initialize", {{"processId", nullptr}, {"rootUri", nullptr}, {"capabilities", json::object()}});
    if (c.response(1).is_null()) {
        fprintf(stderr, "lsp_bench: no answer to initialize\n");
        return 1;
    }
    c.notify("initialized", json::object());

    std::vector<double> opens;
    size_t problems = 0;
    double cpu = serverCpu(c.pid);
    for (int run = 0; run < 10; run++) {
        std::string uri = "file:///bench/" + std::to_string(run) + ".md";
        double t = LspClient::now();
        c.notify("textDocument/didOpen",
                 {{"textDocument", {{"uri", uri}, {"languageId", "markdown"}, {"version", 1}, {"text", text}}}});
        json d = c.diagnostics(uri);
        opens.push_back((c.receivedAt - t) * 1000);
        problems = d.is_null() ? 0 : d["params"]["diagnostics"].size();
        if (run < 9)
            c.notify("textDocument/didClose", {{"textDocument", {{"uri", uri}}}});
        c.diagnostics(uri);
    }

    double openCpu = (serverCpu(c.pid) - cpu) / 10;
    cpu = serverCpu(c.pid);
    const std::string uri = "file:///bench/9.md";
    std::vector<double> changes;
    const int line = (int)Lines / 2 + 3;
    for (int run = 0; run < 100; run++) {
        json range = {{"start", {{"line", line}, {"character", 0}}},
                      {"end", {{"line", line}, {"character", run % 2 ? 1 : 0}}}};
        double t = LspClient::now();
        c.notify("textDocument/didChange",
                 {{"textDocument", {{"uri", uri}, {"version", 2 + run}}},
                  {"contentChanges", json::array({{{"range", range}, {"text", run % 2 ? "" : "x"}}})}});
        c.diagnostics(uri);
        changes.push_back((c.receivedAt - t) * 1000);
    }
    double changeCpu = (serverCpu(c.pid) - cpu) / 100;
    c.request(2, "shutdown", nullptr);
    c.response(2);
    c.notify("exit", nullptr);
    c.finish();
    std::string cleanup = std::string("rm -rf ") + dir;
    if (system(cleanup.c_str()) != 0)
        fprintf(stderr, "lsp_bench: %s left behind\n", dir);

    Figures open = figures(opens), change = figures(changes);
    printf("Markdown file: %zu lines, %zu bytes, %zu diagnostics\n", Lines, text.size(), problems);
    printf("open    (10 runs):  median %7.2f ms  worst %7.2f ms  (target < 100 ms); server CPU %.2f ms a run\n",
           open.median, open.worst, openCpu);
    printf("change (100 runs):  median %7.2f ms  worst %7.2f ms  (target < 5 ms); server CPU %.2f ms a run\n",
           change.median, change.worst, changeCpu);
    return 0;
}
