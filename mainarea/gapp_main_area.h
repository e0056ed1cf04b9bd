#pragma once
#include "gapp_export.h"
#include "gapp_kconfig.h"
#include <QFrame>
#include <QHash>
#include <QIcon>
#include <QList>
#include <QSize>
#include <QSplitter>
#include <QStackedWidget>
#include <QString>
#include <QStringList>
#include <QTabBar>
#include <QWidget>
#include <map>
#include <vector>

class QToolButton;

namespace Zal::MainArea {

class Area;
class Layout;
class Splitter;
class TabBar;
class TabWidget;
class WidgetStack;
struct LayoutRow;

// ---------------------------------------------------------------------------
// Layout tree: a description of the arrangement that Area::addWidgets() turns
// into widgets in one step. Owned by a Layout; the view widgets are not.

// One view widget to place, with what its tab shows.
struct GAPP_EXPORT LayoutItem
{
    QWidget *widget = nullptr;
    QIcon icon;
    QString label;
};

// A future tab group. Items are in tab order; the raised widget is the page
// shown first (null: the first page).
struct GAPP_EXPORT LayoutGroup
{
    LayoutRow *row = nullptr;
    std::vector<LayoutItem> items;
    QWidget *raised_widget = nullptr;
};

// A split in two: horizontal puts the first part left, vertical on top. Each
// part is either a group or a row. Only the extent along the orientation is
// used from the sizes.
struct GAPP_EXPORT LayoutRow
{
    Qt::Orientation orientation = Qt::Horizontal;
    LayoutGroup *first_group = nullptr;
    LayoutRow *first_row = nullptr;
    QSize first_size;
    QSize first_default_size;
    LayoutGroup *second_group = nullptr;
    LayoutRow *second_row = nullptr;
    QSize second_size;
    QSize second_default_size;
};

// ---------------------------------------------------------------------------

// The central widget of the main window: a tree of splitters whose leaves are
// tab groups of view widgets. It tracks the group holding the keyboard focus
// and highlights it, maximises one widget by hiding its neighbours, and hands
// out its state for saving. The area owns its splitters and groups; the view
// widgets inside belong to it only while they are placed (detachWidgets()
// gives them back). GUI thread only.
class GAPP_EXPORT Area : public QWidget
{
    Q_OBJECT

public:
    enum DockPosition { Center = 0, Right = 1, Bottom = 2 };
    Q_ENUM(DockPosition)
    enum PositionSpec { Percent = 0, Characters = 1 };
    Q_ENUM(PositionSpec)

    explicit Area(QWidget *parent = nullptr);
    ~Area() override;

    void addWidgets(Layout *layout);
    void detachWidgets();
    void deleteWidgets();

    void raiseWidget(QWidget *widget);
    void lowerWidget(QWidget *widget);
    QWidget *widgetFor(QWidget *widget) const;

    QString tabLabel(QWidget *widget);
    void setTabLabel(QWidget *widget, const QString &label);

    bool isMaximizable(QWidget *widget) const;
    void maximizeWidget(QWidget *widget);
    void unmaximizeWidget();
    bool isMaximized() const { return _maximized; }
    void restoreDefaultSplitterSizes();

    // Saved arrangement: the current page of every group and the sizes of
    // every splitter, both in depth-first order (first child before second).
    QList<QWidget *> raisedWidgets();
    QStringList raisedWidgetsAsStringList();
    QList<QList<int> > splitterSizes() const;
    QList<QList<int> > splitterSizes(Splitter *splitter);
    QStringList splitterSizesAsStringList();
    void setSplitterSizes(const QList<QList<int> > &sizes);
    // Gives the splitter the first item of sizes and its child splitters the
    // following ones, consuming what it uses.
    void setSplitterSizes(Splitter *splitter, QList<QList<int> > *sizes);
    QString saveStateToString();

    QWidget *rootWidget() const { return _root; }
    const QList<QWidget *> &managedWidgets() const { return _managed; }
    QWidget *selectedWidget() const { return _selected; }

signals:
    void widgetSelected(QWidget *widget);
    void widgetVisibilityChanged(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void widgetDestroyed();

private:
    TabWidget *groupForWidget(QWidget *widget) const;
    TabWidget *createTabWidget(const LayoutGroup *group, QWidget *parent);
    Splitter *createSplitter(const LayoutRow *row, QWidget *parent);
    void focusIn(QWidget *widget);
    void deactivateGroups();

    QWidget *_root = nullptr;
    QList<QWidget *> _managed;
    QList<QList<int> > _saved_sizes;
    bool _maximized = false;
    QWidget *_selected = nullptr;
    bool _building = false;
};

// Builds the layout tree of one arrangement, widget by widget: each widget
// is the central one or docks to a widget placed before it. Lives for one
// build; frees the tree but not the widgets.
class GAPP_EXPORT Layout
{
public:
    explicit Layout(Area *area);
    ~Layout();
    Layout(const Layout &) = delete;
    Layout &operator=(const Layout &) = delete;

