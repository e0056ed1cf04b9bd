#include "zal_cfg_array.h"
#include "zal_cfg_p.h"
#include <QTextStream>

namespace Zal {

namespace {

QString rangeIndex()
{
    return QStringLiteral("Range error: Index");
}

QString rangeFixed()
{
    return QStringLiteral("Range error: Fixed size");
}

} // namespace

template<class T>
CfgArray<T>::CfgArray(const ZalString &key, const QString &description, const T &def, int size,
                      bool fixedSize, Flags flags)
    : CfgItem(key, description, flags), _default(def), _size(size), _fixed(fixedSize)
{
    if (size < 0)
        throw ZAL_PROG_ERROR("Zal::CfgArray::CfgArray", QStringLiteral("Range error: Array size"));
    _values.assign(size_t(size), def);
}

template<class T>
CfgArray<T>::~CfgArray() = default;

template<class T>
bool CfgArray<T>::load(QTextStream &in, int)
{
    const QString line = in.readLine(CfgText::MAX_LINE_LENGTH + 1);
    std::vector<CfgText::Token> tokens;
    if (line.size() > CfgText::MAX_LINE_LENGTH || !CfgText::split(line, tokens)
        || tokens.size() < 2 || tokens[0].quoted || tokens[0].text != QLatin1String("array")
        || tokens[1].quoted) {
        return false;
    }
    bool ok = false;
    const unsigned int count = tokens[1].text.toUInt(&ok, 10);
    // The count must match the words that follow, which the line length
    // bounds; only then is it trusted for an allocation.
    if (!ok || count != tokens.size() - 2)
        return false;
    if (_fixed && count != _values.size())
        return false;
    std::vector<T> values;
    values.reserve(count);
    for (size_t i = 2; i < tokens.size(); ++i) {
        QString value;
        if (!CfgText::readStringValue(tokens[i], value))
            return false;
        values.push_back(value);
    }
    _values = values;
    _loaded = std::move(values);
    _modified = true;
    return true;
}

template<class T>
void CfgArray<T>::save(QTextStream &out) const
{
    out << "array " << QString::number(qulonglong(_values.size()));
    for (const T &value : _values)
        out << ' ' << CfgText::stringValue(value);
}

template<class T>
void CfgArray<T>::reset()
{
    _values.assign(size_t(_size), _default);
    _modified = true;
}

template<class T>
void CfgArray<T>::setArray(const std::vector<T> &values)
{
    if (_fixed && values.size() != _values.size())
        throw ZAL_PROG_ERROR("Zal::CfgArray::setArray", QStringLiteral("Range error: Array size"));
    _values = values;
    _modified = true;
}

template<class T>
void CfgArray<T>::setValue(int index, const T &value)
{
    if (index < 0 || index >= size())
        throw ZAL_PROG_ERROR("Zal::CfgArray::setValue", rangeIndex());
    _values[size_t(index)] = value;
    _modified = true;
}

template<class T>
void CfgArray<T>::addValue(const T &value)
{
    if (_fixed)
        throw ZAL_PROG_ERROR("Zal::CfgArray::addValue", rangeFixed());
    _values.push_back(value);
    _modified = true;
}

template<class T>
void CfgArray<T>::deleteValue(int index)
{
    if (_fixed)
        throw ZAL_PROG_ERROR("Zal::CfgArray::deleteValue", rangeFixed());
    if (index < 0 || index >= size())
        throw ZAL_PROG_ERROR("Zal::CfgArray::deleteValue", rangeIndex());
    _values.erase(_values.begin() + index);
    _modified = true;
}

template<class T>
void CfgArray<T>::clear()
{
    if (_fixed)
        throw ZAL_PROG_ERROR("Zal::CfgArray::clear", rangeFixed());
    _values.clear();
    _modified = true;
}

template<class T>
const T &CfgArray<T>::getValue(int index) const
{
    if (index < 0 || index >= size())
        throw ZAL_PROG_ERROR("Zal::CfgArray::getValue", rangeIndex());
    return _values[size_t(index)];
}

template class CfgArray<QString>;

} // namespace Zal
