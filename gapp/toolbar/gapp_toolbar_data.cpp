#include "gapp_toolbar_data.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "zal_cfg_profile.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_translate.h"
#include <QDomDocument>
#include <QDomElement>
#include <QLayout>
#include <QScopeGuard>
#include <QWidgetAction>
#include <algorithm>
#include <memory>

namespace Zal {
namespace GApp {

const char *const ToolBarContainer::FILE_TYPE = "ToolBars";
const char *const ToolBarContainer::CUSTOM_TOOLBAR = "custom_tb";
std::map<QString, ToolBarData *> ToolBarContainer::_toolbars;

namespace {

[[noreturn]] void layoutError(const char *function, const QString &message)
{
    throw ZAL_PROG_ERROR(function, message);
}

bool isSideArea(Qt::ToolBarArea area)
{
    return area == Qt::LeftToolBarArea || area == Qt::RightToolBarArea;
}

} // namespace

// ---- ToolBar --------------------------------------------------------------------

ToolBar::ToolBar(QWidget *parent) : QToolBar(parent) {}

ToolBar::~ToolBar() = default;

void ToolBar::showEvent(QShowEvent *e)
{
    QToolBar::showEvent(e);
    // Actions without a visible widget are skipped by the regular updates.
    const QList<QAction *> list = actions();
    for (QAction *action : list) {
        if (auto *commandAction = qobject_cast<CommandAction *>(action))
            commandAction->updateAction(true);
    }
}

// ---- ToolBarData ----------------------------------------------------------------

ToolBarData::ToolBarData(const QString &name, const QString &title, Qt::ToolBarArea area,
                         bool new_row, bool shown)
    : _name(name), _title(title), _dock_area(area), _new_row(new_row), _shown(shown)
{
}

ToolBarData::~ToolBarData() = default;
ToolBarData::ToolBarData(const ToolBarData &other) = default;
ToolBarData &ToolBarData::operator=(const ToolBarData &other) = default;

void ToolBarData::setCommands(const std::vector<ToolBarItem> &items)
{
    _items = items;
}

void ToolBarData::setAsDefault()
{
    _default_items = _items;
}

void ToolBarData::restoreDefault()
{
    _items = _default_items;
}

void ToolBarData::renameCommand(const QString &old_name, const QString &new_name)
{
    for (std::vector<ToolBarItem> *list : {&_items, &_default_items}) {
        for (ToolBarItem &item : *list) {
            if (item.kind == ToolBarItem::COMMAND && item.level == Cfg::LEVEL_USER
                && item.command == old_name)
                item.command = new_name;
        }
    }
}

void ToolBarData::fillToolBar(const QDomElement &element)
{
    const char *const function = "Zal::GApp::ToolBarData::fillToolBar";
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement child = node.toElement();
        if (child.isNull())
            layoutError(function, QStringLiteral("Toolbar item is null!"));
        const QString tag = child.tagName();
        if (tag == QLatin1String("entry")) {
            const QString name = child.text();
            if (!CommandContainer::getCommand(name)) {
                Debug::printLine(function, 76, QStringLiteral("error: %1")
                                                   .arg(QStringLiteral("command does not exist: ") + name));
                continue;
            }
            const bool show_name = child.attribute(QStringLiteral("show_name")) == QLatin1String("1");
            const ToolBarItem item{ToolBarItem::COMMAND, 0, show_name, name};
            _items.push_back(item);
            _default_items.push_back(item);
        } else if (tag == QLatin1String("sep")) {
            const ToolBarItem item{ToolBarItem::SEPARATOR, 0, false, QString()};
            _items.push_back(item);
            _default_items.push_back(item);
        } else {
            layoutError(function, QStringLiteral("unknown tag: ") + tag);
        }
    }
}

void ToolBarData::createWidget(QToolBar *before, bool keep_widget)
{
    MainWindow *win = MainWindow::main_win;
    if (_widget) {
        if (keep_widget) {
            // Widgets that commands put into the toolbar live in widget
            // actions; the shared command actions stay with their commands.
            const QList<QAction *> list = _widget->actions();
            for (QAction *action : list) {
                _widget->removeAction(action);
                if (qobject_cast<QWidgetAction *>(action) || action->parent() == _widget)
                    delete action;
            }
        } else {
            deleteWidget();
        }
    }
    bool created = false;
    if (!_widget) {
        if (!win)
            return;
        if (_new_row) {
            // Next to an anchor the break must go before the anchor, which
            // the new toolbar then precedes on its row.
            if (before)
                win->insertToolBarBreak(before);
            else
                win->addToolBarBreak(_dock_area);
        }
        // A child of the window from the start: a parentless toolbar would
        // first be set up as a window of its own.
        auto *toolbar = new ToolBar(win);
        toolbar->setObjectName(_name);
        toolbar->setWindowTitle(_title);
        if (before) {
            if (isSideArea(win->toolBarArea(before)))
                toolbar->setOrientation(Qt::Vertical);
            win->insertToolBar(before, toolbar);
        } else {
            win->addToolBar(_dock_area, toolbar);
        }
        _widget = toolbar;
        created = true;
    }

    const Cfg::ParsedProfile *profile = Cfg::Profile::instance();
    for (const ToolBarItem &item : _items) {
        if (item.kind == ToolBarItem::SEPARATOR) {
            _widget->addSeparator();
            continue;
        }
        if (profile && profile->isCommandHidden(item.command))
            continue;
        if (Command *cmd = CommandContainer::getCommand(item.command))
            cmd->createToolBarWidget(_widget, item.show_name);
    }
    // Shown only when full: every button shown in a visible toolbar would
    // lay the toolbar out again.
    if (created)
        _widget->setVisible(_shown);
}

void ToolBarData::moveWidget(QToolBar *before)
{
    MainWindow *win = MainWindow::main_win;
    if (!_widget || !win)
        return;
    if (before)
        win->insertToolBar(before, _widget);
    else
        win->addToolBar(win->toolBarArea(_widget), _widget);
    _widget->setVisible(_shown);
}

void ToolBarData::deleteWidget()
{
    delete _widget.data();
    _widget = nullptr;
}

// ---- ToolBarContainer -----------------------------------------------------------

void ToolBarContainer::loadInitialDefault(QDomDocument *doc)
{
    const char *const function = "Zal::GApp::ToolBarContainer::loadInitialDefault";
    if (!doc)
        return;
    const QDomElement root = doc->documentElement();
    for (QDomElement section = root.firstChildElement(QStringLiteral("toolbarsection"));
         !section.isNull(); section = section.nextSiblingElement(QStringLiteral("toolbarsection"))) {
        for (QDomNode node = section.firstChild(); !node.isNull(); node = node.nextSibling()) {
            const QDomElement element = node.toElement();
            if (element.isNull())
                layoutError(function, QStringLiteral("toolbar element is null"));
            const QString name = element.attribute(QStringLiteral("name"));
            const QString section_name = element.attribute(QStringLiteral("translate_section"));
            const QString edge = element.attribute(QStringLiteral("edge"), QStringLiteral("top"));
            const QString newline = element.attribute(QStringLiteral("newline"), QStringLiteral("no"));
            const QString show = element.attribute(QStringLiteral("show"), QStringLiteral("yes"));
            if (name.isEmpty() || section_name.isEmpty())
                layoutError(function, QStringLiteral("Missing attribute: 'name' or 'translate_section'"));
            const QString title = translate(section_name.toLatin1().constData(),
                                            name.toLatin1().constData());

            Qt::ToolBarArea area = Qt::TopToolBarArea;
            if (edge == QLatin1String("top"))
                area = Qt::TopToolBarArea;
            else if (edge == QLatin1String("bottom"))
                area = Qt::BottomToolBarArea;
            else if (edge == QLatin1String("left"))
                area = Qt::LeftToolBarArea;
            else if (edge == QLatin1String("right"))
                area = Qt::RightToolBarArea;
            else
                layoutError(function, QStringLiteral("invalid parameter edge='%1' for toolbar '%2'").arg(edge, name));
            if (newline != QLatin1String("yes") && newline != QLatin1String("no"))
                layoutError(function, QStringLiteral("invalid parameter newline='%1' for toolbar '%2'").arg(newline, name));
            if (show != QLatin1String("yes") && show != QLatin1String("no"))
                layoutError(function, QStringLiteral("invalid parameter show='%1' for toolbar '%2'").arg(show, name));

            auto data = std::make_unique<ToolBarData>(name, title, area, newline == QLatin1String("yes"),
                                                      show == QLatin1String("yes"));
            data->fillToolBar(element);
            if (_toolbars.count(name))
                layoutError(function, QStringLiteral("duplicated toolbar name '%1'").arg(name));
            _toolbars.emplace(name, data.release());
        }
    }
}

ToolBarData *ToolBarContainer::getToolBar(const QString &name)
{
    const auto it = _toolbars.find(name);
    return it == _toolbars.end() ? nullptr : it->second;
}

ToolBarData *ToolBarContainer::getCustomToolBar()
{
    return getToolBar(QLatin1String(CUSTOM_TOOLBAR));
}

void ToolBarContainer::createWidgets(const std::vector<QString> &names,
                                     const std::vector<QString> &successors)
{
    // Every toolbar shown would lay the whole window out again: one pass
    // at the end does for all of them.
    MainWindow *win = MainWindow::main_win;
    QLayout *layout = win ? win->layout() : nullptr;
    const bool relayout = layout && layout->isEnabled();
    if (relayout)
        layout->setEnabled(false);
    const auto restore = qScopeGuard([&] {
        if (relayout) {
            layout->setEnabled(true);
            layout->invalidate();
            layout->activate();
        }
    });
    // Backwards, so that each toolbar's successor in its dock area is on
    // screen already when the toolbar is placed before it.
    for (size_t i = names.size(); i-- > 0;) {
        ToolBarData *toolbar = getToolBar(names[i]);
        if (!toolbar)
            throw ZAL_PROG_ERROR("Zal::GApp::ToolBarContainer::createWidgets",
                                 QStringLiteral("invalid toolbar name '%1'").arg(names[i]));
        ToolBarData *next = nullptr;
        QToolBar *anchor = nullptr;
        const QString successor = i < successors.size() ? successors[i] : QString();
        if (!successor.isEmpty() && (next = getToolBar(successor)))
            anchor = next->widget();
        if (toolbar->widgetExists())
            toolbar->moveWidget(anchor);
        else
            toolbar->createWidget(anchor, false);
        // A toolbar placed before its successor joins the successor's row; a
        // successor that starts a row gets its break back, so that this one
        // ends the row before.
        if (anchor && next->_new_row && win)
            win->insertToolBarBreak(anchor);
    }
}

void ToolBarContainer::deleteWidgets(const std::vector<QString> &kept)
{
    for (auto &entry : _toolbars) {
        if (std::find(kept.begin(), kept.end(), entry.first) == kept.end())
            entry.second->deleteWidget();
    }
}

void ToolBarContainer::updateCustomToolBar()
{
    ToolBarData *custom = getCustomToolBar();
    if (custom && custom->widgetExists())
        custom->createWidget(nullptr, true);
}

void ToolBarContainer::updateToolBars()
{
    if (!MenuDataContainer::getCurrentMainMenuName().isEmpty())
        updateCustomToolBar();
}

void ToolBarContainer::renameCommand(const QString &old_name, const QString &new_name)
{
    for (auto &entry : _toolbars)
        entry.second->renameCommand(old_name, new_name);
}

void ToolBarContainer::deleteAllToolBars()
{
    for (auto &entry : _toolbars)
        delete entry.second;
    _toolbars.clear();
}

} // namespace GApp
} // namespace Zal
