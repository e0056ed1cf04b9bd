#include "gapp_main_area.h"
#include "gapp_style.h"
#include "zal_exception.h"
#include <QApplication>
#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionTab>
#include <QToolButton>

namespace Zal::MainArea {

namespace {

int extent(const QSize &size, Qt::Orientation orientation)
{
    return orientation == Qt::Horizontal ? size.width() : size.height();
}

// Sizes can come from the user's configuration file: keep them in the range
// that QWidget geometry allows, so that sums inside QSplitter cannot overflow.
QList<int> boundedSizes(const QList<int> &sizes)
{
    QList<int> result;
    result.reserve(sizes.size());
    for (const int size : sizes)
        result.append(qBound(0, size, QWIDGETSIZE_MAX));
    return result;
}

void collectSplitterSizes(const QSplitter *splitter, QList<QList<int> > *sizes)
{
    sizes->append(splitter->sizes());
    for (int i = 0; i < splitter->count(); ++i) {
        if (const auto *child = qobject_cast<const Splitter *>(splitter->widget(i)))
            collectSplitterSizes(child, sizes);
    }
}

void collectRaisedWidgets(QWidget *widget, QList<QWidget *> *raised)
{
    if (auto *group = qobject_cast<TabWidget *>(widget)) {
        if (QWidget *page = group->pages()->widget(group->tabBar()->currentIndex()))
            raised->append(page);
    } else if (auto *splitter = qobject_cast<Splitter *>(widget)) {
        for (int i = 0; i < splitter->count(); ++i)
            collectRaisedWidgets(splitter->widget(i), raised);
    }
}

void collectGroups(LayoutRow *row, std::vector<LayoutGroup *> *groups)
{
    if (row->first_group)
        groups->push_back(row->first_group);
    else if (row->first_row)
        collectGroups(row->first_row, groups);
    if (row->second_group)
        groups->push_back(row->second_group);
    else if (row->second_row)
        collectGroups(row->second_row, groups);
}

// What a group or splitter offers its parent: it expands in a direction only
// when all its children do, and asks for the largest of their size hints.
struct Negotiation
{
    bool horizontal = true;
    bool vertical = true;
    QSize hint;

    void add(const QWidget *child)
    {
        const Qt::Orientations expanding = child->sizePolicy().expandingDirections();
        horizontal = horizontal && (expanding & Qt::Horizontal);
        vertical = vertical && (expanding & Qt::Vertical);
        const QSize childHint = child->sizeHint();
        if (childHint.isValid())
            hint = hint.isValid() ? hint.expandedTo(childHint) : childHint;
    }

