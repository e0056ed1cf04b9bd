#include "demo_undo_check.h"
#include "demo_command.h"
#include "demo_document.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_parse.h"
#include "zal_record_manager.h"
#include "zal_script_object.h"
#include "zal_variant.h"
#include <QUndoCommand>
#include <QVector3D>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

namespace {

// The document's file name and size.
class DocumentObject : public ScriptObject, public TokenInterface
{
public:
    explicit DocumentObject(ScriptObject *parent) : ScriptObject(QStringLiteral("document"), parent) {}
    TokenInterface *getTokenInterface() override { return this; }
    std::vector<QString> getTokens() const override
    {
        return {QStringLiteral("file_name"), QStringLiteral("point_count")};
    }
    Value getTokenValue(const QString &name, const IndexIdentifier &) const override
    {
        if (name == QLatin1String("file_name"))
            return Value(doc().fileName());
        if (name == QLatin1String("point_count"))
            return Value(unsigned(doc().points().size()));
        return Value();
    }
};

// The probed points, one element per point.
class PointsObject : public ScriptObject, public TokenInterface
{
public:
    explicit PointsObject(ScriptObject *parent) : ScriptObject(QStringLiteral("points"), parent) {}
    QString getCategoryName() const override { return QStringLiteral("point"); }
    TokenInterface *getTokenInterface() override { return this; }
    bool isIndexed() const override { return true; }
    unsigned int getIndexCount() const override { return unsigned(doc().points().size()); }
    std::vector<QString> getTokens() const override
    {
        // The selection is not part of the undoable state.
        return {QStringLiteral("x[]"), QStringLiteral("y[]"), QStringLiteral("z[]"), QStringLiteral("selected[]")};
    }
    Value getTokenValue(const QString &name, const IndexIdentifier &index) const override
    {
        const auto &points = doc().points();
        if (index.isNoIndex() || size_t(index.getIndex()) >= points.size())
            return Value();
        const QVector3D &p = points[size_t(index.getIndex())];
        if (name == QLatin1String("x"))
            return Value(double(p.x()));
        if (name == QLatin1String("y"))
            return Value(double(p.y()));
        if (name == QLatin1String("z"))
            return Value(double(p.z()));
        return Value();
    }
};

// Moves one point; "edit.move_point index=2 dz=0.5" (offsets default to 0).
class MovePointCommand : public DemoCommand
{
public:
    explicit MovePointCommand(const char *name = "edit.move_point") : DemoCommand(name, "&Move point", nullptr) {}
    bool isMenuSensitive() const override { return !doc().points().empty(); }
    QString getParameterString() override
    {
        return Parse::createInt(QStringLiteral("index"), _index) + QLatin1Char(' ')
               + Parse::createDouble(QStringLiteral("dx"), double(_offset.x())) + QLatin1Char(' ')
               + Parse::createDouble(QStringLiteral("dy"), double(_offset.y())) + QLatin1Char(' ')
               + Parse::createDouble(QStringLiteral("dz"), double(_offset.z()));
    }
    bool parseParameterString(const QString &params, bool, QString *code, ErrorLog *log) override
    {
        QString p = params;
        try {
            _index = Parse::getInt(p, QStringLiteral("index"), 0, int(doc().points().size()) - 1);
            _offset = QVector3D(float(offset(p, "dx")), float(offset(p, "dy")), float(offset(p, "dz")));
        } catch (const Exception &e) {
            return parameterError(e, code, log);
        }
        return true;
    }
    bool executeScript(QString *result, QString *, ErrorLog *) override
    {
        move(_index, _offset);
        const QVector3D &p = doc().points()[size_t(_index)];
        *result = QStringLiteral("[%1, %2, %3]").arg(p.x()).arg(p.y()).arg(p.z());
        emitDataChanged(1);
        return true;
    }
    using Command::executeScript;

protected:
    virtual void move(int index, const QVector3D &offset) { doc().movePoint(index, offset); }

private:
    static double offset(QString &params, const char *key)
    {
        const QString k = QString::fromLatin1(key);
        return Parse::hasKey(params, k) ? Parse::getDouble(params, k, -1e6, 1e6) : 0.0;
    }
    int _index = 0;
    QVector3D _offset;
};

// A deliberately broken step: its undo forgets to move the point back.
class ForgetfulMove : public QUndoCommand
{
public:
    ForgetfulMove(int index, QVector3D offset) : _index(index), _offset(offset) {}
    void undo() override {}
    void redo() override
    {
        std::vector<QVector3D> points = doc().points();
        points[size_t(_index)] += _offset;
        doc().replacePoints(points, doc().fileName());
    }

private:
    int _index;
    QVector3D _offset;
};

class ForgetfulMoveCommand : public MovePointCommand
{
public:
    ForgetfulMoveCommand() : MovePointCommand("test.forgetful_move") {}

protected:
    void move(int index, const QVector3D &offset) override
    {
        doc().undoStack().push(new ForgetfulMove(index, offset));
        ++RecordManagerBase::_next_record_id;
    }
};

// Runs one command through the script path; the undo check's failure is the
// ProgError, whose message lands in `error`.
bool run(MainWindow *window, Command *cmd, const QString &params, QString *error)
{
    Variant result;
    QString code;
    ErrorLog log(false);
    try {
        const bool ok = window->execute(cmd, params, &result, &code, &log, true);
        if (!ok)
            *error = code + QLatin1Char(' ') + log.getText();
        return ok;
    } catch (const ProgError &e) {
        *error = e.getMessage();
        return false;
    }
}

} // namespace

