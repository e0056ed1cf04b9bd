#pragma once
#include "gapp_export.h"
#include "zal_string.h"
#include <QFlags>
#include <QString>
#include <map>
#include <utility>
#include <vector>

class QTextStream;

namespace Zal {

template<class T>
class CfgArray;

// Key of the editing-level item that the library adds to its node.
GAPP_EXPORT extern char const *const CFG_LEVEL_ENTRY;

// What a file-name item names; a hint for the editor that offers a chooser.
// The tree itself never checks the path.
enum ZalFileMode_t {
    FM_ANY = 0,           // any text, not necessarily a path
    FM_SAVE_FILE = 1,     // a file that is written (it may not exist yet)
    FM_OPEN_FILE = 2,     // an existing file that is read
    FM_PROGRAM = 3,       // an existing program that is run
    FM_NEW_DIRECTORY = 4, // a directory that is created when missing
    FM_DIRECTORY = 5      // an existing directory
};

// Base of every configuration item: a key relative to the owning node, a
// user-visible description and flags for the editor. An item is owned by
// the node it was added to. GUI thread only, like the whole tree.
//
// load() reads one line written by save(): a type word and the value. It
// answers false, leaving the item unchanged, unless the whole line is a valid
// value of this item's type. `level` is the configuration level of the file
// (0 system, 1 shared, 2 user); the items of the library accept every level.
class GAPP_EXPORT CfgItem
{
public:
    // Hints for the host's preferences editor; the tree loads and saves
    // every item alike.
    enum Flag {
        NoFlags = 0x0,
        Expert = 0x1, // only offered at editing level 1
        Hidden = 0x2, // kept by the program, never offered for editing
        Risky = 0x4   // may keep the program from starting; reset in safe mode
    };
    Q_DECLARE_FLAGS(Flags, Flag)

    CfgItem(const ZalString &key, const QString &description, Flags flags);
    CfgItem(const CfgItem &) = delete;
    CfgItem &operator=(const CfgItem &) = delete;

    virtual ~CfgItem();
    virtual bool load(QTextStream &in, int level) = 0;
    virtual void save(QTextStream &out) const = 0;
    virtual void reset() = 0;

    const ZalString &getKey() const { return _key; }
    const QString &getDescription() const { return _description; }
    Flags getFlags() const { return _flags; }

private:
    ZalString _key;
    QString _description;
    Flags _flags;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CfgItem::Flags)

class GAPP_EXPORT CfgBool : public CfgItem
{
public:
    CfgBool(const ZalString &key, const QString &description, bool def, Flags flags = {});
    ~CfgBool() override;
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
    void reset() override;
    virtual void setValue(bool value);

    bool getValue() const { return _value; }
    bool getDefault() const { return _default; }

private:
    bool _value;
    bool _default;
};

// Common part of the numeric items: a value kept inside [min, max]. Values
// outside the range, from a setter or from a file, are clamped (NaN becomes
// the minimum); min must not exceed max.
template<class T>
class GAPP_EXPORT CfgRange : public CfgItem
{
public:
    CfgRange(const ZalString &key, const QString &description, T min, T max, T def, T step,
             Flags flags)
        : CfgItem(key, description, flags), _min(min), _max(max), _step(step)
    {
        _default = clamp(def);
        _value = _default;
    }
    void reset() override { _value = _default; }
    virtual void setValue(T value) { _value = clamp(value); }

    T getValue() const { return _value; }
    T getDefault() const { return _default; }
    T getMin() const { return _min; }
    T getMax() const { return _max; }
    T getStep() const { return _step; }

protected:
    T clamp(T value) const
    {
        // Written with negated comparisons so that NaN ends at the minimum.
        if (!(value >= _min))
            return _min;
        if (value > _max)
            return _max;
        return value;
    }

private:
    T _value;
    T _default;
    T _min;
    T _max;
    T _step;
};

class GAPP_EXPORT CfgInt : public CfgRange<int>
{
public:
    CfgInt(const ZalString &key, const QString &description, int min, int max, int def,
           int step, Flags flags = {});
    ~CfgInt() override;
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
};

class GAPP_EXPORT CfgUInt : public CfgRange<unsigned int>
{
public:
    CfgUInt(const ZalString &key, const QString &description, unsigned int min,
            unsigned int max, unsigned int def, unsigned int step, Flags flags = {});
    ~CfgUInt() override;
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
};

// A double; the file keeps it bit for bit (NaN only as some quiet NaN, which
// the range then turns into the minimum).
class GAPP_EXPORT CfgDbl : public CfgRange<double>
{
public:
    CfgDbl(const ZalString &key, const QString &description, double min, double max,
           double def, double step, int decimals, Flags flags = {});
    ~CfgDbl() override;
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;

    int getDecimals() const { return _decimals; }

private:
    int _decimals;
};

// A double shown with a unit; stored in the file like any double.
class GAPP_EXPORT CfgUnit : public CfgDbl
{
public:
    CfgUnit(const ZalString &key, const QString &description, const QString &unit, double min,
            double max, double def, double step, int decimals, Flags flags = {});
    ~CfgUnit() override;

