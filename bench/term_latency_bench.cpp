// `orto check` as a person meets it, on a terminal of 80x24 (a pty):
//   - the time from the start of the program to the first drawn dialog,
//     over a megabyte of prose;
//   - the time to answer one key press (Alt+I, Ignore), from the key to the
//     last byte of the screen's update, 100 times.
// Median and worst of each.  The data is bench/data/block_prose.txt
// (bench/fetch_block_data.sh), its first megabyte.
//
// Usage: term_latency_bench [RUNS, default 10]
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

static double now()
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

struct Child {
    pid_t pid;
    int fd;
    std::string seen;
};

static Child start(const std::string &ini, const std::string &file)
{
    struct winsize size = {24, 80, 0, 0};
    Child c{-1, -1, ""};
    c.pid = forkpty(&c.fd, nullptr, nullptr, &size);
    if (c.pid == 0) {
        setenv("TERM", "xterm-256color", 1);
        execl(ORTO_BINARY_DIR "/bin/orto", "orto", "check", "--ini", ini.c_str(), file.c_str(), (char *)nullptr);
        _exit(127);
    }
    return c;
}

/* Reads what comes within `ms`; true if anything came. */
static bool readFor(Child *c, int ms)
{
    struct pollfd p = {c->fd, POLLIN, 0};
    if (poll(&p, 1, ms) <= 0)
        return false;
    char buffer[65536];
    ssize_t n = read(c->fd, buffer, sizeof buffer);
    if (n <= 0)
        return false;
    c->seen.append(buffer, (size_t)n);
    return true;
}

static void stop(Child *c)
{
    kill(c->pid, SIGKILL);
    waitpid(c->pid, nullptr, 0);
    close(c->fd);
}

static void report(const char *what, std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    printf("%-34s median %7.2f ms   worst %7.2f ms   (%zu)\n", what, v[v.size() / 2], v.back(), v.size());
}

int main(int argc, char **argv)
{
    int runs = argc > 1 ? atoi(argv[1]) : 10;
    std::ifstream in(ORTO_SOURCE_DIR "/bench/data/block_prose.txt", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    std::string prose = text.str().substr(0, 1 << 20);
    if (prose.size() < (1u << 20)) {
        fprintf(stderr, "no data: run bench/fetch_block_data.sh\n");
        return 1;
    }
    char folder[] = "/tmp/orto-term-bench-XXXXXX";
    if (!mkdtemp(folder))
        return 1;
    std::string ini = std::string(folder) + "/ORTO.INI", file = std::string(folder) + "/prose.txt";
    std::ofstream(ini) << "[ORTO]\nMainLexPath=" ORTO_BINARY_DIR "/data\nMainLexFiles=en-US.clx\n";
    std::ofstream(file, std::ios::binary) << prose;

    std::vector<double> first, keys;
    for (int run = 0; run < runs; run++) {
        double t0 = now();
        Child c = start(ini, file);
        while (c.seen.find("Check Spelling") == std::string::npos)
            if (!readFor(&c, 10000))
                break;
        first.push_back(now() - t0);
        while (readFor(&c, 50)) /* the rest of the first screen */
            ;
        for (int k = 0; run == 0 && k < 100; k++) {
            double sent = now();
            if (write(c.fd, "\033i", 2) != 2)
                break;
            double last = sent;
            if (readFor(&c, 5000)) {
                last = now();
                while (readFor(&c, 15))
                    last = now();
            }
            keys.push_back(last - sent);
        }
        stop(&c);
    }
    report("start to the first dialog (1 MB)", first);
    if (!keys.empty())
        report("one key press (Alt+I, Ignore)", keys);
    unlink(ini.c_str());
    unlink(file.c_str());
    rmdir(folder);
    return 0;
}
