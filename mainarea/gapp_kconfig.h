#pragma once
#include "gapp_export.h"
#include <QString>
#include <QStringList>
#include <map>

class QPoint;

namespace Zal::MainArea {

// A small ordered key/value store with a one-line text form, used for the
// layout state strings of the main area. Keys are relative to the current
// group. The text form escapes "|" and backslashes, so any key or value
// survives getConfig()/setConfig(). Plain value type; no thread affinity.
class GAPP_EXPORT KConfig
{
public:
    KConfig();
    KConfig(const KConfig &other);
    KConfig &operator=(const KConfig &other);
    ~KConfig();

    // Keys given afterwards are prefixed with group + "/"; a null group
    // removes the prefix.
    void setGroup(const QString &group);

    void writeEntry(const QString &key, const QString &value);
    void writeEntry(const QString &key, const char *value);
    void writeEntry(const QString &key, int value);
    void writeEntry(const QString &key, bool value);
    void writeEntry(const QString &key, const QPoint &value);
    // Joins the items with sep, escaping sep and backslashes inside them.
    void writeEntry(const QString &key, const QStringList &list, char sep = ',');

    // Each read answers false when the key is absent and leaves the output
    // untouched then.
    bool readEntry(const QString &key, QString *value) const;
    // "true", "on" and "yes" read as 1; anything else must be a decimal
    // number: its conversion (0 on failure) is stored and the success answered.
    bool readNumEntry(const QString &key, int *value) const;
    // True exactly for "true", "yes", "on" and "1".
    bool readBoolEntry(const QString &key, bool *value) const;
    bool readPointEntry(const QString &key, QPoint *value) const;
    // Replaces the list by the items of the entry; count (if given) gets
    // their number.
    bool readListEntry(const QString &key, QStringList &list, int *count, char sep = ',') const;

    QString getConfig() const;
    void setConfig(const QString &text);

private:
    bool entryExists(const QString &key) const;
    QString fullKey(const QString &key) const { return _group + key; }

    std::map<QString, QString> _entries;
    QString _group;
};

} // namespace Zal::MainArea
