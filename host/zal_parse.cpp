#include "zal_parse.h"
#include <QLocale>
#include <cmath>

namespace Zal {

ParseError::ParseError(const QString &text) : Exception(text)
{
}
ParseError::~ParseError() = default;

namespace {

// One "key=value" entry of a parameter string, as positions into it.
struct Entry
{
    qsizetype begin = 0;       // first character of the key
    qsizetype end = 0;         // one past the value
    qsizetype valueBegin = -1; // -1: the entry has no '='
    QString key;
};

// The character at i when it stands outside quotes, else a null character.
// Inside quotes a backslash escapes the next character, which is skipped.
QChar unquoted(const QString &s, qsizetype &i, bool &quoted)
{
    const QChar c = s.at(i);
    if (quoted) {
        if (c == QLatin1Char('\\'))
            ++i;
        else if (c == QLatin1Char('"'))
            quoted = false;
        return QChar();
    }
    if (c == QLatin1Char('"'))
        quoted = true;
    return quoted ? QChar() : c;
}

// The position of the ']' that closes the '[' at pos, skipping nested
// vectors and quoted text; -1 when the text ends first.
qsizetype closingBracket(const QString &s, qsizetype pos)
{
    const qsizetype n = s.size();
    int depth = 0;
    bool quoted = false;
    for (; pos < n; ++pos) {
        const QChar c = unquoted(s, pos, quoted);
        if (c == QLatin1Char('['))
            ++depth;
        else if (c == QLatin1Char(']') && --depth == 0)
            return pos;
    }
    return -1;
}

// The end of a value starting at pos: a quoted string up to its closing quote,
// a vector up to its matching bracket, anything else up to white space. An
// unterminated quote or bracket runs to the end of the text.
qsizetype valueEnd(const QString &s, qsizetype pos)
{
    const qsizetype n = s.size();
    if (pos >= n)
        return pos;
    if (s.at(pos) == QLatin1Char('"')) {
        for (++pos; pos < n; ++pos) {
            const QChar c = s.at(pos);
            if (c == QLatin1Char('\\'))
                ++pos;
            else if (c == QLatin1Char('"'))
                return pos + 1;
        }
        return n;
    }
    if (s.at(pos) == QLatin1Char('[')) {
        const qsizetype close = closingBracket(s, pos);
        return close < 0 ? n : close + 1;
    }
    while (pos < n && !s.at(pos).isSpace())
        ++pos;
    return pos;
}

bool findEntry(const QString &s, const QString &key, Entry *found)
{
    const qsizetype n = s.size();
    qsizetype pos = 0;
    while (pos < n) {
        while (pos < n && s.at(pos).isSpace())
            ++pos;
        if (pos >= n)
            break;
        // Quoted text or a vector without a key is stepped over whole, so
        // nothing inside it is mistaken for an entry.
        if (s.at(pos) == QLatin1Char('"') || s.at(pos) == QLatin1Char('[')) {
            pos = valueEnd(s, pos);
            continue;
        }
        Entry e;
        e.begin = pos;
        while (pos < n && !s.at(pos).isSpace() && s.at(pos) != QLatin1Char('='))
            ++pos;
        e.key = s.mid(e.begin, pos - e.begin);
        if (pos < n && s.at(pos) == QLatin1Char('=')) {
            e.valueBegin = ++pos;
            pos = valueEnd(s, pos);
        }
        e.end = pos;
        if (e.key == key) {
            *found = e;
            return true;
        }
    }
    return false;
}

QString valueOf(const QString &s, const Entry &e)
{
    return s.mid(e.valueBegin, e.end - e.valueBegin);
}

// Removes the entry together with the white space that separated it from
// the next one (or, for the last entry, from the previous one).
void removeEntry(QString &s, const Entry &e)
{
    qsizetype end = e.end;
    while (end < s.size() && s.at(end).isSpace())
        ++end;
    qsizetype begin = e.begin;
    if (end >= s.size())
        while (begin > 0 && s.at(begin - 1).isSpace())
            --begin;
    s.remove(begin, end - begin);
}

QString takeValue(QString &params, const QString &key, Entry *entry)
{
    if (!findEntry(params, key, entry))
        throw ParseError(QStringLiteral("missing parameter '%1'").arg(key));
    if (entry->valueBegin < 0 || entry->valueBegin == entry->end)
        throw ParseError(QStringLiteral("missing value for parameter '%1'").arg(key));
    return valueOf(params, *entry);
}

[[noreturn]] void throwInvalid(const QString &what, const QString &key, const QString &value)
{
    throw ParseError(QStringLiteral("invalid %1 for parameter '%2': %3").arg(what, key, value));
}

template <class T>
void checkRange(const QString &key, const QString &value, T v, T min, T max)
{
    if (!(v >= min && v <= max))
        throw ParseError(QStringLiteral("parameter '%1' out of range [%2, %3]: %4")
                             .arg(key)
                             .arg(min)
                             .arg(max)
                             .arg(value));
}

QString unquote(const QString &v)
{
    if (!v.startsWith(QLatin1Char('"')))
        return v;
    QString out;
    out.reserve(v.size());
    const qsizetype n = v.endsWith(QLatin1Char('"')) && v.size() >= 2 ? v.size() - 1 : v.size();
    for (qsizetype i = 1; i < n; ++i) {
        if (v.at(i) == QLatin1Char('\\') && i + 1 < n)
            ++i;
        out.append(v.at(i));
    }
    return out;
}

} // namespace

bool Parse::hasKey(const QString &params, const QString &key)
{
    Entry e;
    return findEntry(params, key, &e);
}

double Parse::getDouble(QString &params, const QString &key, double min, double max)
{
    Entry e;
    const QString value = takeValue(params, key, &e);
    bool ok = false;
    const double v = value.toDouble(&ok);
    if (!ok || !std::isfinite(v))
        throwInvalid(QStringLiteral("number"), key, value);
    checkRange(key, value, v, min, max);
    removeEntry(params, e);
    return v;
}

int Parse::getInt(QString &params, const QString &key, int min, int max)
{
    Entry e;
    const QString value = takeValue(params, key, &e);
    bool ok = false;
    const int v = value.toInt(&ok, 10);
    if (!ok)
        throwInvalid(QStringLiteral("integer"), key, value);
    checkRange(key, value, v, min, max);
    removeEntry(params, e);
    return v;
}

unsigned int Parse::getUInt(QString &params, const QString &key, unsigned int min, unsigned int max)
{
    Entry e;
    const QString value = takeValue(params, key, &e);
    bool ok = false;
    // toUInt would read "-1" as a huge number on some versions; a sign is
    // never part of an unsigned value here.
    const unsigned int v = value.startsWith(QLatin1Char('-')) ? 0 : value.toUInt(&ok, 10);
    if (!ok)
        throwInvalid(QStringLiteral("unsigned integer"), key, value);
    checkRange(key, value, v, min, max);
    removeEntry(params, e);
    return v;
}

bool Parse::getBool(QString &params, const QString &key)
{
    Entry e;
    const QString value = takeValue(params, key, &e);
    bool v = false;
    if (value.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0
        || value == QLatin1String("1"))
        v = true;
    else if (value.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0
             && value != QLatin1String("0"))
        throwInvalid(QStringLiteral("boolean"), key, value);
    removeEntry(params, e);
    return v;
}

QString Parse::getString(QString &params, const QString &key)
{
    Entry e;
    if (!findEntry(params, key, &e))
        throw ParseError(QStringLiteral("missing parameter '%1'").arg(key));
    if (e.valueBegin < 0)
        throw ParseError(QStringLiteral("missing value for parameter '%1'").arg(key));
    const QString value = unquote(valueOf(params, e));
    removeEntry(params, e);
    return value;
}

QString Parse::createDouble(const QString &key, double value)
{
    return key + QLatin1Char('=') + QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString Parse::createInt(const QString &key, int value)
{
    return key + QLatin1Char('=') + QString::number(value);
}

QString Parse::createUInt(const QString &key, unsigned int value)
{
    return key + QLatin1Char('=') + QString::number(value);
}

QString Parse::createBool(const QString &key, bool value)
{
    return key + (value ? QLatin1String("=true") : QLatin1String("=false"));
}

QString Parse::createString(const QString &key, const QString &value)
{
    QString escaped = value;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    escaped.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return key + QLatin1String("=\"") + escaped + QLatin1Char('"');
}

std::vector<QString> Parse::decomposeVector(const QString &text)
{
    QString inner = text.trimmed();
    if (inner.startsWith(QLatin1Char('[')) && closingBracket(inner, 0) == inner.size() - 1)
        inner = inner.mid(1, inner.size() - 2);

    std::vector<QString> elements;
    if (inner.trimmed().isEmpty())
        return elements;
    int depth = 0;
    bool quoted = false;
    qsizetype start = 0;
    const qsizetype n = inner.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = unquoted(inner, i, quoted);
        if (c == QLatin1Char('[')) {
            ++depth;
        } else if (c == QLatin1Char(']')) {
            depth = qMax(0, depth - 1);
        } else if (c == QLatin1Char(',') && depth == 0) {
            elements.push_back(inner.mid(start, i - start).trimmed());
            start = i + 1;
        }
    }
    elements.push_back(inner.mid(start).trimmed());
    return elements;
}

} // namespace Zal
