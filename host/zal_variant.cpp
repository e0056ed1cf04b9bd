#include "zal_variant.h"
#include <QLocale>
#include <QStringList>

namespace Zal {

const Variant Variant::NONE;

namespace {
QString number(double v)
{
    return QString::number(v, 'g', QLocale::FloatingPointShortest);
}
} // namespace

Variant::Variant(bool value) : _type(TYPE_BOOL)
{
    _num.b = value;
}

Variant::Variant(int value) : _type(TYPE_INT)
{
    _num.i = value;
}

Variant::Variant(unsigned int value) : _type(TYPE_UINT)
{
    _num.u = value;
}

Variant::Variant(double value) : _type(TYPE_DOUBLE)
{
    _num.d = value;
}

Variant::Variant(const BaPoint3d<double> &value)
    : _type(TYPE_POINT), _xyz{value.x, value.y, value.z}, _point_id(value.id)
{
}

Variant::Variant(const QString &value) : _type(TYPE_STRING), _text(value)
{
}

Variant::Variant(const char *value)
    : _type(TYPE_STRING), _text(QString::fromUtf8(value ? value : ""))
{
}

Variant::Variant(const BaVec3d<double> &value) : _type(TYPE_VECTOR), _xyz{value.x, value.y, value.z}
{
}

Variant::Variant(const std::vector<Variant> &list) : _type(TYPE_LIST), _list(list)
{
}

Variant Variant::fromName(const QString &name)
{
    Variant v(name);
    v._type = TYPE_NAME;
    return v;
}

bool Variant::getBool() const
{
    return _type == TYPE_BOOL && _num.b;
}

int Variant::getInt() const
{
    return _type == TYPE_INT ? _num.i : 0;
}

unsigned int Variant::getUInt() const
{
    return _type == TYPE_UINT ? _num.u : 0u;
}

double Variant::getDouble() const
{
    return _type == TYPE_DOUBLE ? _num.d : 0.0;
}

BaPoint3d<double> Variant::getPoint() const
{
    if (_type != TYPE_POINT)
        return BaPoint3d<double>();
    return BaPoint3d<double>(_xyz[0], _xyz[1], _xyz[2], _point_id);
}

QString Variant::getString() const
{
    return _type == TYPE_STRING || _type == TYPE_NAME ? _text : QString();
}

BaVec3d<double> Variant::getVector() const
{
    if (_type != TYPE_VECTOR)
        return BaVec3d<double>();
    return BaVec3d<double>(_xyz[0], _xyz[1], _xyz[2]);
}

QString Variant::toString() const
{
    switch (_type) {
    case TYPE_BOOL: return _num.b ? QStringLiteral("true") : QStringLiteral("false");
    case TYPE_INT: return QString::number(_num.i);
    case TYPE_UINT: return QString::number(_num.u);
    case TYPE_DOUBLE: return number(_num.d);
    case TYPE_POINT:
    case TYPE_VECTOR:
        return QStringLiteral("[%1, %2, %3]")
            .arg(number(_xyz[0]), number(_xyz[1]), number(_xyz[2]));
    case TYPE_STRING:
    case TYPE_NAME: return _text;
    case TYPE_LIST: {
        QStringList parts;
        for (const Variant &v : _list)
            parts.append(v.toString());
        return QLatin1Char('[') + parts.join(QLatin1String(", ")) + QLatin1Char(']');
    }
    case TYPE_NONE: break;
    }
    return QString();
}

bool Variant::operator==(const Variant &o) const
{
    if (_type != o._type)
        return false;
    switch (_type) {
    case TYPE_BOOL: return _num.b == o._num.b;
    case TYPE_INT: return _num.i == o._num.i;
    case TYPE_UINT: return _num.u == o._num.u;
    case TYPE_DOUBLE: return _num.d == o._num.d;
    case TYPE_POINT: return getPoint() == o.getPoint();
    case TYPE_VECTOR: return getVector() == o.getVector();
    case TYPE_STRING:
    case TYPE_NAME: return _text == o._text;
    case TYPE_LIST: return _list == o._list;
    case TYPE_NONE: break;
    }
    return true;
}

} // namespace Zal
