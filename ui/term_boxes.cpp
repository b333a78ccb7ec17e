/*
 * term_boxes.cpp -- what the terminal shows over a dialog: message boxes,
 * the file dialog, and the help pager.
 *
 * The file dialog is a path field over the entries of its folder, the
 * files filtered by the request's patterns: Tab completes the name in the
 * field, Enter takes a file or opens a folder, F2 goes to the next filter.
 * The help pager shows the section "[topic]" of a plain-text help file; a
 * help file named without a folder is looked for beside the bundled
 * lexicons.
 */
#define NCURSES_WIDECHAR 1
#include <ncursesw/curses.h>

#include <ctype.h>
#include <stdio.h>
#include <string.h>

#include <fstream>
#include <string>
#include <vector>

#include "engine/debug_log.h"
#include "platform/folder_list.h"
#include "ui/term.h"

/* Lines of at most `width` characters, broken at blanks where it can. */
static std::vector<std::string> wrap(const std::string &text, int width)
{
    std::vector<std::string> lines;
    std::string rest = text;
    while (!rest.empty()) {
        size_t cut = rest.find('\n');
        if (cut == std::string::npos || cut > (size_t)width) {
            cut = rest.size() <= (size_t)width ? rest.size() : rest.rfind(' ', (size_t)width);
            if (cut == std::string::npos || cut == 0)
                cut = rest.size() < (size_t)width ? rest.size() : (size_t)width;
        }
        lines.push_back(rest.substr(0, cut));
        rest = rest.substr(cut < rest.size() && (rest[cut] == ' ' || rest[cut] == '\n') ? cut + 1 : cut);
    }
    if (lines.empty())
        lines.push_back("");
    return lines;
}

/* A box in the middle of the screen, framed and titled; gives its inside. */
static RECT box(const std::string &title, int width, int height)
{
    if (width > term.cols - 2)
        width = term.cols - 2;
    if (height > term.rows - 2)
        height = term.rows - 2;
    int left = (term.cols - width) / 2, top = (term.rows - height) / 2;
    attrset(COLOR_PAIR(PairDialog));
    for (int y = top; y < top + height; y++)
        mvhline(y, left, ' ', width);
    frame(top, left, height, width);
    if (!title.empty()) {
        attron(A_BOLD);
        std::string t = " " + title + " ";
        putText(top, left + (width > (int)t.size() ? (width - (int)t.size()) / 2 : 1), t, width - 2);
        attroff(A_BOLD);
    }
    RECT inside;
    SetRect(&inside, left + 2, top + 1, left + width - 2, top + height - 1);
    return inside;
}

void termMessageBox(const char *text, const char *title)
{
    if (!termStart()) {
        DebugLog("MessageBoxA: %s: %s", title, text);
        return;
    }
    int wrapAt = term.cols - 8 > 20 ? term.cols - 8 : 20;
    int width = 20;
    for (const std::string &line : wrap(text, wrapAt))
        if ((int)line.size() + 6 > width)
            width = (int)line.size() + 6;
    if ((int)strlen(title) + 6 > width)
        width = (int)strlen(title) + 6;
    std::vector<std::string> lines = wrap(text, width - 4);
    for (;;) {
        if (!runningDialogs().empty())
            drawScreen(runningDialogs().back());
        else
            erase();
        curs_set(0);
        RECT in = box(title, width, (int)lines.size() + 4);
        for (size_t i = 0; i < lines.size(); i++)
            putText(in.top + (int)i, in.left, lines[i], in.right - in.left);
        attron(A_REVERSE);
        putText(in.bottom - 1, in.left + (in.right - in.left - 4) / 2, "<OK>", 4);
        attroff(A_REVERSE);
        refresh();
        wint_t key;
        bool isCode;
        if (!readKey(&key, &isCode))
            continue;
        if (isCode && key == KEY_RESIZE) {
            termResized();
            continue;
        }
        if ((!isCode && (key == '\r' || key == '\n' || key == ' ' || key == 27)) ||
            (isCode && (key == KEY_ENTER || key == KEY_MOUSE)))
            break;
    }
    if (runningDialogs().empty())
        termStop();
}

/* ---- The help pager ---- */

static std::string findHelpFile(const char *name)
{
    if (!name || !*name)
        return std::string();
    if (strchr(name, '/'))
        return name;
    /* beside the bundled lexicons: the build's data folder, then the
     * installed one */
    for (const char *folder : {ORTO_BUILD_DATA_DIR, ORTO_DATA_DIR}) {
        std::string path = std::string(folder) + "/" + name;
        if (std::ifstream(path).good())
            return path;
    }
    return name;
}

