#pragma once
#include "gapp_export.h"

namespace Zal {

// The host's undo record manager as command execution sees it. The manager
// that exists registers itself in its constructor as `_manager_base`.
class GAPP_EXPORT RecordManagerBase
{
public:
    RecordManagerBase();
    virtual ~RecordManagerBase();

    // True while the manager is in the middle of recording or replaying;
    // undo checks run only when it is idle.
    virtual bool isBusy() const = 0;
    // Forgets every recorded undo step.
    virtual void clearHistory() = 0;
    virtual bool isUndoRecordingOn() const = 0;
    virtual void undo() = 0;
    virtual void redo() = 0;

    static RecordManagerBase *_manager_base;
    // The identifier the next record will get; records count up from 0.
    static unsigned int _next_record_id;
};

} // namespace Zal