    // size is the share of the dock widget's side: a percentage of the space,
    // or a number of "X" widths (negative: the new widget's share).
    void addWidget(QWidget *widget, const QIcon &icon, const QString &label, QWidget *dock,
                   Area::DockPosition position, Area::PositionSpec spec, int size);
    LayoutGroup *topGroup() const { return _top_group; }
    LayoutRow *topRow() const { return _top_row; }
    int handleWidth() const { return _handle_width; }

    // Applies a state string of Area::saveStateToString() to the tree; a
    // state that does not fit is ignored as far as it does not fit.
    void restoreStateFromString(const QString &state);

private:
    void createRow(const LayoutItem &item, LayoutGroup *group, Qt::Orientation orientation,
                   Area::PositionSpec spec, int size);
    static void deleteRow(LayoutRow *row);
    static void raisePage(LayoutGroup *group, const QHash<QString, int> &lastIndexOfName);
    void raisePages(const QStringList &names);
    static void setSplitterSizes(LayoutRow *row, const QList<QList<int> > &sizes, int *next);

    Area *_area;
    LayoutGroup *_top_group = nullptr;
    LayoutRow *_top_row = nullptr;
    std::map<QWidget *, LayoutGroup *> _groups;
    int _handle_width = 0;
};

// ---------------------------------------------------------------------------
// The widgets of the area. They are made by Area::addWidgets() only.

// One row of the layout tree. Grows with the main window only along the
// directions in which all its children do.
class GAPP_EXPORT Splitter : public QSplitter
{
    Q_OBJECT

public:
    Splitter(Qt::Orientation orientation, QWidget *parent);
    ~Splitter() override;

    const QList<int> &defaultSizes() const { return _default_sizes; }
    void setDefaultSizes(const QList<int> &sizes) { _default_sizes = sizes; }
    // Takes size policy, size hint and stretch factors from the children.
    void negotiateSize();

    bool event(QEvent *event) override;
    QSize sizeHint() const override;

private:
    QSize _size_hint;
    QList<int> _default_sizes;
};

// The tabs of one group. Draws itself flat, the current tab of the active
// group in the focus colour.
class GAPP_EXPORT TabBar : public QTabBar
{
    Q_OBJECT

public:
    explicit TabBar(QWidget *parent);
    ~TabBar() override;

    bool isActive() const { return _active; }
    void setActive(bool active);
    // The x where the visible tabs end: the first scroll button when it is
    // shown, else the width.
    int tabsEnd() const;

    bool eventFilter(QObject *watched, QEvent *event) override;
    QSize minimumSizeHint() const override;

signals:
    void mouseSelected(int index);
    void layoutChanged();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    QSize tabSizeHint(int index) const override;
    void tabLayoutChange() override;

private:
    int tabAtPoint(const QPoint &pos) const;

    bool _active = false;
    QToolButton *_scroll_buttons[2] = {nullptr, nullptr};
    bool _in_resize = false;
};

// The pages of one group.
class GAPP_EXPORT WidgetStack : public QStackedWidget
{
    Q_OBJECT

public:
    explicit WidgetStack(QWidget *parent);
    ~WidgetStack() override;
};

// One tab group: a tab bar over a stack of pages, tab index = page index.
class GAPP_EXPORT TabWidget : public QFrame
{
    Q_OBJECT

public:
    explicit TabWidget(QWidget *parent);
    ~TabWidget() override;

    // Appends a page. With an icon the tab shows only the icon and the label
    // becomes its tool tip; a page without both hides the tab bar.
    int insertTab(QWidget *page, const QIcon &icon, const QString &label);
    int indexOf(QWidget *page) const;
    QWidget *currentPage() const;
    void setCurrentPage(QWidget *page);
    QString tabLabel(QWidget *page) const;
    void setTabLabel(QWidget *page, const QString &label);

    TabBar *tabBar() const { return _tab_bar; }
    WidgetStack *pages() const { return _stack; }
    bool isActive() const { return _active; }
    void setActive(bool active);
    // Takes size policy and size hint from the pages.
    void negotiateSize();

    bool event(QEvent *event) override;
    QSize sizeHint() const override;

signals:
    void currentChanged(QWidget *page);

public slots:
    void showTab(int index);
    void ensureFocus(int index);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TabBar *_tab_bar;
    WidgetStack *_stack;
    QSize _size_hint;
    bool _active = false;
};

} // namespace Zal::MainArea