    // Applies the policy, keeping the stretch factors a parent splitter set.
    void apply(QWidget *widget, QSize *cachedHint) const
    {
        QSizePolicy policy = widget->sizePolicy();
        policy.setHorizontalPolicy(horizontal ? QSizePolicy::Expanding : QSizePolicy::Preferred);
        policy.setVerticalPolicy(vertical ? QSizePolicy::Expanding : QSizePolicy::Preferred);
        widget->setSizePolicy(policy);
        if (hint != *cachedHint) {
            *cachedHint = hint;
            widget->updateGeometry();
        }
    }
};

} // namespace

// ===========================================================================
// Layout

Layout::Layout(Area *area)
    : _area(area), _handle_width(area->style()->pixelMetric(QStyle::PM_SplitterWidth, nullptr, area))
{
}

Layout::~Layout()
{
    delete _top_group;
    if (_top_row)
        deleteRow(_top_row);
}

void Layout::addWidget(QWidget *widget, const QIcon &icon, const QString &label, QWidget *dock,
                       Area::DockPosition position, Area::PositionSpec spec, int size)
{
    const LayoutItem item{widget, icon, label};
    if (dock) {
        const auto it = _groups.find(dock);
        if (it != _groups.end()) {
            LayoutGroup *group = it->second;
            switch (position) {
            case Area::Center:
                group->items.push_back(item);
                _groups[widget] = group;
                break;
            case Area::Right:
                createRow(item, group, Qt::Horizontal, spec, size);
                break;
            case Area::Bottom:
                createRow(item, group, Qt::Vertical, spec, size);
                break;
            }
            return;
        }
    }
    if (_top_group || _top_row)
        throw ZAL_PROG_ERROR("Zal::MainArea::Layout::addWidget",
                             QStringLiteral("Not possible to have more than one central widget"));
    _top_group = new LayoutGroup;
    _top_group->items.push_back(item);
    _groups[widget] = _top_group;
}

void Layout::createRow(const LayoutItem &item, LayoutGroup *group, Qt::Orientation orientation,
                       Area::PositionSpec spec, int size)
{
    auto *newGroup = new LayoutGroup;
    newGroup->items.push_back(item);
    auto *row = new LayoutRow;
    row->orientation = orientation;
    row->first_group = group;
    row->second_group = newGroup;
    _groups[item.widget] = newGroup;

    LayoutRow *parentRow = group->row;
    group->row = row;
    newGroup->row = row;

    QSize available;
    if (parentRow) {
        if (parentRow->first_group == group) {
            parentRow->first_group = nullptr;
            parentRow->first_row = row;
            available = parentRow->first_size;
        } else {
            parentRow->second_group = nullptr;
            parentRow->second_row = row;
            available = parentRow->second_size;
        }
    } else {
        _top_group = nullptr;
        _top_row = row;
        available = _area->size();
    }

    const int length = extent(available, orientation) - _handle_width;
    int first = 0;
    int second = 0;
    if (spec == Area::Characters) {
        const int chars = QFontMetrics(_area->font()).horizontalAdvance(QLatin1Char('X')) * size;
        if (chars > 0) {
            first = chars;
            second = length - chars;
        } else {
            // A negative size is the new widget's share.
            first = length + chars;
            second = -chars;
        }
    } else {
        first = length * size / 100;
        second = length * (100 - size) / 100;
    }

    if (orientation == Qt::Horizontal) {
        row->first_size = QSize(first, available.height());
        row->second_size = QSize(second, available.height());
    } else {
        row->first_size = QSize(available.width(), first);
        row->second_size = QSize(available.width(), second);
    }
    row->first_default_size = row->first_size;
    row->second_default_size = row->second_size;
}

void Layout::deleteRow(LayoutRow *row)
{
    delete row->first_group;
    if (row->first_row)
        deleteRow(row->first_row);
    delete row->second_group;
    if (row->second_row)
        deleteRow(row->second_row);
    delete row;
}

void Layout::restoreStateFromString(const QString &state)
{
    if (!_top_row)
        return;
    KConfig config;
    config.setConfig(state);
    QString version;
    if (!config.readEntry(QStringLiteral("Version"), &version) || version != QLatin1String("3"))
        return;
    QStringList pages;
    QStringList items;
    int count = 0;
    config.readListEntry(QStringLiteral("ShownPages"), pages, &count, ',');
    config.readListEntry(QStringLiteral("SplitterSizes"), items, &count, ',');

    QList<QList<int> > sizes;
    sizes.reserve(items.size());
    for (const QString &item : items) {
        QList<int> numbers;
        const QStringList parts = item.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (const QString &part : parts)
            numbers.append(part.toInt());
        sizes.append(numbers);
    }
    int next = 0;
    setSplitterSizes(_top_row, sizes, &next);
    raisePages(pages);
}

void Layout::raisePage(LayoutGroup *group, const QHash<QString, int> &lastIndexOfName)
{
    // The name that comes last in the list wins.
    int best = -1;
    for (const LayoutItem &item : group->items) {
        if (!item.widget)
            continue;
        const auto it = lastIndexOfName.find(item.widget->objectName());
        if (it != lastIndexOfName.end() && *it > best) {
            best = *it;
            group->raised_widget = item.widget;
        }
    }
}

void Layout::raisePages(const QStringList &names)
{
    QHash<QString, int> lastIndexOfName;
    for (int i = 0; i < names.size(); ++i)
        lastIndexOfName.insert(names.at(i), i);
    std::vector<LayoutGroup *> groups;
    if (_top_group)
        groups.push_back(_top_group);
    else if (_top_row)
        collectGroups(_top_row, &groups);
    for (LayoutGroup *group : groups)
        raisePage(group, lastIndexOfName);
}

void Layout::setSplitterSizes(LayoutRow *row, const QList<QList<int> > &sizes, int *next)
{
    if (*next >= sizes.size())
        return;
    const QList<int> &item = sizes.at((*next)++);
    if (item.size() != 2)
        return;
    if (row->orientation == Qt::Horizontal) {
        row->first_size.setWidth(item.at(0));
        row->second_size.setWidth(item.at(1));
    } else {
        row->first_size.setHeight(item.at(0));
        row->second_size.setHeight(item.at(1));
    }
    if (row->first_row)
        setSplitterSizes(row->first_row, sizes, next);
    if (row->second_row)
        setSplitterSizes(row->second_row, sizes, next);
}

// ===========================================================================
// Area

Area::Area(QWidget *parent) : QWidget(parent)
{
    if (QCoreApplication *app = QCoreApplication::instance())
        app->installEventFilter(this);
}

Area::~Area()
{
    if (QCoreApplication *app = QCoreApplication::instance())
        app->removeEventFilter(this);
    // The view widgets die with the area now; that is no error.
    for (QWidget *widget : std::as_const(_managed))
        disconnect(widget, &QObject::destroyed, this, &Area::widgetDestroyed);
    _managed.clear();
    _building = true;
}

void Area::addWidgets(Layout *layout)
{
    static const char *const FUNCTION = "Zal::MainArea::Area::addWidgets";
    if (_root)
        throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("There are already children"));

