/*
 * tmux_session.h -- a program run in a terminal of its own, for tests that
 * play a person at the keys: each session has its own tmux server (its own
 * socket), keys go in by send-keys, the screen comes back by capture-pane.
 * Waits poll the screen for what it should show, with a deadline; no test
 * sleeps for a fixed time.
 */
#ifndef ORTO_TMUX_SESSION_H
#define ORTO_TMUX_SESSION_H

#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

struct TmuxSession {
    std::string socket;           /* a path of its own: removed at the end, as tmux leaves it */

    /* Starts `command` (a shell command line) at `width` x `height`.  When
     * it ends, the pane stays and shows "[exited N]". */
    TmuxSession(const std::string &command, int width = 80, int height = 24)
    {
        static int serial;
        const char *folder = getenv("TMPDIR");
        socket = std::string(folder && *folder ? folder : "/tmp") + "/orto-tmux-" + std::to_string(getpid()) + "-" +
                 std::to_string(++serial);
        std::string line = command + "; echo \"[exited $?]\"; sleep 600";
        run("new-session -d -x " + std::to_string(width) + " -y " + std::to_string(height) + " " + quote(line));
    }
    ~TmuxSession()
    {
        run("kill-server");
        unlink(socket.c_str());
    }
    TmuxSession(const TmuxSession &) = delete;
    TmuxSession &operator=(const TmuxSession &) = delete;

    static std::string quote(const std::string &s)
    {
        std::string q = "'";
        for (char c : s)
            q += c == '\'' ? std::string("'\\''") : std::string(1, c);
        return q + "'";
    }

    int run(const std::string &arguments) const
    {
        std::string command = "tmux -S " + quote(socket) + " " + arguments + " >/dev/null 2>&1";
        return system(command.c_str());
    }

    /* Keys as send-keys takes them: "M-i", "Enter", "Tab", or literal text
     * with literal = true. */
    void keys(const std::string &keys, bool literal = false) const
    {
        run(std::string("send-keys ") + (literal ? "-l " : "") + keys);
    }

    /* The screen's text; with `attributes`, with the escape sequences of
     * its colours and attributes. */
    std::string screen(bool attributes = false) const
    {
        std::string command = "tmux -S " + quote(socket) + " capture-pane -p" + (attributes ? " -e" : "") + " 2>/dev/null";
        FILE *p = popen(command.c_str(), "r");
        std::string out;
        char buffer[4096];
        size_t n;
        while (p && (n = fread(buffer, 1, sizeof buffer, p)) > 0)
            out.append(buffer, n);
        if (p)
            pclose(p);
        return out;
    }

    /* Waits until the screen shows `text` (or, with `gone`, no longer
     * shows it); false at the deadline. */
    bool waitFor(const std::string &text, double seconds = 20, bool gone = false) const
    {
        return until([&] { return (screen().find(text) != std::string::npos) != gone; }, seconds);
    }

    /* Polls `done` until it holds; false at the deadline. */
    static bool until(const std::function<bool()> &done, double seconds = 20)
    {
        struct timespec start, now;
        clock_gettime(CLOCK_MONOTONIC, &start);
        for (;;) {
            if (done())
                return true;
            clock_gettime(CLOCK_MONOTONIC, &now);
            if ((now.tv_sec - start.tv_sec) + (now.tv_nsec - start.tv_nsec) / 1e9 > seconds)
                return false;
            usleep(20000);
        }
    }

    /* Clicks the first cell of the first place on the screen that shows
     * `text`, `times` times in a row (2: a double click), with the mouse
     * reports of an xterm.  False if the screen doesn't show it. */
    bool click(const std::string &text, int times = 1) const
    {
        std::string shown = screen();
        size_t at = shown.find(text);
        if (at == std::string::npos)
            return false;
        size_t lineStart = shown.rfind('\n', at);
        lineStart = lineStart == std::string::npos ? 0 : lineStart + 1;
        int row = 0, column = 0;
        for (size_t i = 0; i < lineStart; i++)
            row += shown[i] == '\n';
        for (size_t i = lineStart; i < at; i++)
            column += ((unsigned char)shown[i] & 0xC0) != 0x80; /* one cell a character */
        std::string bytes;
        char hex[64];
        for (int n = 0; n < times; n++)
            for (int button : {0, 3}) { /* press, release */
                snprintf(hex, sizeof hex, " 1b 5b 4d %x %x %x", 32 + button, 33 + column, 33 + row);
                bytes += hex;
            }
        run("send-keys -H" + bytes);
        return true;
    }

    void resize(int width, int height) const
    {
        run("resize-window -x " + std::to_string(width) + " -y " + std::to_string(height));
    }
};

#endif
