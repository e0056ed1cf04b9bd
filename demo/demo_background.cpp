#include "demo_background.h"
#include "demo_command.h"
#include "demo_document.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_parse.h"
#include "zal_progress.h"
#include "zal_thread.h"
#include <QProgressBar>
#include <QStatusBar>
#include <QVector3D>
#include <algorithm>
#include <cmath>
#include <vector>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

namespace {

// Least squares z = a x + b y + c over the points, then the flatness: the
// spread of the residuals. Reads only its own copy of the points.
class FitPlaneThread : public Thread
{
public:
    explicit FitPlaneThread(std::vector<QVector3D> points)
        : Thread(DONT_LOCK_GUI, "FitPlaneThread", __FILE__, __LINE__), _points(std::move(points))
    {
    }

    bool solved = false;
    double flatness = 0;

protected:
    void run() override
    {
        const size_t n = _points.size();
        // First half of the bar: the sums of the normal equations.
        Progress::setProgressRange(0, 50);
        double sxx = 0, sxy = 0, syy = 0, sx = 0, sy = 0, sxz = 0, syz = 0, sz = 0;
        for (size_t i = 0; i < n; ++i) {
            if (Progress::getAbortFlag())
                return;
            const double x = _points[i].x(), y = _points[i].y(), z = _points[i].z();
            sxx += x * x;
            sxy += x * y;
            syy += y * y;
            sx += x;
            sy += y;
            sxz += x * z;
            syz += y * z;
            sz += z;
            Progress::setProgress(unsigned((i + 1) * 100 / n), QStringLiteral("summing points"));
        }
        // Cramer's rule on the 3x3 system.
        const double m[3][3] = {{sxx, sxy, sx}, {sxy, syy, sy}, {sx, sy, double(n)}};
        const double r[3] = {sxz, syz, sz};
        auto det = [](const double a[3][3]) {
            return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) - a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0])
                   + a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
        };
        const double d = det(m);
        if (std::fabs(d) < 1e-12)
            return; // the points are collinear: no plane of this form
        double coef[3];
        for (int c = 0; c < 3; ++c) {
            double mc[3][3];
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 3; ++j)
                    mc[i][j] = j == c ? r[i] : m[i][j];
            coef[c] = det(mc) / d;
        }
        // Second half: the residuals.
        Progress::setProgressRange(50, 100);
        double low = 0, high = 0;
        for (size_t i = 0; i < n; ++i) {
            if (Progress::getAbortFlag())
                return;
            const double res = _points[i].z() - (coef[0] * _points[i].x() + coef[1] * _points[i].y() + coef[2]);
            low = i == 0 ? res : std::min(low, res);
            high = i == 0 ? res : std::max(high, res);
            Progress::setProgress(unsigned((i + 1) * 100 / n), QStringLiteral("residuals"));
        }
        flatness = high - low;
        solved = true;
    }

private:
    std::vector<QVector3D> _points;
};

// Fits the points from..to (1-based) in the background; Escape or the
// status-bar cancel button offers to abort.
class FitPlaneCommand : public DemoCommand
{
public:
    FitPlaneCommand() : DemoCommand("meas.fit_plane", "&Fit plane", nullptr) {}
    bool isMenuSensitive() const override { return Document::instance().points().size() >= 3; }
    QString getParameterString() override
    {
        return Parse::createInt(QStringLiteral("from"), _from) + QLatin1Char(' ')
               + Parse::createInt(QStringLiteral("to"), _to);
    }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        const int count = int(Document::instance().points().size());
        try {
            _from = Parse::getInt(p, QStringLiteral("from"), 1, count);
            _to = Parse::getInt(p, QStringLiteral("to"), _from, count);
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    using Command::executeScript;
    bool executeScript(QString *result, QString *code, ErrorLog *log) override
    {
        const auto &all = Document::instance().points();
        if (_to > int(all.size()) || _to - _from < 2) {
            return fail(code, log, PARAMETER_ERROR, createErrorString(QStringLiteral("a plane needs three points")));
        }
        FitPlaneThread thread(std::vector<QVector3D>(all.begin() + (_from - 1), all.begin() + _to));
        if (!MainWindow::main_win->executeBackground(&thread, true)) {
            return fail(code, log, MainWindow::ERROR_USER_ABORT, createErrorString(QStringLiteral("aborted")));
        }
        if (!thread.solved) {
            return fail(code, log, PARAMETER_ERROR,
                        createErrorString(QStringLiteral("the points do not span a plane")));
        }
        *result = QString::number(thread.flatness, 'f', 3);
        return true;
    }

private:
    int _from = 1;
    int _to = 4;
};

} // namespace

void createBackgroundCommands()
{
    new FitPlaneCommand;
}

bool checkBackgroundFit(MainWindow *window, QString *detail)
{
    auto *bar = window->statusBar()->findChild<QProgressBar *>();
    int highest = -1;
    auto connection = QObject::connect(bar, &QProgressBar::valueChanged,
                                       [&highest](int value) { highest = std::max(highest, value); });
    QString result;
    const bool ok = window->execute(CommandContainer::getCommand(QStringLiteral("meas.fit_plane")),
                                    QStringLiteral("from=1 to=4"), &result);
    QObject::disconnect(connection);
    *detail = QStringLiteral("base face flatness %1, progress bar up to %2 of %3")
                  .arg(result).arg(highest).arg(bar->maximum());
    return ok && result == QLatin1String("0.215") && highest == bar->maximum();
}

} // namespace Demo