    _building = true;
    hide();
    try {
        if (layout->topGroup())
            _root = createTabWidget(layout->topGroup(), this);
        else if (layout->topRow())
            _root = createSplitter(layout->topRow(), this);
        else
            throw ZAL_PROG_ERROR(FUNCTION, QStringLiteral("Invalid layout"));
    } catch (...) {
        // Give back what was placed and drop the half-built tree.
        for (QWidget *widget : std::as_const(_managed)) {
            disconnect(widget, &QObject::destroyed, this, &Area::widgetDestroyed);
            widget->hide();
            widget->setParent(nullptr);
        }
        _managed.clear();
        const QObjectList children = this->children();
        for (QObject *child : children) {
            if (qobject_cast<Splitter *>(child) || qobject_cast<TabWidget *>(child))
                delete child;
        }
        _building = false;
        throw;
    }

    delete QWidget::layout();
    auto *box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(_root);
    show();
    _building = false;
}

TabWidget *Area::createTabWidget(const LayoutGroup *group, QWidget *parent)
{
    auto *tabWidget = new TabWidget(parent);
    for (const LayoutItem &item : group->items) {
        tabWidget->insertTab(item.widget, item.icon, item.label);
        _managed.append(item.widget);
        connect(item.widget, &QObject::destroyed, this, &Area::widgetDestroyed, Qt::UniqueConnection);
    }
    if (group->raised_widget)
        tabWidget->setCurrentPage(group->raised_widget);
    // Negotiate once now, bottom-up: layout requests only reach visible
    // widgets, and maximising must already see the right policies.
    tabWidget->negotiateSize();
    return tabWidget;
}

