#include "gapp_view.h"
#include "gapp_main_window.h"
#include "gapp_vcontainer.h"
#include "gapp_view_widget.h"
#include "zal_exception.h"
#include <QIcon>
#include <QSizePolicy>

namespace Zal::GApp {

namespace {

// The widget's own policy, growing in a direction only when maximizable.
QSizePolicy::Policy expanding(QSizePolicy::Policy policy, bool maximizable)
{
    int value = int(policy) & ~int(QSizePolicy::ExpandFlag);
    if (maximizable)
        value |= int(QSizePolicy::ExpandFlag);
    return QSizePolicy::Policy(value);
}

} // namespace

View::View() = default;

void View::addTemplate(const QString &name)
{
    _names.emplace_back(name, QString());
}

void View::addWidget(const QString &name, const QString &dock, MainArea::Area::DockPosition position,
                     MainArea::Area::PositionSpec spec, unsigned int size, bool maximizable)
{
    WidgetEntry entry{name, dock, position, spec, size, maximizable, {}};
    if (!_names.empty())
        entry.views.insert(_names.front().first);
    _widgets.push_back(std::move(entry));
}

void View::addTemplateWidget(const QString &widget, const QString &templateName)
{
    int matches = 0;
    for (WidgetEntry &entry : _widgets) {
        if (entry.name == widget) {
            entry.views.insert(templateName);
            ++matches;
        }
    }
    if (matches != 1)
        throw ZAL_PROG_ERROR("Zal::GApp::View::addTemplateWidget",
                             QStringLiteral("cannot add %1 to template %2").arg(widget, templateName));
}

bool View::containsView(const QString &name) const
{
    for (const auto &pair : _names) {
        if (pair.first == name)
            return true;
    }
    return false;
}

bool View::containsWidget(const QString &view, const QString &widget) const
{
    for (const WidgetEntry &entry : _widgets) {
        if (entry.name == widget)
            return entry.views.count(view) != 0;
    }
    return false;
}

std::vector<QString> View::getAllWidgetNames(const QString &view) const
{
    std::vector<QString> names;
    for (const WidgetEntry &entry : _widgets) {
        if (entry.views.count(view))
            names.push_back(entry.name);
    }
    return names;
}

bool View::isWidgetMaximizable(const QString &widget) const
{
    for (const WidgetEntry &entry : _widgets) {
        if (entry.name == widget)
            return entry.maximizable;
    }
    return false;
}

void View::buildLayout(const QString &name, bool widgetsExist)
{
    MainArea::Area *area = MainWindow::main_area;
    if (!area)
        return;
    const QString active = ViewWidgetContainer::getActiveView();
    MainArea::Layout layout(area);
    QWidget *focus = nullptr;

    for (const WidgetEntry &entry : _widgets) {
        const bool shown = entry.views.count(name) != 0;
        QWidget *dock = entry.dock.isEmpty() ? nullptr : ViewWidgetContainer::getWidget(entry.dock);
        QWidget *widget = widgetsExist ? ViewWidgetContainer::getWidget(entry.name) : nullptr;
        // A widget deleted since the last build is made anew.
        if (!widget) {
            widget = ViewWidgetContainer::createWidget(nullptr, entry.name);
            if (!widget)
                continue;
            QSizePolicy policy = widget->sizePolicy();
            policy.setHorizontalPolicy(expanding(policy.horizontalPolicy(), entry.maximizable));
            policy.setVerticalPolicy(expanding(policy.verticalPolicy(), entry.maximizable));
            widget->setSizePolicy(policy);
        }
        if (!shown)
            continue;
        ViewWidgetCreator *creator = ViewWidgetContainer::getCreator(entry.name);
        layout.addWidget(widget, QIcon(creator->getDisplayPixmap()), creator->getDisplayName(), dock,
                         entry.position, entry.spec, int(entry.size));
        if (entry.name == active)
            focus = widget;
    }

    bool restored = false;
    for (const auto &pair : _names) {
        if (pair.first == name) {
            if (!pair.second.isEmpty()) {
                layout.restoreStateFromString(pair.second);
                restored = true;
            }
            break;
        }
    }

    area->addWidgets(&layout);

    if (!restored) {
        // The default arrangement becomes the first saved one.
        for (auto &pair : _names) {
            if (pair.first == name) {
                if (pair.second.isEmpty())
                    pair.second = area->saveStateToString();
                break;
            }
        }
    }

    if (focus) {
        area->raiseWidget(focus);
        focus->setFocus();
    }
}

void View::saveLayout(const QString &name)
{
    if (!MainWindow::main_area)
        return;
    const QString state = MainWindow::main_area->saveStateToString();
    for (auto &pair : _names) {
        if (pair.first == name)
            pair.second = state;
    }
}

void View::applyDefaultLayout(const QString &name)
{
    if (containsView(name) && MainWindow::main_area)
        MainWindow::main_area->restoreDefaultSplitterSizes();
}

void View::resetLayout()
{
    for (auto &pair : _names)
        pair.second.clear();
}

void View::saveConfig(std::vector<QString> &values)
{
    for (const WidgetEntry &entry : _widgets)
        values.push_back(entry.name);
    const QString shown = ViewContainer::getActualView();
    for (const auto &pair : _names) {
        values.push_back(pair.first);
        // The name shown now saves what the user sees, not what was stored
        // when it was last left.
        if (!shown.isEmpty() && pair.first == shown && MainWindow::main_area)
            values.push_back(MainWindow::main_area->saveStateToString());
        else
            values.push_back(pair.second);
        values.push_back(QString());
    }
}

bool View::loadConfig(const std::vector<QString> &values, unsigned int &pos)
{
    const size_t size = values.size();
    for (const WidgetEntry &entry : _widgets) {
        if (pos >= size || values[pos] != entry.name)
            return false;
        ++pos;
    }
    for (auto &pair : _names) {
        if (pos >= size || values[pos] != pair.first)
            return false;
        if (size_t(pos) + 2 >= size)
            return false;
        pair.second = values[pos + 1];
        pos += 3;
    }
    return true;
}

} // namespace Zal::GApp
