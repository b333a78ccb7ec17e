/*
 * ini_fuzz_one.h -- one run of the INI reader and writer over arbitrary
 * bytes: the first byte picks a section, a key and a change, the rest is
 * the file.  Shared by the libFuzzer target and the corpus replay test.
 *
 * Besides the sanitizers, it checks what must hold for any file: a value
 * lies within the text and within one line; a change splices one place of
 * the text (a value changed takes out no line end, a key taken out one
 * line); the key written reads back as written; and every other key reads
 * as it did before.  A broken rule aborts.
 */
#ifndef ORTO_FUZZ_INI_FUZZ_ONE_H
#define ORTO_FUZZ_INI_FUZZ_ONE_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>

#include <string>

#include "platform/ini_file.h"

namespace inifuzz {

inline void require(bool ok, const char *what)
{
    if (!ok) {
        fprintf(stderr, "ini fuzz: %s\n", what);
        abort();
    }
}

const char *const Sections[] = {"ORTO", "orto user", "English", "", "["};
const char *const Keys[] = {"MainLexPath", "key", "KEY", "k", "a b"};
constexpr int Names = 5;
const char *const NewValue = "new=value ";

struct Reading {
    bool found;
    std::string value;
};

inline Reading readKey(const std::string &text, const char *section, const char *key)
{
    IniSpan span = {0, 0};
    Reading r = {iniFindValue(text.data(), text.size(), section, key, &span), ""};
    if (r.found) {
        require(span.start <= text.size() && span.length <= text.size() - span.start, "value outside the text");
        r.value = text.substr(span.start, span.length);
        require(r.value.find('\n') == std::string::npos, "value runs over a line end");
    }
    return r;
}

inline void runOne(const uint8_t *data, size_t size)
{
    uint8_t pick = size ? data[0] : 0;
    std::string text(size ? (const char *)data + 1 : "", size ? size - 1 : 0);
    const char *section = Sections[pick % Names];
    const char *key = Keys[(pick / Names) % Names];
    bool remove = pick >= 200;

    Reading before[Names][Names];
    for (int s = 0; s < Names; s++)
        for (int k = 0; k < Names; k++)
            before[s][k] = readKey(text, Sections[s], Keys[k]);

    std::string edited = text;
    if (!iniSetValue(&edited, section, key, remove ? nullptr : NewValue)) {
        require(edited == text, "a refused change changed the text");
        return;
    }
    size_t prefix = 0;
    while (prefix < text.size() && prefix < edited.size() && text[prefix] == edited[prefix])
        prefix++;
    size_t suffix = 0;
    while (suffix < text.size() - prefix && suffix < edited.size() - prefix &&
           text[text.size() - 1 - suffix] == edited[edited.size() - 1 - suffix])
        suffix++;
    std::string takenOut = text.substr(prefix, text.size() - prefix - suffix);
    size_t lineEnds = 0;
    for (char c : takenOut)
        lineEnds += c == '\n';
    require(lineEnds <= (remove ? 1u : 0u), "a change took out more than its line");

    for (int s = 0; s < Names; s++)
        for (int k = 0; k < Names; k++) {
            Reading after = readKey(edited, Sections[s], Keys[k]);
            bool same = strcasecmp(Sections[s], section) == 0 && strcasecmp(Keys[k], key) == 0;
            if (same && !remove)
                require(after.found && after.value == NewValue, "the key written doesn't read back");
            else if (!same)
                require(after.found == before[s][k].found && after.value == before[s][k].value,
                        "another key changed");
        }
}

} // namespace inifuzz

#endif