    const QString &getUnit() const { return _unit; }

private:
    QString _unit;
};

// A choice among entries, kept as the index of the chosen entry.
class GAPP_EXPORT CfgList : public CfgItem
{
public:
    // Throws ProgError "Range error: Index" when def is not an entry's index.
    CfgList(const ZalString &key, const QString &description,
            const std::vector<QString> &entries, int def, Flags flags = {});
    ~CfgList() override;
    // A file whose index is not an entry's index does not load.
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
    void reset() override;
    // Throws ProgError "Range error: Index" for an index outside the entries.
    virtual void setValue(int index);

    int getValue() const { return _value; }
    int getDefault() const { return _default; }
    const std::vector<QString> &getEntries() const { return _entries; }

private:
    std::vector<QString> _entries;
    int _value;
    int _default;
};

class GAPP_EXPORT CfgFileName : public CfgItem
{
public:
    CfgFileName(const ZalString &key, const QString &description, const QString &def,
                ZalFileMode_t mode, Flags flags = {});
    ~CfgFileName() override;
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
    void reset() override;
    virtual void setValue(const QString &value);

    const QString &getValue() const { return _value; }
    const QString &getDefault() const { return _default; }
    ZalFileMode_t getMode() const { return _mode; }

private:
    QString _value;
    QString _default;
    ZalFileMode_t _mode;
};

// A node of the configuration tree: owns its items and child nodes, in the
// order they were added. A key with "/" addresses an item inside a child
// node ("a/b" is item b of child node a); the child must exist already.
//
// load() and save() of a node read and write a whole configuration document
// (see docs/config-format.md). A document that is damaged in any way, or
// that holds a value of another type than the item of its key, does not
// load: the node answers false and keeps the values it had. Keys the node
// does not know are ignored; items the document does not mention keep their
// values.
//
// add*() throw ProgError (function "Zal::CfgNode::addItem") for an empty key
// or key part, a missing child node or a key that exists already.
class GAPP_EXPORT CfgNode : public CfgItem
{
public:
    CfgNode(const ZalString &key, const QString &description, Flags flags = {});
    ~CfgNode() override;
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
    void reset() override;

    CfgNode *addNode(const ZalString &key, const QString &description, Flags flags = {});
    CfgBool *addBool(const ZalString &key, const QString &description, bool def,
                     Flags flags = {});
    CfgInt *addInt(const ZalString &key, const QString &description, int min, int max, int def,
                   int step, Flags flags = {});
    CfgUInt *addUInt(const ZalString &key, const QString &description, unsigned int min,
                     unsigned int max, unsigned int def, unsigned int step, Flags flags = {});
    CfgDbl *addDbl(const ZalString &key, const QString &description, double min, double max,
                   double def, double step, int decimals, Flags flags = {});
    CfgUnit *addUnit(const ZalString &key, const QString &description, const QString &unit,
                     double min, double max, double def, double step, int decimals,
                     Flags flags = {});
    CfgList *addList(const ZalString &key, const QString &description,
                     const std::vector<QString> &entries, int def, Flags flags = {});
    CfgFileName *addFileName(const ZalString &key, const QString &description,
                             const QString &def, ZalFileMode_t mode, Flags flags = {});
    // Adds an item made by the caller, taking ownership (also when it
    // throws). It goes under its own key, less a leading "<node key>/" (the
    // full key of an array), unless `key` says otherwise.
    CfgItem *addItem(CfgItem *item, const ZalString &key = ZalString());
    // A string array whose own key is the full key: this node's key, "/"
    // and `key`. Needs zal_cfg_array.h.
    template<class T>
    CfgArray<T> *addArray(const ZalString &key, const QString &description, const T &def,
                          int size, bool fixedSize, Flags flags = {});

    // Null for a missing key or an item of another type. getDbl() also finds
    // unit items, which are doubles.
    CfgItem *getItem(const ZalString &key) const;
    CfgNode *getNode(const ZalString &key) const;
    CfgBool *getBool(const ZalString &key) const;
    CfgInt *getInt(const ZalString &key) const;
    CfgUInt *getUInt(const ZalString &key) const;
    CfgDbl *getDbl(const ZalString &key) const;
    CfgUnit *getUnit(const ZalString &key) const;
    CfgList *getList(const ZalString &key) const;
    CfgFileName *getFileName(const ZalString &key) const;
    // Null for a missing key; throws ProgError "Invalid Type Array '<key>'"
    // when the key names an item of another type. Needs zal_cfg_array.h.
    template<class T>
    CfgArray<T> *getArray(const ZalString &key) const;

    // The direct children in the order they were added, with their keys.
    const std::vector<std::pair<ZalString, CfgItem *>> &getItems() const { return _items; }

    // Whole-file operations: false on any failure. save() writes through a
    // temporary file, so a failed save leaves an existing file untouched.
    bool load(const QString &fileName);
    bool save(const QString &fileName) const;

private:
    CfgItem *insert(const ZalString &key, CfgItem *item);
    void saveLines(QTextStream &out, const QString &prefix) const;

    std::vector<std::pair<ZalString, CfgItem *>> _items; // owned, in insertion order
    std::map<ZalString, CfgItem *> _index;               // the same items by key
};

} // namespace Zal
