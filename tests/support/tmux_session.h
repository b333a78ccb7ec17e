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

#include <string>
#include <vector>

struct TmuxSession {
    std::string socket;

    /* Starts `command` (a shell command line) at `width` x `height`.  When
     * it ends, the pane stays and shows "[exited N]". */
    TmuxSession(const std::string &command, int width = 80, int height = 24)
    {
        static int serial;
        socket = "orto-test-" + std::to_string(getpid()) + "-" + std::to_string(++serial);
        std::string line = command + "; echo \"[exited $?]\"; sleep 600";
        run("new-session -d -x " + std::to_string(width) + " -y " + std::to_string(height) + " " + quote(line));
    }
    ~TmuxSession() { run("kill-server"); }
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
        std::string command = "tmux -L " + socket + " " + arguments + " >/dev/null 2>&1";
        return system(command.c_str());
    }

    /* Keys as send-keys takes them: "M-i", "Enter", "Tab", or literal text
     * with literal = true. */
    void keys(const std::string &keys, bool literal = false) const
    {
        run(std::string("send-keys ") + (literal ? "-l " : "") + keys);
    }

    std::string screen() const
    {
        std::string command = "tmux -L " + socket + " capture-pane -p 2>/dev/null";
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
        struct timespec start, now;
        clock_gettime(CLOCK_MONOTONIC, &start);
        for (;;) {
            bool shown = screen().find(text) != std::string::npos;
            if (shown != gone)
                return true;
            clock_gettime(CLOCK_MONOTONIC, &now);
            if ((now.tv_sec - start.tv_sec) + (now.tv_nsec - start.tv_nsec) / 1e9 > seconds)
                return false;
            usleep(20000);
        }
    }

    void resize(int width, int height) const
    {
        run("resize-window -x " + std::to_string(width) + " -y " + std::to_string(height));
    }
};

#endif
