#include "gapp_menu_data.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_config_keys_p.h"
#include "gapp_main_window.h"
#include "gapp_menu.h"
#include "gapp_menu_provider.h"
#include "gapp_status_mgr.h"
#include "gapp_toolbar_data.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_profile.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_icon.h"
#include "zal_translate.h"
#include <QDomDocument>
#include <QDomElement>
#include <algorithm>
#include <cstdio>
#include <memory>

namespace Zal {
namespace GApp {

const char *const MenuData::RECENT_FILES = "recent_files";
const char *const MenuData::MACROS = "macros";
const char *const MenuData::MEASURE_LIST = "measure_lists";
const char *const MenuData::EDIT_PROPERTIES = "edit_properties";
const char *const MenuData::USER_VIEWS = "user_defined_views";
const char *const MenuData::RESTORE_SNAPSHOT_TEMPLATES = "restore_snapshot_templates";
const char *const MenuData::PREVIEW_LABEL_TEMPLATES = "preview_label_templates";
const char *const MenuData::PREVIEW_TOLERANCE_TEMPLATES = "preview_tolerance_templates";
const char *const MenuData::STRAIN_VISUS = "strain_visus";
const char *const MenuData::CLIPPING_PLANES = "clipping_planes";
const char *const MenuData::CHOOSE_LABEL_TEMPLATE_3D = "choose_label_template_3d";

std::map<QString, MenuData *> MenuDataContainer::_menus;
std::map<QString, MenuDataContainer::PartialMenuData> MenuDataContainer::_partial_menus;
std::map<QString, MenuDataContainer::MainMenuData> MenuDataContainer::_main_menus;
QString MenuDataContainer::_current_mainmenu;

namespace {

const char *const VERSION_MARK = "V6";
const char *const NEXT_MENU_MARK = "NEXT_MENU";

// A layout file is read as it comes: nesting (sub-menus and partial menus
// inside each other) and the expanded size are bounded, so that a cyclic or
// exponentially self-expanding file fails instead of exhausting the stack or
// the memory.
const int MAX_NESTING = 64;
const int MAX_EXPANDED_ITEMS = 200000;

struct FillState
{
    int depth = 0;
    int items = 0;
    std::vector<QString> partials; // partial menus being expanded, outermost first
};

FillState fillState;

[[noreturn]] void layoutError(const char *function, const QString &message)
{
    throw ZAL_PROG_ERROR(function, message);
}

void addCommands(Menu *menu, const std::vector<QString> &names)
{
    for (const QString &name : names)
        menu->addCommand(name);
}

} // namespace

// ---- MenuData -------------------------------------------------------------------

MenuData::MenuData(const ZalString &name, const ZalString &translate_section)
    : _name(name), _translate_section(translate_section)
{
    _open_sub_menus.push_back(this);
}

MenuData::~MenuData()
{
    deleteSubMenus();
}

MenuData::MenuData(const MenuData &other)
{
    copyFrom(other);
}

MenuData &MenuData::operator=(const MenuData &other)
{
    if (this != &other) {
        deleteSubMenus();
        copyFrom(other);
    }
    return *this;
}

void MenuData::copyFrom(const MenuData &other)
{
    _items = other._items;
    for (MenuDataItem &item : _items)
        if (item.sub_menu)
            item.sub_menu = new MenuData(*item.sub_menu);
    _open_sub_menus.assign(1, this);
    _name = other._name;
    _translate_section = other._translate_section;
    _popup = other._popup;
}

void MenuData::deleteSubMenus()
{
    for (MenuDataItem &item : _items) {
        delete item.sub_menu;
        item.sub_menu = nullptr;
    }
    _items.clear();
}

QString MenuData::getName() const
{
    return _name.toQString();
}

QString MenuData::getTranslatedName() const
{
    // Catalogues key on UTF-8 source texts; the name is kept as Latin-1.
    return translate(_translate_section.c_str(), getName().toUtf8().constData());
}

bool MenuData::hasPopupMenu() const
{
    return !_popup.isNull();
}

std::vector<MenuDataItem> MenuData::getItems() const
{
    return _items;
}

void MenuData::insertCommand(const QString &name)
{
    MenuDataItem item;
    item.kind = MenuDataItem::COMMAND;
    item.name = name;
    _open_sub_menus.back()->_items.push_back(std::move(item));
}

void MenuData::insertSeparator()
{
    MenuDataItem item;
    item.kind = MenuDataItem::SEPARATOR;
    _open_sub_menus.back()->_items.push_back(std::move(item));
}

void MenuData::insertSpecialMenu(const QString &name)
{
    MenuDataItem item;
    item.kind = MenuDataItem::SPECIAL_MENU;
    item.name = name;
    _open_sub_menus.back()->_items.push_back(std::move(item));
}

void MenuData::insertSubMenu(const ZalString &name, const ZalString &translate_section,
                             const QPixmap &pixmap)
{
    MenuDataItem item;
    item.kind = MenuDataItem::SUB_MENU;
    item.pixmap = pixmap;
    auto *sub = new MenuData(name, translate_section);
    item.sub_menu = sub;
    _open_sub_menus.back()->_items.push_back(std::move(item));
    _open_sub_menus.push_back(sub);
}

void MenuData::closeSubMenu()
{
    if (_open_sub_menus.size() <= 1)
        throw ZAL_PROG_ERROR("Zal::GApp::MenuData::closeSubMenu",
                             QStringLiteral("too many closed sub-menus"));
    _open_sub_menus.pop_back();
}

Menu *MenuData::getPopupMenu()
{
    if (!_popup) {
        auto *menu = new Menu(getTranslatedName(), MainWindow::main_win);
        menu->setSeparatorsCollapsible(true);
        _popup = menu;
        createMenuRecursive(menu);
    }
    return _popup;
}

void MenuData::refresh()
{
    if (_popup)
        createMenuRecursive(_popup);
}

QAction *MenuData::getCursorPopupPosition()
{
    for (size_t i = 0; i < _items.size(); ++i) {
        const MenuDataItem &item = _items[i];
        if (item.kind == MenuDataItem::COMMAND) {
            Command *cmd = CommandContainer::getCommand(item.name);
            if (cmd && cmd->isVisible() && !cmd->isCommandForDialogFastCreation())
                return CommandContainer::getCommandAction(item.name);
        } else if (item.kind == MenuDataItem::SUB_MENU && _popup) {
            const QList<QAction *> actions = _popup->actions();
            if (qsizetype(i) < actions.size())
                return actions.at(qsizetype(i));
        }
    }
    return nullptr;
}

void MenuData::createMenuRecursive(Menu *menu)
{
    // Sub-menus of the previous build are Qt children of the menu that
    // clear() does not delete; without this every rebuild would leak them.
    const QList<Menu *> previous = menu->findChildren<Menu *>(Qt::FindDirectChildrenOnly);
    menu->clear();
    for (Menu *old : previous) {
        if (old->isVisible()) {
            // An open sub-menu may be in the middle of its own event handling.
            old->hide();
            old->deleteLater();
        } else {
            delete old;
        }
    }

    const Cfg::ParsedProfile *user = Cfg::Profile::instance();
    const Cfg::ParsedProfile *admin = Cfg::AdministrationProfile::instance();
    const Cfg::ParsedProfile *profile = user ? user : admin;
    std::vector<QString> added;

    if (profile) {
        profile->getCommandsAtMenuStart(getName(), &added);
        addCommands(menu, added);
    }

    for (const MenuDataItem &item : _items) {
        switch (item.kind) {
        case MenuDataItem::COMMAND: {
            bool hidden = false;
            added.clear();
            if (user) {
                hidden = user->isCommandHidden(item.name);
                user->getCommandsAfterCommand(item.name, &added);
            } else if (admin) {
                // Commands the administration profile hides stay; their
                // action shows them marked.
                admin->getCommandsAfterCommand(item.name, &added);
            }
            if (!hidden)
                menu->addCommand(item.name);
            addCommands(menu, added);
            break;
        }
        case MenuDataItem::SEPARATOR:
            menu->addSeparator();
            break;
        case MenuDataItem::SUB_MENU: {
            auto *sub = new Menu(item.sub_menu->getTranslatedName(), menu);
            sub->setTearOffEnabled(menu->isTearOffEnabled());
            sub->setSeparatorsCollapsible(menu->separatorsCollapsible());
            if (!item.pixmap.isNull())
                sub->setIcon(QIcon(item.pixmap));
            item.sub_menu->createMenuRecursive(sub);
            menu->addMenu(sub);
            if (profile) {
                profile->getCommandsAfterMenu(item.sub_menu->getName(), &added);
                addCommands(menu, added);
            }
            break;
        }
        case MenuDataItem::SPECIAL_MENU: {
            AppStatusManager *smgr = MainWindow::smgr;
            SpecialMenuProvider *provider = smgr ? smgr->getSpecialMenuProvider(item.name) : nullptr;
            if (!provider) {
                Debug::printLine(
                    "Zal::GApp::MenuData::createMenuRecursive", 294,
                    QStringLiteral("Warning! No provider is registered for special menu %1!")
                        .arg(item.name));
                break;
            }
            auto *special = new Menu(provider->getMenuTitle(), menu);
            provider->registerMenu(special);
            menu->addMenu(special);
            if (profile) {
                profile->getCommandsAfterSpecialMenu(item.name, &added);
                addCommands(menu, added);
            }
            break;
        }
        default:
            break;
        }
    }
}

// ---- MenuDataContainer: definitions ---------------------------------------------

namespace {
// The translate section of a column or partial menu; both attributes must be
// there, the name checked first.
QString requiredSection(const char *function, const QDomElement &element, const QString &name)
{
    const QString section = element.attribute(QStringLiteral("translate_section"));
    if (name.isEmpty())
        layoutError(function, QStringLiteral("missing attribute 'name'"));
    if (section.isEmpty())
        layoutError(function, QStringLiteral("missing attribute 'translate_section'"));
    return section;
}
} // namespace

void MenuDataContainer::loadMenus(QDomDocument *doc)
{
    const char *const function = "Zal::GApp::MenuDataContainer::loadMenus";
    // Partial menus serve only the file they stand in, also when it fails.
    struct Cleanup
    {
        ~Cleanup()
        {
            _partial_menus.clear();
            fillState = FillState();
        }
    } cleanup;
    fillState = FillState();

    if (!doc)
        return;
    for (QDomNode section = doc->documentElement().firstChild(); !section.isNull();
         section = section.nextSibling()) {
        if (!section.isElement() || section.toElement().tagName() != QLatin1String("menusection"))
            continue;
        for (QDomNode child = section.firstChild(); !child.isNull(); child = child.nextSibling()) {
            const QDomElement element = child.toElement();
            const QString tag = element.tagName();
            if (tag == QLatin1String("menucolumn")) {
                const QString name = element.attribute(QStringLiteral("name"));
                const QString translateSection = requiredSection(function, element, name);
                auto menu =
                    std::make_unique<MenuData>(ZalString(name), ZalString(translateSection));
                fillMenuRecursive(menu.get(), element, ZalString(translateSection), QString(),
                                  QString());
                registerMenu(name, menu.get());
                menu.release();
            } else if (tag == QLatin1String("partial_menu")) {
                const QString name = element.attribute(QStringLiteral("name"));
                const QString translateSection = requiredSection(function, element, name);
                registerPartialMenuNode(name, element, ZalString(translateSection),
                                        element.attribute(QStringLiteral("prefix")));
            } else if (tag == QLatin1String("menubar")) {
                const QString name = element.attribute(QStringLiteral("name"));
                if (name.isEmpty())
                    layoutError(function, QStringLiteral("missing attribute 'name'"));
                std::vector<QString> columns;
                std::vector<QString> toolbars;
                fillMainMenu(&columns, &toolbars, element);
                registerMainMenu(name, columns, toolbars);
            } else {
                layoutError(function, QStringLiteral("invalid tag:") + tag);
            }
        }
    }
}

void MenuDataContainer::fillMenuRecursive(MenuData *menu, QDomNode node,
                                          const ZalString &translate_section,
                                          const QString &old_prefix, const QString &new_prefix)
{
    const char *const function = "Zal::GApp::MenuDataContainer::fillMenuRecursive";
    struct Level
    {
        Level(const char *function)
        {
            if (++fillState.depth > MAX_NESTING) {
                --fillState.depth;
                layoutError(function, QStringLiteral("menu nesting too deep"));
            }
        }
        ~Level() { --fillState.depth; }
    } level(function);

    const bool rewrite = !old_prefix.isEmpty() && !new_prefix.isEmpty();
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (!child.isElement())
            layoutError(function, QStringLiteral("menu item is null"));
        if (++fillState.items > MAX_EXPANDED_ITEMS)
            layoutError(function, QStringLiteral("too many menu items"));
        const QDomElement element = child.toElement();
        const QString tag = element.tagName();
        if (tag == QLatin1String("menu")) {
            QPixmap pixmap;
            if (element.hasAttribute(QStringLiteral("pixmap")))
                pixmap = GIcon::Cache::getSmallIcon(
                    element.attribute(QStringLiteral("pixmap")).toLatin1().constData());
            menu->insertSubMenu(ZalString(element.attribute(QStringLiteral("name"))),
                                translate_section, pixmap);
            fillMenuRecursive(menu, element, translate_section, old_prefix, new_prefix);
            menu->closeSubMenu();
        } else if (tag == QLatin1String("entry")) {
            QString name = element.text();
            if (rewrite && name.startsWith(old_prefix))
                name.replace(0, old_prefix.size(), new_prefix);
            menu->insertCommand(name);
        } else if (tag == QLatin1String("use_partial")) {
            const QString name = element.text();
            const PartialMenuData &partial = getPartialMenu(name);
            if (std::find(fillState.partials.begin(), fillState.partials.end(), name)
                != fillState.partials.end())
                layoutError(function, QStringLiteral("partial menu '%1' uses itself").arg(name));
            fillState.partials.push_back(name);
            fillMenuRecursive(menu, partial.node, partial.translate_section, partial.prefix,
                              element.attribute(QStringLiteral("prefix")));
            fillState.partials.pop_back();
        } else if (tag == QLatin1String("special_menu")) {
            menu->insertSpecialMenu(element.text());
        } else if (tag == QLatin1String("sep")) {
            menu->insertSeparator();
        } else {
            std::fprintf(stderr, "unknown tag:%s\n", tag.toLocal8Bit().constData());
            std::fflush(stderr);
            layoutError(function, QString());
        }
    }
}

void MenuDataContainer::fillMainMenu(std::vector<QString> *columns,
                                     std::vector<QString> *toolbars, const QDomNode &node)
{
    const char *const function = "Zal::GApp::MenuDataContainer::fillMainMenu";
    columns->clear();
    toolbars->clear();
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (!child.isElement())
            layoutError(function, QStringLiteral("column item is null"));
        const QDomElement element = child.toElement();
        if (element.tagName() == QLatin1String("column"))
            columns->push_back(element.text());
        else if (element.tagName() == QLatin1String("toolbar"))
            toolbars->push_back(element.text());
        else
            layoutError(function, QStringLiteral("tagname is not 'column' or 'toolbar'"));
    }
}

