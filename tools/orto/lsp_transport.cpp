/*
 * lsp_transport.cpp -- JSON-RPC messages over standard input and output,
 * each behind a "Content-Length: N" header and an empty line.
 *
 * Input is read in large pieces into a buffer, and messages are cut from
 * it.  A client that got the length wrong mustn't cost more than that one
 * message: a header can't stand inside a JSON body (raw CR LF is no part of
 * a JSON string, and a header would break JSON syntax anywhere else), so
 * a body is also cut where the next header begins, and a body that doesn't
 * parse at its stated length is tried once more up to the next header.
 * Bytes in front of a header are skipped with a note.
 *
 * Messages read ahead of their turn wait in a queue, which is where a
 * $/cancelRequest for the request being served is looked for.
 */
#include <errno.h>
#include <poll.h>
#include <string.h>
#include <sys/uio.h>
#include <unistd.h>

#include "lsp.h"

static const char HeaderName[] = "Content-Length:";
static const size_t MaxMessage = (size_t)1 << 30; /* larger is taken for garbage */
static const int MaxDepth = 512;                   /* deeper JSON is refused */

void initTransport(Transport *t, int in, int out)
{
    t->in = in;
    t->out = out;
    t->buffer.clear();
    t->scanned = 0;
    t->queue.clear();
    t->notes.clear();
    t->eof = false;
    t->broken = false;
}

const Json *member(const Json &object, const char *key)
{
    if (!object.is_object())
        return nullptr;
    auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
}

bool stringMember(const Json &object, const char *key, std::string *out)
{
    const Json *v = member(object, key);
    if (!v || !v->is_string())
        return false;
    *out = v->get_ref<const std::string &>();
    return true;
}

bool intMember(const Json &object, const char *key, int64_t *out)
{
    const Json *v = member(object, key);
    if (!v || !v->is_number_integer())
        return false;
    *out = v->get<int64_t>();
    return true;
}

/* A header block at `at`: header lines, one of them Content-Length, and an
 * empty line.  Sets the length and where the body begins. */
static bool headerAt(const std::string &b, size_t at, size_t *length, size_t *body)
{
    size_t end = b.find("\r\n\r\n", at);
    if (end == std::string::npos)
        return false;
    bool found = false;
    for (size_t line = at; line < end + 2;) {
        size_t eol = b.find("\r\n", line);
        if (b.compare(line, sizeof HeaderName - 1, HeaderName) == 0) {
            size_t p = line + sizeof HeaderName - 1;
            while (p < eol && b[p] == ' ')
                p++;
            size_t n = 0, digits = 0;
            for (; p < eol && b[p] >= '0' && b[p] <= '9' && n <= MaxMessage; p++, digits++)
                n = n * 10 + (size_t)(b[p] - '0');
            while (p < eol && b[p] == ' ')
                p++;
            if (digits == 0 || p != eol || n > MaxMessage)
                return false;
            *length = n;
            found = true;
        } else if (!memchr(b.data() + line, ':', eol - line)) {
            return false; /* a header line is NAME: VALUE */
        }
        line = eol + 2;
    }
    if (found)
        *body = end + 4;
    return found;
}

/* Where the next whole header block begins, at `from` or later. */
static size_t nextHeader(const std::string &b, size_t from)
{
    for (size_t at = b.find(HeaderName, from); at != std::string::npos; at = b.find(HeaderName, at + 1)) {
        size_t length, body;
        if (headerAt(b, at, &length, &body))
            return at;
        if (b.find("\r\n\r\n", at) == std::string::npos)
            return std::string::npos; /* may be a header still arriving */
    }
    return std::string::npos;
}

/* True when arrays and objects nest deeper than `limit` somewhere in
 * b[from, to): the library's copies and comparisons of such a value
 * recurse, and no message of the protocol nests that deep. */
