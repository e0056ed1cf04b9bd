#include "demo_views.h"
#include "demo_document.h"
#include "gapp_main_window.h"
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

LogView::LogView(QWidget *parent) : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("log"));
    setReadOnly(true);
    if (auto *w = Zal::GApp::MainWindow::main_win) {
        connect(w, &Zal::GApp::MainWindow::menuCommandFinishedSignal, this,
                [this](const QString &name) { appendPlainText(tr("ran %1").arg(name)); });
        connect(w, &Zal::GApp::MainWindow::recordMacroSignal, this,
                [this](const QString &name, const QString &params) {
                    appendPlainText(tr("recorded %1 %2").arg(name, params));
                });
    }
}

} // namespace Demo
