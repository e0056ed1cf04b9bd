#include "zal_errorlog.h"
#include <QDateTime>
#include <cstdio>
#if defined(__GLIBC__)
#include <execinfo.h>
#include <unistd.h>
#endif

namespace Zal {

ErrorLog::ErrorLog(bool echo) : _echo(echo) {}

ErrorLog &ErrorLog::operator<<(const QString &text)
{
    _pending += text;
    return *this;
}

ErrorLog &ErrorLog::operator<<(const char *text)
{
    _pending += QString::fromUtf8(text ? text : "");
    return *this;
}

ErrorLog &ErrorLog::operator<<(EndLog_t)
{
    if (_echo) {
        std::fprintf(stderr, "%s\n", _pending.toLocal8Bit().constData());
        std::fflush(stderr);
    }
    _entries.append(_pending);
    _pending.clear();
    return *this;
}

void ErrorLog::clear()
{
    _entries.clear();
    _pending.clear();
}

bool ErrorLog::isEmpty() const
{
    return _entries.isEmpty() && _pending.isEmpty();
}

QString ErrorLog::getText() const
{
    QStringList all = _entries;
    if (!_pending.isEmpty())
        all.append(_pending);
    return all.join(QLatin1Char('\n'));
}

namespace Debug {

void printLine(const char *function, int line, const QString &message)
{
    std::printf("%s(%d): ", function ? function : "", line);
    std::printf("%s\n", message.toLocal8Bit().constData());
    std::fflush(stdout);
}

void printTrace(const QString &line)
{
    std::printf("%s\n", line.toLocal8Bit().constData());
    std::fflush(stdout);
}

void printBacktrace(int maxFrames)
{
    if (maxFrames <= 0)
        return;
#if defined(__GLIBC__)
    void *frames[64];
    const int n = backtrace(frames, maxFrames < 64 ? maxFrames : 64);
    std::fflush(stderr);
    backtrace_symbols_fd(frames, n, STDERR_FILENO);
#else
    std::fprintf(stderr, "(no backtrace on this platform)\n");
#endif
    std::fflush(stderr);
}

} // namespace Debug

namespace Time {
QString currentTimeString()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
}
} // namespace Time

} // namespace Zal
