#pragma once
#include "gapp_export.h"
#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <map>

namespace Zal::GApp {
class ViewWidgetContainer;

// The host's factory for one of its view widgets, registered under a unique
// view widget name from construction to destruction. The host owns the
// creator; the registry deletes the remaining ones at library clean-up. The
// widget it made is remembered but not owned. GUI thread only.
class GAPP_EXPORT ViewWidgetCreator
{
public:
    ViewWidgetCreator(const QString &name, const QString &displayName, const char *iconName);
    ViewWidgetCreator(const QString &name, const QString &displayName, const QString &helpId,
                      const char *iconName);
    virtual ~ViewWidgetCreator();
    ViewWidgetCreator(const ViewWidgetCreator &) = delete;
    ViewWidgetCreator &operator=(const ViewWidgetCreator &) = delete;

    // A new widget with the given parent; never null.
    virtual QWidget *createWidget(QWidget *parent) = 0;

    QWidget *getWidget() const { return _widget; }
    bool isDeleteAllowed() const { return _delete_allowed; }
    void setDeleteAllowed(bool allowed) { _delete_allowed = allowed; }
    const QString &getDisplayName() const { return _display_name; }
    const QPixmap &getDisplayPixmap() const { return _display_pixmap; }
    const QString &getHelpId() const { return _help_id; }
    // Only stored: a widget that exists already keeps what it had.
    void setHelpId(const QString &helpId) { _help_id = helpId; }

private:
    friend class ViewWidgetContainer;
    void setWidget(QWidget *widget);

    // Guarded: a widget deleted behind the registry's back must never be
    // handed out, even before its destroyed signal has been delivered.
    QPointer<QWidget> _widget;
    bool _delete_allowed = true;
    QString _display_name;
    QPixmap _display_pixmap;
    QString _help_id;
};

// The registry of view widget creators by name, the one widget that exists
// per name, and the active view (the view widget holding the focus). Static
// members only; GUI thread only. The creators are not owned by the map; each
// leaves it in its destructor.
class GAPP_EXPORT ViewWidgetContainer
{
public:
    using CreatorMap = std::map<QString, ViewWidgetCreator *>;

    static void registerCreator(const QString &name, ViewWidgetCreator *creator);
    static void unregisterCreator(ViewWidgetCreator *creator);
    static ViewWidgetCreator *getCreator(const QString &name);
    static ViewWidgetCreator *getCreator(QWidget *widget);
    static const QString &getName(const ViewWidgetCreator *creator);
    static const QString &getName(QWidget *widget);
    // Always a new widget, named after the view widget; null for an unknown name.
    static QWidget *createWidget(QWidget *parent, const QString &name);
    static QWidget *getWidget(const QString &name);
    static const QString &getDisplayName(const QString &name);
    static const QPixmap &getDisplayPixmap(const QString &name);
    static bool isViewVisible(const QString &name);
    static void ensureViewVisible(const QString &name, bool focus);
    static void lowerWidgetInTabView(const QString &name);
    static void maximizeWidget(const QString &name);
    static void unmaximizeWidget();
    static QString getActiveView();
    static void setActiveView(const QString &name, bool onlyIfRegistered);
    static void setActiveView(const QString &name);
    static void widgetWasDestroyed(QObject *object);
    // Empties the main area and deletes the widgets outside it whose creator
    // allows it.
    static void deleteAllWidgets();
    static void deleteAllCreators();
    static CreatorMap::const_iterator getWidgetBegin() { return _views.cbegin(); }
    static CreatorMap::const_iterator getWidgetEnd() { return _views.cend(); }

private:
    static ViewWidgetCreator *creatorOrThrow(const char *function, const QString &name);

    static CreatorMap _views;
    static QString _active_view;
};

} // namespace Zal::GApp
