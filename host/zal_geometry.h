#pragma once
#include "gapp_export.h"

namespace Zal {

// A point in space. `id` numbers the point within the set it was taken from;
// -1 means it belongs to none.
template <typename T>
struct BaPoint3d
{
    T x = 0;
    T y = 0;
    T z = 0;
    int id = -1;

    BaPoint3d() = default;
    BaPoint3d(T px, T py, T pz, int pid = -1) : x(px), y(py), z(pz), id(pid) {}

    bool operator==(const BaPoint3d &o) const
    {
        return x == o.x && y == o.y && z == o.z && id == o.id;
    }
    bool operator!=(const BaPoint3d &o) const { return !(*this == o); }
};

// A direction in space, such as a surface normal.
template <typename T>
struct BaVec3d
{
    T x = 0;
    T y = 0;
    T z = 0;

    BaVec3d() = default;
    BaVec3d(T vx, T vy, T vz) : x(vx), y(vy), z(vz) {}

    bool operator==(const BaVec3d &o) const { return x == o.x && y == o.y && z == o.z; }
    bool operator!=(const BaVec3d &o) const { return !(*this == o); }
};

// Identifies one stage of a staged project; NO_STAGE when there is none.
class GAPP_EXPORT StageIdentifier
{
public:
    static const StageIdentifier NO_STAGE;

    StageIdentifier() = default;
    explicit StageIdentifier(int value) : _value(value) {}

    int getValue() const { return _value; }
    bool isNoStage() const { return _value < 0; }

    bool operator==(const StageIdentifier &o) const { return _value == o._value; }
    bool operator!=(const StageIdentifier &o) const { return _value != o._value; }

private:
    int _value = -1;
};

} // namespace Zal
