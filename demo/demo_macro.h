#pragma once
#include <QString>

namespace Demo {

// Plays a macro file through the library's script execution path. Each line
// is "command | parameters | expected outcome | expected error code |
// expected result" ('#' starts a comment; the last three fields may be left
// out: the command must then succeed). Prints one line per command and
// answers the number of lines whose outcome differed from the expectation
// (-1 when the file cannot be read).
int playMacro(const QString &fileName);

} // namespace Demo
