// The orto program as a user and an editor run it: the real binary, through
// pipes, on files in a temporary folder, with HOME and XDG_CONFIG_HOME
// pointing into that folder.  Outputs are compared exactly; where a line
// carries the engine's ranking, the expected text is built from the same
// engine call in this process, so the test checks what the program does
// with it, not the ranking itself.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "orto.h"
#include "support/test_support.h"

extern char **environ;

namespace {

struct Outcome {
    int status; // exit code, or -1 when killed by a signal or a timeout
    std::string out, err;
};

// The environment of the child: ours, with HOME and XDG_CONFIG_HOME moved
// into `home` (XDG_CONFIG_HOME left out when `xdg` is false).
std::vector<std::string> childEnvironment(const std::string &home, bool xdg)
{
    std::vector<std::string> env;
    for (char **e = environ; *e; e++)
        if (strncmp(*e, "HOME=", 5) != 0 && strncmp(*e, "XDG_CONFIG_HOME=", 16) != 0)
            env.push_back(*e);
    env.push_back("HOME=" + home);
    if (xdg)
        env.push_back("XDG_CONFIG_HOME=" + home + "/config");
    return env;
}

struct Child {
    pid_t pid = -1;
    int in = -1, out = -1, err = -1;
    std::string outBuffer;
};

Child start(const std::vector<std::string> &args, const std::string &dir, bool xdg = true)
{
    int in[2], out[2], err[2];
    if (pipe(in) != 0 || pipe(out) != 0 || pipe(err) != 0)
        abort();
    std::vector<std::string> env = childEnvironment(dir, xdg);
    Child c;
    c.pid = fork();
    if (c.pid == 0) {
        dup2(in[0], 0);
        dup2(out[1], 1);
        dup2(err[1], 2);
        for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]})
            close(fd);
        if (chdir(dir.c_str()) != 0)
            _exit(126);
        std::vector<char *> argv, envp;
        argv.push_back((char *)ORTO_PROGRAM);
        for (const std::string &a : args)
            argv.push_back((char *)a.c_str());
        argv.push_back(nullptr);
        for (const std::string &e : env)
            envp.push_back((char *)e.c_str());
        envp.push_back(nullptr);
        execve(ORTO_PROGRAM, argv.data(), envp.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    close(err[1]);
    c.in = in[1];
    c.out = out[0];
    c.err = err[0];
    signal(SIGPIPE, SIG_IGN);
    return c;
}

// Runs the program to its end with `input` on standard input.
Outcome run(const std::vector<std::string> &args, const std::string &input, const std::string &dir, bool xdg = true)
{
    Child c = start(args, dir, xdg);
    Outcome r;
    size_t written = 0;
    if (input.empty()) {
        close(c.in);
        c.in = -1;
    }
    time_t deadline = time(nullptr) + 60;
    while (c.out >= 0 || c.err >= 0) {
        std::vector<pollfd> fds;
        if (c.in >= 0)
            fds.push_back({c.in, POLLOUT, 0});
        if (c.out >= 0)
            fds.push_back({c.out, POLLIN, 0});
        if (c.err >= 0)
            fds.push_back({c.err, POLLIN, 0});
        if (poll(fds.data(), fds.size(), 1000) < 0 || time(nullptr) > deadline)
            break;
        for (const pollfd &p : fds) {
            if (!p.revents)
                continue;
            if (p.fd == c.in) {
                ssize_t n = write(c.in, input.data() + written, input.size() - written);
                if (n > 0)
                    written += (size_t)n;
                if (n < 0 || written == input.size()) {
                    close(c.in);
                    c.in = -1;
                }
                continue;
            }
            char buf[4096];
            ssize_t n = read(p.fd, buf, sizeof buf);
            std::string &to = p.fd == c.out ? r.out : r.err;
            if (n > 0) {
                to.append(buf, (size_t)n);
            } else {
                close(p.fd);
                (p.fd == c.out ? c.out : c.err) = -1;
            }
        }
    }
    for (int fd : {c.in, c.out, c.err})
        if (fd >= 0)
            close(fd);
    if (c.out >= 0 || c.err >= 0)
        kill(c.pid, SIGKILL);
    int status = 0;
    waitpid(c.pid, &status, 0);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
}

// An editor's side of the pipe: one line out, then the answer read back
// before the next line goes, with standard input left open throughout.
void sendLine(Child &c, const std::string &line)
{
    std::string l = line + "\n";
    ASSERT_EQ(write(c.in, l.data(), l.size()), (ssize_t)l.size());
}

