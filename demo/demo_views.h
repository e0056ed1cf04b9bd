#pragma once
// The demo's view widgets: a 3-D view of the probed points, the element list
// and a log of what ran.
#include <QListWidget>
#include <QPlainTextEdit>
#include <QWidget>

namespace Demo {

// Draws the points in an isometric projection, with an optional grid.
class PointView : public QWidget
{
    Q_OBJECT
public:
    explicit PointView(QWidget *parent = nullptr);
    QSize sizeHint() const override { return {480, 360}; }

protected:
    void paintEvent(QPaintEvent *event) override;
};

// One row per probed point.
class ElementList : public QListWidget
{
    Q_OBJECT
public:
    explicit ElementList(QWidget *parent = nullptr);

private:
    void refill();
};

// Every command that ran, with its result.
class LogView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit LogView(QWidget *parent = nullptr);
};

} // namespace Demo
