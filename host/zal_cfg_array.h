#pragma once
#include "gapp_export.h"
#include "zal_cfg.h"
#include "zal_exception.h"
#include <QString>
#include <vector>

namespace Zal {

// An array item of the configuration tree: a vector of values that may grow
// and shrink unless it has a fixed size. Instantiated for QString only.
//
// Its key is the full key (node key, "/", item key). It also keeps the
// values as last read from a file (empty until then) and a modification
// flag, true at creation and set by every change; its owner clears it.
// Misuse throws ProgError with the qualified function name and one of
// "Range error: Index", "Range error: Array size", "Range error: Fixed size".
template<class T>
class GAPP_EXPORT CfgArray : public CfgItem
{
public:
    // Starts with `size` copies of def; a negative size throws
    // "Range error: Array size".
    CfgArray(const ZalString &key, const QString &description, const T &def, int size,
             bool fixedSize, Flags flags = {});

    ~CfgArray() override;
    // A file with a count other than the fixed size does not load.
    bool load(QTextStream &in, int level) override;
    void save(QTextStream &out) const override;
    // Back to `size` copies of the element default.
    void reset() override;
    virtual void setArray(const std::vector<T> &values);
    virtual void setValue(int index, const T &value);
    virtual void addValue(const T &value);
    virtual void deleteValue(int index);
    virtual void clear();

    const std::vector<T> &getValues() const { return _values; }
    int size() const { return int(_values.size()); }
    // Throws "Range error: Index" for an index outside the values.
    const T &getValue(int index) const;
    const T &getDefault() const { return _default; }
    int getInitialSize() const { return _size; }
    bool isFixedSize() const { return _fixed; }
    const std::vector<T> &getLoadedValues() const { return _loaded; }
    bool isModified() const { return _modified; }
    void setModified(bool modified) { _modified = modified; }

private:
    // The node rolls a failed load back by restoring the whole state.
    friend class CfgNode;

    std::vector<T> _values;
    std::vector<T> _loaded;
    T _default;
    int _size;
    bool _modified = true;
    bool _fixed;
};

extern template class CfgArray<QString>;

template<class T>
CfgArray<T> *CfgNode::addArray(const ZalString &key, const QString &description, const T &def,
                               int size, bool fixedSize, Flags flags)
{
    auto *array = new CfgArray<T>(ZalString(getKey() + "/" + key), description, def, size,
                                  fixedSize, flags);
    insert(key, array);
    return array;
}

template<class T>
CfgArray<T> *CfgNode::getArray(const ZalString &key) const
{
    CfgItem *item = getItem(key);
    if (!item)
        return nullptr;
    auto *array = dynamic_cast<CfgArray<T> *>(item);
    if (!array) {
        throw ZAL_PROG_ERROR("Zal::CfgNode::getArray",
                             QLatin1String("Invalid Type Array '") + key.toQString()
                                 + QLatin1Char('\''));
    }
    return array;
}

} // namespace Zal