Splitter *Area::createSplitter(const LayoutRow *row, QWidget *parent)
{
    auto *splitter = new Splitter(row->orientation, parent);
    const std::pair<LayoutGroup *, LayoutRow *> parts[2] = {{row->first_group, row->first_row},
                                                            {row->second_group, row->second_row}};
    for (const auto &[group, childRow] : parts) {
        if (group)
            splitter->addWidget(createTabWidget(group, splitter));
        else if (childRow)
            splitter->addWidget(createSplitter(childRow, splitter));
        else
            throw ZAL_PROG_ERROR("Zal::MainArea::Area::addWidgets", QStringLiteral("Invalid group"));
    }
    splitter->setDefaultSizes({extent(row->first_default_size, row->orientation),
                               extent(row->second_default_size, row->orientation)});
    splitter->setSizes(boundedSizes({extent(row->first_size, row->orientation),
                                     extent(row->second_size, row->orientation)}));
    splitter->negotiateSize();
    return splitter;
}

void Area::detachWidgets()
{
    for (QWidget *widget : std::as_const(_managed)) {
        disconnect(widget, &QObject::destroyed, this, &Area::widgetDestroyed);
        widget->hide();
        widget->setParent(nullptr);
    }
    _managed.clear();
    _selected = nullptr;
    // No focus tracking while the groups are torn down.
    const bool building = std::exchange(_building, true);
    delete std::exchange(_root, nullptr);
    delete QWidget::layout();
    _building = building;
}

void Area::deleteWidgets()
{
    for (QWidget *widget : std::as_const(_managed))
        disconnect(widget, &QObject::destroyed, this, &Area::widgetDestroyed);
    _managed.clear();
    _selected = nullptr;
    const bool building = std::exchange(_building, true);
    delete std::exchange(_root, nullptr);
    delete QWidget::layout();
    _building = building;
}

TabWidget *Area::groupForWidget(QWidget *widget) const
{
    if (!widget)
        return nullptr;
    QWidget *stack = widget->parentWidget();
    if (!qobject_cast<WidgetStack *>(stack))
        return nullptr;
    auto *group = qobject_cast<TabWidget *>(stack->parentWidget());
    return group && isAncestorOf(group) ? group : nullptr;
}

QWidget *Area::widgetFor(QWidget *widget) const
{
    for (QWidget *w = widget; w; w = w->parentWidget()) {
        if (groupForWidget(w))
            return w;
    }
    return nullptr;
}

void Area::raiseWidget(QWidget *widget)
{
    if (TabWidget *group = groupForWidget(widget))
        group->setCurrentPage(widget);
}

void Area::lowerWidget(QWidget *widget)
{
    TabWidget *group = groupForWidget(widget);
    if (!group || group->currentPage() != widget)
        return;
    const int index = group->indexOf(widget);
    if (QWidget *other = group->pages()->widget(index == 0 ? 1 : index - 1))
        group->setCurrentPage(other);
}

QString Area::tabLabel(QWidget *widget)
{
    TabWidget *group = groupForWidget(widget);
    return group ? group->tabLabel(widget) : QString();
}

void Area::setTabLabel(QWidget *widget, const QString &label)
{
    if (TabWidget *group = groupForWidget(widget))
        group->setTabLabel(widget, label);
}

bool Area::isMaximizable(QWidget *widget) const
{
    return groupForWidget(widget)
           && widget->sizePolicy().expandingDirections() == (Qt::Horizontal | Qt::Vertical);
}

void Area::maximizeWidget(QWidget *widget)
{
    if (_maximized || !isMaximizable(widget))
        return;
    TabWidget *group = groupForWidget(widget);
    const QList<QList<int> > sizes = splitterSizes();

    const auto expandsAlong = [](const Splitter *splitter) {
        const QSizePolicy policy = splitter->sizePolicy();
        return (splitter->orientation() == Qt::Horizontal ? policy.horizontalPolicy()
                                                          : policy.verticalPolicy())
               == QSizePolicy::Expanding;
    };
    QWidget *child = group;
    auto *splitter = qobject_cast<Splitter *>(child->parentWidget());
    if (!splitter || !expandsAlong(splitter))
        return;
    for (; splitter && expandsAlong(splitter);
         child = splitter, splitter = qobject_cast<Splitter *>(splitter->parentWidget())) {
        for (int i = 0; i < splitter->count(); ++i) {
            QWidget *sibling = splitter->widget(i);
            sibling->setVisible(sibling == child);
        }
    }
    group->setCurrentPage(widget);
    _saved_sizes = sizes;
    _maximized = true;
}

