#pragma once
#include "gapp_export.h"
#include "gapp_view_widget.h"
#include <QPointer>
#include <QStackedWidget>
#include <QString>
#include <vector>

namespace Zal::GApp {

// A view widget that holds several other registered view widgets and shows
// one of them. Registered like any view widget creator; the actual index
// chooses the inner widget shown, also before the container exists.
class GAPP_EXPORT ContainerWidgetCreator : public ViewWidgetCreator
{
public:
    ContainerWidgetCreator(const QString &name, const QString &displayName, const char *iconName,
                           std::vector<QString> widgetNames);

    QWidget *createWidget(QWidget *parent) override;
    const std::vector<QString> &getAllWidgetNames() const { return _widget_names; }
    // The inner widget at the actual index, or null while no container exists.
    QWidget *getActualWidget() const;
    void setActualWidget(const QString &name);

private:
    void setActualWidget(unsigned int index);

    std::vector<QString> _widget_names;
    unsigned int _actual_index = 0;
};

// The widget of a ContainerWidgetCreator: a stack whose pages are the inner
// view widgets, created through the registry and owned as children. To the
// active-view tracking it stands for its current inner widget.
class GAPP_EXPORT ContainerWidget : public QStackedWidget
{
    Q_OBJECT

public:
    ContainerWidget(const std::vector<QString> &widgetNames, QWidget *parent);
    ~ContainerWidget() override;

    void showWidget(unsigned int index);
    QWidget *getWidget(unsigned int index) const;
    QWidget *getCurrentWidget() const;
    // Large enough for every inner widget, shown or not.
    QSize minimumSizeHint() const override;

private:
    // Guarded: an inner widget may be deleted directly by the registry.
    std::vector<QPointer<QWidget> > _widgets;
    unsigned int _current_index = 0;
};

} // namespace Zal::GApp