static std::vector<std::string> helpSection(const std::string &path, uint32_t topic)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> lines;
    std::string line, header = "[" + std::to_string(topic) + "]";
    bool inside = false;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line[0] == '[' && line.find(']') != std::string::npos) {
            if (inside)
                break;
            inside = line.compare(0, header.size(), header) == 0;
            continue;
        }
        if (inside)
            lines.push_back(line);
    }
    while (!lines.empty() && lines.back().empty())
        lines.pop_back();
    return lines;
}

/* The help text is UTF-8 as written; it is shown as it stands. */
static void putUtf8(int y, int x, const std::string &text, int width)
{
    std::wstring wide;
    mbstate_t state = {};
    const char *p = text.c_str();
    size_t left = text.size();
    while (left > 0) {
        wchar_t wc;
        size_t n = mbrtowc(&wc, p, left, &state);
        if (n == (size_t)-1 || n == (size_t)-2) {
            wc = L'?';
            n = 1;
            state = mbstate_t{};
        } else if (n == 0) {
            n = 1;
        }
        wide += wc;
        p += n;
        left -= n;
    }
    if ((int)wide.size() > width)
        wide.resize((size_t)width);
    mvaddnwstr(y, x, wide.c_str(), (int)wide.size());
}

void termHelp(const char *helpFile, uint32_t topic)
{
    if (!termStart())
        return;
    std::string path = findHelpFile(helpFile);
    std::vector<std::string> lines = helpSection(path, topic);
    if (lines.empty()) {
        char text[600];
        snprintf(text, sizeof text, "No help for topic %u in %s.", topic, path.c_str());
        termMessageBox(text, "Help");
        return;
    }
    int first = 0;
    for (;;) {
        curs_set(0);
        attrset(A_NORMAL);
        erase();
        int height = term.rows - 2;
        attrset(COLOR_PAIR(PairTitle) | A_BOLD);
        mvhline(0, 0, ' ', term.cols);
        putText(0, 1, "Help", term.cols - 2);
        attrset(A_NORMAL);
        for (int row = 0; row < height && first + row < (int)lines.size(); row++)
            putUtf8(1 + row, 1, lines[(size_t)(first + row)], term.cols - 2);
        attrset(COLOR_PAIR(PairTitle));
        mvhline(term.rows - 1, 0, ' ', term.cols);
        putText(term.rows - 1, 1, "Up, Down, Page Up, Page Down: move   q or Escape: back", term.cols - 2);
        attrset(A_NORMAL);
        refresh();
        wint_t key;
        bool isCode;
        if (!readKey(&key, &isCode))
            continue;
        int last = (int)lines.size() - height > 0 ? (int)lines.size() - height : 0;
        if (isCode) {
            if (key == KEY_RESIZE)
                termResized();
            else if (key == KEY_UP)
                first = first > 0 ? first - 1 : 0;
            else if (key == KEY_DOWN)
                first = first < last ? first + 1 : last;
            else if (key == KEY_PPAGE)
                first = first > height ? first - height : 0;
            else if (key == KEY_NPAGE)
                first = first + height < last ? first + height : last;
            else if (key == KEY_HOME)
                first = 0;
            else if (key == KEY_END)
                first = last;
        } else if (key == 'q' || key == 'Q' || key == 27) {
            break;
        } else if (key == ' ') {
            first = first + height < last ? first + height : last;
        }
    }
    if (runningDialogs().empty())
        termStop();
}

/* ---- The file dialog ---- */

/* "*" and "?" patterns, case-blind; ";"-separated alternatives. */
static bool matchOne(const char *pattern, const char *name)
{
    if (!*pattern)
        return !*name;
    if (*pattern == '*')
        return matchOne(pattern + 1, name) || (*name && matchOne(pattern, name + 1));
    if (!*name)
        return false;
    if (*pattern != '?' && tolower((unsigned char)*pattern) != tolower((unsigned char)*name))
        return false;
    return matchOne(pattern + 1, name + 1);
}

static bool matchesFilter(const std::string &patterns, const std::string &name)
{
    size_t start = 0;
    while (start <= patterns.size()) {
        size_t end = patterns.find(';', start);
        if (end == std::string::npos)
            end = patterns.size();
        std::string one = patterns.substr(start, end - start);
        if (one == "*.*" || matchOne(one.c_str(), name.c_str()))
            return true;
        start = end + 1;
    }
    return false;
}

