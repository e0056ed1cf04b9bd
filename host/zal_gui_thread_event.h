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

// Makes the GUI-thread events that a host service posts on a worker's
// behalf (the progress display, for one): the service knows when to post,
// the creator's owner knows what the event does.
class GAPP_EXPORT GUIThreadEventCreator
{
public:
    virtual ~GUIThreadEventCreator();
    // A new event; the caller posts it and Qt deletes it after delivery.
    virtual GUIThreadEvent *createEvent() = 0;
};

} // namespace Zal
