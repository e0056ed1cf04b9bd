#pragma once
#include "gapp_export.h"
#include "gapp_main_area.h"
#include <QString>
#include <set>
#include <utility>
#include <vector>

namespace Zal::GApp {

// One view of the layout file with all templates derived from it: the view
// widgets, where each one docks, and in which of the view's names it is
// shown. Every name keeps the user's last arrangement as a layout state
// string. Made and owned by ViewContainer; GUI thread only.
class GAPP_EXPORT View
{
public:
    View();

    // Appends a name (the view's own first, then its templates) with an
    // empty layout state.
    void addTemplate(const QString &name);
    void addWidget(const QString &name, const QString &dock, MainArea::Area::DockPosition position,
                   MainArea::Area::PositionSpec spec, unsigned int size, bool maximizable);
    void addTemplateWidget(const QString &widget, const QString &templateName);
    bool containsView(const QString &name) const;
    bool containsWidget(const QString &view, const QString &widget) const;
    std::vector<QString> getAllWidgetNames(const QString &view) const;
    bool isWidgetMaximizable(const QString &widget) const;
    // Fills the main area with the named view or template. With widgetsExist
    // the widgets of the last build are placed again; otherwise a new widget
    // is created for every entry.
    void buildLayout(const QString &name, bool widgetsExist);
    void saveLayout(const QString &name);
    void applyDefaultLayout(const QString &name);
    void resetLayout();

    // The configuration form: the widget names, then name, state and an
    // empty string per name. loadConfig reads from pos on and leaves pos
    // where the comparison with the definition failed.
    void saveConfig(std::vector<QString> &values);
    bool loadConfig(const std::vector<QString> &values, unsigned int &pos);

    // The names with their layout states, the view's own first.
    const std::vector<std::pair<QString, QString> > &getNames() const { return _names; }

private:
    struct WidgetEntry
    {
        QString name;
        QString dock;
        MainArea::Area::DockPosition position;
        MainArea::Area::PositionSpec spec;
        unsigned int size;
        bool maximizable;
        std::set<QString> views;
    };

    std::vector<std::pair<QString, QString> > _names;
    std::vector<WidgetEntry> _widgets;
};

} // namespace Zal::GApp