struct FileDialogState {
    std::vector<std::pair<std::string, std::string>> filters; /* description, patterns */
    size_t filter;
    std::string folder;
    std::string field;            /* the name typed, or a path */
    std::vector<FolderEntry> shown;
    int selected;                 /* in `shown`, -1 in the field */
    int first;
};

static void readFolder(FileDialogState *s)
{
    std::vector<FolderEntry> all;
    listFolder(s->folder.c_str(), &all);
    s->shown.clear();
    s->shown.push_back({"..", true});
    std::string patterns = s->filters.empty() ? "*" : s->filters[s->filter].second;
    for (const FolderEntry &e : all)
        if (e.name[0] != '.' && (e.isFolder || matchesFilter(patterns, e.name)))
            s->shown.push_back(e);
    s->selected = -1;
    s->first = 0;
}

/* `name` in `folder` (a name that begins with '/' stands alone), with the
 * "." and ".." parts taken out, so the folder line reads as a person
 * would type it. */
static std::string joinPath(const std::string &folder, const std::string &name)
{
    std::string whole = !name.empty() && name[0] == '/' ? name : folder + "/" + name;
    bool absolute = whole[0] == '/';
    std::vector<std::string> parts;
    for (size_t start = 0; start <= whole.size();) {
        size_t end = whole.find('/', start);
        if (end == std::string::npos)
            end = whole.size();
        std::string part = whole.substr(start, end - start);
        if (part == ".." && !parts.empty() && parts.back() != "..")
            parts.pop_back();
        else if (part == ".." ? !absolute : !part.empty() && part != ".")
            parts.push_back(part);
        start = end + 1;
    }
    std::string out = absolute ? "/" : "";
    for (size_t i = 0; i < parts.size(); i++)
        out += (i ? "/" : "") + parts[i];
    return out.empty() ? "." : out;
}

/* Tab: a path typed in the field first goes to its folder; then the
 * field takes the longest common start of the entries that begin with it,
 * and a folder that is the one match is opened. */
static void complete(FileDialogState *s)
{
    size_t slash = s->field.rfind('/');
    if (slash != std::string::npos) {
        std::string folder = joinPath(s->folder, slash == 0 ? "/" : s->field.substr(0, slash));
        if (!isFolder(folder.c_str()))
            return;
        s->folder = folder;
        s->field.erase(0, slash + 1);
        readFolder(s);
    }
    std::string common;
    bool any = false;
    for (const FolderEntry &e : s->shown) {
        if (e.name == ".." || e.name.compare(0, s->field.size(), s->field) != 0)
            continue;
        std::string name = e.isFolder ? e.name + "/" : e.name;
        if (!any) {
            common = name;
            any = true;
        } else {
            size_t n = 0;
            while (n < common.size() && n < name.size() && common[n] == name[n])
                n++;
            common.resize(n);
        }
    }
    if (!any)
        return;
    if (!common.empty() && common.back() == '/') {
        s->folder = joinPath(s->folder, common.substr(0, common.size() - 1));
        s->field.clear();
        readFolder(s);
    } else {
        s->field = common;
    }
}

static bool ask(const std::string &question)
{
    for (;;) {
        RECT in = box("Confirm", (int)question.size() + 6 < 30 ? 30 : (int)question.size() + 6, 5);
        putText(in.top, in.left, question, in.right - in.left);
        putText(in.top + 1, in.left, "y: yes   n: no", in.right - in.left);
        refresh();
        wint_t key;
        bool isCode;
        if (!readKey(&key, &isCode) || isCode)
            continue;
        if (key == 'y' || key == 'Y')
            return true;
        if (key == 'n' || key == 'N' || key == 27)
            return false;
    }
}

