// Command execution: the script path of the main window against calling the
// command's own script operation, and the demo's start-up to its first frame.
#include "bench_util.h"
#include "test_world.h"
#include "gapp_application.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_variant.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace Zal;
using namespace Zal::GApp;

namespace {

class NoOp : public TestUtil::StubCommand
{
public:
    NoOp() : StubCommand(QStringLiteral("bench.noop"), false) {}
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        result->clear();
        return true;
    }
    using Command::executeScript;
};

// Milliseconds from starting the demo until it reports its first painted frame.
double demoFirstFrameMs(const QString &demo, const QString &demoDir)
{
    QProcess p;
    p.setWorkingDirectory(demoDir);
    QElapsedTimer clock;
    clock.start();
    p.start(demo, {QStringLiteral("-first-frame")});
    if (!p.waitForFinished(60000))
        return -1;
    const double total = double(clock.nsecsElapsed()) / 1e6;
    return p.readAllStandardOutput().contains("FIRST_FRAME") ? total : -1;
}

} // namespace

int main(int argc, char **argv)
{
    TestUtil::World world;
    if (!world.isValid())
        return 1;
    CfgNode *cfg = InitLibrary();
    Application app(argc, argv);
    QStringList args = app.arguments();
    GTools::ScriptedDialogs dialogs;
    auto *window = new MainWindow("bench", new AppStatusManager, cfg, args);
    auto *cmd = new NoOp;

    constexpr int N = 100000;
    QString result, code;
    ErrorLog log;
    Variant value;
    auto viaPath = [&] {
        for (int i = 0; i < N; ++i)
            window->execute(cmd, QString(), &value, &code, &log);
    };
    auto direct = [&] {
        for (int i = 0; i < N; ++i)
            cmd->executeScript(&value, &code, &log);
    };
    const auto [pathNs, directNs] = Bench::alternatingMediansNs(5, viaPath, direct);
    Bench::report("script_execute_us", pathNs / N / 1000.0, "us");
    Bench::report("script_direct_us", directNs / N / 1000.0, "us");
    Bench::report("script_commands_per_s", N / (pathNs / 1e9), "1/s");
    Bench::ratio("script_execute", pathNs / directNs);
    delete window;

    // The demo binary sits beside this program's folder in the same build.
    const QString demo = QCoreApplication::applicationDirPath() + QStringLiteral("/../demo/zal_demo");
    const QString demoDir = QStringLiteral(ZAL_SOURCE_DIR "/demo");
    if (QFile::exists(demo)) {
        std::vector<double> runs;
        for (int i = 0; i < 5; ++i)
            runs.push_back(demoFirstFrameMs(demo, demoDir));
        Bench::report("demo_first_frame_ms", Bench::median(runs), "ms");
    }
    return 0;
}
