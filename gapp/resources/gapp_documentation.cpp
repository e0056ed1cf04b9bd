#include "gapp_documentation.h"
#include "zal_exception.h"
#include <QMenu>
#include <QWidget>

namespace Zal::GApp {

Documentation *Documentation::_instance = nullptr;
std::map<const QWidget *, QString> Documentation::_ids;
std::map<const QMenu *, std::map<QAction *, QString>> Documentation::_ids_for_menus;

namespace {

void requireInstance(const char *function, const Documentation *instance)
{
    if (!instance)
        throw ZAL_PROG_ERROR(function, QStringLiteral("Documentation singleton not yet initialized"));
}

} // namespace

Documentation::Documentation()
{
    if (_instance)
        throw ZAL_PROG_ERROR("Zal::GApp::Documentation::Documentation",
                             QStringLiteral("Singleton, may be just created once"));
    _instance = this;
}

Documentation::~Documentation()
{
    if (_instance != this)
        return;
    _instance = nullptr;
    // The bindings outlive the singleton, and its slots go with it: a widget
    // or menu destroyed later must still take its binding along, or a new
    // object at the same address would inherit it.
    for (const auto &entry : _ids)
        QObject::connect(entry.first, &QObject::destroyed, &Documentation::forgetWidget);
    for (const auto &entry : _ids_for_menus)
        QObject::connect(entry.first, &QObject::destroyed, &Documentation::forgetMenu);
}

void Documentation::registerIdInstance(const QWidget *widget, const QString &id)
{
    registerId(widget, id);
}

void Documentation::initialize()
{
    new Documentation;
}

void Documentation::deinitialize()
{
    if (!_instance)
        throw ZAL_PROG_ERROR("Zal::GApp::Documentation::deinitialize",
                             QStringLiteral("Documentation not initialized"));
    delete _instance;
}

void Documentation::registerId(const QWidget *widget, const QString &id)
{
    requireInstance("Zal::GApp::Documentation::registerId", _instance);
    if (!widget)
        return;
    // Once per widget: a container that switches pages often binds again and again.
    connect(widget, &QObject::destroyed, _instance, &Documentation::slotDestroyed, Qt::UniqueConnection);
    _ids[widget] = id;
}

void Documentation::unregisterId(const QWidget *widget)
{
    _ids.erase(widget);
}

QString Documentation::getId(const QWidget *widget)
{
    const auto it = _ids.find(widget);
    return it == _ids.end() ? QString() : it->second;
}

void Documentation::registerMenuId(const QMenu *menu, QAction *action, const QString &id)
{
    requireInstance("Zal::GApp::Documentation::registerMenuId", _instance);
    if (!menu)
        return;
    connect(menu, &QObject::destroyed, _instance, &Documentation::slotMenuDestroyed, Qt::UniqueConnection);
    _ids_for_menus[menu][action] = id;
}

void Documentation::unregisterMenuId(const QMenu *menu)
{
    _ids_for_menus.erase(menu);
}

QString Documentation::getMenuId(const QMenu *menu, QAction *action)
{
    const auto entries = _ids_for_menus.find(menu);
    if (entries == _ids_for_menus.end())
        return QString();
    const auto it = entries->second.find(action);
    return it == entries->second.end() ? QString() : it->second;
}

void Documentation::slotDestroyed(QObject *object)
{
    forgetWidget(object);
}

void Documentation::slotMenuDestroyed(QObject *object)
{
    forgetMenu(object);
}

void Documentation::forgetWidget(QObject *object)
{
    // By now only the QObject part is left, so the key is found by address
    // rather than by a cast down to the widget.
    for (const auto &entry : _ids) {
        const QObject *key = entry.first;
        if (key == object) {
            unregisterId(entry.first);
            return;
        }
    }
}

void Documentation::forgetMenu(QObject *object)
{
    for (const auto &entry : _ids_for_menus) {
        const QObject *key = entry.first;
        if (key == object) {
            unregisterMenuId(entry.first);
            return;
        }
    }
}

} // namespace Zal::GApp