int32_t termFileDialog(const ORTO_FileRequest *request, char *path, uint32_t pathSize)
{
    if (!termStart())
        return 0;
    FileDialogState s{};
    for (const char *p = request->filter; p && *p;) {
        std::string description = p;
        p += strlen(p) + 1;
        std::string patterns = *p ? p : "*";
        if (*p)
            p += strlen(p) + 1;
        s.filters.push_back({description, patterns});
    }
    s.folder = request->startFolder && *request->startFolder ? request->startFolder : currentFolder();
    s.field = path && strchr(path, '/') ? std::string(strrchr(path, '/') + 1) : std::string(path ? path : "");
    readFolder(&s);
    int32_t chosen = 0;
    for (;;) {
        if (!runningDialogs().empty())
            drawScreen(runningDialogs().back());
        curs_set(0);
        int width = term.cols - 4 < 70 ? term.cols - 4 : 70, height = term.rows - 2 < 20 ? term.rows - 2 : 20;
        RECT in = box(request->title ? request->title : (request->save ? "Save" : "Open"), width, height);
        int inner = in.right - in.left;
        putText(in.top, in.left, "Folder: " + s.folder, inner);
        putText(in.top + 1, in.left, "Name:", 5);
        attron(COLOR_PAIR(PairField));
        mvhline(in.top + 1, in.left + 6, ' ', inner - 6);
        putText(in.top + 1, in.left + 6, s.field, inner - 6);
        attroff(COLOR_PAIR(PairField));
        int listTop = in.top + 3, listHeight = in.bottom - listTop - 2;
        if (s.selected >= 0 && s.selected < s.first)
            s.first = s.selected;
        if (s.selected >= s.first + listHeight)
            s.first = s.selected - listHeight + 1;
        for (int row = 0; row < listHeight && s.first + row < (int)s.shown.size(); row++) {
            const FolderEntry &e = s.shown[(size_t)(s.first + row)];
            bool on = s.first + row == s.selected;
            if (on)
                attron(A_REVERSE);
            putText(listTop + row, in.left, e.isFolder ? e.name + "/" : e.name, inner);
            if (on)
                attroff(A_REVERSE);
        }
        std::string filterLine = s.filters.empty() ? "" : "Type (F2): " + s.filters[s.filter].first;
        putText(in.bottom - 1, in.left, filterLine, inner);
        if (s.selected < 0) {
            move(in.top + 1, in.left + 6 + ((int)s.field.size() < inner - 7 ? (int)s.field.size() : inner - 7));
            curs_set(1);
        }
        refresh();
        wint_t key;
        bool isCode;
        if (!readKey(&key, &isCode))
            continue;
        if (isCode) {
            if (key == KEY_RESIZE)
                termResized();
            else if (key == KEY_UP)
                s.selected = s.selected > -1 ? s.selected - 1 : -1;
            else if (key == KEY_DOWN)
                s.selected = s.selected + 1 < (int)s.shown.size() ? s.selected + 1 : s.selected;
            else if (key == KEY_F(2) && !s.filters.empty()) {
                s.filter = (s.filter + 1) % s.filters.size();
                readFolder(&s);
            } else if (key == KEY_BACKSPACE && s.selected < 0 && !s.field.empty())
                s.field.pop_back();
            else if (key == KEY_ENTER)
                key = '\r', isCode = false;
            if (isCode)
                continue;
        }
        if (key == 27)
            break;
        if (key == '\t') {
            if (s.selected < 0)
                complete(&s);
            continue;
        }
        if (key == '\r' || key == '\n') {
            std::string name = s.field;
            if (s.selected >= 0) {
                const FolderEntry &e = s.shown[(size_t)s.selected];
                if (e.isFolder) {
                    s.folder = e.name == ".." ? joinPath(s.folder, "..") : joinPath(s.folder, e.name);
                    readFolder(&s);
                    continue;
                }
                name = e.name;
            }
            if (name.empty())
                continue;
            std::string full = joinPath(s.folder, name);
            if (isFolder(full.c_str())) {
                s.folder = full;
                s.field.clear();
                readFolder(&s);
                continue;
            }
            size_t cut = full.rfind('/');
            std::string folder = cut == 0 ? "/" : cut == std::string::npos ? "." : full.substr(0, cut);
            if ((request->flags & ORTO_OFN_PATHMUSTEXIST) && !isFolder(folder.c_str())) {
                termMessageBox(("The folder " + folder + " does not exist.").c_str(),
                               request->title ? request->title : "Open");
                continue;
            }
            bool exists = std::ifstream(full).good();
            if (!request->save && (request->flags & ORTO_OFN_FILEMUSTEXIST) && !exists) {
                termMessageBox((full + " does not exist.").c_str(), request->title ? request->title : "Open");
                continue;
            }
            if (request->save && (request->flags & ORTO_OFN_OVERWRITEPROMPT) && exists &&
                !ask(full + " exists. Replace it?"))
                continue;
            if (full.size() + 1 > pathSize) {
                beep();
                continue;
            }
            snprintf(path, pathSize, "%s", full.c_str());
            chosen = 1;
            break;
        }
        if (key == 127 || key == 8) {
            if (s.selected < 0 && !s.field.empty())
                s.field.pop_back();
            continue;
        }
        int byte = wideToLatin1((wchar_t)key);
        if (byte >= 0x20) {
            s.selected = -1;
            s.field += (char)byte;
        }
    }
    if (runningDialogs().empty())
        termStop();
    return chosen;
}
