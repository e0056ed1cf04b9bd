#pragma once
#include <QObject>

namespace Zal::GApp::Internal {

// Receives the destroyed signal of every view widget the registry creates,
// so that a widget deleted by anybody leaves its creator without a widget.
// One instance for the process; it outlives the main window on purpose,
// since view widgets may die after it.
class ViewWidgetTracker : public QObject
{
    Q_OBJECT

public:
    static ViewWidgetTracker *instance();

public slots:
    void viewWidgetDestroyed(QObject *object);
};

} // namespace Zal::GApp::Internal