void MenuDataContainer::registerMainMenu(const QString &name,
                                         const std::vector<QString> &columns,
                                         const std::vector<QString> &toolbars)
{
    if (_main_menus.count(name))
        layoutError("Zal::GApp::MenuDataContainer::registerMainMenu",
                    QStringLiteral("main menu does already exist"));
    MainMenuData data;
    data.columns = columns;
    data.toolbars = toolbars;
    data.toolbar_successors.resize(toolbars.size());
    // Walking backwards, the toolbar last seen in a dock area is the
    // successor of the next one found there.
    std::map<int, QString> nextInArea;
    for (size_t i = toolbars.size(); i-- > 0;) {
        // An undefined toolbar has no place; building the main menu reports it.
        const ToolBarData *toolbar = ToolBarContainer::getToolBar(toolbars[i]);
        if (!toolbar)
            continue;
        QString &next = nextInArea[int(toolbar->getDockArea())];
        data.toolbar_successors[i] = next;
        next = toolbars[i];
    }
    _main_menus.emplace(name, std::move(data));
}

void MenuDataContainer::registerMenu(const QString &name, MenuData *menu)
{
    if (_menus.count(name))
        layoutError("Zal::GApp::MenuDataContainer::registerMenu",
                    QStringLiteral("menu column '%1' does already exist").arg(name));
    _menus.emplace(name, menu);
}

