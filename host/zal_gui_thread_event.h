#pragma once
#include "gapp_export.h"
#include <QEvent>

namespace Zal {

// An event that carries work for the GUI thread: a worker posts it to the
// main window, whose event handler calls execute() in the GUI thread. The
// receiver deletes the event after delivery, as for every posted event.
class GAPP_EXPORT GUIThreadEvent : public QEvent
{
public:
    GUIThreadEvent();
    ~GUIThreadEvent() override;

    virtual void execute() = 0;

    // The event type of every GUI-thread event, registered once per process.
    static QEvent::Type eventType();
};

} // namespace Zal
