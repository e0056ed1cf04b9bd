#include "gapp_view_widget.h"
#include "gapp_documentation.h"
#include "gapp_event_filter.h"
#include "gapp_main_area.h"
#include "gapp_main_window.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_icon.h"

namespace Zal::GApp {

ViewWidgetContainer::CreatorMap ViewWidgetContainer::_views;
QString ViewWidgetContainer::_active_view;

// ---------------------------------------------------------------------------
// ViewWidgetCreator

ViewWidgetCreator::ViewWidgetCreator(const QString &name, const QString &displayName,
                                     const char *iconName)
    : _display_name(displayName)
{
    ViewWidgetContainer::registerCreator(name, this);
    if (iconName)
        _display_pixmap = GIcon::Cache::getSmallIcon(iconName);
}

ViewWidgetCreator::ViewWidgetCreator(const QString &name, const QString &displayName,
                                     const QString &helpId, const char *iconName)
    : _display_name(displayName), _help_id(helpId)
{
    ViewWidgetContainer::registerCreator(name, this);
    if (iconName)
        _display_pixmap = GIcon::Cache::getSmallIcon(iconName);
}

ViewWidgetCreator::~ViewWidgetCreator()
{
    try {
        ViewWidgetContainer::unregisterCreator(this);
    } catch (const ProgError &e) {
        // A destructor must not throw; a creator that is not registered has
        // nothing to undo.
        e.report();
    }
}

void ViewWidgetCreator::setWidget(QWidget *widget)
{
    _widget = widget;
    if (widget && !_help_id.isEmpty())
        Documentation::registerId(widget, _help_id);
}

// ---------------------------------------------------------------------------
// ViewWidgetContainer

ViewWidgetCreator *ViewWidgetContainer::creatorOrThrow(const char *function, const QString &name)
{
    const auto it = _views.find(name);
    if (it == _views.end())
        throw ZAL_PROG_ERROR(function, QStringLiteral("view name '%1' does not exist").arg(name));
    return it->second;
}

void ViewWidgetContainer::registerCreator(const QString &name, ViewWidgetCreator *creator)
{
    if (_views.count(name))
        throw ZAL_PROG_ERROR("Zal::GApp::ViewWidgetContainer::registerCreator",
                             QStringLiteral("view name '%1' does already exist").arg(name));
    _views.emplace(name, creator);
}

void ViewWidgetContainer::unregisterCreator(ViewWidgetCreator *creator)
{
    for (auto it = _views.begin(); it != _views.end(); ++it) {
        if (it->second == creator) {
            _views.erase(it);
            return;
        }
    }
    throw ZAL_PROG_ERROR("Zal::GApp::ViewWidgetContainer::unregisterCreator",
                         QStringLiteral("the view widget creator ist not registered."));
}

ViewWidgetCreator *ViewWidgetContainer::getCreator(const QString &name)
{
    const auto it = _views.find(name);
    return it == _views.end() ? nullptr : it->second;
}

ViewWidgetCreator *ViewWidgetContainer::getCreator(QWidget *widget)
{
    // A null widget would match every creator that has none.
    if (!widget)
        return nullptr;
    for (const auto &entry : _views) {
        if (entry.second->getWidget() == widget)
            return entry.second;
    }
    return nullptr;
}

const QString &ViewWidgetContainer::getName(const ViewWidgetCreator *creator)
{
    for (const auto &entry : _views) {
        if (entry.second == creator)
            return entry.first;
    }
    throw ZAL_PROG_ERROR("Zal::GApp::ViewWidgetContainer::getName",
                         QStringLiteral("view creator does not exist"));
}

const QString &ViewWidgetContainer::getName(QWidget *widget)
{
    if (widget) {
        for (const auto &entry : _views) {
            if (entry.second->getWidget() == widget)
                return entry.first;
        }
    }
    throw ZAL_PROG_ERROR("Zal::GApp::ViewWidgetContainer::getName",
                         QStringLiteral("view widget does not exist"));
}

QWidget *ViewWidgetContainer::createWidget(QWidget *parent, const QString &name)
{
    ViewWidgetCreator *creator = getCreator(name);
    if (!creator)
        return nullptr;
    if (MainWindow::debug_views)
        Debug::printTrace(QStringLiteral("Creating view widget '%1'").arg(name));
    QWidget *widget = creator->createWidget(parent);
    if (!widget)
        return nullptr;
    widget->setObjectName(name);
    if (MainWindow::debug_views)
        Debug::printTrace(QStringLiteral("Creating view widget '%1' ok").arg(name));
    creator->setWidget(widget);
    // The creator's guard forgets a deleted widget in any case; the event
    // filter's slot also tells the registry while the main window exists.
    if (EventFilter *filter = EventFilter::instance())
        QObject::connect(widget, &QObject::destroyed, filter, &EventFilter::viewWidgetDestroyed);
    return widget;
}

QWidget *ViewWidgetContainer::getWidget(const QString &name)
{
    return creatorOrThrow("Zal::GApp::ViewWidgetContainer::getWidget", name)->getWidget();
}

const QString &ViewWidgetContainer::getDisplayName(const QString &name)
{
    return creatorOrThrow("Zal::GApp::ViewWidgetContainer::getDisplayName", name)->getDisplayName();
}

const QPixmap &ViewWidgetContainer::getDisplayPixmap(const QString &name)
{
    return creatorOrThrow("Zal::GApp::ViewWidgetContainer::getDisplayPixmap", name)->getDisplayPixmap();
}

bool ViewWidgetContainer::isViewVisible(const QString &name)
{
    const QWidget *widget = creatorOrThrow("Zal::GApp::ViewWidgetContainer::isViewVisible", name)->getWidget();
    return widget && widget->isVisible();
}

void ViewWidgetContainer::ensureViewVisible(const QString &name, bool focus)
{
    QWidget *widget = creatorOrThrow("Zal::GApp::ViewWidgetContainer::ensureViewVisible", name)->getWidget();
    if (!widget)
        return;
    if (MainWindow::main_area)
        MainWindow::main_area->raiseWidget(widget);
    if (!focus)
        return;
    for (QWidget *w = widget->focusWidget(); w; w = w->parentWidget()) {
        if (w == widget)
            return; // the focus is inside already
    }
    widget->setFocus();
}

void ViewWidgetContainer::lowerWidgetInTabView(const QString &name)
{
    QWidget *widget = creatorOrThrow("Zal::GApp::ViewWidgetContainer::lowerWidgetInTabView", name)->getWidget();
    if (widget && MainWindow::main_area)
        MainWindow::main_area->lowerWidget(widget);
}

void ViewWidgetContainer::maximizeWidget(const QString &name)
{
    QWidget *widget = creatorOrThrow("Zal::GApp::ViewWidgetContainer::maximizeWidget", name)->getWidget();
    if (!MainWindow::main_area)
        return;
    if (QWidget *page = MainWindow::main_area->widgetFor(widget))
        MainWindow::main_area->maximizeWidget(page);
}

void ViewWidgetContainer::unmaximizeWidget()
{
    if (!MainWindow::main_area)
        return;
    for (const auto &entry : _views) {
        if (entry.second->getWidget()) {
            MainWindow::main_area->unmaximizeWidget();
            return;
        }
    }
}

QString ViewWidgetContainer::getActiveView()
{
    return _active_view;
}

void ViewWidgetContainer::setActiveView(const QString &name, bool onlyIfRegistered)
{
    const ViewWidgetCreator *creator = getCreator(name);
    if (!creator && onlyIfRegistered)
        return;
    if (creator && !creator->getWidget())
        return;
    const QString old = _active_view;
    _active_view = creator ? name : QString();
    if (old != _active_view && MainWindow::main_win && !MainWindow::main_win->isDrawingLocked())
        MainWindow::main_win->updateSensitivity();
}

void ViewWidgetContainer::setActiveView(const QString &name)
{
    setActiveView(name, false);
}

void ViewWidgetContainer::widgetWasDestroyed(QObject *object)
{
    if (!object)
        return;
    for (const auto &entry : _views) {
        // The guard may already be null when the widget is being destroyed.
        if (static_cast<QObject *>(entry.second->getWidget()) == object)
            entry.second->setWidget(nullptr);
    }
}

void ViewWidgetContainer::deleteAllWidgets()
{
    if (MainWindow::main_area)
        MainWindow::main_area->deleteWidgets();
    // Deleting one widget may take others with it (a container and its inner
    // widgets); the guards see to that, and the map itself does not change.
    for (const auto &entry : _views) {
        ViewWidgetCreator *creator = entry.second;
        if (creator->isDeleteAllowed() && creator->getWidget())
            delete creator->getWidget();
    }
    _active_view.clear();
}

void ViewWidgetContainer::deleteAllCreators()
{
    // Each destructor takes its creator out of the map.
    while (!_views.empty())
        delete _views.begin()->second;
}

} // namespace Zal::GApp