void Area::unmaximizeWidget()
{
    if (!_maximized)
        return;
    const QList<Splitter *> splitters = findChildren<Splitter *>();
    for (Splitter *splitter : splitters) {
        for (int i = 0; i < splitter->count(); ++i)
            splitter->widget(i)->show();
    }
    const QList<QList<int> > saved = _saved_sizes;
    setSplitterSizes(saved);
}

void Area::restoreDefaultSplitterSizes()
{
    const QList<Splitter *> splitters = findChildren<Splitter *>();
    for (Splitter *splitter : splitters) {
        for (int i = 0; i < splitter->count(); ++i)
            splitter->widget(i)->show();
        splitter->setSizes(splitter->defaultSizes());
    }
}

QList<QWidget *> Area::raisedWidgets()
{
    QList<QWidget *> raised;
    if (_root)
        collectRaisedWidgets(_root, &raised);
    return raised;
}

QStringList Area::raisedWidgetsAsStringList()
{
    QStringList names;
    const QList<QWidget *> raised = raisedWidgets();
    for (const QWidget *widget : raised)
        names.append(widget->objectName());
    return names;
}

QList<QList<int> > Area::splitterSizes() const
{
    QList<QList<int> > sizes;
    if (const auto *splitter = qobject_cast<const Splitter *>(_root))
        collectSplitterSizes(splitter, &sizes);
    return sizes;
}

QList<QList<int> > Area::splitterSizes(Splitter *splitter)
{
    QList<QList<int> > sizes;
    if (splitter)
        collectSplitterSizes(splitter, &sizes);
    return sizes;
}

QStringList Area::splitterSizesAsStringList()
{
    // While maximised the live sizes are those of the maximised state; what
    // is worth keeping are the sizes from before.
    const QList<QList<int> > sizes = _maximized ? _saved_sizes : splitterSizes();
    QStringList items;
    items.reserve(sizes.size());
    for (const QList<int> &splitter : sizes) {
        QString item;
        for (const int size : splitter) {
            item += QString::number(size);
            item += QLatin1Char(' ');
        }
        items.append(item);
    }
    return items;
}

void Area::setSplitterSizes(const QList<QList<int> > &sizes)
{
    QList<QList<int> > remaining = sizes;
    if (auto *splitter = qobject_cast<Splitter *>(_root))
        setSplitterSizes(splitter, &remaining);
    _saved_sizes.clear();
    _maximized = false;
}

void Area::setSplitterSizes(Splitter *splitter, QList<QList<int> > *sizes)
{
    if (!splitter || sizes->isEmpty())
        return;
    splitter->setSizes(boundedSizes(sizes->takeFirst()));
    for (int i = 0; i < splitter->count(); ++i) {
        if (auto *child = qobject_cast<Splitter *>(splitter->widget(i)))
            setSplitterSizes(child, sizes);
    }
}

QString Area::saveStateToString()
{
    KConfig config;
    config.writeEntry(QStringLiteral("Version"), QStringLiteral("3"));
    config.writeEntry(QStringLiteral("ShownPages"), raisedWidgetsAsStringList(), ',');
    config.writeEntry(QStringLiteral("SplitterSizes"), splitterSizesAsStringList(), ',');
    return config.getConfig();
}

