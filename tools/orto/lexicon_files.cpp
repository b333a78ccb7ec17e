/*
 * lexicon_files.cpp -- finding lexicon files and looking at them before
 * the engine opens them.
 *
 * The engine reads text lexicons as CR LF lines in Windows Latin-1.  A word
 * list written on Linux has LF line ends and UTF-8 as a rule; the engine
 * would read such a file as a few long lines.  So the program looks at a
 * text file first, and reads a Unix one itself into a lexicon in memory,
 * line by line by the same rules.  A file with control bytes that no text
 * holds is refused as damaged, since any file without the magic number
 * would otherwise pass for a word list; and a file that begins with the
 * magic number but that the engine still takes for a word list is a
 * compressed lexicon whose sections can't be followed.
 *
 * Bundled lexicons are looked up by name in the program's data folders:
 * the build tree's when the program runs from there, then share/orto
 * beside the program's own folder, then the folder it was installed to.
 */
#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lexicons.h"
#include "orto.h"

#ifndef ORTO_DATA_DIR
#define ORTO_DATA_DIR "/usr/local/share/orto"
#endif
#ifndef ORTO_BUILD_DATA_DIR
#define ORTO_BUILD_DATA_DIR ""
#endif

static const char BundledExtension[] = ".clx";

std::string dirName(const std::string &path)
{
    size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

static std::string realPath(const std::string &path)
{
    char buf[PATH_MAX];
    return realpath(path.c_str(), buf) ? std::string(buf) : path;
}

bool isFile(const std::string &path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool findBundledLexicon(const std::string &name, std::string *path)
{
    /* "en_us" and "EN-US" name en-US */
    std::string canonical = name;
    for (size_t i = 0; i < canonical.size(); i++) {
        char &c = canonical[i];
        if (c == '_')
            c = '-';
        size_t dash = canonical.find('-');
        bool region = dash != std::string::npos && i > dash;
        if (region && c >= 'a' && c <= 'z')
            c = (char)(c - 32);
        if (!region && c >= 'A' && c <= 'Z')
            c = (char)(c + 32);
        if (c == '/' || c == '.')
            return false;
    }
    if (canonical.empty())
        return false;
    /* the dictionary names that editors use for ispell */
    static const char *const aliases[][2] = {
        {"american", "en-US"}, {"english", "en-US"}, {"en", "en-US"}, {"british", "en-GB"},
    };
    for (const auto &alias : aliases)
        if (canonical == alias[0])
            canonical = alias[1];

    return findDataFile(canonical + BundledExtension, path);
}

bool findDataFile(const std::string &fileName, std::string *path)
{
    char exe[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    std::string exeDir = n > 0 ? dirName(std::string(exe, (size_t)n)) : std::string();
    std::string buildData = ORTO_BUILD_DATA_DIR;
    std::vector<std::string> dirs;
    if (!buildData.empty() && !exeDir.empty() &&
        realPath(dirName(buildData) + "/bin") == realPath(exeDir))
        dirs.push_back(buildData);
    if (!exeDir.empty())
        dirs.push_back(exeDir + "/../share/orto");
    dirs.push_back(ORTO_DATA_DIR);
    for (const std::string &dir : dirs) {
        std::string candidate = dir + "/" + fileName;
        if (isFile(candidate)) {
            *path = candidate;
            return true;
        }
    }
    return false;
}

std::string defaultPersonalPath()
{
    const char *xdg = getenv("XDG_CONFIG_HOME");
    if (xdg && xdg[0] == '/')
        return std::string(xdg) + "/orto/personal.tlx";
    const char *home = getenv("HOME");
    if (home && home[0])
        return std::string(home) + "/.config/orto/personal.tlx";
    return std::string();
}

static bool validUtf8(const std::string &bytes)
{
    std::string ignored;
    return toEngineText(bytes, EncodingUtf8, &ignored);
}

static bool readWholeFile(const std::string &path, std::string *bytes)
{
    FILE *f = fopen(path.c_str(), "rb");
    if (!f)
        return false;
    char buf[65536];
    size_t n;
    bytes->clear();
    while ((n = fread(buf, 1, sizeof buf, f)) > 0)
        bytes->append(buf, n);
    bool ok = !ferror(f);
    fclose(f);
    return ok;
}

LexFileShape lexFileShape(const std::string &path, bool *utf8)
{
    *utf8 = false;
    struct stat st;
    if (stat(path.c_str(), &st) != 0)
        return ShapeMissing;
    if (S_ISDIR(st.st_mode)) {
        errno = EISDIR;
        return ShapeMissing;
    }
    FILE *f = fopen(path.c_str(), "rb");
    if (!f)
        return ShapeMissing;
    unsigned char magic[4];
    size_t got = fread(magic, 1, 4, f);
    fclose(f);
    if (got == 4 && magic[0] == 0x57 && magic[1] == 0x00 && magic[2] == 0x05 && magic[3] == 0x01)
        return ShapeCompressed;

    std::string bytes;
    if (!readWholeFile(path, &bytes))
        return ShapeMissing;
    bool loneLf = false, high = false;
    for (size_t i = 0; i < bytes.size(); i++) {
        unsigned char c = (unsigned char)bytes[i];
        if (c < 0x20 && c != '\t' && c != '\r' && c != '\n')
            return ShapeBinary;
        if (c == '\n' && (i == 0 || bytes[i - 1] != '\r'))
            loneLf = true;
        if (c >= 0x80)
            high = true;
    }
    *utf8 = high && validUtf8(bytes);
    return loneLf || *utf8 ? ShapeUnixText : ShapeEngineText;
}

/* Reads a Unix text lexicon into a new lexicon in memory, by the rules of
 * the engine's own reader: a first line that begins with '#' is the
 * sentinel, later ones are comments, "word TAB action other-word" or a
 * bare word (action i). */
static int16_t loadUnixLexicon(int16_t sid, const std::string &path, bool utf8)
{
    std::string bytes;
    if (!readWholeFile(path, &bytes)) {
        printError("%s: %s", path.c_str(), strerror(errno));
        return ORTO_FileOpenError;
    }
    int16_t lex = ORTO_CreateLex(sid, nullptr, ORTO_LangAmerican);
    if (lex < 0) {
        printError("%s: %s", path.c_str(), resultText(lex));
        return lex;
    }
    /* the file's words go in as they stand, possessive endings included */
    int32_t stripping = ORTO_SetOption(sid, ORTO_StripPossessives, 0);
    size_t pos = 0;
    unsigned long lineNumber = 0;
    int16_t rc = 0;
    while (pos < bytes.size() && rc >= 0) {
        size_t end = bytes.find('\n', pos);
        if (end == std::string::npos)
            end = bytes.size();
        std::string line = bytes.substr(pos, end - pos);
        pos = end + 1;
        lineNumber++;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        std::string engine;
        toEngineText(line, utf8 ? EncodingUtf8 : EncodingLatin1, &engine);
        std::string word = engine, other;
        uint16_t action = ORTO_Ignore;
        size_t tab = engine.find('\t');
        if (tab != std::string::npos) {
            word = engine.substr(0, tab);
            if (tab + 1 >= engine.size())
                continue; /* no action: the engine's reader finds nothing there either */
            action = (unsigned char)engine[tab + 1];
            other = engine.substr(tab + 2);
        }
        if (word.empty())
            continue;
        rc = ORTO_AddToLex(sid, lex, word.c_str(), action, other.c_str());
        if (rc == ORTO_UnknownAction || rc == ORTO_InvalidWord) {
            printError("%s:%lu: warning: %s, line skipped", path.c_str(), lineNumber,
                       rc == ORTO_UnknownAction ? "unknown action" : "invalid word");
            rc = 0;
        }
    }
    ORTO_SetOption(sid, ORTO_StripPossessives, (uint32_t)stripping);
    if (rc < 0) {
        printError("%s: %s", path.c_str(), resultText(rc));
        ORTO_CloseLex(sid, lex);
        return rc;
    }
    return lex;
}

/* The word frequencies of a compressed lexicon stand beside it, with the
 * extension .freq for .clx ("en-US.freq" beside "en-US.clx").  Without
 * them the lexicon still ranks, by the error model alone; a damaged file
 * is reported and passed over. */
static void openFrequencies(int16_t sid, int16_t lex, const std::string &path)
{
    size_t dot = path.rfind('.');
    size_t slash = path.rfind('/');
    std::string base = dot != std::string::npos && (slash == std::string::npos || dot > slash)
                           ? path.substr(0, dot)
                           : path;
    std::string frequencies = base + ".freq";
    if (!isFile(frequencies))
        return;
    int16_t rc = ORTO_SetLexFrequencies(sid, lex, frequencies.c_str());
    if (rc < 0)
        printError("word frequencies %s not used: %s", frequencies.c_str(), resultText(rc));
}

int16_t openLexiconFile(int16_t sid, const std::string &path)
{
    bool utf8;
    LexFileShape shape = lexFileShape(path, &utf8);
    switch (shape) {
    case ShapeMissing:
        printError("cannot open lexicon %s: %s", path.c_str(), strerror(errno));
        return ORTO_FileOpenError;
    case ShapeBinary:
        printError("cannot open lexicon %s: not a lexicon file, or a damaged one", path.c_str());
        return ORTO_BadFormat;
    case ShapeUnixText:
        return loadUnixLexicon(sid, path, utf8);
    case ShapeCompressed:
    case ShapeEngineText:
        break;
    }
    int16_t lex = ORTO_OpenLex(sid, path.c_str(), 0);
    if (lex < 0) {
        printError("cannot open lexicon %s: %s", path.c_str(), resultText(lex));
        return lex;
    }
    /* the engine takes a file whose sections it can't follow for a word
     * list; one that begins with the magic number is a damaged lexicon */
    uint16_t format = ORTO_LexText;
    ORTO_GetLexInfo(sid, lex, nullptr, &format, nullptr);
    if (shape == ShapeCompressed && format != ORTO_LexCompressed) {
        printError("cannot open lexicon %s: %s", path.c_str(), resultText(ORTO_BadFormat));
        ORTO_CloseLex(sid, lex);
        return ORTO_BadFormat;
    }
    if (format == ORTO_LexCompressed)
        openFrequencies(sid, lex, path);
    return lex;
}

bool isStorableWord(const std::string &word)
{
    if (word.empty() || word.size() > 63 || word[0] == '#')
        return false;
    for (unsigned char c : word)
        if (c < 0x20 || c == 0x7F)
            return false;
    return true;
}
