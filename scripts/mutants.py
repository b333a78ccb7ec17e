#!/usr/bin/env python3
"""Deliberately broken builds: each mutant below changes one thing in the
engine, and the test suite must fail on every one of them.  Run it when
tests are folded or cut, to show that no fault they caught goes unseen:

    python3 scripts/mutants.py [BUILD_DIR] [NAME...]

Each mutant is applied to the source tree, built in BUILD_DIR (default
build-mutants, configured without benchmarks) and tested with ctest; the
source is restored at once.  Prints one line a mutant: killed (with the
first tests that failed) or SURVIVED, and exits 1 if any survived."""
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# name, file, text as it is, text of the mutant
MUTANTS = [
    # sessions, options, version, log
    ("session-slot-from-1", "engine/session.cpp", "    int sid = 0;\n", "    int sid = 1;\n"),
    ("setoption-all-bits", "engine/session.cpp",
     "    int32_t before = (s->options & option) ? 1 : 0;",
     "    int32_t before = (s->options & option) == option ? 1 : 0;"),
    ("language-unsigned", "engine/session.cpp", "        return (int16_t)s->language;",
     "        return (uint16_t)s->language;"),
    ("version-one-more", "engine/session.cpp", "    StrCopyN(buffer, size, start, n);",
     "    StrCopyN(buffer, size, start, n + 1);"),
    ("log-date-no-blank", "engine/debug_log.cpp", '"%s %s %02d %02d:%02d:%02d %d\\n"',
     '"%s %s %02d %02d:%02d:%02d %d"'),
    ("bad-block-message", "engine/session.cpp", '"%s: bad block id %hd"', '"%s: bad block %hd"'),
    # characters and strings
    ("class-nbsp-space", "engine/charclass.cpp", "    /* A0 */ 0x00, 0x04,", "    /* A0 */ 0x08, 0x04,"),
    ("class-eth-vowel", "engine/charclass.cpp", "    /* D0 */ 0x21, 0x21,", "    /* D0 */ 0x61, 0x21,"),
    ("decimal-minus-always", "engine/string_helpers.cpp", "    if (value < 0 && n < size - 1)",
     "    if (value < 0)"),
    ("compare-signed", "engine/string_helpers.cpp", "            return x > y ? 1 : -1;",
     "            return (signed char)x > (signed char)y ? 1 : -1;"),
    ("matchcase-lower-first", "engine/string_helpers.cpp",
     "    if (StrCompareNoCase(word, other) == 0 && !IsUpper(first))",
     "    if (StrCompareNoCase(word, other) == 0)"),
    # the block scanner and the block check
    ("scan-no-inner-period", "engine/block_scan.cpp", "    if (c == '.' || (c == '-' && !splitHyphens))",
     "    if (c == '-' && !splitHyphens)"),
    ("scan-no-final-period", "engine/block_scan.cpp", "    if (hasPeriod && pos < end",
     "    if (false && hasPeriod && pos < end"),
    ("scan-capital-s-apostrophe", "engine/block_scan.cpp",
     "(word[n - 2] == 's' || word[n - 2] == 'S'))", "(word[n - 2] == 's'))"),
    ("skip-keeps-link", "engine/block_scan.cpp",
     "        if (IsPunct(t[block->cursor]))\n            block->previousWord = block->size;\n", ""),
    ("doubled-always-nocase", "engine/block_scan.cpp",
     "    i16 cmp = caseSensitive ? StrCompare(current, previous) : StrCompareNoCase(current, previous);",
     "    i16 cmp = StrCompareNoCase(current, previous);"),
    ("doubled-across-punct", "engine/block_scan.cpp", "    if (behind < 0 || IsPunct((unsigned char)behind))",
     "    if (behind < 0)"),
    ("first-word-forever", "engine/block_scan.cpp", "    block->atFirstWord = 0;\n    return 0;", "    return 0;"),
    ("setcursor-keeps-link", "engine/block_scan.cpp",
     "    block->cursor = cursor;\n    block->previousWord = block->size;", "    block->cursor = cursor;"),
    ("wordcount-moves-cursor", "engine/block_scan.cpp", "        block->cursor = saved;\n", ""),
    ("insert-no-spare-byte", "engine/block_edit.cpp", "(uint64_t)block->length + n >= block->size",
     "(uint64_t)block->length + n > block->size"),
    ("insert-drops-terminator", "engine/block_edit.cpp", "            block->length - block->cursor + 1);",
     "            block->length - block->cursor);"),
    ("delword-keeps-space", "engine/block_edit.cpp",
     "    while (block->cursor > 0 && IsSpace(t[block->cursor - 1]))\n        block->cursor--;\n", ""),
    ("delword-takes-hyphen", "engine/block_edit.cpp", "        else if (metWord && !IsApostrophe(c))",
     "        else if (metWord && !IsApostrophe(c) && c != '-')"),
    ("deltext-bound-length", "engine/block_edit.cpp", "    if (count > block->length - block->cursor)",
     "    if (count > block->length)"),
    ("gettext-needs-one-more", "engine/block_edit.cpp", "    if (bufferSize < block->length) {",
     "    if (bufferSize <= block->length) {"),
    ("uncapped-every-word", "engine/block_api.cpp",
     "        if ((mask & ORTO_ReportUncappedWords) && !BlockAtFirstWord(b))",
     "        if (false && (mask & ORTO_ReportUncappedWords) && !BlockAtFirstWord(b))"),
    # the word check
    ("possessive-s-apostrophe", "engine/word_check.cpp",
     "           ((a == 's' || a == 'S') && IsApostrophe(b));", "           false;"),
    ("no-second-pass", "engine/word_check.cpp", "    if (!action && caseSensitive && IsUpper(",
     "    if (false && !action && caseSensitive && IsUpper("),
    ("no-capitals-pass", "engine/word_check.cpp", "    if (!action && caseSensitive && IsAllCaps(word)) {",
     "    if (false && !action && caseSensitive && IsAllCaps(word)) {"),
    ("case-for-a-too", "engine/word_check.cpp",
     "    if ((action == 'A' || action == 'C') && replacementSize > 0)\n        MatchCase(word, replacement);\n    return ActionToResult",
     "    if (action != 'i' && replacementSize > 0)\n        MatchCase(word, replacement);\n    return ActionToResult"),
    ("hyphen-always-splits", "engine/word_check.cpp",
     "        if ((c == '-' && (mask & ORTO_SplitHyphenatedWords)) ||", "        if (c == '-' ||"),
    ("run-together-keeps-case", "engine/word_check.cpp", "        who = &scratch;\n", ""),
    ("slots-last-first", "engine/word_check.cpp", "    for (int slot = 0; slot < MaxLexicons; slot++) {",
     "    for (int slot = MaxLexicons - 1; slot >= 0; slot--) {"),
    ("allcaps-ignores-digits", "engine/word_check.cpp", "        while (*p && IsUpper(*p))",
     "        while (*p && (IsUpper(*p) || IsDigit(*p)))"),
    ("mixed-case-keeps-case", "engine/word_check.cpp",
     "                *p = (char)ToLower((unsigned char)*p);\n            if (IsUpper(first))",
     "                *p = (char)*p;\n            if (IsUpper(first))"),
    # text lexicons
    ("insert-behind-equal", "lexicon/tlex_table.cpp",
     "        if (StrCompare(tlex->table.base[mid].word, word) < 0)\n            at = mid + 1;",
     "        if (StrCompare(tlex->table.base[mid].word, word) <= 0)\n            at = mid + 1;"),
    ("nocase-index-last-first", "lexicon/tlex_table.cpp", "        return c != 0 ? c < 0 : a < b;",
     "        return c != 0 ? c < 0 : a > b;"),
    ("read-keeps-comments", "lexicon/tlex_read.cpp", "        if (line[0] == '#' || line[0] == 0)",
     "        if (line[0] == 0)"),
    ("no-tab-action-e", "lexicon/tlex_read.cpp", "        return appendEntry(tlex, line, ORTO_Ignore, nullptr);",
     "        return appendEntry(tlex, line, ORTO_Exclude, nullptr);"),
    ("plain-list-writes-actions", "lexicon/tlex_file.cpp",
     "        if (!tlex->plainList) {\n            len = appendCut", "        if (true) {\n            len = appendCut"),
    ("line-cut-later", "lexicon/tlex_file.cpp", "    while (*src && len < (u32)TLexLineMax)",
     "    while (*src && len < (u32)TLexLineMax + 8)"),
    ("windows-id-french", "lexicon/tlex_read.cpp", "{1036, 0x6672}", "{1036, 0x6673}"),
    ("sentinel-no-minus", "lexicon/tlex_read.cpp", "    if (token[0] == '-')\n        value = -value;\n", ""),
    ("sync-by-seconds", "lexicon/tlex_read.cpp", "    if (tlex->fileTimeNs >= t)",
     "    if (tlex->fileTimeNs / 1000000000 >= t / 1000000000)"),
    ("rewrite-not-newer", "lexicon/tlex_file.cpp", "            ok = fileSetModTimeNs(h, old + 1) == 0;",
     "            ok = true;"),
    ("failed-add-stays", "lexicon/tlex_edit.cpp",
     "        /* the entry replaced above stays out: the file still holds it */\n        TLex_Remove(tlex, word);\n",
     ""),
    ("hash-words-stored", "lexicon/tlex_file.cpp", "    if (word[0] == '#' || holdsLineBreakOrTab(word, INT16_MAX))",
     "    if (holdsLineBreakOrTab(word, INT16_MAX))"),
    ("clear-no-rewrite", "lexicon/tlex_edit.cpp",
     "    /* the entries stay cleared after a failed rewrite */\n    i16 rc = TLex_WriteFile(tlex);",
     "    i16 rc = 0;"),
    # compressed lexicons
    ("key-patterns-reordered", "lexicon/clex_find.cpp", "(pattern & (1 << c))", "(pattern & (4 >> c))"),
    ("hit-not-marked", "lexicon/clex_cache.cpp",
     "    if (segment->text) {\n        segment->lastUse = clex->useClock;", "    if (segment->text) {"),
    ("unicode-allowed", "lexicon/clex_open.cpp", "        if (clex->charSize == CharSizeUnicode) {",
     "        if (false) {"),
    ("directory-repeats-allowed", "lexicon/clex_open.cpp", "memcmp(clex->segments[i - 1]->key, s->key, SegKeySize) >= 0",
     "memcmp(clex->segments[i - 1]->key, s->key, SegKeySize) > 0"),
    ("budget-equal-refused", "lexicon/clex_open.cpp", "            if (clex->segments[i]->length > memoryBudget) {",
     "            if (clex->segments[i]->length >= memoryBudget) {"),
    ("cut-id-is-damage", "lexicon/clex_open.cpp",
     "        if (readValue(st->handle, &id) != 4)\n            break; /* the file's end, also inside an id */",
     "        int32_t got = readValue(st->handle, &id);\n        if (got == 0)\n            break;\n        if (got != 4)\n            return ORTO_BadFormat;"),
    ("table-limit-after-size", "lexicon/clex_open.cpp",
     "    if (n > MaxSuffixTableSize) {", "    if (n > MaxSuffixTableSize && (int64_t)n <= bytesLeft(st)) {"),
    # the compressor
    ("equal-words-in-sequence", "lexicon/lexsq_write.cpp", "        if (StrCompare(current, previous) <= 0) {",
     "        if (StrCompare(current, previous) < 0) {"),
    ("extended-before-simple", "lexicon/lexsq_write.cpp",
     "            if (simpleLen[i] == rest && memcmp(current + p, lexSq->simple[i], rest) == 0) {",
     "            if (false) {"),
    ("duplicate-segment-kept", "lexicon/lexsq_write.cpp",
     "    if (memcmp((*link)->key, node->key, SegKeySize) == 0) {", "    if (false) {"),
    # the file layer
    ("lone-cr-ends-line", "platform/file.cpp", "        if (buffer[i] == '\\r' && buffer[i + 1] == '\\n') {",
     "        if (buffer[i] == '\\r') {"),
    ("lock-wait-not-renewed", "platform/file.cpp", "            deadline = now + timeoutMs;\n", ""),
]