void MenuDataContainer::registerPartialMenuNode(const QString &name, const QDomNode &node,
                                                const ZalString &translate_section,
                                                const QString &prefix)
{
    if (_partial_menus.count(name))
        layoutError("Zal::GApp::MenuDataContainer::registerPartialMenuNode",
                    QStringLiteral("partial menu '%1' does already exist").arg(name));
    _partial_menus.emplace(name, PartialMenuData{node, translate_section, prefix});
}

const MenuDataContainer::PartialMenuData &MenuDataContainer::getPartialMenu(const QString &name)
{
    const auto it = _partial_menus.find(name);
    if (it == _partial_menus.end())
        layoutError("Zal::GApp::MenuDataContainer::getPartialMenu",
                    QStringLiteral("partial menu '%1' does not exist").arg(name));
    return it->second;
}

MenuData *MenuDataContainer::getMenu(const QString &name)
{
    const auto it = _menus.find(name);
    return it == _menus.end() ? nullptr : it->second;
}

MenuDataContainer::MainMenuData &MenuDataContainer::mainMenu(const char *function,
                                                             const QString &name)
{
    const auto it = _main_menus.find(name);
    if (it == _main_menus.end())
        throw ZAL_PROG_ERROR(function, QStringLiteral("no mainmenu with this identifier"));
    return it->second;
}

