#pragma once
#include "gapp_export.h"
#include <QObject>

namespace Zal {
namespace GApp {
class Menu;

// Fills a special menu (a menu whose entries the host computes when it is
// shown). The host derives one provider per special-menu name and registers
// it with the status manager, which forgets it when it is destroyed.
class GAPP_EXPORT SpecialMenuProvider : public QObject
{
    Q_OBJECT
public:
    explicit SpecialMenuProvider(QObject *parent = nullptr);
    ~SpecialMenuProvider() override;

    // Whether the menu is one of those this provider fills.
    virtual bool isRegisteredMenu(const Menu *menu) const;
};

// The host's source of profile-specific menu entries; the library only keeps
// the one registered instance for the host.
class GAPP_EXPORT ProfileMenuProvider
{
public:
    virtual ~ProfileMenuProvider();
};

} // namespace GApp
} // namespace Zal
