#include "gapp_kconfig.h"
#include <QPoint>
#include <cstdio>

namespace Zal::MainArea {

namespace {

const QChar ENTRY_SEPARATOR = QLatin1Char('|');
const QChar ESCAPE = QLatin1Char('\\');

QString escaped(const QString &text, QChar special)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c == special || c == ESCAPE)
            result += ESCAPE;
        result += c;
    }
    return result;
}

// Reads from pos up to the next unescaped separator (or the end) and
// leaves pos on that separator; answers whether a separator was found.
bool readField(const QString &text, qsizetype &pos, QString *field)
{
    const qsizetype size = text.size();
    while (pos < size) {
        QChar c = text.at(pos);
        if (c == ENTRY_SEPARATOR)
            return true;
        if (c == ESCAPE) {
            if (++pos == size)
                break;
            c = text.at(pos);
        }
        *field += c;
        ++pos;
    }
    return false;
}

} // namespace

KConfig::KConfig() = default;
KConfig::KConfig(const KConfig &other) = default;
KConfig &KConfig::operator=(const KConfig &other) = default;
KConfig::~KConfig() = default;

void KConfig::setGroup(const QString &group)
{
    _group = group.isNull() ? QString() : group + QLatin1Char('/');
}

void KConfig::writeEntry(const QString &key, const QString &value)
{
    _entries[fullKey(key)] = value;
}

void KConfig::writeEntry(const QString &key, const char *value)
{
    writeEntry(key, QString::fromUtf8(value));
}

void KConfig::writeEntry(const QString &key, int value)
{
    writeEntry(key, QString::number(value));
}

void KConfig::writeEntry(const QString &key, bool value)
{
    writeEntry(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void KConfig::writeEntry(const QString &key, const QPoint &value)
{
    writeEntry(key, QStringLiteral("%1,%2").arg(value.x()).arg(value.y()));
}

void KConfig::writeEntry(const QString &key, const QStringList &list, char sep)
{
    const QChar separator = QLatin1Char(sep);
    QString text;
    for (const QString &item : list) {
        text += escaped(item, separator);
        text += separator;
    }
    if (text.endsWith(separator))
        text.chop(1);
    writeEntry(key, text);
}

bool KConfig::entryExists(const QString &key) const
{
    return _entries.find(fullKey(key)) != _entries.end();
}

bool KConfig::readEntry(const QString &key, QString *value) const
{
    const auto it = _entries.find(fullKey(key));
    if (it == _entries.end())
        return false;
    *value = it->second;
    return true;
}

bool KConfig::readNumEntry(const QString &key, int *value) const
{
    QString text;
    if (!readEntry(key, &text) || text.isNull())
        return false;
    if (text == QLatin1String("true") || text == QLatin1String("on") || text == QLatin1String("yes")) {
        *value = 1;
        return true;
    }
    bool ok = false;
    *value = text.toInt(&ok, 10);
    return ok;
}

bool KConfig::readBoolEntry(const QString &key, bool *value) const
{
    QString text;
    if (!readEntry(key, &text))
        return false;
    *value = text == QLatin1String("true") || text == QLatin1String("yes")
             || text == QLatin1String("on") || text == QLatin1String("1");
    return true;
}

bool KConfig::readPointEntry(const QString &key, QPoint *value) const
{
    QString text;
    if (!readEntry(key, &text) || text.isEmpty())
        return false;
    // The stored form is what sscanf's "%d,%d" accepts, leading blanks and
    // trailing rubbish included.
    const QByteArray bytes = text.toLatin1();
    int x = 0;
    int y = 0;
    if (std::sscanf(bytes.constData(), "%d,%d", &x, &y) != 2)
        return false;
    *value = QPoint(x, y);
    return true;
}

bool KConfig::readListEntry(const QString &key, QStringList &list, int *count, char sep) const
{
    QString text;
    if (!readEntry(key, &text))
        return false;
    list.clear();
    const QChar separator = QLatin1Char(sep);
    QString item;
    bool endsWithSeparator = false;
    const qsizetype size = text.size();
    for (qsizetype pos = 0; pos < size; ++pos) {
        QChar c = text.at(pos);
        endsWithSeparator = false;
        if (c == ESCAPE) {
            if (pos + 1 == size)
                break;
            c = text.at(++pos);
        } else if (c == separator) {
            list.append(item);
            item.clear();
            endsWithSeparator = true;
            continue;
        }
        item += c;
    }
    if (!text.isEmpty() && !endsWithSeparator)
        list.append(item);
    if (count)
        *count = int(list.size());
    return true;
}

QString KConfig::getConfig() const
{
    QString text;
    for (const auto &[key, value] : _entries) {
        if (!text.isEmpty())
            text += ENTRY_SEPARATOR;
        text += escaped(key, ENTRY_SEPARATOR);
        if (!text.isEmpty())
            text += ENTRY_SEPARATOR;
        text += escaped(value, ENTRY_SEPARATOR);
    }
    return text;
}

void KConfig::setConfig(const QString &text)
{
    _entries.clear();
    const qsizetype size = text.size();
    qsizetype pos = 0;
    while (pos < size) {
        QString key;
        if (!readField(text, pos, &key))
            break;
        ++pos;
        QString value;
        if (readField(text, pos, &value))
            ++pos;
        _entries[key] = value;
    }
}

} // namespace Zal::MainArea
