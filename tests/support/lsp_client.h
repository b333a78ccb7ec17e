/*
 * lsp_client.h -- the client side of `orto lsp` for tests and benchmarks:
 * the real program in a child process, JSON-RPC messages with
 * Content-Length framing over its standard input and output.
 *
 * Sending keeps reading, so that a large message in each direction can't
 * block both sides; every wait has a deadline.
 */
#ifndef ORTO_LSP_CLIENT_H
#define ORTO_LSP_CLIENT_H

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <stdio.h>

#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

extern char **environ;

struct LspClient {
    pid_t pid = -1;
    int in = -1, out = -1;
    std::string buffer;              /* bytes read and not yet taken */
    std::vector<nlohmann::json> log; /* every message received, in order */
    double receivedAt = 0;           /* when the last message taken was whole */

    /* Starts `program` with `args` in `dir`, HOME and XDG_CONFIG_HOME in
     * `home`, standard error to `errFile`. */
    void start(const std::string &program, const std::vector<std::string> &args, const std::string &dir,
               const std::string &home, const std::string &errFile)
    {
        int toChild[2], fromChild[2];
        if (pipe(toChild) != 0 || pipe(fromChild) != 0)
            abort();
        std::vector<std::string> env;
        for (char **e = environ; *e; e++)
            if (strncmp(*e, "HOME=", 5) != 0 && strncmp(*e, "XDG_CONFIG_HOME=", 16) != 0)
                env.push_back(*e);
        env.push_back("HOME=" + home);
        env.push_back("XDG_CONFIG_HOME=" + home + "/config");
        pid = fork();
        if (pid == 0) {
            int err = open(errFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
            dup2(toChild[0], 0);
            dup2(fromChild[1], 1);
            dup2(err, 2);
            for (int fd : {toChild[0], toChild[1], fromChild[0], fromChild[1], err})
                close(fd);
            if (chdir(dir.c_str()) != 0)
                _exit(126);
            std::vector<char *> argv{(char *)program.c_str()}, envp;
            for (const std::string &a : args)
                argv.push_back((char *)a.c_str());
            argv.push_back(nullptr);
            for (const std::string &e : env)
                envp.push_back((char *)e.c_str());
            envp.push_back(nullptr);
            execve(program.c_str(), argv.data(), envp.data());
            _exit(127);
        }
        close(toChild[0]);
        close(fromChild[1]);
        in = toChild[1];
        out = fromChild[0];
        signal(SIGPIPE, SIG_IGN);
    }

    static double now()
    {
        timespec t;
        clock_gettime(CLOCK_MONOTONIC, &t);
        return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
    }

    /* Reads what the server wrote, waiting up to `ms`; false at its end. */
    bool readSome(int ms)
    {
        pollfd p = {out, POLLIN, 0};
        if (poll(&p, 1, ms) <= 0)
            return true;
        char chunk[1 << 16];
        ssize_t n = read(out, chunk, sizeof chunk);
        if (n <= 0)
            return false;
        buffer.append(chunk, (size_t)n);
        return true;
    }

    /* Writes raw bytes, reading meanwhile. */
    void sendRaw(const std::string &bytes)
    {
        for (size_t done = 0; done < bytes.size();) {
            pollfd p[2] = {{in, POLLOUT, 0}, {out, POLLIN, 0}};
            if (poll(p, 2, 1000) < 0)
                return;
            if (p[1].revents & POLLIN)
                readSome(0);
            if (p[0].revents & (POLLERR | POLLHUP))
                return;
            if (p[0].revents & POLLOUT) {
                ssize_t n = write(in, bytes.data() + done, bytes.size() - done);
                if (n <= 0)
                    return;
                done += (size_t)n;
            }
        }
    }

    static std::string frame(const nlohmann::json &message)
    {
        std::string body = message.dump();
        return "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }

    void send(const nlohmann::json &message) { sendRaw(frame(message)); }

    void request(int id, const std::string &method, const nlohmann::json &params)
    {
        send({{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", params}});
    }

    void notify(const std::string &method, const nlohmann::json &params)
    {
        send({{"jsonrpc", "2.0"}, {"method", method}, {"params", params}});
    }

    /* Takes one whole message from the buffer. */
    bool take(nlohmann::json *message)
    {
        size_t end = buffer.find("\r\n\r\n");
        if (end == std::string::npos)
            return false;
        size_t length = strtoul(buffer.c_str() + buffer.find(':') + 1, nullptr, 10);
        if (buffer.size() < end + 4 + length)
            return false;
        receivedAt = now();
        *message = nlohmann::json::parse(buffer.substr(end + 4, length), nullptr, false);
        buffer.erase(0, end + 4 + length);
        log.push_back(*message);
        return true;
    }

    /* The next message for which `match` holds, within `seconds`; the ones
     * before it are skipped (and stay in `log`).  Null on a timeout. */
    nlohmann::json waitFor(const std::function<bool(const nlohmann::json &)> &match, double seconds = 30)
    {
        double deadline = now() + seconds;
        nlohmann::json m;
        for (;;) {
            while (take(&m))
                if (match(m))
                    return m;
            double left = deadline - now();
            if (left <= 0 || !readSome((int)(left * 1000) + 1))
                return nullptr;
        }
    }

    nlohmann::json response(int id, double seconds = 30)
    {
        return waitFor([id](const nlohmann::json &m) { return m.contains("id") && m["id"] == id && !m.contains("method"); },
                       seconds);
    }

    /* The next publishDiagnostics for `uri`. */
    nlohmann::json diagnostics(const std::string &uri, double seconds = 30)
    {
        return waitFor(
            [&uri](const nlohmann::json &m) {
                return m.value("method", "") == "textDocument/publishDiagnostics" && m["params"]["uri"] == uri;
            },
            seconds);
    }

    /* Closes the input and waits for the exit status (-1 when killed). */
    int finish(double seconds = 30)
    {
        if (in >= 0)
            close(in);
        in = -1;
        double deadline = now() + seconds;
        int status = 0;
        while (waitpid(pid, &status, WNOHANG) == 0) {
            if (now() > deadline) {
                kill(pid, SIGKILL);
                waitpid(pid, &status, 0);
                break;
            }
            readSome(50);
        }
        if (out >= 0)
            close(out);
        out = -1;
        pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    ~LspClient()
    {
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        if (in >= 0)
            close(in);
        if (out >= 0)
            close(out);
    }
};

/* The suggestions that `orto -a --max 5` gives for `word`, best first: the
 * ranking the program uses, which the server's code actions follow. */
inline std::vector<std::string> pipeSuggestions(const std::string &program, const std::string &home,
                                                const std::string &word)
{
    std::string command = "printf '^" + word + "\\n' | HOME='" + home + "' XDG_CONFIG_HOME='" + home +
                          "/no-config' '" + program + "' -a --max 5";
    std::string out;
    if (FILE *p = popen(command.c_str(), "r")) {
        char buf[4096];
        size_t n;
        while ((n = fread(buf, 1, sizeof buf, p)) > 0)
            out.append(buf, n);
        pclose(p);
    }
    std::vector<std::string> list; /* from "& WORD COUNT OFFSET: s1, s2, ..." */
    size_t colon = out.find(": ");
    for (size_t at = colon + 2; colon != std::string::npos && at < out.size();) {
        size_t end = out.find_first_of(",\n", at);
        list.push_back(out.substr(at, end - at));
        at = end != std::string::npos && out[end] == ',' ? end + 2 : out.size();
    }
    return list;
}

#endif
