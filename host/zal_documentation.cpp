#include "zal_documentation.h"

namespace Zal::GTools {

Documentation *Documentation::_base_instance = nullptr;

Documentation::Documentation(QObject *parent) : QObject(parent)
{
    // A second object is refused by the derived class; it must not take
    // the place of the first one meanwhile.
    if (!_base_instance)
        _base_instance = this;
}

Documentation::~Documentation()
{
    if (_base_instance == this)
        _base_instance = nullptr;
}

} // namespace Zal::GTools
