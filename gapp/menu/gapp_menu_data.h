#pragma once
#include "gapp_export.h"
#include "zal_string.h"
#include <QDomNode>
#include <QPixmap>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <map>
#include <vector>

class QAction;
class QDomDocument;

namespace Zal {
namespace GApp {
class Menu;
class MenuData;

// One entry of a menu definition.
struct GAPP_EXPORT MenuDataItem
{
    enum Kind { COMMAND = 0, SEPARATOR = 1, SUB_MENU = 2, SPECIAL_MENU = 3 };

    int kind = COMMAND;
    // Set for SUB_MENU only; owned by the enclosing MenuData.
    MenuData *sub_menu = nullptr;
    // The command name (COMMAND) or special-menu name (SPECIAL_MENU).
    QString name;
    // The icon of a sub-menu; null otherwise.
    QPixmap pixmap;
};

// The definition of one menu column or sub-menu, read from the layout file,
// and the popup menu built from it on first use. Owns the definitions of its
// sub-menus; the popup menu belongs to the main window. While a tree is
// filled, inserts go into the innermost open sub-menu. GUI thread only.
class GAPP_EXPORT MenuData
{
public:
    // Special-menu names that layout files and host providers agree on.
    static const char *const RECENT_FILES;
    static const char *const MACROS;
    static const char *const MEASURE_LIST;
    static const char *const EDIT_PROPERTIES;
    static const char *const USER_VIEWS;
    static const char *const RESTORE_SNAPSHOT_TEMPLATES;
    static const char *const PREVIEW_LABEL_TEMPLATES;
    static const char *const PREVIEW_TOLERANCE_TEMPLATES;
    static const char *const STRAIN_VISUS;
    static const char *const CLIPPING_PLANES;
    static const char *const CHOOSE_LABEL_TEMPLATE_3D;

    MenuData(const ZalString &name, const ZalString &translate_section);
    ~MenuData();
    // Copies own their sub-menu definitions, so that each can be deleted on
    // its own; the popup menu is shared.
    MenuData(const MenuData &other);
    MenuData &operator=(const MenuData &other);

    QString getName() const;
    QString getTranslatedName() const;
    bool hasPopupMenu() const;
    std::vector<MenuDataItem> getItems() const;

    void insertCommand(const QString &name);
    void insertSeparator();
    void insertSpecialMenu(const QString &name);
    // Appends a sub-menu and opens it: the following inserts go into it.
    void insertSubMenu(const ZalString &name, const ZalString &translate_section,
                       const QPixmap &pixmap);
    void closeSubMenu();

    // The popup menu of this definition, built on first use.
    Menu *getPopupMenu();
    // Rebuilds an existing popup menu (after profile or provider changes).
    void refresh();
    // The entry a popup at the cursor should open on, or null.
    QAction *getCursorPopupPosition();

private:
    friend class MenuDataContainer;

    void createMenuRecursive(Menu *menu);
    void copyFrom(const MenuData &other);
    void deleteSubMenus();

    std::vector<MenuDataItem> _items;
    std::vector<MenuData *> _open_sub_menus;
    ZalString _name;
    ZalString _translate_section;
    QPointer<Menu> _popup;
};

// The menu definitions of the layout file: columns, partial menus (only
// while loading) and main menus, with the window layout saved per main menu.
// Builds and switches the main window's menu bar. All members static; GUI
// thread only.
class GAPP_EXPORT MenuDataContainer
{
public:
    struct PartialMenuData
    {
        QDomNode node;
        ZalString translate_section;
        QString prefix;
    };

    struct MainMenuData
    {
        std::vector<QString> columns;
        std::vector<QString> toolbars;
        // Per toolbar: the next toolbar of this main menu in the same dock
        // area, or empty.
        std::vector<QString> toolbar_successors;
        QString layout;
        QString default_layout;
    };

    static void loadMenus(QDomDocument *doc);
    static MenuData *getMenu(const QString &name);
    static const std::vector<QString> &getMenuNames(const QString &main_menu);
    static const std::vector<QString> &getToolBarNames(const QString &main_menu);
    static const std::vector<QString> &getToolBarSuccessors(const QString &main_menu);
    static std::vector<QString> getMainMenuNames();
    static QString getCurrentMainMenuName();
    static void updateSensitivity();
    static void loadConfig();
    static void saveConfig();
    static void deleteAllMenus();

    static void createMainMenu(const QString &name);
    static void refreshAllMenus();
    // Pops the column up, modal; the triggered action or null.
    static QAction *executeMenu(const QString &column, const QPoint &pos, QAction *at = nullptr);
    static QAction *getCursorPopupPosition(const QString &column);
    static void saveLayout(const QString &main_menu);
    static void restoreLayout(const QString &main_menu);
    static void applyDefaultLayout();

private:
    static void registerMenu(const QString &name, MenuData *menu);
    static void registerPartialMenuNode(const QString &name, const QDomNode &node,
                                        const ZalString &translate_section,
                                        const QString &prefix);
    static const PartialMenuData &getPartialMenu(const QString &name);
    static void fillMenuRecursive(MenuData *menu, QDomNode node,
                                  const ZalString &translate_section,
                                  const QString &old_prefix, const QString &new_prefix);
    static void fillMainMenu(std::vector<QString> *columns, std::vector<QString> *toolbars,
                             const QDomNode &node);
    static void registerMainMenu(const QString &name, const std::vector<QString> &columns,
                                 const std::vector<QString> &toolbars);
    static MainMenuData &mainMenu(const char *function, const QString &name);

    static std::map<QString, MenuData *> _menus;
    static std::map<QString, PartialMenuData> _partial_menus;
    static std::map<QString, MainMenuData> _main_menus;
    static QString _current_mainmenu;
};

} // namespace GApp
} // namespace Zal
