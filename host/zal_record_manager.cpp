#include "zal_record_manager.h"

namespace Zal {

RecordManagerBase *RecordManagerBase::_manager_base = nullptr;
unsigned int RecordManagerBase::_next_record_id = 0;

RecordManagerBase::RecordManagerBase()
{
    _manager_base = this;
}

RecordManagerBase::~RecordManagerBase()
{
    if (_manager_base == this)
        _manager_base = nullptr;
}

} // namespace Zal