bool checkUndoDebugging(MainWindow *window, QString *detail)
{
    const std::vector<QVector3D> savedPoints = doc().points();
    const QString savedFile = doc().fileName();
    const int savedIndex = doc().undoStack().index();
    const unsigned int savedMode = MainWindow::smgr->getAppMode();
    const bool wasOn = MainWindow::debug_undo;

    ScriptObject app(QStringLiteral("demo"));
    new DocumentObject(&app);
    new PointsObject(&app);
    ScriptObject::setApplicationScriptObject(&app);
    MovePointCommand move;
    ForgetfulMoveCommand forgetful;
    MainWindow::debug_undo = true;

    QStringList passed;
    QString error;
    bool ok = true;
    const std::pair<Command *, QString> steps[] = {
        {CommandContainer::getCommand(QStringLiteral("file.open")), QStringLiteral("file=\"data/bracket.pts\"")},
        {&move, QStringLiteral("index=2 dz=0.5")},
        {&move, QStringLiteral("index=0 dx=-1.25 dy=0.1")}};
    for (const auto &[cmd, params] : steps) {
        if (!cmd || !run(window, cmd, params, &error)) {
            ok = false;
            passed << (cmd ? cmd->getName() : QStringLiteral("file.open (missing)")) + QStringLiteral(" FAILED: ") + error;
            break;
        }
        passed << cmd->getName();
    }
    const QString expected = QStringLiteral("DEBUG_UNDO: 1 errors found after executing command: test.forgetful_move");
    if (ok) {
        error.clear();
        const bool caught = !run(window, &forgetful, QStringLiteral("index=1 dx=2"), &error) && error == expected;
        passed << QStringLiteral("test.forgetful_move ") + (caught ? QStringLiteral("caught") : QStringLiteral("NOT caught: ") + error);
        ok = caught;
    }

    MainWindow::debug_undo = wasOn;
    ScriptObject::setApplicationScriptObject(nullptr);
    // Take the steps back; the broken one left its move behind, so the points
    // are put back as they were.
    while (doc().undoStack().index() > savedIndex)
        doc().undoStack().undo();
    doc().replacePoints(savedPoints, savedFile);
    if (MainWindow::smgr->getAppMode() != savedMode)
        MainWindow::smgr->setAppMode(savedMode);
    *detail = passed.join(QStringLiteral(", "));
    return ok;
}

} // namespace Demo