def run(cmd, cwd=ROOT):
    return subprocess.run(cmd, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def main():
    args = sys.argv[1:]
    build = args.pop(0) if args and not any(m[0] == args[0] for m in MUTANTS) else "build-mutants"
    wanted = set(args)
    for name, path, old, new in MUTANTS:
        text = open(os.path.join(ROOT, path)).read()
        if text.count(old) != 1:
            sys.exit("mutant %s: its text stands %d times in %s" % (name, text.count(old), path))
    if run(["cmake", "-S", ".", "-B", build, "-G", "Ninja", "-DORTO_BUILD_BENCH=OFF"]).returncode:
        sys.exit("can't configure " + build)
    survived = 0
    for name, path, old, new in MUTANTS:
        if wanted and name not in wanted:
            continue
        full = os.path.join(ROOT, path)
        text = open(full).read()
        open(full, "w").write(text.replace(old, new))
        try:
            built = run(["cmake", "--build", build])
            if built.returncode:
                print("%-28s killed: does not build" % name, flush=True)
                continue
            tested = run(["ctest", "--test-dir", build, "-j2", "--timeout", "300"])
        finally:
            open(full, "w").write(text)
        failed = re.findall(r"^\s*\d+ - (\S+) \(", tested.stdout, re.M)
        if tested.returncode:
            print("%-28s killed by %d: %s" % (name, len(failed), ", ".join(failed[:4])), flush=True)
        else:
            survived += 1
            print("%-28s SURVIVED" % name, flush=True)
    run(["cmake", "--build", build])
    sys.exit(1 if survived else 0)


main()
