#pragma once
#include "gapp_export.h"
#include <QString>

namespace Zal {
namespace GApp {
class ApplicationStateRecord;

// The checks that command execution runs around a command under undo
// debugging. Every failure is a thrown ProgError naming the command.
class GAPP_EXPORT DebugUndoRedoTools
{
public:
    // Prints the differences of `b` to `a` and throws when there are any.
    static void check(const QString &command, const ApplicationStateRecord &a,
                      const ApplicationStateRecord &b);
    // True when the command made exactly one undo record; false when it made
    // none and is one of the selection commands that may make none.
    static bool checkUndoHistory(const QString &command, unsigned int idBefore, unsigned int idAfter);
};

} // namespace GApp
} // namespace Zal
