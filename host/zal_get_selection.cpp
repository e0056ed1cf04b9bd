#include "zal_get_selection.h"

namespace Zal {

GetSelectionInterface *GetSelectionInterface::_instance = nullptr;

GetSelectionInterface::GetSelectionInterface()
{
    _instance = this;
}

GetSelectionInterface::~GetSelectionInterface()
{
    if (_instance == this)
        _instance = nullptr;
}

GetSelectionInterface *GetSelectionInterface::getInterface()
{
    return _instance;
}

} // namespace Zal