bool Area::eventFilter(QObject *watched, QEvent *event)
{
    if (_building || !watched->isWidgetType())
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        focusIn(static_cast<QWidget *>(watched));
        break;
    case QEvent::FocusOut:
        deactivateGroups();
        break;
    case QEvent::Show:
    case QEvent::Hide: {
        auto *widget = static_cast<QWidget *>(watched);
        if (groupForWidget(widget))
            emit widgetVisibilityChanged(widget);
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void Area::focusIn(QWidget *widget)
{
    QWidget *page = nullptr;
    TabWidget *group = nullptr;
    for (QWidget *w = widget; w && w != this; w = w->parentWidget()) {
        QWidget *parent = w->parentWidget();
        if (auto *tabWidget = qobject_cast<TabWidget *>(parent)) {
            group = tabWidget;
            break;
        }
        if (qobject_cast<WidgetStack *>(parent) && qobject_cast<TabWidget *>(parent->parentWidget()))
            page = w;
    }
    if (!group || !page || !isAncestorOf(group))
        return;
    group->tabBar()->setActive(true);
    group->setActive(true);
    _selected = page;
    emit widgetSelected(page);
}

void Area::deactivateGroups()
{
    const QList<TabWidget *> groups = findChildren<TabWidget *>();
    for (TabWidget *group : groups) {
        group->tabBar()->setActive(false);
        group->setActive(false);
    }
}

void Area::widgetDestroyed()
{
    // A view widget deleted behind the area's back leaves a group whose tabs
    // and pages no longer match.
    const QObject *dead = sender();
    for (const QWidget *widget : std::as_const(_managed)) {
        if (static_cast<const QObject *>(widget) == dead)
            throw ZAL_PROG_ERROR("Zal::MainArea::Area::widgetDestroyed",
                                 QStringLiteral("Widget was destroyed while still in main area"));
    }
}

// ===========================================================================
// Splitter

Splitter::Splitter(Qt::Orientation orientation, QWidget *parent) : QSplitter(orientation, parent) {}

Splitter::~Splitter() = default;

void Splitter::negotiateSize()
{
    Negotiation negotiation;
    for (int i = 0; i < count(); ++i)
        negotiation.add(widget(i));
    negotiation.apply(this, &_size_hint);
    for (int i = 0; i < count(); ++i) {
        const Qt::Orientations expanding = widget(i)->sizePolicy().expandingDirections();
        setStretchFactor(i, (expanding & orientation()) ? 1 : 0);
    }
}

bool Splitter::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest)
        negotiateSize();
    return QSplitter::event(event);
}

QSize Splitter::sizeHint() const
{
    return _size_hint.isValid() ? _size_hint : QSplitter::sizeHint();
}

// ===========================================================================
// TabBar

TabBar::TabBar(QWidget *parent) : QTabBar(parent)
{
    const QList<QToolButton *> buttons = findChildren<QToolButton *>(Qt::FindDirectChildrenOnly);
    if (buttons.size() != 2)
        throw ZAL_PROG_ERROR("Zal::MainArea::TabBar::TabBar", QStringLiteral("Tabbar scrollers not found"));
    for (int i = 0; i < 2; ++i) {
        _scroll_buttons[i] = buttons.at(i);
        _scroll_buttons[i]->installEventFilter(this);
        connect(_scroll_buttons[i], &QToolButton::clicked, this, &TabBar::layoutChanged);
    }
    setFocusPolicy(Qt::NoFocus);
}

TabBar::~TabBar() = default;

void TabBar::setActive(bool active)
{
    if (_active == active)
        return;
    _active = active;
    update();
}

int TabBar::tabsEnd() const
{
    const QToolButton *first = _scroll_buttons[0];
    return first && first->isVisible() ? first->x() : width();
}

bool TabBar::eventFilter(QObject *watched, QEvent *event)
{
    // Scroll buttons span the whole bar except the base line.
    if (event->type() == QEvent::Resize && !_in_resize
        && (watched == _scroll_buttons[0] || watched == _scroll_buttons[1])) {
        auto *button = static_cast<QToolButton *>(watched);
        _in_resize = true;
        button->setGeometry(button->x(), 0, button->width(), height() - 1);
        _in_resize = false;
    }
    return QTabBar::eventFilter(watched, event);
}

