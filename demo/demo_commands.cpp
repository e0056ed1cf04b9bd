#include "demo_commands.h"
#include "demo_command.h"
#include "demo_document.h"
#include "demo_recent.h"
#include "gapp_ccontainer.h"
#include "gapp_main_window.h"
#include "gapp_tb_group.h"
#include "gapp_tb_widget_manager.h"
#include "zal_errorlog.h"
#include "zal_parse.h"
#include "zal_variant.h"
#include <QLabel>
#include <QToolBar>
#include <QToolButton>
#include <QVector3D>
#include <cmath>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

namespace {

bool inMode(const char *mode)
{
    AppStatusManager *smgr = MainWindow::smgr;
    return smgr && smgr->existUniqueId(QString::fromLatin1(mode))
           && smgr->getAppMode() == smgr->getUniqueId(QString::fromLatin1(mode));
}

class ExitCommand : public DemoCommand
{
public:
    ExitCommand() : DemoCommand("sys.exit_program", "E&xit", nullptr) {}
    // Runs while other commands may be active: the exit waits for them.
    bool needsMenuSemaphore(bool *synchronized, CmdGroup_t *) const override
    {
        *synchronized = false;
        return false;
    }
    bool executeScript(QString *, QString *, ErrorLog *) override
    {
        MainWindow::main_win->setExitRequested();
        return true;
    }
};

class UndoCommand : public DemoCommand
{
public:
    explicit UndoCommand(bool redo)
        : DemoCommand(redo ? "sys.redo" : "sys.undo", redo ? "&Redo" : "&Undo", redo ? "act_redo" : "act_undo"),
          _redo(redo)
    {
    }
    bool isMenuSensitive() const override
    {
        return _redo ? doc().undoStack().canRedo() : doc().undoStack().canUndo();
    }
    bool executeScript(QString *result, QString *code, ErrorLog *log) override
    {
        if (!isMenuSensitive())
            return fail(code, log, "GAPP-0003", createErrorString(QStringLiteral("nothing to do")));
        if (_redo)
            doc().undoStack().redo();
        else
            doc().undoStack().undo();
        *result = QString::number(doc().undoStack().index());
        emitDataChanged(1);
        return true;
    }

private:
    bool _redo;
};

class OpenCommand : public DemoCommand
{
public:
    OpenCommand() : DemoCommand("file.open", "&Open...", "act_open") {}
    QString getParameterString() override { return Parse::createString(QStringLiteral("file"), _file); }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        try {
            _file = Parse::getString(p, QStringLiteral("file"));
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    bool executeScript(QString *result, QString *code, ErrorLog *log) override
    {
        // The file's first bytes pick the application type that reads it,
        // switching the mode when needed (see demo_files.cpp).
        QString second;
        if (!MainWindow::smgr->openFile(_file, &second, code, log))
            return false;
        RecentFilesProvider::instance()->addFile(_file);
        *result = QString::number(doc().points().size());
        emitDataChanged(1);
        return true;
    }

private:
    QString _file;
};

class SaveCommand : public DemoCommand
{
public:
    SaveCommand() : DemoCommand("file.save", "&Save", "act_save") {}
    bool isMenuSensitive() const override { return !doc().points().empty(); }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        try {
            _file = Parse::hasKey(p, QStringLiteral("file")) ? Parse::getString(p, QStringLiteral("file"))
                                                             : doc().fileName();
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    bool executeScript(QString *result, QString *code, ErrorLog *log) override
    {
        QString error;
        if (!doc().save(_file, &error))
            return fail(code, log, "GAPP-0014", createErrorString(error));
        *result = _file;
        emitDataChanged(1);
        return true;
    }

private:
    QString _file;
};

class PointCountCommand : public DemoCommand
{
public:
    PointCountCommand() : DemoCommand("meas.point_count", "Point &count", nullptr, false, false) {}
    bool executeScript(Variant *result, QString *, ErrorLog *) override
    {
        *result = Variant(int(doc().points().size()));
        return true;
    }
    bool executeScript(QString *result, QString *code, ErrorLog *log) override
    {
        Variant v;
        const bool ok = executeScript(&v, code, log);
        *result = v.toString();
        return ok;
    }
};

// The distance between two probed points (1-based numbers).
class DistanceCommand : public DemoCommand
{
public:
    DistanceCommand() : DemoCommand("meas.distance", "&Distance", "act_measure") {}
    bool isMenuSensitive() const override { return doc().points().size() >= 2; }
    QString getParameterString() override
    {
        return Parse::createInt(QStringLiteral("from"), _from) + QLatin1Char(' ')
               + Parse::createInt(QStringLiteral("to"), _to);
    }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        const int count = int(doc().points().size());
        try {
            _from = Parse::getInt(p, QStringLiteral("from"), 1, count);
            _to = Parse::getInt(p, QStringLiteral("to"), 1, count);
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        const QVector3D d = doc().points()[size_t(_to - 1)] - doc().points()[size_t(_from - 1)];
        *result = QStringLiteral("[%1, %2, %3, %4]").arg(double(d.length())).arg(double(d.x()))
                      .arg(double(d.y())).arg(double(d.z()));
        return true;
    }

private:
    int _from = 1;
    int _to = 2;
};

// Counts the points of the base (z near 0) and top (z near 25) faces that lie
// outside the tolerance. Only the inspection mode offers it.
class ToleranceCommand : public DemoCommand
{
public:
    ToleranceCommand() : DemoCommand("insp.tolerance_check", "&Tolerance check", "act_examine") {}
    bool isMenuSensitive() const override { return inMode("inspect") && !doc().points().empty(); }
    QString getParameterString() override { return Parse::createDouble(QStringLiteral("tol"), _tol); }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        try {
            _tol = Parse::getDouble(p, QStringLiteral("tol"), 0.0, 10.0);
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        int outside = 0;
        for (const QVector3D &p : doc().points()) {
            const double nominal = p.z() < 12.5f ? 0.0 : 25.0;
            outside += std::fabs(double(p.z()) - nominal) > _tol ? 1 : 0;
        }
        *result = QString::number(outside);
        return true;
    }

private:
    double _tol = 0.1;
};

class GridCommand : public DemoCommand
{
public:
    GridCommand() : DemoCommand("view.toggle_grid", "Show &grid", nullptr, true, false) {}
    bool isChecked() const override { return doc().grid(); }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        doc().setGrid(!doc().grid());
        *result = doc().grid() ? QStringLiteral("on") : QStringLiteral("off");
        return true;
    }
};

class RecordingCommand : public DemoCommand
{
public:
    RecordingCommand() : DemoCommand("macro.toggle_recording", "&Record macro", nullptr, true, false) {}
    bool isChecked() const override { return MainWindow::main_win && MainWindow::main_win->isRecording(); }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        MainWindow::main_win->setRecording(!MainWindow::main_win->isRecording());
        *result = MainWindow::main_win->isRecording() ? QStringLiteral("on") : QStringLiteral("off");
        return true;
    }
};

// The mode command's toolbar widgets: the point count and the way to the
// inspection while measuring, the way back while inspecting. The toolbar
// that holds them stands in both main menus, so it survives the switch that
// a click on its buttons starts.
class ModePanel : public ToolBarWidgetManager
{
public:
    ModePanel(Command *command, QToolBar *toolbar) : ToolBarWidgetManager(command, toolbar, 2)
    {
        addSeparator(-1);
        _points = new QLabel;
        addWidget(_points, 0);
        QToolButton *inspect =
            addToolButton(QStringLiteral("act_examine"), QStringLiteral("Switch to inspection"), false, 0);
        QToolButton *measure =
            addToolButton(QStringLiteral("act_measure"), QStringLiteral("Back to measurement"), false, 1);
        connect(inspect, &QToolButton::clicked, this, [this] { switchTo("inspect"); });
        connect(measure, &QToolButton::clicked, this, [this] { switchTo("measure"); });
        updateSensitivity();
    }
    void updateSensitivity() override
    {
        switchMode(inMode("inspect") ? 1 : 0);
        setToolBarEnabled(isCommandExecutionAllowed());
        dataChanged();
    }
    void saveConfig() override {}
    void selectionChanged() override {}
    void dataChanged() override { _points->setText(QStringLiteral(" %1 points ").arg(doc().points().size())); }

private:
    void switchTo(const char *mode)
    {
        AppStatusManager *smgr = MainWindow::smgr;
        // In a select-command mode the click only selects the command.
        if (!smgr || MainWindow::main_win->getSelectCommandMode() != Command::SELECT_NONE
            || !isCommandExecutionAllowed())
            return;
        beginCommandExecution();
        if (!isCommandExecuting())
            return;
        smgr->setAppMode(smgr->getUniqueId(QString::fromLatin1(mode)));
        endCommandExecution();
        updateSensitivity();
    }

