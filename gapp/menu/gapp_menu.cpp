#include "gapp_menu.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_menu_provider.h"
#include "gapp_status_mgr.h"
#include "zal_errorlog.h"
#include <QMouseEvent>

namespace Zal {
namespace GApp {

const char *const CMD_RESET_TOOLBARS = "sys.reset_toolbars";
const char *const CMD_RESET_VIEWS = "sys.reset_views";
const char *const CMD_LINE_UP_TOOLBARS = "sys.line_up_toolbars";
const char *const CMD_RESET_SCREEN = "sys.reset_screen";

Menu::Menu(const QString &title, QWidget *parent) : QMenu(title, parent)
{
    setObjectName(title);
    // A torn-off menu shows the title as window caption, where "&&" would
    // not stand for a literal ampersand any more.
    QString caption = title;
    setWindowTitle(caption.replace(QLatin1String("&&"), QLatin1String("&")));
    connect(this, &QMenu::aboutToShow, this, &Menu::updateActions);
}

Menu::~Menu() = default;

QAction *Menu::addCommand(const QString &name)
{
    CommandAction *action = CommandContainer::getCommandAction(name);
    if (!action) {
        Debug::printLine("Zal::GApp::Menu::addCommand", 78,
                         QStringLiteral("error: %1").arg(QStringLiteral("no command for: ") + name));
        return nullptr;
    }
    addAction(action);
    return action;
}

bool Menu::hasValidEntry() const
{
    if (AppStatusManager *smgr = MainWindow::smgr) {
        if (SpecialMenuProvider *provider = smgr->getSpecialMenuProvider(this))
            return provider->isVisible();
    }
    const QList<QAction *> entries = actions();
    for (QAction *action : entries) {
        if (auto *commandAction = qobject_cast<CommandAction *>(action)) {
            if (commandAction->getCommand()->isVisible())
                return true;
        } else if (auto *sub = qobject_cast<Menu *>(action->menu<QMenu *>())) {
            if (sub->hasValidEntry())
                return true;
        }
    }
    return false;
}

void Menu::updateActions()
{
    const QList<QAction *> entries = actions();
    for (QAction *action : entries) {
        if (auto *commandAction = qobject_cast<CommandAction *>(action))
            commandAction->updateAction(true);
        else if (auto *sub = qobject_cast<Menu *>(action->menu<QMenu *>()))
            action->setVisible(sub->hasValidEntry());
    }
}

bool Menu::event(QEvent *e)
{
    // A right click on empty space would otherwise close the whole menu chain.
    if (e->type() == QEvent::MouseButtonRelease) {
        auto *mouse = static_cast<QMouseEvent *>(e);
        if (mouse->button() == Qt::RightButton && !actionAt(mouse->position().toPoint()))
            return true;
    }
    return QMenu::event(e);
}

} // namespace GApp
} // namespace Zal