QSize TabBar::minimumSizeHint() const
{
    return QSize(2 * _scroll_buttons[0]->width() + 20, height());
}

int TabBar::tabAtPoint(const QPoint &pos) const
{
    const int current = currentIndex();
    if (current >= 0 && tabRect(current).contains(pos))
        return current;
    for (int i = 0; i < count(); ++i) {
        if (isTabEnabled(i) && tabRect(i).contains(pos))
            return i;
    }
    return -1;
}

void TabBar::mousePressEvent(QMouseEvent *event)
{
    QTabBar::mousePressEvent(event);
    if (event->button() != Qt::LeftButton
        || style()->styleHint(QStyle::SH_TabBar_SelectMouseType, nullptr, this) != QEvent::MouseButtonPress)
        return;
    const int index = tabAtPoint(event->position().toPoint());
    if (index >= 0 && isTabEnabled(index))
        emit mouseSelected(index);
}

void TabBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const int w = width();
    const int h = height();
    const int end = tabsEnd();
    const int current = currentIndex();
    const QColor dark = palette().color(QPalette::Dark);
    for (int i = 0; i < count(); ++i) {
        const QRect r = tabRect(i);
        const int x = qMin(r.right(), end - 1);
        const bool isCurrent = i == current;
        const bool highlighted = isCurrent && _active;
        painter.setPen(highlighted ? GApp::RynStyle::focus_color : dark);
        if (x > r.left()) {
            painter.drawLine(x, 0, x, r.bottom());
            if (highlighted && i > 0)
                painter.drawLine(r.left() - 1, 0, r.left() - 1, r.bottom());
        }
        if (isCurrent) {
            // The current tab stays open toward its page.
            if (r.left() > 0)
                painter.drawLine(0, h - 1, r.left() - 1, h - 1);
            painter.drawLine(x, h - 1, w, h - 1);
        }
        QStyleOptionTab option;
        option.initFrom(this);
        option.rect = r;
        option.icon = tabIcon(i);
        option.iconSize = iconSize();
        option.text = tabText(i);
        option.shape = shape();
        option.row = 0;
        option.position = QStyleOptionTab::Middle;
        option.selectedPosition = QStyleOptionTab::NotAdjacent;
        if (isCurrent)
            option.state |= QStyle::State_Selected;
        if (highlighted)
            option.palette.setColor(QPalette::WindowText, GApp::RynStyle::focus_color);
        style()->drawControl(QStyle::CE_TabBarTabLabel, &option, &painter, this);
    }
}

QSize TabBar::tabSizeHint(int index) const
{
    // The style reserves room for text beside an icon; icon-only tabs do
    // without it.
    QSize size = QTabBar::tabSizeHint(index);
    if (!tabIcon(index).isNull())
        size.rwidth() -= 8;
    return size;
}

void TabBar::tabLayoutChange()
{
    QTabBar::tabLayoutChange();
    emit layoutChanged();
}

// ===========================================================================
// WidgetStack

WidgetStack::WidgetStack(QWidget *parent) : QStackedWidget(parent)
{
    setObjectName(QStringLiteral("main area tabwidget pages"));
}

WidgetStack::~WidgetStack() = default;

// ===========================================================================
// TabWidget

TabWidget::TabWidget(QWidget *parent) : QFrame(parent), _tab_bar(new TabBar(this)), _stack(new WidgetStack(this))
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    setLineWidth(1);
    setFocusPolicy(Qt::NoFocus);
    setFocusProxy(_tab_bar);

    auto *grid = new QGridLayout(this);
    grid->setSpacing(0);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(_tab_bar, 0, 0);
    grid->addWidget(_stack, 1, 0, 1, 2);
    grid->setColumnStretch(1, 1);

    connect(_tab_bar, &QTabBar::currentChanged, this, &TabWidget::showTab);
    connect(_tab_bar, &TabBar::mouseSelected, this, &TabWidget::ensureFocus);
    connect(_tab_bar, &TabBar::layoutChanged, this, qOverload<>(&QWidget::update));
}

