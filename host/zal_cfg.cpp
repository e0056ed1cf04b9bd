#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_p.h"
#include "zal_exception.h"
#include <QLocale>
#include <QSaveFile>
#include <QSet>
#include <QTextStream>
#include <cmath>
#include <memory>

namespace Zal {

char const *const CFG_LEVEL_ENTRY = "EditingLevel";

namespace {

using CfgText::Token;

// The first line of every configuration document, and the version that
// this reader understands.
const QLatin1String FORMAT_NAME("ZalConfig");
const int FORMAT_VERSION = 1;

// One value line: the type word and the value words, nothing else.
bool readValueLine(QTextStream &in, const char *type, std::vector<Token> &tokens)
{
    const QString line = in.readLine(CfgText::MAX_LINE_LENGTH + 1);
    if (line.size() > CfgText::MAX_LINE_LENGTH || !CfgText::split(line, tokens))
        return false;
    return tokens.size() >= 2 && !tokens[0].quoted && tokens[0].text == QLatin1String(type);
}

bool isSingleBareValue(const std::vector<Token> &tokens)
{
    return tokens.size() == 2 && !tokens[1].quoted;
}

QString doubleText(double value)
{
    // The shortest form reads back to the same bits, but drops the sign of zero.
    if (value == 0.0 && std::signbit(value))
        return QStringLiteral("-0");
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

ZalString lastPart(const ZalString &key)
{
    const auto slash = key.rfind('/');
    return slash == ZalString::npos ? key : ZalString(key.substr(slash + 1));
}

// State of one item before a document touched it, to undo a failed load.
// Other items are restored from their own saved line; arrays also keep the
// values last read and a flag that a load would overwrite, so their whole
// state is copied.
struct Snapshot
{
    CfgItem *item = nullptr;
    QString text;
    CfgArray<QString> *array = nullptr;
    std::vector<QString> values;
    std::vector<QString> loaded;
    bool modified = false;
};

} // namespace

CfgItem::CfgItem(const ZalString &key, const QString &description, Flags flags)
    : _key(key), _description(description), _flags(flags)
{
}

CfgItem::~CfgItem() = default;

// --- CfgBool ----------------------------------------------------------------

CfgBool::CfgBool(const ZalString &key, const QString &description, bool def, Flags flags)
    : CfgItem(key, description, flags), _value(def), _default(def)
{
}

CfgBool::~CfgBool() = default;

bool CfgBool::load(QTextStream &in, int)
{
    std::vector<Token> tokens;
    if (!readValueLine(in, "bool", tokens) || !isSingleBareValue(tokens))
        return false;
    if (tokens[1].text == QLatin1String("true"))
        setValue(true);
    else if (tokens[1].text == QLatin1String("false"))
        setValue(false);
    else
        return false;
    return true;
}

void CfgBool::save(QTextStream &out) const
{
    out << (_value ? "bool true" : "bool false");
}

void CfgBool::reset()
{
    _value = _default;
}

void CfgBool::setValue(bool value)
{
    _value = value;
}

// --- CfgInt, CfgUInt --------------------------------------------------------

CfgInt::CfgInt(const ZalString &key, const QString &description, int min, int max, int def,
               int step, Flags flags)
    : CfgRange<int>(key, description, min, max, def, step, flags)
{
}

CfgInt::~CfgInt() = default;

bool CfgInt::load(QTextStream &in, int)
{
    std::vector<Token> tokens;
    if (!readValueLine(in, "int", tokens) || !isSingleBareValue(tokens))
        return false;
    bool ok = false;
    const int value = tokens[1].text.toInt(&ok, 10);
    if (!ok)
        return false;
    setValue(value);
    return true;
}

void CfgInt::save(QTextStream &out) const
{
    out << "int " << QString::number(getValue());
}

CfgUInt::CfgUInt(const ZalString &key, const QString &description, unsigned int min,
                 unsigned int max, unsigned int def, unsigned int step, Flags flags)
    : CfgRange<unsigned int>(key, description, min, max, def, step, flags)
{
}

CfgUInt::~CfgUInt() = default;

bool CfgUInt::load(QTextStream &in, int)
{
    std::vector<Token> tokens;
    if (!readValueLine(in, "uint", tokens) || !isSingleBareValue(tokens))
        return false;
    bool ok = false;
    const unsigned int value = tokens[1].text.toUInt(&ok, 10);
    if (!ok)
        return false;
    setValue(value);
    return true;
}

void CfgUInt::save(QTextStream &out) const
{
    out << "uint " << QString::number(getValue());
}

// --- CfgDbl, CfgUnit --------------------------------------------------------

CfgDbl::CfgDbl(const ZalString &key, const QString &description, double min, double max,
               double def, double step, int decimals, Flags flags)
    : CfgRange<double>(key, description, min, max, def, step, flags), _decimals(decimals)
{
}

CfgDbl::~CfgDbl() = default;

bool CfgDbl::load(QTextStream &in, int)
{
    std::vector<Token> tokens;
    if (!readValueLine(in, "dbl", tokens) || !isSingleBareValue(tokens))
        return false;
    // toDouble() refuses overflow and underflow, so what loads is what was saved.
    bool ok = false;
    const double value = tokens[1].text.toDouble(&ok);
    if (!ok)
        return false;
    setValue(value);
    return true;
}

void CfgDbl::save(QTextStream &out) const
{
    out << "dbl " << doubleText(getValue());
}

CfgUnit::CfgUnit(const ZalString &key, const QString &description, const QString &unit,
                 double min, double max, double def, double step, int decimals, Flags flags)
    : CfgDbl(key, description, min, max, def, step, decimals, flags), _unit(unit)
{
}

CfgUnit::~CfgUnit() = default;

// --- CfgList ----------------------------------------------------------------

CfgList::CfgList(const ZalString &key, const QString &description,
                 const std::vector<QString> &entries, int def, Flags flags)
    : CfgItem(key, description, flags), _entries(entries), _value(def), _default(def)
{
    if (def < 0 || def >= int(_entries.size()))
        throw ZAL_PROG_ERROR("Zal::CfgList::CfgList", QStringLiteral("Range error: Index"));
}

CfgList::~CfgList() = default;

bool CfgList::load(QTextStream &in, int)
{
    std::vector<Token> tokens;
    if (!readValueLine(in, "list", tokens) || !isSingleBareValue(tokens))
        return false;
    bool ok = false;
    const int value = tokens[1].text.toInt(&ok, 10);
    // An index has no neighbour that means nearly the same, so it is not clamped.
    if (!ok || value < 0 || value >= int(_entries.size()))
        return false;
    setValue(value);
    return true;
}

void CfgList::save(QTextStream &out) const
{
    out << "list " << QString::number(_value);
}

void CfgList::reset()
{
    _value = _default;
}

void CfgList::setValue(int index)
{
    if (index < 0 || index >= int(_entries.size()))
        throw ZAL_PROG_ERROR("Zal::CfgList::setValue", QStringLiteral("Range error: Index"));
    _value = index;
}

// --- CfgFileName ------------------------------------------------------------

CfgFileName::CfgFileName(const ZalString &key, const QString &description, const QString &def,
                         ZalFileMode_t mode, Flags flags)
    : CfgItem(key, description, flags), _value(def), _default(def), _mode(mode)
{
}

CfgFileName::~CfgFileName() = default;

bool CfgFileName::load(QTextStream &in, int)
{
    std::vector<Token> tokens;
    QString value;
    if (!readValueLine(in, "file", tokens) || tokens.size() != 2
        || !CfgText::readStringValue(tokens[1], value)) {
        return false;
    }
    setValue(value);
    return true;
}

void CfgFileName::save(QTextStream &out) const
{
    out << "file " << CfgText::stringValue(_value);
}

void CfgFileName::reset()
{
    _value = _default;
}

void CfgFileName::setValue(const QString &value)
{
    _value = value;
}

// --- CfgNode ----------------------------------------------------------------

CfgNode::CfgNode(const ZalString &key, const QString &description, Flags flags)
    : CfgItem(key, description, flags)
{
}

CfgNode::~CfgNode()
{
    for (auto &entry : _items)
        delete entry.second;
}

CfgItem *CfgNode::insert(const ZalString &key, CfgItem *item)
{
    std::unique_ptr<CfgItem> owned(item);
    const char *function = "Zal::CfgNode::addItem";
    if (!item)
        throw ZAL_PROG_ERROR(function, QStringLiteral("Null item"));
    const ZalString last = lastPart(key);
    if (last.empty() || key.front() == '/' || key.find("//") != ZalString::npos)
        throw ZAL_PROG_ERROR(function, QLatin1String("Invalid key '") + key.toQString() + QLatin1Char('\''));
    CfgNode *node = this;
    if (last.size() != key.size()) {
        const ZalString parent = key.substr(0, key.size() - last.size() - 1);
        node = getNode(parent);
        if (!node) {
            throw ZAL_PROG_ERROR(function,
                                 QLatin1String("Missing node '") + parent.toQString() + QLatin1Char('\''));
        }
    }
    if (node->_index.count(last)) {
        throw ZAL_PROG_ERROR(function,
                             QLatin1String("Duplicate key '") + key.toQString() + QLatin1Char('\''));
    }
    node->_items.emplace_back(last, item);
    node->_index.emplace(last, item);
    return owned.release();
}

CfgNode *CfgNode::addNode(const ZalString &key, const QString &description, Flags flags)
{
    return static_cast<CfgNode *>(insert(key, new CfgNode(lastPart(key), description, flags)));
}

CfgBool *CfgNode::addBool(const ZalString &key, const QString &description, bool def,
                          Flags flags)
{
    return static_cast<CfgBool *>(insert(key, new CfgBool(lastPart(key), description, def, flags)));
}

CfgInt *CfgNode::addInt(const ZalString &key, const QString &description, int min, int max,
                        int def, int step, Flags flags)
{
    return static_cast<CfgInt *>(
        insert(key, new CfgInt(lastPart(key), description, min, max, def, step, flags)));
}

CfgUInt *CfgNode::addUInt(const ZalString &key, const QString &description, unsigned int min,
                          unsigned int max, unsigned int def, unsigned int step, Flags flags)
{
    return static_cast<CfgUInt *>(
        insert(key, new CfgUInt(lastPart(key), description, min, max, def, step, flags)));
}

CfgDbl *CfgNode::addDbl(const ZalString &key, const QString &description, double min,
                        double max, double def, double step, int decimals, Flags flags)
{
    return static_cast<CfgDbl *>(insert(
        key, new CfgDbl(lastPart(key), description, min, max, def, step, decimals, flags)));
}

CfgUnit *CfgNode::addUnit(const ZalString &key, const QString &description, const QString &unit,
                          double min, double max, double def, double step, int decimals,
                          Flags flags)
{
    return static_cast<CfgUnit *>(insert(key, new CfgUnit(lastPart(key), description, unit, min,
                                                          max, def, step, decimals, flags)));
}

CfgList *CfgNode::addList(const ZalString &key, const QString &description,
                          const std::vector<QString> &entries, int def, Flags flags)
{
    return static_cast<CfgList *>(
        insert(key, new CfgList(lastPart(key), description, entries, def, flags)));
}

CfgFileName *CfgNode::addFileName(const ZalString &key, const QString &description,
                                  const QString &def, ZalFileMode_t mode, Flags flags)
{
    return static_cast<CfgFileName *>(
        insert(key, new CfgFileName(lastPart(key), description, def, mode, flags)));
}

CfgItem *CfgNode::addItem(CfgItem *item, const ZalString &key)
{
    if (!item || !key.empty())
        return insert(key, item);
    ZalString own = item->getKey();
    const ZalString prefix = getKey() + "/";
    if (own.size() > prefix.size() && own.compare(0, prefix.size(), prefix) == 0)
        own.erase(0, prefix.size());
    return insert(own, item);
}

CfgItem *CfgNode::getItem(const ZalString &key) const
{
    const CfgNode *node = this;
    ZalString::size_type start = 0;
    while (true) {
        const auto slash = key.find('/', start);
        const ZalString part = key.substr(start, slash == ZalString::npos ? ZalString::npos
                                                                          : slash - start);
        const auto it = node->_index.find(part);
        if (it == node->_index.end())
            return nullptr;
        if (slash == ZalString::npos)
            return it->second;
        node = dynamic_cast<const CfgNode *>(it->second);
        if (!node)
            return nullptr;
        start = slash + 1;
    }
}

CfgNode *CfgNode::getNode(const ZalString &key) const
{
    return dynamic_cast<CfgNode *>(getItem(key));
}

CfgBool *CfgNode::getBool(const ZalString &key) const
{
    return dynamic_cast<CfgBool *>(getItem(key));
}

CfgInt *CfgNode::getInt(const ZalString &key) const
{
    return dynamic_cast<CfgInt *>(getItem(key));
}

CfgUInt *CfgNode::getUInt(const ZalString &key) const
{
    return dynamic_cast<CfgUInt *>(getItem(key));
}

CfgDbl *CfgNode::getDbl(const ZalString &key) const
{
    return dynamic_cast<CfgDbl *>(getItem(key));
}

CfgUnit *CfgNode::getUnit(const ZalString &key) const
{
    return dynamic_cast<CfgUnit *>(getItem(key));
}

CfgList *CfgNode::getList(const ZalString &key) const
{
    return dynamic_cast<CfgList *>(getItem(key));
}

CfgFileName *CfgNode::getFileName(const ZalString &key) const
{
    return dynamic_cast<CfgFileName *>(getItem(key));
}

void CfgNode::reset()
{
    for (auto &entry : _items)
        entry.second->reset();
}

void CfgNode::save(QTextStream &out) const
{
    out << FORMAT_NAME << ' ' << FORMAT_VERSION << '\n';
    out << "# " << CfgText::commentText(getKey().toQString()) << ": "
        << CfgText::commentText(getDescription()) << '\n';
    saveLines(out, QString());
}

void CfgNode::saveLines(QTextStream &out, const QString &prefix) const
{
    for (const auto &entry : _items) {
        const QString path = prefix + entry.first.toQString();
        if (const auto *node = dynamic_cast<const CfgNode *>(entry.second)) {
            node->saveLines(out, path + QLatin1Char('/'));
            continue;
        }
        QString value;
        QTextStream valueOut(&value, QIODevice::WriteOnly);
        entry.second->save(valueOut);
        valueOut.flush();
        // An item that broke its value over lines would make the file unreadable.
        if (value.contains(QLatin1Char('\n')) || value.contains(QLatin1Char('\r'))) {
            out.setStatus(QTextStream::WriteFailed);
            return;
        }
        out << CfgText::word(path) << ' ' << value << '\n';
    }
}

bool CfgNode::load(QTextStream &in, int level)
{
    qint64 total = 0;
    auto nextLine = [&](QString &line) {
        if (in.atEnd())
            return false;
        line = in.readLine(CfgText::MAX_LINE_LENGTH + 1);
        total += line.size() + 1;
        return true;
    };
    auto tooLarge = [&](const QString &line) {
        return line.size() > CfgText::MAX_LINE_LENGTH || total > CfgText::MAX_FILE_SIZE;
    };

    QString line;
    std::vector<Token> tokens;
    if (!nextLine(line) || tooLarge(line) || !CfgText::split(line, tokens) || tokens.size() != 2
        || tokens[0].quoted || tokens[0].text != FORMAT_NAME || tokens[1].quoted) {
        return false;
    }
    bool ok = false;
    const int version = tokens[1].text.toInt(&ok, 10);
    if (!ok || version < 1 || version > FORMAT_VERSION)
        return false;

    // First the whole document is checked for its shape, so that nothing is
    // touched for a file that is damaged further down.
    struct Line
    {
        QString path;
        QString value;
    };
    std::vector<Line> lines;
    QSet<QString> paths;
    while (nextLine(line)) {
        if (tooLarge(line))
            return false;
        if (CfgText::isIgnorable(line))
            continue;
        if (!CfgText::split(line, tokens) || tokens.size() < 2 || tokens[0].text.isEmpty())
            return false;
        if (paths.contains(tokens[0].text))
            return false;
        paths.insert(tokens[0].text);
        lines.push_back({tokens[0].text, line.mid(tokens[0].end)});
    }

    std::vector<Snapshot> undo;
    auto rollBack = [&]() {
        for (auto it = undo.rbegin(); it != undo.rend(); ++it) {
            if (it->array) {
                it->array->_values = std::move(it->values);
                it->array->_loaded = std::move(it->loaded);
                it->array->_modified = it->modified;
                continue;
            }
            QTextStream restore(&it->text, QIODevice::ReadOnly);
            if (!it->item->load(restore, level))
                it->item->reset();
        }
    };
    for (Line &entry : lines) {
        CfgItem *item = nullptr;
        bool latin1 = true;
        for (const QChar c : entry.path)
            latin1 = latin1 && c.unicode() <= 0xff;
        if (latin1)
            item = getItem(ZalString(entry.path));
        if (!item)
            continue; // a key of another version of the program
        if (dynamic_cast<CfgNode *>(item)) {
            rollBack();
            return false;
        }
        Snapshot snapshot;
        snapshot.item = item;
        snapshot.array = dynamic_cast<CfgArray<QString> *>(item);
        if (snapshot.array) {
            snapshot.values = snapshot.array->_values;
            snapshot.loaded = snapshot.array->_loaded;
            snapshot.modified = snapshot.array->_modified;
        } else {
            QTextStream saveOut(&snapshot.text, QIODevice::WriteOnly);
            item->save(saveOut);
        }
        undo.push_back(std::move(snapshot));
        QTextStream valueIn(&entry.value, QIODevice::ReadOnly);
        if (!item->load(valueIn, level)) {
            rollBack();
            return false;
        }
    }
    return true;
}

bool CfgNode::load(const QString &fileName)
{
    QString text;
    if (!CfgText::readTextFile(fileName, text))
        return false;
    QTextStream in(&text, QIODevice::ReadOnly);
    return load(in, 2);
}

bool CfgNode::save(const QString &fileName) const
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream out(&file);
    out.setEncoding(QStringConverter::Utf8);
    save(out);
    out.flush();
    if (out.status() != QTextStream::Ok) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

} // namespace Zal
