/*
 * test_support.h -- what many tests need: a temporary folder that cleans
 * itself up, whole-file reads and writes, the debug log read back, and
 * compressed lexicons to read.
 */
#ifndef ORTO_TEST_SUPPORT_H
#define ORTO_TEST_SUPPORT_H

#include <string>
#include <vector>

/* A fresh folder under $TMPDIR (or /tmp), removed with its contents at the
 * end of the scope. */
struct TempDir {
    std::string path;
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    std::string file(const std::string &name) const { return path + "/" + name; }
};

std::string readFile(const std::string &path);
void writeFile(const std::string &path, const std::string &bytes);
bool fileExists(const std::string &path);

/* The lines of a debug log with their "HH:MM:SS " time stamps taken off. */
std::vector<std::string> logLines(const std::string &path);

/* Names a debug file in a temporary folder for the scope, then stops
 * logging; `lines()` reads it back. */
struct DebugCapture {
    TempDir dir;
    std::string path;
    DebugCapture();
    ~DebugCapture();
    std::vector<std::string> lines() const { return logLines(path); }
    /* True if some line of the log equals `line`. */
    bool has(const std::string &line) const;
    void clear() const;
};

/* The 108-byte compressed lexicon of the format's documentation: language
 * "am", suffixes "s" and "ing", words a, walk, walked, walking, walks, wall. */
std::string exampleLexicon();

/* A compressed lexicon of `words` (sorted by bytes) made by the engine's
 * own compressor, with the suffix tables given; its bytes. */
std::string compressedLexicon(const std::vector<std::string> &words,
                              const std::vector<std::string> &simple = {},
                              const std::vector<std::string> &extended = {});

#endif