TabWidget::~TabWidget() = default;

int TabWidget::insertTab(QWidget *page, const QIcon &icon, const QString &label)
{
    // The page goes first, so that the tab bar's first currentChanged
    // already finds it.
    const int pageIndex = _stack->addWidget(page);
    int tabIndex;
    if (!icon.isNull()) {
        tabIndex = _tab_bar->addTab(icon, QString());
        _tab_bar->setTabToolTip(tabIndex, label);
    } else {
        tabIndex = _tab_bar->addTab(label);
    }
    if (tabIndex != pageIndex)
        throw ZAL_PROG_ERROR("Zal::MainArea::TabWidget::insertTab", QStringLiteral("mismatch of tabs and stack!"));
    if (icon.isNull() && label.isEmpty())
        _tab_bar->hide();
    return tabIndex;
}

int TabWidget::indexOf(QWidget *page) const
{
    return _stack->indexOf(page);
}

QWidget *TabWidget::currentPage() const
{
    return _stack->currentWidget();
}

void TabWidget::setCurrentPage(QWidget *page)
{
    const int index = indexOf(page);
    if (index < 0)
        return;
    _tab_bar->setCurrentIndex(index);
    _stack->setCurrentIndex(index);
}

QString TabWidget::tabLabel(QWidget *page) const
{
    const int index = indexOf(page);
    return index < 0 ? QString() : _tab_bar->tabText(index);
}

void TabWidget::setTabLabel(QWidget *page, const QString &label)
{
    const int index = indexOf(page);
    if (index < 0)
        return;
    _tab_bar->setTabText(index, label);
    update();
}

void TabWidget::setActive(bool active)
{
    _active = active;
    update();
}

void TabWidget::negotiateSize()
{
    Negotiation negotiation;
    for (int i = 0; i < _stack->count(); ++i)
        negotiation.add(_stack->widget(i));
    negotiation.apply(this, &_size_hint);
}

bool TabWidget::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest)
        negotiateSize();
    return QFrame::event(event);
}

QSize TabWidget::sizeHint() const
{
    return _size_hint.isValid() ? _size_hint : QFrame::sizeHint();
}

void TabWidget::showTab(int index)
{
    _stack->setCurrentIndex(index);
    emit currentChanged(_stack->widget(index));
}

void TabWidget::ensureFocus(int index)
{
    if (QWidget *page = _stack->widget(index)) {
        QWidget *focus = QApplication::focusWidget();
        if (!focus || (focus != page && !page->isAncestorOf(focus)))
            page->setFocus(Qt::MouseFocusReason);
    }
    update();
}

void TabWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect f = frameRect();
    const QRect t = _tab_bar->geometry();
    const int current = _tab_bar->currentIndex();
    painter.setPen(palette().color(QPalette::Dark));
    painter.drawRect(f.adjusted(0, 0, -1, -1));
    if (_active && current >= 0)
        painter.setPen(GApp::RynStyle::focus_color);
    if (_tab_bar->isHidden()) {
        // Without tabs the whole frame shows the focus.
        painter.drawRect(f.adjusted(0, 0, -1, -1));
        return;
    }
    const QPoint outline[] = {{f.left(), t.bottom()},  {f.left(), f.bottom()},
                              {f.right(), f.bottom()}, {f.right(), t.bottom()},
                              {t.right() + 1, t.bottom()}};
    painter.drawPolyline(outline, 5);
    if (current == 0)
        painter.drawLine(f.left(), t.bottom() - 1, f.left(), 0);
    if (current >= 0) {
        const QRect r = _tab_bar->tabRect(current);
        const int x = qMin(r.right(), _tab_bar->tabsEnd() - 1);
        if (x > r.left() - 1)
            painter.drawLine(r.left(), 0, x + 1, 0);
    }
}

} // namespace Zal::MainArea
