#pragma once
#include "gapp_export.h"
#include <QString>
#include <QStringList>

namespace Zal {

// End mark of one log entry: `log << message << END_LOG;`
enum EndLog_t { END_LOG };

// Accumulates the messages of script-level and user-file operations for the
// caller, who decides whether and how to show them. One entry is the text
// written between two end marks; getText() joins the entries with line ends.
// Not thread-safe: a log belongs to the thread that fills it.
class GAPP_EXPORT ErrorLog
{
public:
    // With echo set, every finished entry is also written to standard error.
    explicit ErrorLog(bool echo = false);

    ErrorLog &operator<<(const QString &text);
    ErrorLog &operator<<(const char *text);
    ErrorLog &operator<<(EndLog_t);

    void clear();
    bool isEmpty() const;
    // The finished entries, oldest first; text after the last end mark is
    // not an entry yet.
    const QStringList &getEntries() const { return _entries; }
    // All entries and any unfinished text, one entry per line.
    QString getText() const;

private:
    bool _echo;
    QStringList _entries;
    QString _pending;
};

namespace Debug {
// The one diagnostic line of the library: "%s(%d): " + message + line end,
// written to standard output and flushed.
GAPP_EXPORT void printLine(const char *function, int line, const QString &message);
// A plain trace line on standard output, flushed.
GAPP_EXPORT void printTrace(const QString &line);
// Writes at most maxFrames frames of the calling thread's stack to standard error.
GAPP_EXPORT void printBacktrace(int maxFrames);
} // namespace Debug

namespace Time {
// The current local time as the traces show it, "yyyy-MM-dd hh:mm:ss.zzz".
GAPP_EXPORT QString currentTimeString();
} // namespace Time

} // namespace Zal
