#pragma once
#include "gapp_export.h"
#include "zal_documentation.h"
#include <QString>
#include <map>

class QAction;
class QMenu;
class QObject;
class QWidget;

namespace Zal::GApp {

// The help identifiers of the application: which documentation page
// describes a widget, or one entry of one menu. A binding lasts until its
// widget or menu is destroyed. The bindings are static and outlive the
// singleton (the main window creates and deletes it); only registering needs
// the singleton, lookups and removals work at any time. GUI thread only.
class GAPP_EXPORT Documentation : public GTools::Documentation
{
    Q_OBJECT
public:
    ~Documentation() override;
    void registerIdInstance(const QWidget *widget, const QString &id) override;

    static void initialize();
    static void deinitialize();
    static void registerId(const QWidget *widget, const QString &id);
    static void unregisterId(const QWidget *widget);
    static QString getId(const QWidget *widget);
    static void registerMenuId(const QMenu *menu, QAction *action, const QString &id);
    static void unregisterMenuId(const QMenu *menu);
    static QString getMenuId(const QMenu *menu, QAction *action);

private slots:
    void slotDestroyed(QObject *object);
    void slotMenuDestroyed(QObject *object);

private:
    Documentation();
    // What the slots do; also connected directly once the singleton is gone.
    static void forgetWidget(QObject *object);
    static void forgetMenu(QObject *object);

    static Documentation *_instance;
    static std::map<const QWidget *, QString> _ids;
    static std::map<const QMenu *, std::map<QAction *, QString>> _ids_for_menus;
};

} // namespace Zal::GApp
