#include "gapp_menu_provider.h"
#include "gapp_menu.h"

namespace Zal {
namespace GApp {

SpecialMenuProvider::SpecialMenuProvider(QObject *parent) : QObject(parent)
{
}

SpecialMenuProvider::~SpecialMenuProvider()
{
    _menus.clear();
}

void SpecialMenuProvider::registerMenu(Menu *menu)
{
    if (!menu || !_menus.insert(menu).second)
        return;
    connect(menu, &QMenu::aboutToShow, this, &SpecialMenuProvider::menuAboutToShow);
    connect(menu, &QObject::destroyed, this, &SpecialMenuProvider::menuDestroyed);
}

void SpecialMenuProvider::deregisterMenu(Menu *menu)
{
    const auto it = _menus.find(menu);
    if (it == _menus.end())
        return;
    _menus.erase(it);
    disconnect(menu, &QMenu::aboutToShow, this, &SpecialMenuProvider::menuAboutToShow);
    disconnect(menu, &QObject::destroyed, this, &SpecialMenuProvider::menuDestroyed);
}

bool SpecialMenuProvider::isRegisteredMenu(const Menu *menu) const
{
    return _menus.count(const_cast<Menu *>(menu)) != 0;
}

bool SpecialMenuProvider::isVisible() const
{
    return true;
}

void SpecialMenuProvider::menuAboutToShow()
{
    auto *menu = qobject_cast<Menu *>(sender());
    if (!menu || !_menus.count(menu))
        return;
    menu->clear();
    fillMenu(menu);
    menu->updateActions();
}

void SpecialMenuProvider::menuDestroyed(QObject *obj)
{
    // Only the QObject part is left when destroyed() arrives: compare addresses.
    for (auto it = _menus.begin(); it != _menus.end(); ++it) {
        if (static_cast<QObject *>(*it) == obj) {
            _menus.erase(it);
            return;
        }
    }
}

ProfileMenuProvider::~ProfileMenuProvider() = default;

} // namespace GApp
} // namespace Zal
