/*
 * fuzz_support.h -- what the fuzz targets share: reading a fuzz input as
 * fields, a scratch folder for the files a run makes, and a small
 * compressed lexicon to check against.
 *
 * The targets keep their work in headers (*_fuzz_one.h) that the fuzzer
 * and the corpus replay test (tests/fuzz_corpus_test.cpp) both include,
 * so that the saved corpora run in every ordinary build too.  A rule that
 * a run finds broken aborts, as a sanitizer report does.
 */
#ifndef ORTO_FUZZ_FUZZ_SUPPORT_H
#define ORTO_FUZZ_FUZZ_SUPPORT_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "orto.h"

namespace fuzzsupport {

inline void require(bool ok, const char *what)
{
    if (!ok) {
        fprintf(stderr, "fuzz rule broken: %s\n", what);
        abort();
    }
}

/* Fields taken from the front of an input; past its end they read as 0. */
struct Input {
    const uint8_t *data;
    size_t size;
    size_t at;
};

inline uint32_t takeByte(Input *in) { return in->at < in->size ? in->data[in->at++] : 0; }

inline uint32_t takeValue(Input *in)
{
    uint32_t v = 0;
    for (int i = 0; i < 4; i++)
        v = v << 8 | takeByte(in);
    return v;
}

inline std::string takeBytes(Input *in, size_t n)
{
    n = n < in->size - in->at ? n : in->size - in->at;
    std::string s((const char *)in->data + in->at, n);
    in->at += n;
    return s;
}

inline std::string rest(Input *in) { return takeBytes(in, in->size - in->at); }

inline void writeBytes(const std::string &path, const std::string &bytes)
{
    FILE *f = fopen(path.c_str(), "wb");
    require(f != nullptr, "scratch file can't be written");
    fwrite(bytes.data(), 1, bytes.size(), f);
    fclose(f);
}

inline std::string readBytes(const std::string &path)
{
    std::string bytes;
    FILE *f = fopen(path.c_str(), "rb");
    if (!f)
        return bytes;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, f)) > 0)
        bytes.append(buf, n);
    fclose(f);
    return bytes;
}

/* The folder of this process's scratch files, under $TMPDIR (scripts/fuzz.sh
 * points it at a memory file system, where the engine's fsyncs are free).
 * Removed with what is left in it when the process ends. */
inline const std::string &scratchDir()
{
    static std::string dir;
    if (dir.empty()) {
        const char *tmp = getenv("TMPDIR");
        dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/orto-fuzz-XXXXXX";
        require(mkdtemp(&dir[0]) != nullptr, "no scratch folder");
        atexit([] {
            std::string command = "rm -rf '" + dir + "'";
            if (system(command.c_str()) != 0)
                fprintf(stderr, "fuzz: %s left behind\n", dir.c_str());
        });
    }
    return dir;
}

/* The words of the small lexicon, sorted by bytes: some with the suffixes
 * of its table, some short, some with capitals, an apostrophe, an accent. */
inline const char *const *smallWords()
{
    static const char *const words[] = {
        "Alice", "Paris", "a", "about", "after", "again", "an", "and", "are", "as", "at", "be",
        "been", "being", "but", "by", "can", "cat", "cats", "caf\xe9", "color", "colors",
        "could", "day", "days", "do", "does", "dog", "dogs", "don't", "for", "from", "go",
        "good", "had", "has", "have", "he", "her", "here", "him", "his", "how", "I", "if",
        "in", "is", "it", "its", "jump", "jumped", "jumping", "jumps", "just", "know", "lazy",
        "like", "make", "many", "more", "most", "my", "new", "no", "not", "now", "of", "on",
        "one", "only", "or", "other", "our", "out", "over", "people", "quick", "quickly",
        "receive", "received", "receives", "say", "see", "she", "so", "some", "than", "that",
        "the", "their", "them", "then", "there", "these", "they", "this", "time", "to", "two",
        "up", "use", "walk", "walked", "walking", "walks", "wall", "was", "way", "we", "well",
        "were", "what", "when", "which", "who", "will", "with", "word", "words", "would",
        "year", "years", "you", "your", nullptr};
    return words;
}

/* The small lexicon as a compressed file, made once by the engine's own
 * compressor; its path. */
inline const std::string &smallLexicon()
{
    static std::string path;
    if (!path.empty())
        return path;
    std::string list, suffixes = "s\r\ned\r\ning\r\nly\r\n";
    std::vector<std::string> sorted;
    for (const char *const *w = smallWords(); *w; w++)
        sorted.push_back(*w);
    std::sort(sorted.begin(), sorted.end()); /* by unsigned bytes */
    for (const std::string &w : sorted)
        list += w + "\r\n";
    std::string dir = scratchDir();
    writeBytes(dir + "/small.txt", list);
    writeBytes(dir + "/small-suffixes.txt", suffixes);
    int16_t sid = ORTO_OpenSession();
    std::string out = dir + "/small.clx";
    require(ORTO_CompressLexInit(sid, out.c_str(), (dir + "/small-suffixes.txt").c_str(),
                                 ORTO_LangAmerican, nullptr) == 0 &&
                ORTO_CompressLexFile(sid, (dir + "/small.txt").c_str(), nullptr) == 0 &&
                ORTO_CompressLexEnd(sid) == 0,
            "the small lexicon can't be made");
    ORTO_CloseSession(sid);
    path = out;
    return path;
}

} // namespace fuzzsupport

#endif
