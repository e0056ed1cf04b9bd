#pragma once
#include "gapp_export.h"
#include <QString>

class QObject;

namespace Zal {
class GUIThreadEventCreator;

// The process-wide progress of the running computation, and its abort flag.
// A worker thread sets the values; while GUI events are allowed, each change
// posts one event (made by the registered creator) to the event receiver,
// which reads the values in the GUI thread. Events do not pile up: while one
// is waiting to be handled, further changes only update the values it will
// read. Every member may be called from any thread.
//
// The bar position is min + (max - min) * progress / 100: min and max mark
// the part of the bar the current step covers (0 and 100 after reset), the
// progress is the step's percentage. A min or max of -1 leaves the bar alone
// and shows only the text.
class GAPP_EXPORT Progress
{
public:
    // Values back to 0 % of 0..100 with no text; flags are left alone.
    static void reset();

    static void setAbortFlag(bool abort);
    static bool getAbortFlag();
    static void setCreateGUIEvents(bool create);
    static bool isCreateGUIEventAllowed();

    // Worker side. Percentages above 100 count as 100.
    static void setProgressRange(int min, int max);
    static void setProgress(unsigned int progress);
    static void setProgress(unsigned int progress, const QString &text);
    static void setProgressString(const QString &text);

    static unsigned int getProgress();
    static int getProgressMin();
    static int getProgressMax();
    static QString getProgressString();

    // The creator is owned from now on (an earlier one is deleted); null
    // stops the events.
    static void registerGUIEventCreator(GUIThreadEventCreator *creator);
    // The object in the GUI thread that receives the events; null stops them.
    static void setEventReceiver(QObject *receiver);
    // Called by the event when it is handled (before it reads the values) or
    // destroyed, so that the next change posts a new one.
    static void guiEventTaken();
};

} // namespace Zal
