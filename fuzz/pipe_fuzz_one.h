/*
 * pipe_fuzz_one.h -- one run of the ispell pipe of the orto program over
 * arbitrary input lines, commands included, through the program's own loop
 * (pipeLines in tools/orto/cmd_pipe.cpp).  The first byte picks the
 * encoding and whether run-together words pass (-C); the rest is what the
 * editor sends.  The session has the small compressed lexicon and a
 * personal lexicon that starts missing, so that *WORD and &WORD make it.
 *
 * Rules: every text line is answered by lines that begin with *, & or #
 * and one empty line closing them, and a command line by nothing; with
 * terse mode on (!) no * line comes.
 */
#ifndef ORTO_FUZZ_PIPE_FUZZ_ONE_H
#define ORTO_FUZZ_PIPE_FUZZ_ONE_H

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "cmd_pipe.h"
#include "fuzz/fuzz_support.h"

namespace pipefuzz {

using fuzzsupport::require;

/* The input as the loop reads it: lines ended by LF (the last maybe not),
 * with CR and LF taken off their ends. */
inline std::vector<std::string> inputLines(const std::string &input)
{
    std::vector<std::string> lines;
    size_t at = 0;
    while (at < input.size()) {
        size_t end = input.find('\n', at);
        end = end == std::string::npos ? input.size() : end + 1;
        std::string line = input.substr(at, end - at);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        lines.push_back(line);
        at = end;
    }
    return lines;
}

inline bool isCommand(const std::string &line)
{
    return !line.empty() && line[0] && strchr("*&@#+-~!%", line[0]) != nullptr;
}

inline void runOne(const uint8_t *data, size_t size)
{
    if (size < 2)
        return;
    uint8_t flags = data[0];
    std::string input((const char *)data + 1, size - 1);

    CheckOptions options;
    initCheckOptions(&options);
    options.lexicons.push_back(fuzzsupport::smallLexicon());
    options.personalPath = fuzzsupport::scratchDir() + "/personal.tlx";
    remove(options.personalPath.c_str());
    options.encoding = flags & 1 ? EncodingLatin1 : EncodingUtf8;
    options.settings.push_back({ORTO_SplitWords, (flags >> 1) & 1});
    options.maxSuggestions = 1 + (flags >> 2) % 8;
    LexiconSet set;
    require(openLexicons(options, true, &set) == ExitOk, "the pipe's lexicons");

    char *output = nullptr;
    size_t outputSize = 0;
    FILE *out = open_memstream(&output, &outputSize);
    FILE *in = fmemopen(&input[0], input.size(), "r");
    require(in && out, "memory streams");
    int savedStderr = dup(2); /* the program's notes on bad lines: not wanted here */
    int devNull = open("/dev/null", O_WRONLY);
    dup2(devNull, 2);
    pipeLines(&set, options, in, out);
    fflush(stderr);
    dup2(savedStderr, 2);
    close(savedStderr);
    close(devNull);
    fclose(in);
    fclose(out);
    std::string answer(output, outputSize);
    free(output);
    closeLexicons(&set);

    // the answers, line by line, against the lines sent
    if (getenv("ORTO_FUZZ_SHOW"))
        fprintf(stderr, "pipe answered:\n%s--\n", answer.c_str());
    std::vector<std::string> said = inputLines(answer);
    size_t at = 0;
    bool terse = false;
    for (const std::string &line : inputLines(input)) {
        if (isCommand(line)) {
            terse = line[0] == '!' ? true : line[0] == '%' ? false : terse;
            continue;
        }
        for (;; at++) {
            require(at < said.size(), "a text line without its empty line");
            if (said[at].empty())
                break;
            require(strchr("*&#", said[at][0]) != nullptr, "an answer of another kind");
            require(!terse || said[at][0] != '*', "a correct word in terse mode");
        }
        at++;
    }
    require(at == said.size(), "answers to no line");
}

} // namespace pipefuzz

#endif
