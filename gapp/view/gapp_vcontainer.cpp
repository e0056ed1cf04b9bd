#include "gapp_vcontainer.h"
#include "gapp_config_keys_p.h"
#include "gapp_main_area.h"
#include "gapp_main_window.h"
#include "gapp_view.h"
#include "gapp_view_widget.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include <QDomDocument>
#include <QDomElement>

namespace Zal::GApp {

std::vector<View *> ViewContainer::_views;
QString ViewContainer::_actual_view;

namespace {

const char *const CONFIG_VERSION = "V5";
const char *const NEXT_VIEW = "NEXT_VIEW";

void traceLayout(const QString &name, bool end)
{
    if (MainWindow::debug_views)
        Debug::printTrace(QStringLiteral("create layout '%1'%2").arg(name, end ? QStringLiteral(" end") : QString()));
}

CfgArray<QString> *mainAreaArray()
{
    return MainWindow::cfg ? MainWindow::cfg->getArray<QString>(ZalString(CfgKeys::MAIN_AREA)) : nullptr;
}

} // namespace

void ViewContainer::loadAllViews(QDomDocument *doc)
{
    static const char *const FUNCTION = "Zal::GApp::ViewContainer::loadAllViews";
    if (!doc)
        return;
    const QDomElement root = doc->documentElement();
    for (QDomElement section = root.firstChildElement(QStringLiteral("viewsection")); !section.isNull();
         section = section.nextSiblingElement(QStringLiteral("viewsection"))) {
        for (QDomNode node = section.firstChild(); !node.isNull(); node = node.nextSibling()) {
            QDomElement element = node.toElement();
            if (element.isNull())
                throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("element is null"));
            if (element.tagName() == QLatin1String("view"))
                loadNormalView(element);
            else if (element.tagName() == QLatin1String("template"))
                loadTemplateView(element);
            else
                throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("unknown tag: %1").arg(element.tagName()));
        }
    }
}

void ViewContainer::loadNormalView(QDomElement &element)
{
    static const char *const FUNCTION = "Zal::GApp::ViewContainer::loadNormalView";
    const QString name = element.attribute(QStringLiteral("name"));
    if (name.isEmpty())
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid view name"));
    if (getView(name))
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("duplicated view name: '%1'").arg(name));

    auto *view = new View;
    _views.push_back(view);
    view->addTemplate(name);

    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement child = node.toElement();
        if (child.isNull())
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("element is null"));
        if (child.tagName() != QLatin1String("widget"))
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid tag name"));
        const QString widget = child.attribute(QStringLiteral("name"));
        const QString dock = child.attribute(QStringLiteral("dock"));
        const QString pos = child.attribute(QStringLiteral("pos"));
        QString size = child.attribute(QStringLiteral("size"));
        const QString maximizable = child.attribute(QStringLiteral("maximizable"));

        MainArea::Area::DockPosition position;
        if (pos == QLatin1String("right"))
            position = MainArea::Area::Right;
        else if (pos == QLatin1String("top") && dock.isEmpty())
            position = MainArea::Area::Center;
        else if (pos == QLatin1String("bottom"))
            position = MainArea::Area::Bottom;
        else if (pos == QLatin1String("center"))
            position = MainArea::Area::Center;
        else
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid dock position for '%1': '%2'").arg(widget, pos));

        MainArea::Area::PositionSpec spec = MainArea::Area::Percent;
        if (size.endsWith(QLatin1Char('c'))) {
            spec = MainArea::Area::Characters;
            size.chop(1);
        } else if (size.endsWith(QLatin1Char('%'))) {
            size.chop(1);
        }
        bool ok = false;
        const unsigned int value = size.toUInt(&ok, 10);
        if (!ok || value > 100)
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid dock size"));

        if (!ViewWidgetContainer::getCreator(widget))
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid view widget name: %1").arg(widget));
        if (!dock.isEmpty() && !ViewWidgetContainer::getCreator(dock))
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid view widget dock name: %1").arg(dock));
        view->addWidget(widget, dock, position, spec, value, maximizable == QLatin1String("yes"));
    }
}