std::string readLine(Child &c)
{
    for (;;) {
        size_t nl = c.outBuffer.find('\n');
        if (nl != std::string::npos) {
            std::string line = c.outBuffer.substr(0, nl);
            c.outBuffer.erase(0, nl + 1);
            return line;
        }
        pollfd p = {c.out, POLLIN, 0};
        if (poll(&p, 1, 30000) <= 0)
            return "<no answer>";
        char buf[4096];
        ssize_t n = read(c.out, buf, sizeof buf);
        if (n <= 0)
            return "<end of output>";
        c.outBuffer.append(buf, (size_t)n);
    }
}

// The answer to one text line: its lines up to the empty one.
std::vector<std::string> answer(Child &c, const std::string &line)
{
    sendLine(c, line);
    std::vector<std::string> lines;
    for (;;) {
        std::string l = readLine(c);
        if (l.empty() || l[0] == '<') {
            if (l[0] == '<')
                lines.push_back(l);
            return lines;
        }
        lines.push_back(l);
    }
}

Outcome finish(Child &c)
{
    close(c.in);
    Outcome r;
    r.out = c.outBuffer;
    char buf[4096];
    ssize_t n;
    while ((n = read(c.out, buf, sizeof buf)) > 0)
        r.out.append(buf, (size_t)n);
    while ((n = read(c.err, buf, sizeof buf)) > 0)
        r.err.append(buf, (size_t)n);
    close(c.out);
    close(c.err);
    int status = 0;
    waitpid(c.pid, &status, 0);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
}

// A text lexicon of the engine's own form: CR LF lines, a sentinel line.
const char SmallLexicon[] = "#LID 24941\r\n"
                            "dog\r\n"
                            "hello\r\n"
                            "naïve\r\n"
                            "the\r\n"
                            "world\r\n"
                            "teh\tAthe\r\n"
                            "colour\tccolor\r\n";

std::string latin1(const std::string &utf8)
{
    std::string out;
    for (size_t i = 0; i < utf8.size(); i++) {
        unsigned char c = (unsigned char)utf8[i];
        if (c == 0xC3 && i + 1 < utf8.size())
            out.push_back((char)(0xC0 + ((unsigned char)utf8[++i] & 0x3F)));
        else
            out.push_back((char)c);
    }
    return out;
}

struct ProgramTest : ::testing::Test {
    TempDir dir;
    std::string lex;
    void SetUp() override
    {
        lex = dir.file("small.tlx");
        writeFile(lex, latin1(SmallLexicon));
    }
};

// What an editor is offered for `word`: the engine's suggestions with a
// score of 50 or more, at most 20 behind the best.
std::string likelySuggestions(const std::string &lexPath, const std::string &word, int *count)
{
    *count = 0;
    int16_t sid = ORTO_OpenSession();
    int16_t lex = ORTO_OpenLex(sid, lexPath.c_str(), 0);
    EXPECT_GE(lex, 0);
    char buffer[1024];
    int16_t scores[10];
    EXPECT_EQ(ORTO_Suggest(sid, word.c_str(), 50, buffer, sizeof buffer, scores, 10), 0);
    std::string list;
    for (const char *p = buffer; *p; p += strlen(p) + 1) {
        if (scores[*count] < 50 || scores[*count] < scores[0] - 20)
            break;
        list += (*count ? ", " : "") + std::string(p);
        ++*count;
    }
    ORTO_CloseSession(sid);
    return list;
}

} // namespace

