#include "gapp_undo_check.h"
#include "gapp_state_record.h"
#include "zal_exception.h"
#include <QStringList>
#include <cstdio>

namespace Zal {
namespace GApp {

namespace {

void printLine(const QString &text)
{
    std::printf("%s\n", text.toLocal8Bit().constData());
}

// Selecting single elements may find nothing to select and then records nothing.
bool mayRecordNothing(const QString &command)
{
    static const char *const names[] = {
        "selection3d.select_single_point",   "selection3d.select_triangle",
        "selection3d.select_boundary",       "selection3d.deselect_single_point",
        "selection3d.deselect_triangle",     "selection3d.deselect_boundary"};
    for (const char *name : names)
        if (command == QLatin1String(name))
            return true;
    return false;
}

} // namespace

void DebugUndoRedoTools::check(const QString &command, const ApplicationStateRecord &a,
                               const ApplicationStateRecord &b)
{
    QStringList differences;
    if (a.compare(command, b, &differences))
        return;
    printLine(QStringLiteral("command: ") + command + QLatin1Char(':'));
    printLine(QStringLiteral("%1 differences comparing application state '%2' to '%3':")
                  .arg(QString::number(differences.size()), a.getName(), b.getName()));
    for (const QString &d : differences)
        printLine(QStringLiteral("* ") + d);
    std::fflush(stdout);
    throw ZAL_PROG_ERROR("Zal::GApp::DebugUndoRedoTools::check",
                         QStringLiteral("DEBUG_UNDO: %1 errors found after executing command: %2")
                             .arg(QString::number(differences.size()), command));
}

bool DebugUndoRedoTools::checkUndoHistory(const QString &command, unsigned int idBefore,
                                          unsigned int idAfter)
{
    if (idAfter > idBefore) {
        if (idAfter == idBefore + 1)
            return true;
        throw ZAL_PROG_ERROR("Zal::GApp::DebugUndoRedoTools::checkUndoHistory",
                             QStringLiteral("DEBUG_UNDO: More than one undo record created by command: %1")
                                 .arg(command));
    }
    if (mayRecordNothing(command))
        return false;
    throw ZAL_PROG_ERROR("Zal::GApp::DebugUndoRedoTools::checkUndoHistory",
                         QStringLiteral("DEBUG_UNDO: No undo record created by command: %1").arg(command));
}

} // namespace GApp
} // namespace Zal
