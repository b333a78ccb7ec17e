#include "support/test_support.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "orto.h"

TempDir::TempDir()
{
    const char *base = getenv("TMPDIR");
    std::string tmpl = std::string(base && *base ? base : "/tmp") + "/orto-test-XXXXXX";
    std::vector<char> buf(tmpl.begin(), tmpl.end());
    buf.push_back(0);
    if (!mkdtemp(buf.data()))
        throw std::runtime_error("mkdtemp failed");
    path = buf.data();
}

TempDir::~TempDir()
{
    std::error_code ec;
    /* a test may have made parts read-only: open them up before removing */
    for (auto it = std::filesystem::recursive_directory_iterator(path, ec);
         !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec))
        chmod(it->path().c_str(), 0700);
    chmod(path.c_str(), 0700);
    std::filesystem::remove_all(path, ec);
}

std::string readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

void writeFile(const std::string &path, const std::string &bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), (std::streamsize)bytes.size());
}

bool fileExists(const std::string &path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

std::vector<std::string> logLines(const std::string &path)
{
    std::vector<std::string> lines;
    std::istringstream in(readFile(path));
    std::string line;
    while (std::getline(in, line)) {
        if (line.size() >= 9 && line[2] == ':' && line[5] == ':' && line[8] == ' ')
            line = line.substr(9);
        lines.push_back(line);
    }
    return lines;
}

DebugCapture::DebugCapture() : path(dir.file("debug.log"))
{
    ORTO_SetDebugFile(path.c_str());
}

DebugCapture::~DebugCapture()
{
    ORTO_SetDebugFile("");
}

bool DebugCapture::has(const std::string &line) const
{
    for (const std::string &l : lines())
        if (l == line)
            return true;
    return false;
}

void DebugCapture::clear() const
{
    writeFile(path, "");
}

/* No test meets a person: a test run from a terminal would otherwise get
 * the terminal front end.  Tests that want a user install their own. */
#include "orto_ui.h"
static const bool noUserForTests = [] {
    static const ORTO_FrontEnd none = {};
    ORTO_SetFrontEnd(&none);
    return true;
}();
