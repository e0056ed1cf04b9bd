#include "demo_shell.h"
#include "demo_document.h"
#include "gapp_gui_callback_thread.h"
#include "gapp_main_window.h"
#include "gapp_shell_executer.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include <QVector3D>
#include <algorithm>
#include <vector>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

namespace {

// The document belongs to the GUI thread, so the worker asks for a copy.
class DiagonalThread : public GUICallbackThread
{
public:
    DiagonalThread() : GUICallbackThread(DONT_LOCK_GUI, "DiagonalThread", __FILE__, __LINE__) {}

    std::vector<QVector3D> points;
    QString caption;
    QString error;
    double diagonal = 0;

protected:
    void run() override
    {
        try {
            executeCallback();
        } catch (const Exception &e) {
            error = e.getText();
            return;
        }
        if (points.empty())
            return;
        QVector3D low = points.front(), high = points.front();
        for (const QVector3D &p : points) {
            low = QVector3D(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
            high = QVector3D(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
        }
        diagonal = double((high - low).length());
    }

    void guiCallback() override
    {
        points = Document::instance().points();
        caption = MainWindow::main_win->getCaption();
    }
};

} // namespace

bool checkShellCommand(QString *detail)
{
    const int count = int(Document::instance().points().size());
    QString output, errorOutput;
    bool aborted = false;
    ErrorLog log;
    const bool ok = ExecuteShellCommand(QStringLiteral("echo %1 points").arg(count), QString(), &output,
                                        &errorOutput, &aborted, &log);
    *detail = QStringLiteral("the shell answered \"%1\"").arg(output);
    if (!log.isEmpty())
        *detail += QStringLiteral(" (") + log.getText() + QLatin1Char(')');
    return ok && output == QStringLiteral("%1 points").arg(count);
}

bool checkGuiCallback(MainWindow *window, QString *detail)
{
    DiagonalThread thread;
    // The background run keeps the GUI thread's events going, so the
    // worker's question is answered while the GUI waits for it.
    const bool finished = window->executeBackground(&thread, false);
    thread.wait();
    const size_t expected = Document::instance().points().size();
    *detail = QStringLiteral("%1 of %2 points from the GUI thread, caption \"%3\", diagonal %4%5")
                  .arg(thread.points.size())
                  .arg(expected)
                  .arg(thread.caption)
                  .arg(thread.diagonal, 0, 'f', 3)
                  .arg(thread.error.isEmpty() ? QString() : QStringLiteral(", ") + thread.error);
    return finished && thread.error.isEmpty() && thread.points.size() == expected && expected > 0
           && thread.caption == window->getCaption() && thread.diagonal > 0;
}

} // namespace Demo
