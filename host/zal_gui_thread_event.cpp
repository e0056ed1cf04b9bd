#include "zal_gui_thread_event.h"

namespace Zal {

GUIThreadEvent::GUIThreadEvent() : QEvent(eventType())
{
}

GUIThreadEvent::~GUIThreadEvent() = default;

GUIThreadEventCreator::~GUIThreadEventCreator() = default;

QEvent::Type GUIThreadEvent::eventType()
{
    static const QEvent::Type type = QEvent::Type(QEvent::registerEventType());
    return type;
}

} // namespace Zal
