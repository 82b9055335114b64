// SPDX-License-Identifier: GPL-3.0-or-later
// A small streaming JSON writer for the `kel` tool. It writes straight into
// a byte buffer, so that dumping a million answers stays fast, and it places
// the commas itself so that commands only say what comes next.
#pragma once

#include <QString>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace kel::cli {

class JsonWriter
{
public:
    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    /// Starts a member of the current object; the next value belongs to it.
    void key(const char *name)
    {
        separate();
        appendString(name);
        mOut += ':';
        mAfterKey = true;
    }

    void value(const QString &s)
    {
        separate();
        const QByteArray utf8 = s.toUtf8();
        appendString(utf8.constData(), std::size_t(utf8.size()));
    }
    void value(const char *s)
    {
        separate();
        appendString(s);
    }
    void value(bool b)
    {
        separate();
        mOut += b ? "true" : "false";
    }
    void value(int v) { value(static_cast<long long>(v)); }
    void value(long long v)
    {
        // The comma and the digits in one append: row lists run to tens of
        // thousands of numbers.
        char buf[24];
        char *p = buf;
        if (takeComma())
            *p++ = ',';
        p = std::to_chars(p, buf + sizeof buf, v).ptr;
        mOut.append(buf, std::size_t(p - buf));
    }
    /// Shortest text that reads back to the same double; -1.0 is "-1".
    /// JSON has no NaN or infinity: those become null.
    void value(double d)
    {
        separate();
        if (!std::isfinite(d)) {
            mOut += "null";
            return;
        }
        char buf[32];
        auto r = std::to_chars(buf, buf + sizeof buf, d);
        mOut.append(buf, r.ptr);
    }
    void null()
    {
        separate();
        mOut += "null";
    }

    template<typename T>
    void member(const char *name, const T &v)
    {
        key(name);
        value(v);
    }

    const std::string &text() const { return mOut; }
    void writeTo(std::FILE *f) const { std::fwrite(mOut.data(), 1, mOut.size(), f); }

private:
    void open(char c)
    {
        separate();
        mOut += c;
        mFirst.push_back(true);
    }
    void close(char c)
    {
        mOut += c;
        mFirst.pop_back();
    }
    /// Whether the next value needs a comma before it; marks the current
    /// container as no longer empty.
    bool takeComma()
    {
        if (mAfterKey) {
            mAfterKey = false;
            return false;
        }
        if (mFirst.empty())
            return false;
        const bool comma = !mFirst.back();
        mFirst.back() = false;
        return comma;
    }
    void separate()
    {
        if (takeComma())
            mOut += ',';
    }
    void appendString(const char *s) { appendString(s, std::char_traits<char>::length(s)); }
    void appendString(const char *s, std::size_t n)
    {
        // Runs of characters that need no escape are appended whole: `kel
        // batch` wraps every command's output, often a whole JSON text, in
        // one string, and a byte at a time would dominate its run time.
        mOut.reserve(mOut.size() + n + 2);
        mOut += '"';
        std::size_t run = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const auto c = static_cast<unsigned char>(s[i]);
            if (c >= 0x20 && c != '"' && c != '\\')
                continue;
            mOut.append(s + run, i - run);
            run = i + 1;
            switch (c) {
            case '"': mOut += "\\\""; break;
            case '\\': mOut += "\\\\"; break;
            case '\n': mOut += "\\n"; break;
            case '\r': mOut += "\\r"; break;
            case '\t': mOut += "\\t"; break;
            default: {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                mOut += buf;
            }
            }
        }
        mOut.append(s + run, n - run);
        mOut += '"';
    }

    std::string mOut;
    std::vector<char> mFirst; // per open container: nothing written in it yet
    bool mAfterKey = false;
};

} // namespace kel::cli
