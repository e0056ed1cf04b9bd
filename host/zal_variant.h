#pragma once
#include "gapp_export.h"
#include "zal_geometry.h"
#include <QString>
#include <vector>

namespace Zal {

// The result of a script command: one value of a few fixed kinds, or a list
// of them. Getters of another kind than the held one answer that kind's
// empty value, so a script never fails on a wrong guess.
class GAPP_EXPORT Variant
{
public:
    // The numbers are part of the script interface and never change.
    enum Type_t {
        TYPE_BOOL = 0,
        TYPE_INT = 1,
        TYPE_UINT = 2,
        TYPE_DOUBLE = 3,
        TYPE_POINT = 4,
        TYPE_STRING = 5,
        TYPE_VECTOR = 6,
        TYPE_NAME = 7, // the name of an element of the application's data
        TYPE_LIST = 8,
        TYPE_NONE = 9
    };

    // The empty result.
    static const Variant NONE;

    Variant() = default;
    explicit Variant(bool value);
    explicit Variant(int value);
    explicit Variant(unsigned int value);
    explicit Variant(double value);
    explicit Variant(const BaPoint3d<double> &value);
    explicit Variant(const QString &value);
    explicit Variant(const char *value);
    explicit Variant(const BaVec3d<double> &value);
    explicit Variant(const std::vector<Variant> &list);
    static Variant fromName(const QString &name);

    Type_t getType() const { return _type; }
    bool isNone() const { return _type == TYPE_NONE; }

    bool getBool() const;
    int getInt() const;
    unsigned int getUInt() const;
    double getDouble() const;
    BaPoint3d<double> getPoint() const;
    // The text of a string or a name.
    QString getString() const;
    BaVec3d<double> getVector() const;
    const std::vector<Variant> &getList() const { return _list; }

    // The value as a parameter-string value: numbers as numbers, booleans as
    // "true"/"false", points, vectors and lists in square brackets, strings
    // and names as they are, NONE as "".
    QString toString() const;

    bool operator==(const Variant &o) const;
    bool operator!=(const Variant &o) const { return !(*this == o); }

private:
    Type_t _type = TYPE_NONE;
    union {
        bool b;
        int i;
        unsigned int u;
        double d;
    } _num = {false};
    double _xyz[3] = {0, 0, 0};
    int _point_id = -1;
    QString _text;
    std::vector<Variant> _list;
};

} // namespace Zal
