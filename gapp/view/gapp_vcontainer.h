#pragma once
#include "gapp_export.h"
#include <QString>
#include <vector>

class QDomDocument;
class QDomElement;

namespace Zal::GApp {
class View;

// The views of the layout file and the one shown in the main area. Views
// are switched by name; switching between a view and its templates keeps
// the widgets and only rearranges them. Static members only; owns the
// views. GUI thread only.
class GAPP_EXPORT ViewContainer
{
public:
    // Reads every viewsection of the document; an invalid definition throws.
    static void loadAllViews(QDomDocument *doc);
    static View *getView(const QString &name);
    static bool containsWidget(const QString &view, const QString &widget);
    static void setView(const QString &name);
    static void hideView();
    static void applyDefaultLayout();
    static QString getActualView();
    // The layout states of all views from and to "MainWinLayout/MainArea";
    // stored states that no longer fit the definitions are dropped.
    static void loadConfig();
    static void saveConfig();
    static void deleteAllViews();

private:
    static void loadNormalView(QDomElement &element);
    static void loadTemplateView(QDomElement &element);
    static void resetAllLayouts();

    static std::vector<View *> _views;
    static QString _actual_view;
};

} // namespace Zal::GApp
