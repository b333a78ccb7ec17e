/* `orto check` without its terminal: the files of the command through the
 * Check Spelling dialog with a scripted user, and the settings it prepares.
 * The program's own code is linked in (all of tools/orto but main()); the
 * files are real files in a temporary folder, compared byte for byte. */
#include <gtest/gtest.h>

#include <dirent.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "dialog_setup.h"
#include "support/dialog_fixture.h"

enum { Change = 1003, ChangeTo = 1010 };

static const char mainWords[] = "the is fine world blue quartz marble";

/* A store whose main lexicon is a small text lexicon, and a folder of
 * files to check. */
struct CheckFileFixture : DialogFixture {
    CheckFileFixture() : DialogFixture("[ORTO]\nMainLexPath=@\nMainLexFiles=main.tlx\n")
    {
        std::vector<LexEntryText> words;
        std::string list = mainWords, w;
        for (size_t i = 0; i <= list.size(); i++) {
            if (i < list.size() && list[i] != ' ') {
                w += list[i];
                continue;
            }
            words.push_back({w, 'i', ""});
            w.clear();
        }
        makeLex("main.tlx", words);
        mkdir(store.dir.file("docs").c_str(), 0755);
    }

    std::string doc(const std::string &name) const { return store.dir.file("docs/" + name); }

    /* The names in the folder of the files: a replacement leaves no file
     * of its own behind. */
    std::vector<std::string> docNames() const
    {
        std::vector<std::string> names;
        DIR *d = opendir(store.dir.file("docs").c_str());
        while (struct dirent *e = d ? readdir(d) : nullptr)
            if (e->d_name[0] != '.' || strlen(e->d_name) > 2)
                names.push_back(e->d_name);
        if (d)
            closedir(d);
        std::sort(names.begin(), names.end());
        return names;
    }

    /* The user changes the first word reported to "world". */
    void changeFirstTo(const std::string &word)
    {
        user.then(typeText(ChangeTo, word));
        user.then(click(Change));
    }
};

static struct stat statusOf(const std::string &path)
{
    struct stat st = {};
    stat(path.c_str(), &st);
    return st;
}

