/*
 * compress_fuzz_one.h -- one run of the compressor over arbitrary inputs:
 * a suffix file and two word lists, cut from the fuzz input by the lengths
 * that its first bytes give, go through ORTO_CompressLexInit, File (once
 * per list) and End; a lexicon that comes out is opened, looked up and
 * walked as the compressed reader's own target does (clex_fuzz_one.h).
 *
 * Rules: every call fails by its stated codes only; a lexicon that the
 * compressor finished opens; every word of a list that it took whole (a
 * line of 1 to 63 bytes, neither empty nor a comment) is found in it; and
 * nothing is left beside the output but the output.
 */
#ifndef ORTO_FUZZ_COMPRESS_FUZZ_ONE_H
#define ORTO_FUZZ_COMPRESS_FUZZ_ONE_H

#include <dirent.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "fuzz/clex_fuzz_one.h"
#include "fuzz/fuzz_support.h"

namespace compressfuzz {

using fuzzsupport::require;

inline std::vector<std::string> wordsOf(const std::string &list)
{
    std::vector<std::string> words;
    size_t at = 0;
    while (at < list.size()) {
        size_t end = list.find("\r\n", at);
        if (end == std::string::npos)
            end = list.size();
        std::string w = list.substr(at, end - at);
        if (!w.empty() && w.size() <= 63 && w[0] != '#' && w.find('\0') == std::string::npos)
            words.push_back(w);
        at = end + 2;
    }
    return words;
}

inline size_t filesIn(const std::string &dir)
{
    size_t n = 0;
    DIR *d = opendir(dir.c_str());
    while (struct dirent *e = d ? readdir(d) : nullptr)
        n += e->d_name[0] != '.';
    if (d)
        closedir(d);
    return n;
}

inline void runOne(const uint8_t *data, size_t size)
{
    fuzzsupport::Input in = {data, size, 0};
    int16_t language = (int16_t)fuzzsupport::takeValue(&in);
    size_t suffixLength = fuzzsupport::takeByte(&in) * 4;
    size_t firstLength = fuzzsupport::takeByte(&in) << 8;
    firstLength |= fuzzsupport::takeByte(&in);
    std::string suffixes = fuzzsupport::takeBytes(&in, suffixLength);
    std::string lists[2];
    lists[0] = fuzzsupport::takeBytes(&in, firstLength);
    lists[1] = fuzzsupport::rest(&in);

    std::string dir = fuzzsupport::scratchDir() + "/compress";
    mkdir(dir.c_str(), 0700);
    std::string out = dir + "/out.clx", suffixFile = dir + "/suffixes.txt";
    remove(out.c_str());
    std::string listFiles[2] = {dir + "/list1.txt", dir + "/list2.txt"};
    fuzzsupport::writeBytes(suffixFile, suffixes);
    for (int i = 0; i < 2; i++)
        fuzzsupport::writeBytes(listFiles[i], lists[i]);

    int16_t sid = ORTO_OpenSession();
    uint32_t line = 0;
    int16_t rc = ORTO_CompressLexInit(sid, out.c_str(), suffixFile.c_str(), language, &line);
    require(rc == 0 || rc == ORTO_OutOfMemory || rc == ORTO_OpenError, "compressor start");
    std::vector<std::string> taken;
    bool started = rc == 0;
    for (int i = 0; i < 2 && started; i++) {
        rc = ORTO_CompressLexFile(sid, listFiles[i].c_str(), &line);
        require(rc == 0 || rc == ORTO_InvalidWord || rc == ORTO_OutOfSequence || rc == ORTO_OutOfMemory,
                "compressing a list");
        if (rc == 0)
            for (const std::string &w : wordsOf(lists[i]))
                taken.push_back(w);
    }
    rc = ORTO_CompressLexEnd(sid);
    require(rc == (started ? 0 : ORTO_Unsupported), "finishing the lexicon");
    for (const std::string &f : {suffixFile, listFiles[0], listFiles[1]})
        remove(f.c_str());
    require(filesIn(dir) == (started ? 1u : 0u), "files left beside the output");
    if (started) {
        int16_t lex = ORTO_OpenLex(sid, out.c_str(), 0);
        require(lex >= 0, "a finished lexicon doesn't open");
        ORTO_SetOption(sid, ORTO_CaseSensitive, 1);
        for (const std::string &w : taken)
            require(ORTO_FindLexWord(sid, lex, w.c_str(), nullptr, 0) == 'i', "compressed word not found");
        ORTO_CloseLex(sid, lex);
        std::string bytes = fuzzsupport::readBytes(out);
        std::string copy = fuzzsupport::scratchDir() + "/compressed.clx";
        clexfuzz::runOne((const uint8_t *)bytes.data(), bytes.size(), copy.c_str());
    }
    ORTO_CloseSession(sid);
}

} // namespace compressfuzz

#endif
