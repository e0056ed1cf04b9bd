#pragma once
#include "gapp_export.h"
#include <QMenu>
#include <QString>

namespace Zal {
namespace GApp {

// Names of host commands that the toolbar context menu offers (reset
// commands) or that hosts conventionally define next to them.
GAPP_EXPORT extern const char *const CMD_RESET_TOOLBARS;
GAPP_EXPORT extern const char *const CMD_RESET_VIEWS;
GAPP_EXPORT extern const char *const CMD_LINE_UP_TOOLBARS;
GAPP_EXPORT extern const char *const CMD_RESET_SCREEN;

// The library's QMenu: entries are the shared command actions, added by
// command name; it refreshes them each time it opens and hides sub-menus
// with nothing visible in them. A column's popup is owned by the main window,
// sub-menus and special menus by the menu that contains them. GUI thread only.
class GAPP_EXPORT Menu : public QMenu
{
    Q_OBJECT
public:
    Menu(const QString &title, QWidget *parent);
    ~Menu() override;

    // The command's shared action, or null (and a diagnostic line) when no
    // command of that name exists.
    QAction *addCommand(const QString &name);
    // Whether opening the menu would show anything: a visible command, a
    // sub-menu with a valid entry, or a special menu its provider shows.
    bool hasValidEntry() const;

    bool event(QEvent *e) override;

public slots:
    void updateActions();
};

} // namespace GApp
} // namespace Zal