    QLabel *_points;
};

class ModeCommand : public DemoCommand
{
public:
    ModeCommand() : DemoCommand("sys.set_mode", "Switch &mode", nullptr) {}
    void createToolBarWidget(QToolBar *toolbar, bool) override { new ModePanel(this, toolbar); }
    QString getParameterString() override { return Parse::createString(QStringLiteral("mode"), _mode); }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        try {
            _mode = Parse::getString(p, QStringLiteral("mode"));
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    bool executeScript(QString *result, QString *code, ErrorLog *log) override
    {
        AppStatusManager *smgr = MainWindow::smgr;
        if (!smgr->existUniqueId(_mode))
            return fail(code, log, "GAPP-0008", createErrorString(_mode));
        const unsigned int mode = smgr->getUniqueId(_mode);
        const auto modes = smgr->getAppModes();
        if (std::find(modes.begin(), modes.end(), mode) == modes.end() || !smgr->isAppModeChangePossible(mode))
            return fail(code, log, "GAPP-0008", createErrorString(_mode));
        smgr->setAppMode(mode);
        *result = _mode;
        return true;
    }

private:
    QString _mode;
};

// Group buttons: three probing tools, the display toggles, and the history
// shown as a combo box.
void createToolBarGroups()
{
    const auto cmd = [](const char *name) { return CommandContainer::getCommand(QString::fromLatin1(name)); };
    auto *tools = new ToolBarGroupCommand(false, QStringLiteral("grp.probe_tools"), QStringLiteral("Probe tools"));
    tools->setCommands(cmd("meas.distance"), cmd("meas.point_count"), cmd("insp.tolerance_check"));
    auto *display = new ToolBarGroupCommand(true, QStringLiteral("grp.display"), QStringLiteral("Display"));
    display->setCommands(cmd("view.toggle_grid"), cmd("macro.toggle_recording"));
    auto *history = new ToolBarGroupCommand(false, QStringLiteral("grp.history"), QStringLiteral("History"));
    history->setCommands(cmd("sys.undo"), cmd("sys.redo"));
}

} // namespace

void createCommands()
{
    new ExitCommand;
    new UndoCommand(false);
    new UndoCommand(true);
    new OpenCommand;
    new SaveCommand;
    new PointCountCommand;
    new DistanceCommand;
    new ToleranceCommand;
    new GridCommand;
    new RecordingCommand;
    new ModeCommand;
    createToolBarGroups();
}

} // namespace Demo
