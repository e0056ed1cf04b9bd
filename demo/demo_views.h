#pragma once
// The demo's view widgets: a 3-D view of the probed points, the element list
// and a log of what ran.
#include <QListWidget>
#include <QPlainTextEdit>
#include <QWidget>

namespace Zal::GApp {
class MainWindow;
}

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

// Every command that ran from the GUI and every recorded macro line.
class LogView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit LogView(QWidget *parent = nullptr);
    // Starts logging what the main window reports.
    static void attach(Zal::GApp::MainWindow *window);
};

} // namespace Demo

namespace Demo {
// Registers the demo's view widgets and the editors container with the
// library; the library deletes the creators at shut-down.
void registerViews();
} // namespace Demo
