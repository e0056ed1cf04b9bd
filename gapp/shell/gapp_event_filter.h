#pragma once
#include "gapp_export.h"
#include <QObject>

namespace Zal {
namespace GApp {

// The application-wide event filter. The main window creates one in its
// constructor and deletes it in its destructor; while it exists every event
// of the application passes MainWindow's decision first (GUI lock, Escape,
// F1, remote keyboard, shortcut keys, event traces). Removes itself from the
// application when destroyed. GUI thread only.
class GAPP_EXPORT EventFilter : public QObject
{
    Q_OBJECT

public:
    explicit EventFilter(QObject *parent);
    ~EventFilter() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    static EventFilter *instance() { return _instance; }
    // The name an event type has in the event traces; "Unknown" for others.
    static const char *getEventTypeName(int type);

public slots:
    void viewWidgetDestroyed(QObject *obj);
    void removeStatusMessage();

private:
    static EventFilter *_instance;
};

} // namespace GApp
} // namespace Zal