static bool untouched(const struct stat &a, const struct stat &b)
{
    return a.st_ino == b.st_ino && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/* A BOM, CR LF, Greek and emoji, no final newline: the file the dialog
 * must give back exactly. */
static const std::string mixed = "\xEF\xBB\xBF" "the \xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7\xCE\xBC\xCE\xAD\xCF\x81\xCE\xB1 is fine\r\n"
                                 "the wrld \xF0\x9F\x8C\x8D is blue\r\n"
                                 "quartz \xE2\x80\x93 \xE2\x80\x9Cmarble\xE2\x80\x9D \xF0\x9F\x98\x80 \xE2\x9C\x93";

TEST(CheckFile, TheFileComesBackAsItWasWithTheChangesAlone)
{
    struct Case {
        const char *name;
        std::string before;
        bool latin1;
        std::string after;        /* when "wrld" is changed to "world" */
    };
    auto withWorld = [](std::string s) { return s.replace(s.find("wrld"), 4, "world"); };
    const Case cases[] = {
        {"mixed scripts, CR LF, BOM, no final newline", mixed, false, withWorld(mixed)},
        {"LF and a final newline", "the wrld\nis fine\n", false, "the world\nis fine\n"},
        {"mixed line ends stay mixed", "the\r\nwrld\nis\r\rfine\r", false, "the\r\nworld\nis\r\rfine\r"},
        {"C1 control, euro sign, broken bar", "\xC2\x81 \xE2\x82\xAC \xC2\xA6 wrld \xC2\x81", false,
         "\xC2\x81 \xE2\x82\xAC \xC2\xA6 world \xC2\x81"},
        {"Latin-1 bytes as they are", "\xABquartz\xBB \x81 wrld\r\n", true, "\xABquartz\xBB \x81 world\r\n"},
        {"CR LF lines only", "\r\n\r\nwrld\r\n", false, "\r\n\r\nworld\r\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        for (bool change : {false, true}) {
            CheckFileFixture f;
            std::string path = f.doc("a.txt");
            writeFile(path, c.before);
            chmod(path.c_str(), 0640);
            struct stat before = statusOf(path);
            if (change)
                f.changeFirstTo("world");
            EXPECT_EQ(checkFiles({path}, c.latin1 ? EncodingLatin1 : EncodingUtf8), ExitOk);
            EXPECT_EQ(readFile(path), change ? c.after : c.before);
            struct stat after = statusOf(path);
            EXPECT_EQ(untouched(before, after), !change);
            EXPECT_EQ(after.st_mode & 07777, 0640u);
            EXPECT_EQ(f.docNames(), (std::vector<std::string>{"a.txt"}));
            EXPECT_FALSE(f.user.captions.empty()); /* the dialog came up */
        }
    }
}

TEST(CheckFile, RefusedFilesAreLeftAloneAndTheOthersChecked)
{
    CheckFileFixture f;
    struct Refused {
        const char *name;
        std::string bytes;          /* the file's bytes; a folder or a pipe when empty */
        const char *message;
        bool asRoot;                /* root reads and writes anything: the case is left out */
    };
    mkdir(f.doc("folder").c_str(), 0755);
    mkfifo(f.doc("pipe").c_str(), 0644);
    const Refused refused[] = {
        {"folder", "", "folder: is a directory; not checked", true},
        {"pipe", "", "pipe: not a regular file; not checked", true},
        {"missing", "", "missing: No such file or directory; not checked", true},
        {"binary", std::string("the\0wrld", 8), "binary: a binary file (it holds NUL bytes); not checked", true},
        {"latin1", "the\nis\nthe w\xF6rld\n", "latin1:3: invalid UTF-8 (give -i latin1 for Latin-1 text)", true},
        {"unreadable", "the wrld", "unreadable: Permission denied; not checked", false},
        {"readonly", "the wrld", "readonly: can't be written: Permission denied; not checked", false},
    };
    std::vector<std::string> paths;
    for (const Refused &r : refused) {
        if (!r.asRoot && geteuid() == 0)
            continue;
        if (!r.bytes.empty())
            writeFile(f.doc(r.name), r.bytes);
        paths.push_back(f.doc(r.name));
    }
    chmod(f.doc("unreadable").c_str(), 0200);
    chmod(f.doc("readonly").c_str(), 0444);
    writeFile(f.doc("good.txt"), "the wrld is blue");
    paths.push_back(f.doc("good.txt"));
    f.changeFirstTo("world");

    testing::internal::CaptureStderr();
    EXPECT_EQ(checkFiles(paths, EncodingUtf8), ExitFailure);
    std::string err = testing::internal::GetCapturedStderr();
    for (const Refused &r : refused) {
        if (!r.asRoot && geteuid() == 0)
            continue;
        EXPECT_NE(err.find(r.message), std::string::npos) << r.message << "\n" << err;
    }
    EXPECT_EQ(readFile(f.doc("good.txt")), "the world is blue");
    EXPECT_EQ(readFile(f.doc("binary")), std::string("the\0wrld", 8));
    EXPECT_EQ(readFile(f.doc("latin1")), "the\nis\nthe w\xF6rld\n");
    EXPECT_EQ(f.user.captions.size(), 2u); /* only the good file had a dialog */
}

/* An interrupt in the middle of the check: the file stays as it was, the
 * change made before it included, and nothing is left beside it. */
TEST(CheckFile, AnInterruptLeavesTheFileAsItWas)
{
    for (int sig : {SIGINT, SIGTERM, SIGHUP}) {
        CheckFileFixture f;
        std::string path = f.doc("a.txt");
        writeFile(path, "the wrld is fine\nthe blu quartz\n");
        struct stat before = statusOf(path);
        f.changeFirstTo("world");
        f.user.then([sig](ORTO_HWND) {
            raise(sig);
            return -1;
        });
        fflush(nullptr);
        pid_t child = fork();
        if (child == 0)
            _exit(checkFiles({path}, EncodingUtf8) == ExitOk ? 0 : 1);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == sig) << status;
        EXPECT_EQ(readFile(path), "the wrld is fine\nthe blu quartz\n");
        EXPECT_TRUE(untouched(before, statusOf(path)));
        EXPECT_EQ(f.docNames(), (std::vector<std::string>{"a.txt"}));
    }
}

