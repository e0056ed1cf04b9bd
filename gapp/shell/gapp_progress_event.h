#pragma once
#include "gapp_export.h"
#include "zal_gui_thread_event.h"

namespace Zal {
namespace GApp {

// Posted by the host's Progress when a worker changes its progress; in the
// GUI thread it shows the newest values in the main window's status line and
// progress bar, unless the computation was aborted or the display stopped.
class GAPP_EXPORT ProgressEvent : public GUIThreadEvent
{
public:
    ProgressEvent();
    ~ProgressEvent() override;
    void execute() override;
};

// The main window registers one with Progress at construction.
class GAPP_EXPORT ProgressEventCreator : public GUIThreadEventCreator
{
public:
    GUIThreadEvent *createEvent() override;
};

} // namespace GApp
} // namespace Zal