const std::vector<QString> &MenuDataContainer::getMenuNames(const QString &main_menu)
{
    return mainMenu("Zal::GApp::MenuDataContainer::getMenuNames", main_menu).columns;
}

const std::vector<QString> &MenuDataContainer::getToolBarNames(const QString &main_menu)
{
    return mainMenu("Zal::GApp::MenuDataContainer::getToolBarNames", main_menu).toolbars;
}

const std::vector<QString> &MenuDataContainer::getToolBarSuccessors(const QString &main_menu)
{
    return mainMenu("Zal::GApp::MenuDataContainer::getToolBarSuccessors", main_menu)
        .toolbar_successors;
}

std::vector<QString> MenuDataContainer::getMainMenuNames()
{
    std::vector<QString> names;
    names.reserve(_main_menus.size());
    for (const auto &entry : _main_menus)
        names.push_back(entry.first);
    return names;
}

QString MenuDataContainer::getCurrentMainMenuName()
{
    return _current_mainmenu;
}

void MenuDataContainer::updateSensitivity()
{
    CommandContainer::updateAllActions();
}

void MenuDataContainer::loadConfig()
{
    if (!MainWindow::cfg)
        return;
    const CfgArray<QString> *array =
        MainWindow::cfg->getArray<QString>(ZalString(CfgKeys::TOOLBARS3));
    if (!array)
        return;
    const std::vector<QString> &values = array->getValues();
    const size_t size = values.size();
    bool matched = size > 0 && values[0] == QLatin1String(VERSION_MARK);
    size_t p = 1;
    for (auto it = _main_menus.begin(); matched && it != _main_menus.end(); ++it) {
        MainMenuData &data = it->second;
        if (p + 1 >= size || values[p] != QLatin1String(NEXT_MENU_MARK) || values[p + 1] != it->first) {
            matched = false;
            break;
        }
        p += 2;
        for (const QString &toolbar : data.toolbars) {
            if (p >= size || values[p] != toolbar) {
                matched = false;
                break;
            }
            ++p;
        }
        if (!matched || p + 1 >= size) {
            matched = false;
            break;
        }
        data.layout = values[p];
        data.default_layout = values[p + 1];
        p += 2;
    }
    if (matched)
        return;
    // Strings saved for other main menus or toolbars would put the wrong
    // toolbars in the wrong places: start every main menu from its definition.
    for (auto &entry : _main_menus) {
        entry.second.layout.clear();
        entry.second.default_layout.clear();
    }
}

