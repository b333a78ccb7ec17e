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

std::string exampleLexicon()
{
    static const unsigned char bytes[] = {
        0x57, 0x00, 0x05, 0x01,                                     // magic
        0, 0, 0, 1, 0, 0, 0, 4, 0x00, 0x00, 0x61, 0x6D,             // language am
        0, 0, 0, 2, 0, 0, 0, 4, 0, 0, 0, 1,                         // character size 1
        0, 0, 0, 3, 0, 0, 0, 0x0E,                                  // suffix tables
        0, 0, 0, 6, 0x73, 0x00, 0x69, 0x6E, 0x67, 0x00, 0, 0, 0, 0, // s, ing; no extended
        0, 0, 0, 5, 0, 0, 0, 0x10,                                  // segment text
        0x00, 0x00,                                                 // a
        0x00, 0x6B, 0x00, 0x01, 0x65, 0x64, 0x00, 0x01, 0x03, 0x01, 0x02, 0x00, 0x6C, 0x00,
        0, 0, 0, 4, 0, 0, 0, 0x1A, 0, 0, 0, 2,                      // directory
        0x61, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0, 2,                   // a
        0x77, 0x61, 0x6C, 0, 0, 0, 2, 0, 0, 0, 0x0E,                // wal
    };
    return std::string((const char *)bytes, sizeof bytes);
}

std::string compressedLexicon(const std::vector<std::string> &words,
                              const std::vector<std::string> &simple,
                              const std::vector<std::string> &extended)
{
    TempDir dir;
    std::string list, suffixes;
    for (const std::string &w : words)
        list += w + "\r\n";
    for (size_t i = 0; i < (extended.empty() ? simple.size() : 30); i++)
        suffixes += (i < simple.size() ? simple[i] : "") + "\r\n"; /* empty lines up to 30 */
    for (const std::string &s : extended)
        suffixes += s + "\r\n";
    writeFile(dir.file("list"), list);
    writeFile(dir.file("suffixes"), suffixes);
    int16_t sid = ORTO_OpenSession();
    std::string out = dir.file("out.clx");
    if (ORTO_CompressLexInit(sid, out.c_str(), dir.file("suffixes").c_str(), ORTO_LangAmerican,
                             nullptr) != 0 ||
        ORTO_CompressLexFile(sid, dir.file("list").c_str(), nullptr) != 0 ||
        ORTO_CompressLexEnd(sid) != 0)
        throw std::runtime_error("the compressor refused the list");
    ORTO_CloseSession(sid);
    return readFile(out);
}

/* No test meets a person: a test run from a terminal would otherwise get
 * the terminal front end.  Tests that want a user install their own. */
#include "orto_ui.h"
static const bool noUserForTests = [] {
    static const ORTO_FrontEnd none = {};
    ORTO_SetFrontEnd(&none);
    return true;
}();