static bool nestsTooDeep(const std::string &b, size_t from, size_t to, int limit)
{
    int depth = 0;
    bool inString = false;
    for (size_t i = from; i < to; i++) {
        char c = b[i];
        if (inString) {
            if (c == '\\')
                i++;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if ((c == '[' || c == '{') && ++depth > limit) {
            return true;
        } else if (c == ']' || c == '}') {
            depth--;
        }
    }
    return false;
}

static bool parseBody(const std::string &b, size_t from, size_t to, Json *out)
{
    if (nestsTooDeep(b, from, to, MaxDepth)) {
        *out = Json();
        return false;
    }
    *out = Json::parse(b.begin() + (long)from, b.begin() + (long)to, nullptr, false);
    return !out->is_discarded();
}

/* Cuts one message from the buffer into the queue; false when the buffer
 * holds no whole one yet. */
static bool cutMessage(Transport *t)
{
    std::string &b = t->buffer;
    size_t start = nextHeader(b, 0);
    if (start == std::string::npos) {
        /* keep a tail that may be the start of a header */
        size_t keep = b.size() < 64 ? b.size() : 64;
        size_t junk = b.size() - keep;
        size_t lastHeader = b.rfind(HeaderName);
        if (lastHeader != std::string::npos && lastHeader < junk)
            junk = lastHeader;
        if (junk > 0 && b.find_first_not_of("\r\n \t") < junk)
            t->notes.push_back("skipped " + std::to_string(junk) + " bytes that are no message");
        b.erase(0, junk);
        t->scanned = 0;
        return false;
    }
    if (start > 0) {
        t->scanned = 0;
        if (b.find_first_not_of("\r\n \t") < start)
            t->notes.push_back("skipped " + std::to_string(start) + " bytes that are no message");
        b.erase(0, start);
    }
    size_t length = 0, body = 0;
    headerAt(b, 0, &length, &body);
    /* a long body arrives in many reads: look for a header only in what is new */
    size_t from = t->scanned > body + 256 ? t->scanned - 256 : body;
    size_t next = nextHeader(b, from);
    size_t end = body + length;
    t->scanned = b.size();
    if (next != std::string::npos && next < end) {
        t->notes.push_back("Content-Length " + std::to_string(length) + " runs into the next message; " +
                           "the body is cut there");
        end = next;
    } else if (end > b.size()) {
        return false; /* the rest of the body is still to come */
    }

    Incoming m;
    if (!parseBody(b, body, end, &m.message)) {
        /* a length that was too short: the body may end at the next header */
        size_t stop = nextHeader(b, end);
        if (stop == std::string::npos)
            stop = b.size();
        if (stop > end && parseBody(b, body, stop, &m.message)) {
            t->notes.push_back("Content-Length " + std::to_string(length) + " is shorter than the body");
            end = stop;
        } else {
            m.message = Json();
            m.error = "the body of " + std::to_string(end - body) + " bytes is not JSON";
        }
    }
    b.erase(0, end);
    t->scanned = 0;
    t->queue.push_back(std::move(m));
    return true;
}

/* Reads once from the input; false at its end or on an error. */
static bool readInput(Transport *t)
{
    char chunk[65536];
    for (;;) {
        ssize_t n = read(t->in, chunk, sizeof chunk);
        if (n > 0) {
            t->buffer.append(chunk, (size_t)n);
            return true;
        }
        if (n < 0 && errno == EINTR)
            continue;
        t->eof = true;
        return false;
    }
}

static bool inputReady(Transport *t)
{
    pollfd p = {t->in, POLLIN, 0};
    return poll(&p, 1, 0) > 0;
}

void pumpInput(Transport *t)
{
    for (;;) {
        while (cutMessage(t)) {
        }
        if (t->eof || !inputReady(t) || !readInput(t))
            return;
    }
}

bool nextMessage(Transport *t, Incoming *m, bool wait)
{
    for (;;) {
        for (const std::string &note : t->notes)
            logMessage(t, MessageWarning, note);
        t->notes.clear();
        if (!t->queue.empty()) {
            *m = std::move(t->queue.front());
            t->queue.pop_front();
            return true;
        }
        if (cutMessage(t))
            continue;
        if (t->eof || (!wait && !inputReady(t)))
            return false;
        if (!readInput(t))
            return false;
    }
}

bool takeCancel(Transport *t, const Json &id)
{
    pumpInput(t);
    for (auto it = t->queue.begin(); it != t->queue.end(); ++it) {
        std::string method;
        const Json *params = member(it->message, "params");
        const Json *cancelled = params ? member(*params, "id") : nullptr;
        if (stringMember(it->message, "method", &method) && method == "$/cancelRequest" && cancelled &&
            *cancelled == id) {
            t->queue.erase(it);
            return true;
        }
    }
    return false;
}

void sendMessage(Transport *t, const Json &message)
{
    sendBody(t, message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void sendBody(Transport *t, const std::string &body)
{
    if (t->broken)
        return;
    std::string header = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    /* header and body by one call, with no copy of a body that may be large */
    iovec parts[2] = {{(void *)header.data(), header.size()}, {(void *)body.data(), body.size()}};
    size_t total = header.size() + body.size();
    for (size_t done = 0; done < total;) {
        ssize_t n = writev(t->out, parts, 2);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            t->broken = true;
            return;
        }
        done += (size_t)n;
        for (iovec &p : parts) {
            size_t step = (size_t)n < p.iov_len ? (size_t)n : p.iov_len;
            p.iov_base = (char *)p.iov_base + step;
            p.iov_len -= step;
            n -= (ssize_t)step;
        }
    }
}

void sendResult(Transport *t, const Json &id, const Json &result)
{
    sendMessage(t, Json{{"jsonrpc", "2.0"}, {"id", id}, {"result", result}});
}

void sendError(Transport *t, const Json &id, int code, const std::string &text)
{
    sendMessage(t, Json{{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", text}}}});
}

void sendNotification(Transport *t, const char *method, const Json &params)
{
    sendMessage(t, Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}});
}

void logMessage(Transport *t, int type, const std::string &text)
{
    sendNotification(t, "window/logMessage", Json{{"type", type}, {"message", "orto: " + text}});
}

void showMessage(Transport *t, int type, const std::string &text)
{
    sendNotification(t, "window/showMessage", Json{{"type", type}, {"message", "orto: " + text}});
}