void MenuDataContainer::saveConfig()
{
    if (!MainWindow::cfg)
        return;
    CfgArray<QString> *array = MainWindow::cfg->getArray<QString>(ZalString(CfgKeys::TOOLBARS3));
    if (!array)
        return;
    std::vector<QString> values;
    values.push_back(QLatin1String(VERSION_MARK));
    for (const auto &entry : _main_menus) {
        const MainMenuData &data = entry.second;
        values.push_back(QLatin1String(NEXT_MENU_MARK));
        values.push_back(entry.first);
        values.insert(values.end(), data.toolbars.begin(), data.toolbars.end());
        if (entry.first == _current_mainmenu && MainWindow::main_win)
            values.push_back(MainWindow::main_win->saveStateToString());
        else
            values.push_back(data.layout);
        values.push_back(data.default_layout);
    }
    array->setArray(values);
}

void MenuDataContainer::deleteAllMenus()
{
    for (auto &entry : _menus)
        delete entry.second;
    _menus.clear();
    _partial_menus.clear();
    _main_menus.clear();
}

// ---- MenuDataContainer: menus on screen -----------------------------------------

void MenuDataContainer::createMainMenu(const QString &name)
{
    const char *const function = "Zal::GApp::MenuDataContainer::createMainMenu";
    MainWindow *win = MainWindow::main_win;
    if (!_current_mainmenu.isEmpty())
        saveLayout(_current_mainmenu);
    const auto it = _main_menus.find(name);
    if (it == _main_menus.end())
        throw ZAL_PROG_ERROR(function, QStringLiteral("menu identifier '%1' not found").arg(name));
    // Without a window there is no menu bar to build.
    if (!win)
        return;
    MainMenuData &data = it->second;

    win->clearMenuAndToolBar(data.toolbars);
    for (const QString &column : data.columns) {
        MenuData *menu = getMenu(column);
        if (!menu)
            throw ZAL_PROG_ERROR(function, QStringLiteral("menu column '%1' not found").arg(column));
        Menu *popup = menu->getPopupMenu();
        QAction *action = win->insertSubMenu(popup);
        action->setVisible(popup->hasValidEntry());
    }
    ToolBarContainer::createWidgets(data.toolbars, data.toolbar_successors);
    if (data.default_layout.isEmpty())
        data.default_layout = win->saveStateToString();
    restoreLayout(name);
    _current_mainmenu = name;
}

