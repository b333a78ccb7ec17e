// A real editor on `orto lsp`: Neovim, headless, with its built-in LSP
// client, runs tests/data/lsp/neovim.lua on copies of sample.md and
// sample.c; what the script prints (diagnostics as Neovim holds them, in
// its byte columns; the code actions of a word; the diagnostics after one
// of them) must equal neovim.expected, where a marker line stands for the
// suggestions that `orto -a` makes.
#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>

#include "support/lsp_client.h"
#include "support/test_support.h"

namespace {

const std::string dataDir = std::string(ORTO_SOURCE_DIR) + "/tests/data/lsp/";

TEST(LspNeovim, DiagnosticsAndAnActionInNeovim)
{
    if (system("command -v nvim >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "nvim is not installed (scripts/deps.sh installs Debian's neovim)";
    TempDir dir;
    for (const char *name : {"sample.md", "sample.c"})
        writeFile(dir.file(name), readFile(dataDir + name));
    std::string d = dir.path;
    std::string command = "cd '" + d + "' && HOME='" + d + "' XDG_CONFIG_HOME='" + d + "/config' XDG_DATA_HOME='" + d +
                          "/data' XDG_STATE_HOME='" + d + "/state' XDG_CACHE_HOME='" + d + "/cache' ORTO_PROGRAM='" +
                          ORTO_PROGRAM + "' LSP_ROOT='" + d + "' timeout 120 nvim --headless --clean -c 'luafile " +
                          dataDir + "neovim.lua' 2>'" + d + "/stderr.txt'";
    FILE *p = popen(command.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::string out;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0)
        out.append(buf, n);
    EXPECT_EQ(pclose(p), 0) << readFile(dir.file("stderr.txt"));
    // the suggestions follow the program's ranking, whatever it is today
    std::string suggestions;
    for (const std::string &w : pipeSuggestions(ORTO_PROGRAM, d, "recieve"))
        suggestions += "action: Change to '" + w + "'\n";
    std::string expected = readFile(dataDir + "neovim.expected");
    const std::string marker = "<suggestions of orto -a for recieve>\n";
    ASSERT_NE(expected.find(marker), std::string::npos);
    expected.replace(expected.find(marker), marker.size(), suggestions);
    EXPECT_EQ(out, expected);
    EXPECT_NE(readFile(dir.file("config/orto/personal.tlx")).find("recieve"), std::string::npos);
}

} // namespace