TEST_F(ProgramTest, HelpVersionAndBadCommandLines)
{
    Outcome r = run({"--version"}, "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "orto 5.1\n");
    r = run({"-vv"}, "", dir.path);
    EXPECT_EQ(r.out, "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)\n");
    r = run({"--help"}, "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out.rfind("Usage: orto COMMAND", 0), 0u);
    for (const char *command : {"list", "suggest", "pipe", "compress", "lex"}) {
        r = run({command, "--help"}, "", dir.path);
        EXPECT_EQ(r.status, 0) << command;
        EXPECT_NE(r.out.find(std::string("orto ") + command), std::string::npos) << command;
        EXPECT_EQ(run({"help", command}, "", dir.path).out, r.out) << command;
    }
    r = run({}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    r = run({"frob"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: unknown command 'frob' (try 'orto --help')\n");
    r = run({"list", "--frob"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: unknown option '--frob' (try 'orto list --help')\n");
    r = run({"list", "-d", lex, "--option", "Bogus=1"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: unknown option name 'Bogus' (see 'orto list --help')\n");
    r = run({"list", "-d", lex, "--option", "SplitWords=2"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    r = run({"suggest", "-d", lex, "--depth", "101", "x"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: --depth must be a whole number from 0 to 100, not '101'\n");
    r = run({"list", "-d"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: option -d needs a value\n");
    r = run({"list", "-i", "ebcdic"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
}

TEST_F(ProgramTest, ListPrintsReportedWordsInTextOrder)
{
    // punctuation, a possessive, an auto-change and a conditional change
    // entry, a word of digits, a hyphenated word checked piece by piece
    Outcome r = run({"list", "-d", lex}, "Hello wrold, the dog's teh.\nColour 1999 hello-wrld dgo!\n", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "wrold\nteh\nColour\nwrld\ndgo\n");
    EXPECT_EQ(r.err, "");

    // files in the order given, and '-' for standard input
    writeFile(dir.file("a.txt"), "one\nhello\n");
    writeFile(dir.file("b.txt"), "two\n");
    r = run({"list", "-d", lex, "b.txt", "-", "a.txt"}, "stdin\n", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "two\nstdin\none\n");

    // -l is the same
    EXPECT_EQ(run({"-l", "-d", lex, "a.txt"}, "", dir.path).out, "one\n");

    // a clean text prints nothing and still succeeds
    r = run({"list", "-d", lex}, "hello world\n", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "");
}

TEST_F(ProgramTest, ListOptionsReachTheEngine)
{
    const std::string text = "The the dog\nNASA world\n";
    EXPECT_EQ(run({"list", "-d", lex}, text, dir.path).out, "NASA\n");
    EXPECT_EQ(run({"list", "-d", lex, "--option", "ReportDoubledWords=1", "--option", "CaseSensitive=0"}, text,
                  dir.path).out,
              "the\nNASA\n");
    EXPECT_EQ(run({"list", "-d", lex, "--option", "ignoreallcapswords=1"}, text, dir.path).out, "");
    // a paragraph is one block: the doubled word is found across the line end
    EXPECT_EQ(run({"list", "-d", lex, "--option", "ReportDoubledWords=1"}, "hello the\nthe dog\n", dir.path).out,
              "the\n");
    // SplitHyphenatedWords off: the hyphenated word is one word and not found
    EXPECT_EQ(run({"list", "-d", lex, "--option", "SplitHyphenatedWords=0"}, "hello-world\n", dir.path).out,
              "hello-world\n");
    EXPECT_EQ(run({"list", "-d", lex}, "hello-world\n", dir.path).out, "");
}

TEST_F(ProgramTest, AddressesDottedWordsAndEdgeApostrophes)
{
    writeFile(lex, "#LID 24941\r\ndog\r\nhello\r\nthat\r\nthere\r\nstab\r\nc\r\nU\r\nS\r\ne\r\ng\r\nteh\tAthe\r\n");
    const std::string cut(70, 'x');
    struct Case {
        const char *text, *reported;
    } cases[] = {
        // addresses, paths and tags pass; a slash inside a word is no path
        {"http://wrold.qq/a?b=qqq wrold@qqq.org (www.wrold.hello)", ""},
        {"/usr/wrold ~/wrold ./wrold ../wrold C:\\wrold\\qqq wrold/dog", "wrold\n"},
        {"\"~/wrold\" wrold.com. <qqq@wrold.fi>", ""},
        {"<wrold> </wrold> <br/> <em>wrold</em>", "wrold\n"},
        // host and newsgroup names pass; two parts with no domain don't
        {"wrold.org qqq.wrold.fi devvax.JPL.GOV comp.wrold.qqq", ""},
        {"wrold.Hello qqq.wrold.Fi Dog.wrold", "wrold\nqqq\nwrold\nFi\nwrold\n"},
        // dotted words by their parts, each failing part on its own
        {"U.S. e.g. stab.c hello.dog. wrold.c dog.wrold", "wrold\nwrold\n"},
        {"teh.dog", "teh\n"},
        // apostrophes at the end, and the endings 'll 'd 've 're
        {"'dog' lookin' there'd that'll Dog're teh'd wrold've dog's", "lookin\nteh'd\nwrold've\n"},
        {"lookin’ dog’ there’d", "lookin\n"}, // the typographic apostrophe
        // a word longer than 63 characters is reported once
        {cut.c_str(), "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(run({"list", "-d", lex}, std::string(c.text) + "\n", dir.path).out, c.reported) << c.text;
    // the words of a text, all of them as the engine read them but what
    // the rules made of them: a failing part at its own offset
    EXPECT_EQ(run({"pipe", "-d", lex, "--exact", "--option", "TypographicalSuggestions=0"},
                  "^U.S. wrold.dog <wrold> qqqq'\n", dir.path)
                  .out,
              "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)\n"
              "*\n# wrold 6\n*\n*\n# qqqq 24\n\n");
    // a cut word is answered once, by its first 63 characters
    EXPECT_EQ(run({"pipe", "-d", lex, "--exact", "--option", "TypographicalSuggestions=0"},
                  "^" + cut + " dog\n", dir.path)
                  .out,
              "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)\n"
              "# " + cut.substr(0, 63) + " 1\n*\n\n");
    // the engine's own options still decide a word reported for more
    EXPECT_EQ(run({"list", "-d", lex, "--option", "ReportDoubledWords=1"}, "wrold.org wrold.org\n", dir.path).out,
              "wrold.org\n");
}

TEST_F(ProgramTest, SeveralLexiconsAndUnixWordLists)
{
    // a word list as written on Linux: LF line ends and UTF-8
    writeFile(dir.file("extra.txt"), "café\nœuvre\nfoo\tebar\n# comment\n\n");
    Outcome r = run({"list", "-d", lex, "-d", "extra.txt"}, "hello café wrold foo\n", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "wrold\nfoo\n");
    EXPECT_EQ(r.err, "");
    // a word list in Windows Latin-1 with LF line ends reads as well
    writeFile(dir.file("latin.txt"), "fa\xE7" "ade\n");
    EXPECT_EQ(run({"list", "-d", lex, "-d", "latin.txt"}, "façade fa\n", dir.path).out, "fa\n");
}

TEST_F(ProgramTest, PersonalLexiconComesFirstFromXdgOrHome)
{
    // an exclusion in the personal lexicon overrules the main lexicon
    std::string personal = "#LID 24941\r\nworld\te\r\nwrold\ti\r\n";
    ASSERT_EQ(system(("mkdir -p " + dir.path + "/config/orto " + dir.path + "/.config/orto").c_str()), 0);
    writeFile(dir.file("config/orto/personal.tlx"), personal);
    EXPECT_EQ(run({"list", "-d", lex}, "hello world wrold\n", dir.path).out, "world\n");
    // without XDG_CONFIG_HOME the folder is ~/.config
    EXPECT_EQ(run({"list", "-d", lex}, "hello world wrold\n", dir.path, false).out, "wrold\n");
    writeFile(dir.file(".config/orto/personal.tlx"), personal);
    EXPECT_EQ(run({"list", "-d", lex}, "hello world wrold\n", dir.path, false).out, "world\n");
    // -p names another file; a missing one is no error until a word is added
    EXPECT_EQ(run({"list", "-d", lex, "-p", "mine.tlx"}, "hello world wrold\n", dir.path).out, "wrold\n");
    EXPECT_FALSE(fileExists(dir.file("mine.tlx")));
    // a personal lexicon that the engine would rewrite badly is refused
    writeFile(dir.file("unix.tlx"), "word\n");
    Outcome r = run({"list", "-d", lex, "-p", "unix.tlx"}, "hello\n", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: personal lexicon unix.tlx has LF line ends; orto keeps its lexicons as CR LF "
                     "lines in Windows Latin-1 (use it with -d, or start a new one)\n");
}

TEST_F(ProgramTest, EncodingOfTextAndWords)
{
    // Latin-1 letters and the typographic apostrophe pass through; the
    // words come back in UTF-8
    Outcome r = run({"list", "-d", lex}, "naïve naïf don’t hello\n", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "naïf\ndon’t\n");
    // a letter that Latin-1 lacks doesn't split its word into pieces to
    // report; a symbol is punctuation, and the word beside it is checked
    r = run({"list", "-d", lex}, "Łódź Dvořák hello→wrold 🙂dgo\n", dir.path);
    EXPECT_EQ(r.out, "wrold\ndgo\n");
    // -i latin1: bytes in, bytes out
    r = run({"list", "-i", "latin1", "-d", lex}, "na\xEFve na\xEF" "f\n", dir.path);
    EXPECT_EQ(r.out, "na\xEF" "f\n");
    // a UTF-8 byte order mark at the start is no character of the text
    EXPECT_EQ(run({"list", "-d", lex}, "\xEF\xBB\xBFwrold\n", dir.path).out, "wrold\n");
}

TEST_F(ProgramTest, ListFailuresNameTheirCause)
{
    // a missing file: the others are still listed, the exit code tells
    writeFile(dir.file("a.txt"), "one\n");
    Outcome r = run({"list", "-d", lex, "missing.txt", "a.txt"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "one\n");
    EXPECT_EQ(r.err, "orto: missing.txt: No such file or directory\n");

    // invalid UTF-8: the words before the bad line are printed
    writeFile(dir.file("bad.txt"), "wrold\ncaf\xE9 dgo\nteh\n");
    r = run({"list", "-d", lex, "bad.txt"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "wrold\n");
    EXPECT_EQ(r.err, "orto: bad.txt:2: invalid UTF-8 (give -i latin1 for Latin-1 text)\n");

    // lexicons that won't open
    r = run({"list", "-d", "nothere"}, "x\n", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: no lexicon 'nothere': no such file, and no bundled lexicon of that name\n");
    r = run({"list", "-d", "./nothere.tlx"}, "x\n", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: cannot open lexicon ./nothere.tlx: No such file or directory\n");
    writeFile(dir.file("truncated.clx"), std::string("\x57\x00\x05\x01\x00\x00\x00\x01\x00", 9));
    r = run({"list", "-d", "truncated.clx"}, "x\n", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "orto: cannot open lexicon truncated.clx: damaged lexicon (bad format)\n");
    writeFile(dir.file("binary.tlx"), std::string("ab\0\x01\x02zz", 7));
    r = run({"list", "-d", "binary.tlx"}, "x\n", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: cannot open lexicon binary.tlx: not a lexicon file, or a damaged one\n");
}

TEST_F(ProgramTest, SuggestTellsFindingsAndRanksSuggestions)
{
    Outcome r = run({"suggest", "-d", lex, "hello", "teh", "Teh", "colour", "Łódź"}, "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "hello: correct\n"
                     "teh: auto-change to the\n"
                     "Teh: auto-change to The\n"
                     "colour: consider changing to color\n"
                     "Łódź: not checked: it has characters that Windows Latin-1 lacks\n");
    r = run({"suggest", "-d", lex, "--exact", "--option", "TypographicalSuggestions=0", "wrold"}, "",
            dir.path);
    EXPECT_EQ(r.out, "wrold: misspelled\n  (no suggestions)\n");

    // the list is the engine's, with its scores, best first: ORTO_SuggestRanked's
    // by default, ORTO_Suggest's with --exact; a possessive ending goes back
    // onto every candidate
    for (bool exact : {false, true}) {
        int16_t sid = ORTO_OpenSession();
        ASSERT_GE(ORTO_OpenLex(sid, lex.c_str(), 0), 0);
        char buffer[1024];
        int16_t scores[3];
        ASSERT_EQ((exact ? ORTO_Suggest : ORTO_SuggestRanked)(sid, "wrold", 50, buffer, sizeof buffer,
                                                            scores, 3), 0);
        ORTO_CloseSession(sid);
        std::string expected = "wrold: misspelled\n", possessive = "wrold's: misspelled\n";
        int i = 0;
        for (const char *p = buffer; *p; p += strlen(p) + 1, i++) {
            std::string score = std::to_string(scores[i]);
            score.insert(0, 3 - score.size(), ' ');
            expected += "  " + score + " " + p + "\n";
            possessive += "  " + score + " " + p + "'s\n";
        }
        ASSERT_GT(i, exact ? 1 : 0);
        EXPECT_NE(expected.find("world"), std::string::npos);
        std::vector<std::string> args = {"suggest", "-d", lex, "--max", "3", "wrold", "wrold's"};
        if (exact)
            args.push_back("--exact");
        r = run(args, "", dir.path);
        EXPECT_EQ(r.out, expected + possessive) << (exact ? "--exact" : "ranked");
    }

    r = run({"suggest", "-d", lex}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: suggest needs a word (try 'orto suggest --help')\n");
}

TEST_F(ProgramTest, PipeSpeaksIspellLineByLineAsEmacsDoes)
{
    int count = 0;
    std::string wrold = likelySuggestions(lex, "wrold", &count);
    ASSERT_GT(count, 0);
    std::string wroldLine = "& wrold " + std::to_string(count) + " ";
    // the answer for qqqqqqqq at `offset`, with or without suggestions
    int qCount = 0;
    std::string qList = likelySuggestions(lex, "qqqqqqqq", &qCount);
    const auto qLine = [&](int offset) {
        return qCount ? "& qqqqqqqq " + std::to_string(qCount) + " " + std::to_string(offset) + ": " + qList
                      : "# qqqqqqqq " + std::to_string(offset);
    };

    // Emacs passes ispell's flags; an unknown one is ignored with a note
    Child c = start({"-a", "-m", "-B", "-Z", "-d", lex, "-i", "utf-8"}, dir.path);
    EXPECT_EQ(readLine(c), "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)");
    EXPECT_EQ(answer(c, "^hello wrold"),
              (std::vector<std::string>{"*", wroldLine + "7: " + wrold}));
    // offsets count characters, not bytes, the '^' included
    EXPECT_EQ(answer(c, "^naïve wrold qqqqqqqq"),
              (std::vector<std::string>{"*", wroldLine + "7: " + wrold, qLine(13)}));
    // what the check offers in the word's place comes first
    EXPECT_EQ(answer(c, "^Teh colour"), (std::vector<std::string>{"& Teh 1 1: The", "& colour 1 5: color"}));
    // a line without '^' is text as well; an empty line gets an empty answer
    EXPECT_EQ(answer(c, "the dog"), (std::vector<std::string>{"*", "*"}));
    EXPECT_EQ(answer(c, ""), (std::vector<std::string>{}));

    // terse mode: nothing for correct words
    sendLine(c, "!");
    EXPECT_EQ(answer(c, "^hello qqqqqqqq world"), (std::vector<std::string>{qLine(7)}));
    // accept for the run, add to the personal lexicon, add in lower case
    sendLine(c, "@qqqqqqqq");
    sendLine(c, "*Zebra");
    sendLine(c, "&Xyzzy");
    sendLine(c, "#");
    sendLine(c, "+");
    sendLine(c, "-");
    sendLine(c, "~tex");
    EXPECT_EQ(answer(c, "^qqqqqqqq Zebra xyzzy"), (std::vector<std::string>{}));
    sendLine(c, "%");
    EXPECT_EQ(answer(c, "^qqqqqqqq"), (std::vector<std::string>{"*"}));
    // text that begins with a command character is marked by '^'
    EXPECT_EQ(answer(c, "^*wrold"), (std::vector<std::string>{wroldLine + "2: " + wrold}));
    // a word that would break the lexicon file is not added
    sendLine(c, "*#tag");
    // invalid UTF-8: a note, an empty answer, and the pipe goes on
    EXPECT_EQ(answer(c, "^caf\xE9"), (std::vector<std::string>{}));
    EXPECT_EQ(answer(c, "^hello"), (std::vector<std::string>{"*"}));
    Outcome end = finish(c);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(end.err, "orto: ignoring unknown flag '-Z' in -a mode\n"
                       "orto: standard input:19: '#tag' can't be added\n"
                       "orto: standard input:20: invalid UTF-8 (give -i latin1 for Latin-1 text); "
                       "line not checked\n");

    // the personal lexicon was made in the XDG folder, and keeps the words
    EXPECT_EQ(readFile(dir.file("config/orto/personal.tlx")), "#LID 24941\r\nZebra\ti\r\nxyzzy\ti\r\n");
    Outcome again = run({"pipe", "-d", lex, "--option", "TypographicalSuggestions=0"},
                        "^Zebra xyzzy qqqqqqqq\n", dir.path);
    EXPECT_EQ(again.out, "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)\n"
                         "*\n*\n# qqqqqqqq 13\n\n");
}

TEST_F(ProgramTest, PipeWithTheBundledLexicon)
{
    Outcome r = run({"-a"}, "^The quick brown fox\n", dir.path);
    if (r.status == 1 && r.err.find("no bundled lexicon") != std::string::npos)
        GTEST_SKIP() << "bundled lexicons not built";
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)\n*\n*\n*\n*\n\n");
    r = run({"list", "-d", "en_gb"}, "colour color\n", dir.path);
    EXPECT_EQ(r.out, "color\n");
}

TEST_F(ProgramTest, RankedDefaultsDigitsAndFrequenciesBesideALexicon)
{
    // words with digits pass unless the option is turned back off
    Outcome r = run({"list", "-d", lex}, "the 1st dog\n", dir.path);
    EXPECT_EQ(r.out, "");
    r = run({"list", "-d", lex, "--option", "IgnoreMixedDigits=0"}, "the 1st dog\n", dir.path);
    EXPECT_EQ(r.out, "1st\n");

    // nothing close: the pipe's '#' line, in either order
    for (const char *mode : {"--max=10", "--exact"}) {
        r = run({"-a", "-d", lex, mode}, "^qzxqzxqzx\n", dir.path);
        EXPECT_EQ(r.out, "@(#) International Ispell Version 3.1.20 (but really ORTO 5.1)\n"
                         "# qzxqzxqzx 1\n\n")
            << mode;
    }

    // frequencies beside a compressed lexicon decide between candidates
    // that are equally close; a damaged file is named and passed over
    writeFile(dir.file("words.txt"), "card\ncart\n");
    ASSERT_EQ(run({"compress", "-o", "cc.clx", "words.txt"}, "", dir.path).status, 0);
    for (const char *common : {"card", "cart"}) {
        writeFile(dir.file("cc.freq"), std::string("=0\n") + common + "\n");
        r = run({"suggest", "-d", "cc.clx", "carx"}, "", dir.path);
        EXPECT_EQ(r.out.substr(0, r.out.find('\n', r.out.find('\n') + 1)),
                  std::string("carx: misspelled\n   ") + (strcmp(common, "card") ? "75 cart" : "75 card"));
    }
    writeFile(dir.file("cc.freq"), "card\n");
    r = run({"suggest", "-d", "cc.clx", "carx"}, "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "orto: word frequencies cc.freq not used: damaged lexicon (bad format)\n");
}

TEST_F(ProgramTest, CompressMakesLexiconsAndNamesBadLines)
{
    writeFile(dir.file("words.txt"), "# fruit\napple\nbanana\n\ncherry\nwalk\nwalked\nwalking\n");
    writeFile(dir.file("suffixes.txt"), "# endings\ned\ning\n");
    Outcome r = run({"compress", "-o", "fruit.clx", "--suffixes", "suffixes.txt", "--language", "en-GB", "words.txt"},
                "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(run({"list", "-d", "fruit.clx"}, "apple walking pear walkd\n", dir.path).out, "pear\nwalkd\n");
    int16_t sid = ORTO_OpenSession();
    int16_t id = ORTO_OpenLex(sid, dir.file("fruit.clx").c_str(), 0);
    uint16_t format = 9, language = 0;
    ORTO_GetLexInfo(sid, id, nullptr, &format, &language);
    EXPECT_EQ(format, ORTO_LexCompressed);
    EXPECT_EQ(language, ORTO_LangBritish);
    ORTO_CloseSession(sid);

    // UTF-8 lists are converted; a character Latin-1 lacks is named
    writeFile(dir.file("utf8.txt"), "café\nnaïve\n");
    EXPECT_EQ(run({"compress", "-o", "u.clx", "utf8.txt"}, "", dir.path).status, 0);
    EXPECT_EQ(run({"list", "-d", "u.clx"}, "café cafe\n", dir.path).out, "cafe\n");

    struct BadList {
        std::string lines, message;
    } bad[] = {
        {"apple\nzebra\napple\n", "bad.txt:3: 'apple' is out of order: it must sort after 'zebra' (by bytes, no word twice)"},
        {"apple\napple\n", "bad.txt:2: 'apple' is out of order: it must sort after 'apple' (by bytes, no word twice)"},
        {"# x\n\nok\n" + std::string(64, 'x') + "\n", "bad.txt:4: word too long: 64 bytes, at most 63"},
        {"a\tb\n", "bad.txt:1: 'a\tb' holds a character that can't stand in a word (a control character?)"},
        {"ok\nŁódź\n", "bad.txt:2: 'Łódź' has characters that Windows Latin-1 lacks"},
        {"ok\ncaf\xE9\n", "bad.txt:2: invalid UTF-8 (give -i latin1 for Latin-1 lists)"},
    };
    writeFile(dir.file("keep.clx"), "earlier");
    for (const BadList &b : bad) {
        writeFile(dir.file("bad.txt"), b.lines);
        r = run({"compress", "-o", "keep.clx", "bad.txt"}, "", dir.path);
        EXPECT_EQ(r.status, 1) << b.lines;
        EXPECT_EQ(r.err, "orto: " + b.message + "\n");
        EXPECT_EQ(readFile(dir.file("keep.clx")), "earlier") << "a failed run leaves the old file";
    }
    std::string word63(63, 'y');
    writeFile(dir.file("long.txt"), word63 + "\n");
    EXPECT_EQ(run({"compress", "-o", "long.clx", "long.txt"}, "", dir.path).status, 0);

    // two lists may not share first three letters, whichever line shows it
    writeFile(dir.file("one.txt"), "banana\ncherry\n");
    writeFile(dir.file("two.txt"), "band\nzoo\n");
    r = run({"compress", "-o", "x.clx", "one.txt", "two.txt"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: two.txt:2: words beginning with 'ban' came in an earlier list too "
                     "(lists may not share first three letters; --sort merges them)\n");
    writeFile(dir.file("two.txt"), "aaa\nband\n");
    r = run({"compress", "-o", "x.clx", "one.txt", "two.txt"}, "", dir.path);
    EXPECT_EQ(r.err, "orto: two.txt:2: words beginning with 'ban' came in an earlier list too "
                     "(lists may not share first three letters; --sort merges them)\n");

    // --sort takes any order, duplicates and several lists
    writeFile(dir.file("two.txt"), "zoo\nband\nbanana\n");
    r = run({"compress", "--sort", "-o", "x.clx", "one.txt", "two.txt"}, "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(run({"list", "-d", "x.clx"}, "zoo band banana bandana\n", dir.path).out, "bandana\n");

    r = run({"compress", "-o", "x.clx", "missing.txt"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: missing.txt: No such file or directory\n");
    r = run({"compress", "-o", "no/such/dir/x.clx", "one.txt"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: cannot write no/such/dir/x.clx: the file can't be created\n");
    EXPECT_EQ(run({"compress", "one.txt"}, "", dir.path).status, 2);
}

TEST_F(ProgramTest, LexShowsAndEditsTextLexicons)
{
    EXPECT_EQ(run({"lex", "add", "my.tlx", "teh", "A", "the"}, "", dir.path).status, 0);
    EXPECT_EQ(run({"lex", "add", "my.tlx", "alot", "e"}, "", dir.path).status, 0);
    EXPECT_EQ(run({"lex", "add", "my.tlx", "Zürich"}, "", dir.path).status, 0);
    EXPECT_EQ(run({"lex", "add", "my.tlx", "dog's"}, "", dir.path).status, 0);
    EXPECT_EQ(run({"lex", "add", "my.tlx", "recieve", "c", "receive"}, "", dir.path).status, 0);
    EXPECT_EQ(readFile(dir.file("my.tlx")),
              "#LID 24941\r\nZ\xFCrich\ti\r\nalot\te\r\ndog's\ti\r\nrecieve\tcreceive\r\nteh\tAthe\r\n");
    Outcome r = run({"lex", "show", "my.tlx"}, "", dir.path);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "Zürich\ti\nalot\te\ndog's\ti\nrecieve\tc\treceive\nteh\tA\tthe\n");
    // adding again replaces the action
    EXPECT_EQ(run({"lex", "add", "my.tlx", "alot", "i"}, "", dir.path).status, 0);
    r = run({"lex", "find", "my.tlx", "alot", "teh", "nope"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "alot\ti\nteh\tA\tthe\n");
    EXPECT_EQ(r.err, "orto: 'nope' is not in my.tlx\n");
    r = run({"lex", "del", "my.tlx", "alot", "nope", "dog's"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: 'nope' is not in my.tlx\n");
    EXPECT_EQ(run({"lex", "show", "my.tlx"}, "", dir.path).out, "Zürich\ti\nrecieve\tc\treceive\nteh\tA\tthe\n");
    // the lexicon at work, as a personal lexicon and as a main one
    EXPECT_EQ(run({"list", "-d", lex, "-p", "my.tlx"}, "Teh Zürich recieve\n", dir.path).out, "Teh\nrecieve\n");
    EXPECT_EQ(run({"lex", "clear", "my.tlx"}, "", dir.path).status, 0);
    EXPECT_EQ(readFile(dir.file("my.tlx")), "#LID 24941\r\n");
    EXPECT_EQ(run({"lex", "add", "--language", "br", "gb.tlx", "colour"}, "", dir.path).status, 0);
    EXPECT_EQ(readFile(dir.file("gb.tlx")), "#LID 25202\r\ncolour\ti\r\n");

    // what can't be done is said, and changes nothing
    writeFile(dir.file("words.txt"), "apple\n");
    r = run({"lex", "add", "words.txt", "pear"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: words.txt has LF line ends; orto changes only lexicon files of CR LF lines in "
                     "Windows Latin-1\n");
    EXPECT_EQ(readFile(dir.file("words.txt")), "apple\n");
    EXPECT_EQ(run({"lex", "show", "words.txt"}, "", dir.path).out, "apple\ti\n");
    ASSERT_EQ(run({"compress", "-o", "c.clx", "words.txt"}, "", dir.path).status, 0);
    r = run({"lex", "add", "c.clx", "pear"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: c.clx is a compressed lexicon; it can't be changed\n");
    r = run({"lex", "add", "my.tlx", "x", "Q"}, "", dir.path);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orto: unknown action 'Q': one of a A c C e i\n");
    for (const char *word : {"#tag", "tab\there", ""}) {
        r = run({"lex", "add", "my.tlx", word}, "", dir.path);
        EXPECT_EQ(r.status, 2) << word;
        EXPECT_EQ(r.err, "orto: '" + std::string(word) + "' can't stand in a lexicon file: a word has 1 to 63 "
                         "characters, no control character, and doesn't begin with #\n");
    }
    r = run({"lex", "del", "none.tlx", "x"}, "", dir.path);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "orto: none.tlx: No such file or directory\n");
    EXPECT_FALSE(fileExists(dir.file("none.tlx")));
    EXPECT_EQ(run({"lex", "frob", "my.tlx"}, "", dir.path).status, 2);
    EXPECT_EQ(run({"lex", "show"}, "", dir.path).status, 2);
}