void MenuDataContainer::refreshAllMenus()
{
    for (auto &entry : _menus)
        entry.second->refresh();
}

QAction *MenuDataContainer::executeMenu(const QString &column, const QPoint &pos, QAction *at)
{
    MenuData *menu = getMenu(column);
    if (!menu) {
        Debug::printLine("Zal::GApp::MenuDataContainer::executeMenu", 735,
                         QStringLiteral("error: no menu definition for menu '%1'").arg(column));
        return nullptr;
    }
    Menu *popup = menu->getPopupMenu();
    if (!popup->hasValidEntry())
        return nullptr;
    return popup->exec(pos, at);
}

QAction *MenuDataContainer::getCursorPopupPosition(const QString &column)
{
    MenuData *menu = getMenu(column);
    return menu ? menu->getCursorPopupPosition() : nullptr;
}

void MenuDataContainer::saveLayout(const QString &main_menu)
{
    const auto it = _main_menus.find(main_menu);
    if (it != _main_menus.end() && MainWindow::main_win)
        it->second.layout = MainWindow::main_win->saveStateToString();
}

void MenuDataContainer::restoreLayout(const QString &main_menu)
{
    const auto it = _main_menus.find(main_menu);
    if (it != _main_menus.end() && !it->second.layout.isEmpty() && MainWindow::main_win)
        MainWindow::main_win->restoreStateFromString(it->second.layout);
}

void MenuDataContainer::applyDefaultLayout()
{
    if (_current_mainmenu.isEmpty() || !MainWindow::main_win)
        return;
    const auto it = _main_menus.find(_current_mainmenu);
    if (it != _main_menus.end() && !it->second.default_layout.isEmpty())
        MainWindow::main_win->restoreStateFromString(it->second.default_layout);
}

} // namespace GApp
} // namespace Zal