void ViewContainer::loadTemplateView(QDomElement &element)
{
    static const char *const FUNCTION = "Zal::GApp::ViewContainer::loadTemplateView";
    const QString name = element.attribute(QStringLiteral("name"));
    if (name.isEmpty())
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid view name"));
    if (getView(name))
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("duplicated view name: %1").arg(name));
    const QString parentName = element.attribute(QStringLiteral("parent"));
    if (parentName.isEmpty())
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid parent view name"));
    View *parent = getView(parentName);
    if (!parent)
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("missing parent view name: %1").arg(parentName));

    parent->addTemplate(name);
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement child = node.toElement();
        if (child.isNull())
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("element is null"));
        if (child.tagName() != QLatin1String("widget"))
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("invalid tag name"));
        parent->addTemplateWidget(child.text(), name);
    }
}

View *ViewContainer::getView(const QString &name)
{
    for (View *view : _views) {
        if (view->containsView(name))
            return view;
    }
    return nullptr;
}

bool ViewContainer::containsWidget(const QString &view, const QString &widget)
{
    const View *v = getView(view);
    return v && v->containsWidget(view, widget);
}

void ViewContainer::setView(const QString &name)
{
    if (name == _actual_view)
        return;
    traceLayout(name, false);
    if (!_actual_view.isEmpty()) {
        if (View *shown = getView(_actual_view)) {
            ViewWidgetContainer::unmaximizeWidget();
            shown->saveLayout(_actual_view);
            if (shown->containsView(name)) {
                // A template of the same view: the widgets stay, only the
                // arrangement changes.
                if (MainWindow::main_area)
                    MainWindow::main_area->detachWidgets();
                shown->buildLayout(name, true);
                _actual_view = name;
                traceLayout(name, true);
                return;
            }
        }
    }
    ViewWidgetContainer::deleteAllWidgets();
    View *view = getView(name);
    if (!view) {
        // The area is empty now; nothing is shown any more.
        _actual_view.clear();
        throw ZAL_PROG_ERROR("Zal::GApp::ViewContainer::setView",
                             QStringLiteral("invalid view name :'%1'").arg(name));
    }
    view->buildLayout(name, false);
    _actual_view = name;
    traceLayout(name, true);
}

void ViewContainer::hideView()
{
    if (_actual_view.isEmpty())
        return;
    if (View *shown = getView(_actual_view)) {
        ViewWidgetContainer::unmaximizeWidget();
        shown->saveLayout(_actual_view);
    }
    ViewWidgetContainer::deleteAllWidgets();
    _actual_view.clear();
}

void ViewContainer::applyDefaultLayout()
{
    if (_actual_view.isEmpty())
        return;
    if (View *shown = getView(_actual_view))
        shown->applyDefaultLayout(_actual_view);
}

QString ViewContainer::getActualView()
{
    return _actual_view;
}

void ViewContainer::resetAllLayouts()
{
    for (View *view : _views)
        view->resetLayout();
}

void ViewContainer::loadConfig()
{
    const CfgArray<QString> *array = mainAreaArray();
    if (!array)
        return;
    const std::vector<QString> &values = array->getValues();
    if (values.empty() || values.front() != QLatin1String(CONFIG_VERSION)) {
        resetAllLayouts();
        return;
    }
    // The widget names guard against a stored arrangement of other widgets.
    unsigned int pos = 1;
    for (auto it = ViewWidgetContainer::getWidgetBegin(); it != ViewWidgetContainer::getWidgetEnd(); ++it) {
        if (pos >= values.size() || values[pos] != it->first) {
            resetAllLayouts();
            return;
        }
        ++pos;
    }
    bool loaded = true;
    for (View *view : _views) {
        if (pos >= values.size() || values[pos] != QLatin1String(NEXT_VIEW)) {
            resetAllLayouts();
            return;
        }
        ++pos;
        loaded = view->loadConfig(values, pos);
    }
    if (!loaded)
        resetAllLayouts();
}

void ViewContainer::saveConfig()
{
    CfgArray<QString> *array = mainAreaArray();
    if (!array)
        return;
    std::vector<QString> values;
    values.push_back(QLatin1String(CONFIG_VERSION));
    for (auto it = ViewWidgetContainer::getWidgetBegin(); it != ViewWidgetContainer::getWidgetEnd(); ++it)
        values.push_back(it->first);
    for (View *view : _views) {
        values.push_back(QLatin1String(NEXT_VIEW));
        view->saveConfig(values);
    }
    array->setArray(values);
}

void ViewContainer::deleteAllViews()
{
    for (View *view : _views)
        delete view;
    _views.clear();
    _actual_view.clear();
}

} // namespace Zal::GApp
