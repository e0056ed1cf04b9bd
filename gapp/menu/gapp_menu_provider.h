#pragma once
#include "gapp_export.h"
#include <QObject>
#include <QString>
#include <set>
#include <vector>

namespace Zal {
namespace GApp {
class Menu;

// Fills a special menu: a sub-menu whose entries the host computes each time
// it opens (recent files, macros). The host derives one provider per
// special-menu name and registers it with the status manager, which forgets
// it when it is destroyed. The provider does not own the menus it fills; a
// menu leaves the provider when it is destroyed or deregistered.
// GUI thread only.
class GAPP_EXPORT SpecialMenuProvider : public QObject
{
    Q_OBJECT
public:
    explicit SpecialMenuProvider(QObject *parent = nullptr);
    ~SpecialMenuProvider() override;

    void registerMenu(Menu *menu);
    void deregisterMenu(Menu *menu);
    // Virtual so that a host can answer for menus it manages itself.
    virtual bool isRegisteredMenu(const Menu *menu) const;

    // Whether the special menu is shown at all.
    virtual bool isVisible() const;
    virtual QString getMenuTitle() const = 0;
    // Adds the current entries to the menu, which is empty when called.
    virtual void fillMenu(Menu *menu) = 0;

private slots:
    void menuAboutToShow();
    void menuDestroyed(QObject *obj);

private:
    std::set<Menu *> _menus;
};

// The host's source of the profiles that a profile-selection menu offers.
// The status manager keeps the one registered instance for the host; the
// library itself never asks it.
class GAPP_EXPORT ProfileMenuProvider
{
public:
    virtual ~ProfileMenuProvider();
    // The names of the profiles the user can choose from, in display order.
    virtual std::vector<QString> getProfileNames() const = 0;
};

} // namespace GApp
} // namespace Zal
