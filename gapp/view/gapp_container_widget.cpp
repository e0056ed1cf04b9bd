#include "gapp_container_widget.h"
#include "gapp_documentation.h"
#include "zal_exception.h"

namespace Zal::GApp {

// ---------------------------------------------------------------------------
// ContainerWidgetCreator

ContainerWidgetCreator::ContainerWidgetCreator(const QString &name, const QString &displayName,
                                               const char *iconName, std::vector<QString> widgetNames)
    : ViewWidgetCreator(name, displayName, iconName), _widget_names(std::move(widgetNames))
{
}

QWidget *ContainerWidgetCreator::createWidget(QWidget *parent)
{
    auto *container = new ContainerWidget(_widget_names, parent);
    container->showWidget(_actual_index);
    return container;
}

QWidget *ContainerWidgetCreator::getActualWidget() const
{
    auto *container = qobject_cast<ContainerWidget *>(getWidget());
    return container ? container->getWidget(_actual_index) : nullptr;
}

void ContainerWidgetCreator::setActualWidget(const QString &name)
{
    for (size_t i = 0; i < _widget_names.size(); ++i) {
        if (_widget_names[i] == name) {
            setActualWidget(static_cast<unsigned int>(i));
            return;
        }
    }
    throw ZAL_PROG_ERROR("Zal::GApp::ContainerWidgetCreator::setActualWidget",
                         QStringLiteral("cannot set widget with name '%1'").arg(name));
}

void ContainerWidgetCreator::setActualWidget(unsigned int index)
{
    if (index >= _widget_names.size())
        throw ZAL_PROG_ERROR("Zal::GApp::ContainerWidgetCreator::setActualWidget",
                             QStringLiteral("Wrong index for actual widget!"));
    _actual_index = index;
    if (auto *container = qobject_cast<ContainerWidget *>(getWidget()))
        container->showWidget(index);
}

// ---------------------------------------------------------------------------
// ContainerWidget

ContainerWidget::ContainerWidget(const std::vector<QString> &widgetNames, QWidget *parent)
    : QStackedWidget(parent)
{
    for (const QString &name : widgetNames) {
        QWidget *widget = ViewWidgetContainer::createWidget(this, name);
        // An unregistered name still takes its page, so that the indices of
        // the pages stay those of the names.
        if (!widget)
            widget = new QWidget(this);
        widget->setObjectName(name);
        _widgets.emplace_back(widget);
        addWidget(widget);
    }
}

ContainerWidget::~ContainerWidget()
{
    for (const QPointer<QWidget> &widget : _widgets)
        ViewWidgetContainer::widgetWasDestroyed(widget.data());
    _widgets.clear();
}

void ContainerWidget::showWidget(unsigned int index)
{
    if (index >= _widgets.size())
        throw ZAL_PROG_ERROR("Zal::GApp::ContainerWidget::showWidget", QStringLiteral("Index is too high"));
    Documentation::unregisterId(this);
    QWidget *widget = _widgets[index];
    if (widget)
        setCurrentWidget(widget);
    _current_index = index;
    // Context help on the container shows the page of the widget it shows.
    const QString id = Documentation::getId(widget);
    if (!id.isEmpty())
        Documentation::registerId(this, id);
}

QWidget *ContainerWidget::getWidget(unsigned int index) const
{
    if (index >= _widgets.size())
        throw ZAL_PROG_ERROR("Zal::GApp::ContainerWidget::getWidget", QStringLiteral("Index is too high!"));
    return _widgets[index];
}

QWidget *ContainerWidget::getCurrentWidget() const
{
    return _current_index < _widgets.size() ? _widgets[_current_index].data() : nullptr;
}

QSize ContainerWidget::minimumSizeHint() const
{
    QSize size(0, 0);
    for (const QPointer<QWidget> &widget : _widgets) {
        if (widget)
            size = size.expandedTo(widget->minimumSizeHint());
    }
    return size;
}

} // namespace Zal::GApp