/* Another program writes the file while it is checked: its text stays,
 * and the checked text is kept beside it, in the file the message names. */
TEST(CheckFile, AFileChangedDuringTheCheckIsNotOverwritten)
{
    CheckFileFixture f;
    std::string path = f.doc("a.txt");
    writeFile(path, "the wrld is fine");
    f.user.then([&](ORTO_HWND) {
        writeFile(path, "written meanwhile");
        return command(ChangeTo, ORTO_EN_CHANGE);
    });
    f.changeFirstTo("world");
    testing::internal::CaptureStderr();
    EXPECT_EQ(checkFiles({path}, EncodingUtf8), ExitFailure);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(readFile(path), "written meanwhile");
    std::vector<std::string> names = f.docNames();
    ASSERT_EQ(names.size(), 2u);
    std::string copy = f.doc(names[0] == "a.txt" ? names[1] : names[0]);
    EXPECT_EQ(readFile(copy), "the world is fine");
    EXPECT_NE(err.find("the checked text is in " + copy), std::string::npos) << err;
}

/* A symbolic link stays a link: the file it names gets the text. */
TEST(CheckFile, ALinkStaysALink)
{
    CheckFileFixture f;
    writeFile(f.doc("real.txt"), "the wrld");
    ASSERT_EQ(symlink("real.txt", f.doc("link.txt").c_str()), 0);
    f.changeFirstTo("world");
    EXPECT_EQ(checkFiles({f.doc("link.txt")}, EncodingUtf8), ExitOk);
    char target[64] = {};
    EXPECT_EQ(readlink(f.doc("link.txt").c_str(), target, sizeof target - 1), 8);
    EXPECT_EQ(readFile(f.doc("real.txt")), "the world");
}

/* Cancel keeps the changes made until then and ends the run. */
TEST(CheckFile, CancelSavesTheChangesAndStopsTheRun)
{
    CheckFileFixture f;
    writeFile(f.doc("a.txt"), "the wrld is fine");
    writeFile(f.doc("b.txt"), "the blu quartz");
    f.changeFirstTo("world");
    f.user.then(click(ORTO_IDCANCEL));
    writeFile(f.doc("c.txt"), "the wrld\nis blu");
    testing::internal::CaptureStderr();
    EXPECT_EQ(checkFiles({f.doc("c.txt"), f.doc("a.txt"), f.doc("b.txt")}, EncodingUtf8), ExitOk);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("cancelled: 2 more file(s) not checked"),
              std::string::npos);
    EXPECT_EQ(readFile(f.doc("c.txt")), "the world\nis blu");
    EXPECT_EQ(readFile(f.doc("a.txt")), "the wrld is fine");
    EXPECT_EQ(readFile(f.doc("b.txt")), "the blu quartz");
}

/* A store that names no main lexicon gets what `orto list` uses; later
 * runs leave it to the user, except for an explicit -d. */
