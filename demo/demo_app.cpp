#include "demo_app.h"
#include "zal_errorlog.h"
#include "zal_parse.h"
#include <cmath>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

Document &document()
{
    static Document doc;
    return doc;
}

namespace {

// The common answers of the demo's commands; each command adds what it does.
class DemoCommand : public Command
{
public:
    DemoCommand(const QString &name, const QString &menuName, const char *icon, bool toggle = false)
        : Command(true, toggle, name, menuName, name, icon)
    {
    }
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, ErrorLog *) override
    {
        return true;
    }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override
    {
        QString result;
        QString code;
        ErrorLog log;
        return executeScript(&result, &code, &log);
    }
    using Command::executeScript;
};

class OpenCommand : public DemoCommand
{
public:
    OpenCommand() : DemoCommand(QStringLiteral("file.open"), QStringLiteral("Open"), "act_open") {}
    QString getParameterString() override
    {
        return Parse::createString(QStringLiteral("file"), _file);
    }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        try {
            _file = Parse::getString(p, QStringLiteral("file"));
        } catch (const ParseError &e) {
            *code = QStringLiteral("GAPP-0013");
            *log << e.getText() << END_LOG;
            return false;
        }
        return true;
    }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        document() = Document();
        document().fileName = _file;
        *result = _file;
        emitDataChanged(1);
        return true;
    }

private:
    QString _file;
};

class SaveCommand : public DemoCommand
{
public:
    SaveCommand() : DemoCommand(QStringLiteral("file.save"), QStringLiteral("Save"), "act_save") {}
    bool isMenuSensitive() const override { return document().modified; }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        document().modified = false;
        *result = document().fileName;
        return true;
    }
};

class GridCommand : public DemoCommand
{
public:
    GridCommand()
        : DemoCommand(QStringLiteral("view.toggle_grid"), QStringLiteral("Grid"), nullptr, true)
    {
    }
    bool isChecked() const override { return document().grid; }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        document().grid = !document().grid;
        *result = document().grid ? QStringLiteral("on") : QStringLiteral("off");
        return true;
    }
};

class UndoCommand : public DemoCommand
{
public:
    explicit UndoCommand(bool redo)
        : DemoCommand(redo ? QStringLiteral("sys.redo") : QStringLiteral("sys.undo"),
                      redo ? QStringLiteral("Redo") : QStringLiteral("Undo"),
                      redo ? "act_redo" : "act_undo"),
          _redo(redo)
    {
    }
    bool isMenuSensitive() const override
    {
        return _redo ? document().redoSteps > 0 : document().undoSteps > 0;
    }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        int &from = _redo ? document().redoSteps : document().undoSteps;
        int &to = _redo ? document().undoSteps : document().redoSteps;
        if (from == 0)
            return false;
        --from;
        ++to;
        *result = QString::number(document().undoSteps);
        return true;
    }

private:
    bool _redo;
};

// Distance between two points: "p1=[x, y, z] p2=[x, y, z]"; the result is
// "[distance, dx, dy, dz]".
class DistanceCommand : public DemoCommand
{
public:
    DistanceCommand()
        : DemoCommand(QStringLiteral("meas.distance"), QStringLiteral("Distance"), "act_measure")
    {
    }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        if (!readPoint(p, QStringLiteral("p1"), _p1) || !readPoint(p, QStringLiteral("p2"), _p2)) {
            *code = QStringLiteral("GAPP-0013");
            *log << createErrorString(QStringLiteral("needs p1=[x, y, z] and p2=[x, y, z]"))
                 << END_LOG;
            return false;
        }
        return true;
    }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        const double d[3] = {_p2[0] - _p1[0], _p2[1] - _p1[1], _p2[2] - _p1[2]};
        const double dist = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
        *result = QStringLiteral("[%1, %2, %3, %4]").arg(dist).arg(d[0]).arg(d[1]).arg(d[2]);
        document().modified = true;
        ++document().undoSteps;
        document().redoSteps = 0;
        emitDataChanged(2);
        return true;
    }

private:
    static bool readPoint(QString &params, const QString &key, double *xyz)
    {
        try {
            const std::vector<QString> c = Parse::decomposeVector(Parse::getString(params, key));
            if (c.size() != 3)
                return false;
            for (int i = 0; i < 3; ++i) {
                bool ok = false;
                xyz[i] = c[size_t(i)].toDouble(&ok);
                if (!ok)
                    return false;
            }
            return true;
        } catch (const ParseError &) {
            return false;
        }
    }
    double _p1[3] = {0, 0, 0};
    double _p2[3] = {0, 0, 0};
};

} // namespace

void createCommands()
{
    new OpenCommand;
    new SaveCommand;
    new GridCommand;
    new UndoCommand(false);
    new UndoCommand(true);
    new DistanceCommand;
}

DemoStatus::DemoStatus(unsigned int mode, const QString &name, QStringList *journal)
    : StatusData(mode, QString()), _name(name), _journal(journal)
{
}

void DemoStatus::beforeModeChange(unsigned int newMode)
{
    _journal->append(QStringLiteral("%1 before %2").arg(_name).arg(newMode));
}

void DemoStatus::afterModeChange(unsigned int oldMode)
{
    _journal->append(QStringLiteral("%1 after %2").arg(_name).arg(oldMode));
}

std::vector<QString> DemoStatus::getAllData()
{
    if (document().fileName.isEmpty())
        return {};
    return {document().fileName};
}

} // namespace Demo
