#include "demo_views.h"
#include "demo_document.h"
#include "gapp_main_window.h"
#include <QApplication>
#include <QPainter>
#include <algorithm>

namespace Demo {

PointView::PointView(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("view3d"));
    setFocusPolicy(Qt::StrongFocus);
    connect(&Document::instance(), &Document::changed, this, qOverload<>(&QWidget::update));
}

void PointView::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.fillRect(rect(), QColor(28, 32, 40));
    p.setRenderHint(QPainter::Antialiasing);
    const auto &points = Document::instance().points();
    // Isometric projection, scaled to fit the widget.
    auto project = [](const QVector3D &v) {
        return QPointF(double(v.x() - v.y()) * 0.866, double(v.x() + v.y()) * 0.5 - double(v.z()));
    };
    QRectF box;
    for (const QVector3D &v : points)
        box = box.isNull() ? QRectF(project(v), QSizeF(0.001, 0.001)) : box.united(QRectF(project(v), QSizeF(0.001, 0.001)));
    if (Document::instance().grid()) {
        p.setPen(QColor(60, 66, 80));
        for (int x = 0; x < width(); x += 20)
            p.drawLine(x, 0, x, height());
        for (int y = 0; y < height(); y += 20)
            p.drawLine(0, y, width(), y);
    }
    if (points.empty()) {
        p.setPen(Qt::lightGray);
        p.drawText(rect(), Qt::AlignCenter, tr("no points loaded"));
        return;
    }
    const double scale = 0.8 * std::min(width() / std::max(box.width(), 1.0), height() / std::max(box.height(), 1.0));
    const QPointF offset = QPointF(width() / 2.0, height() / 2.0) - box.center() * scale;
    p.setPen(QPen(QColor(120, 200, 255), 1.5));
    const size_t half = points.size() / 2;
    for (size_t i = 0; i < points.size(); ++i) {
        // The demo's parts are prisms: a base ring, a top ring and the edges between.
        const size_t ring = i < half ? 0 : half;
        const size_t next = ring + (i - ring + 1) % std::max<size_t>(half, 1);
        if (next < points.size())
            p.drawLine(offset + project(points[i]) * scale, offset + project(points[next]) * scale);
        if (i < half && i + half < points.size())
            p.drawLine(offset + project(points[i]) * scale, offset + project(points[i + half]) * scale);
    }
    p.setBrush(QColor(255, 190, 60));
    for (size_t i = 0; i < points.size(); ++i) {
        const QPointF at = offset + project(points[i]) * scale;
        p.drawEllipse(at, 4, 4);
        p.drawText(at + QPointF(6, -6), QString::number(i + 1));
    }
}

ElementList::ElementList(QWidget *parent) : QListWidget(parent)
{
    setObjectName(QStringLiteral("elements"));
    connect(&Document::instance(), &Document::changed, this, &ElementList::refill);
    refill();
}

void ElementList::refill()
{
    clear();
    int n = 0;
    for (const QVector3D &p : Document::instance().points())
        addItem(QStringLiteral("P%1  %2  %3  %4").arg(++n).arg(double(p.x()), 8, 'f', 3)
                    .arg(double(p.y()), 8, 'f', 3).arg(double(p.z()), 8, 'f', 3));
}

namespace {
// The log outlives its page: a view switch deletes and re-creates the widget.
QStringList &logLines()
{
    static QStringList lines;
    return lines;
}
} // namespace

LogView::LogView(QWidget *parent) : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("log"));
    setReadOnly(true);
    for (const QString &line : logLines())
        appendPlainText(line);
}

void LogView::attach(Zal::GApp::MainWindow *window)
{
    auto add = [](const QString &line) {
        logLines().append(line);
        for (QWidget *w : QApplication::allWidgets())
            if (auto *log = qobject_cast<LogView *>(w))
                log->appendPlainText(line);
    };
    QObject::connect(window, &Zal::GApp::MainWindow::menuCommandFinishedSignal, window,
                     [add](const QString &name) { add(QObject::tr("ran %1").arg(name)); });
    QObject::connect(window, &Zal::GApp::MainWindow::recordMacroSignal, window,
                     [add](const QString &name, const QString &params) {
                         add(QObject::tr("recorded %1 %2").arg(name, params));
                     });
}

} // namespace Demo

#include "gapp_container_widget.h"
#include "gapp_view_widget.h"
#include <QTableWidget>
#include <functional>

namespace Demo {

namespace {

class ViewCreator : public Zal::GApp::ViewWidgetCreator
{
public:
    ViewCreator(const QString &name, const QString &title, const char *icon,
                std::function<QWidget *(QWidget *)> make)
        : ViewWidgetCreator(name, title, icon), _make(std::move(make))
    {
    }
    QWidget *createWidget(QWidget *parent) override { return _make(parent); }

private:
    std::function<QWidget *(QWidget *)> _make;
};

// The point editor: one row per point, kept in step with the document.
QWidget *makePointEditor(QWidget *parent)
{
    auto *table = new QTableWidget(0, 3, parent);
    table->setHorizontalHeaderLabels({QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")});
    auto refill = [table] {
        const auto &points = Document::instance().points();
        table->setRowCount(int(points.size()));
        for (int i = 0; i < int(points.size()); ++i)
            for (int c = 0; c < 3; ++c)
                table->setItem(i, c, new QTableWidgetItem(QString::number(double(points[size_t(i)][c]))));
    };
    QObject::connect(&Document::instance(), &Document::changed, table, refill);
    refill();
    return table;
}

} // namespace

void registerViews()
{
    new ViewCreator(QStringLiteral("view3d"), QObject::tr("3-D view"), "act_measure",
                    [](QWidget *p) { return new PointView(p); });
    new ViewCreator(QStringLiteral("elements"), QObject::tr("Elements"), "act_examine",
                    [](QWidget *p) { return new ElementList(p); });
    new ViewCreator(QStringLiteral("log"), QObject::tr("Log"), nullptr,
                    [](QWidget *p) { return new LogView(p); });
    new ViewCreator(QStringLiteral("editor_points"), QObject::tr("Point editor"), nullptr, makePointEditor);
    new ViewCreator(QStringLiteral("editor_notes"), QObject::tr("Notes"), nullptr,
                    [](QWidget *p) { return new QPlainTextEdit(p); });
    new Zal::GApp::ContainerWidgetCreator(QStringLiteral("editors"), QObject::tr("Editors"), nullptr,
                                          {QStringLiteral("editor_points"), QStringLiteral("editor_notes")});
}

} // namespace Demo