TEST(CheckFile, TheFirstRunFillsInTheSettingsOfOrtoList)
{
    StoreSandbox store;
    ScriptFrontEnd user;
    DialogOptions options;
    options.encoding = EncodingUtf8;
    options.help = false;
    options.ini = store.ini;
    ASSERT_EQ(prepareStore(options), ExitOk);
    auto key = [](const char *name, int scope) {
        char value[1024];
        Profile_GetString(name, scope, "<missing>", value, sizeof value);
        return std::string(value);
    };
    std::string data = ORTO_BINARY_DIR "/data";
    char resolved[PATH_MAX];
    ASSERT_TRUE(realpath(data.c_str(), resolved));
    std::string personalFolder = store.dir.file("config/orto");
    EXPECT_EQ(key("MainLexPath", ProfileMachine), resolved);
    EXPECT_EQ(key("MainLexFiles", ProfileMachine), "en-US.clx");
    EXPECT_EQ(key("UserLexPath", ProfileUser), personalFolder);
    EXPECT_EQ(key("UserLexFiles", ProfileUser), "personal.tlx");
    EXPECT_EQ(key("IgnoreMixedDigits", ProfileUser), "1");
    EXPECT_EQ(key("HelpFile", ProfileMachine), std::string(resolved) + "/orto.hlp");
    EXPECT_EQ(readFile(personalFolder + "/personal.tlx"), "#LID 24941\r\n");

    /* the dialogs' session now checks as `orto list` does */
    int16_t sid = ORTO_GetSid();
    char replacement[64];
    EXPECT_EQ(ORTO_CheckWord(sid, "1st", replacement, sizeof replacement), 0);
    EXPECT_NE(ORTO_CheckWord(sid, "recieve", replacement, sizeof replacement), 0);

    /* the user's choices stand; -d changes the main lexicon alone */
    ORTO_SetUserLexFiles("mine.tlx");
    ORTO_SetHelpFile("/elsewhere/orto.hlp");
    options.lexicon = "en-GB";
    ASSERT_EQ(prepareStore(options), ExitOk);
    EXPECT_EQ(key("MainLexFiles", ProfileMachine), "en-GB.clx");
    EXPECT_EQ(key("Language", ProfileUser), "25202");
    EXPECT_EQ(key("UserLexFiles", ProfileUser), "mine.tlx");
    EXPECT_EQ(key("HelpFile", ProfileMachine), std::string(resolved) + "/orto.hlp"); /* that one is gone */

    /* refused: no such lexicon, a Linux word list, a store that can't be written */
    writeFile(store.dir.file("words.txt"), "one\ntwo\n");
    const std::pair<std::string, const char *> refused[] = {
        {"no-such", "no lexicon 'no-such'"},
        {store.dir.file("words.txt"), "the dialogs take compressed lexicons and text lexicons"},
        {"en-US", "the settings file can't be written"},
    };
    for (const auto &r : refused) {
        options.lexicon = r.first;
        if (r.first == "en-US")
            options.ini = store.dir.path; /* a folder */
        testing::internal::CaptureStderr();
        EXPECT_EQ(prepareStore(options), ExitFailure);
        EXPECT_NE(testing::internal::GetCapturedStderr().find(r.second), std::string::npos) << r.second;
    }
    ORTO_SetIniFile(store.ini.c_str());
    EXPECT_EQ(key("MainLexFiles", ProfileMachine), "en-GB.clx");
}

/* Without a terminal the dialog commands refuse at once, whatever the
 * files are. */
TEST(CheckFile, TheProgramNeedsATerminal)
{
    TempDir dir;
    writeFile(dir.file("a.txt"), "the wrld");
    for (const char *command : {"check a.txt", "dictionaries", "options", "check --ini x.ini a.txt"}) {
        std::string line = "cd " + dir.path + " && " ORTO_PROGRAM " " + command +
                           " </dev/null >out.txt 2>err.txt";
        int status = system(line.c_str());
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << command;
        EXPECT_NE(readFile(dir.file("err.txt")).find("standard input and output must be a terminal"),
                  std::string::npos);
    }
    EXPECT_EQ(readFile(dir.file("a.txt")), "the wrld");
    EXPECT_FALSE(fileExists(dir.file("x.ini")));
    EXPECT_EQ(system(("cd " + dir.path + " && " ORTO_PROGRAM " check --help >out.txt").c_str()), 0);
    EXPECT_EQ(readFile(dir.file("out.txt")).rfind("Usage: orto check [OPTION]... FILE...\n", 0), 0u);
}
