#pragma once
#include "gapp_export.h"
#include "zal_exception.h"
#include <QString>
#include <vector>

namespace Zal {

// A parameter string that a reader could not use: a key that is missing, a
// value that is not a number of the asked kind, or one outside its range.
// getText() says which key and why, in English, for the caller's error log.
class GAPP_EXPORT ParseError : public Exception
{
public:
    explicit ParseError(const QString &text);
    ~ParseError() override;
};

// Helpers for the parameter strings with which scripts and macros talk to
// commands (the format is described in docs/parameter-strings.md):
// entries "key=value" separated by white space, values being numbers,
// booleans, quoted strings or vectors in square brackets.
//
// The readers take the parameter string by reference and remove the entry
// they consumed, so a command can read its keys one by one and treat what is
// left as unknown. A failing reader throws ParseError and leaves the string as
// it was. Input comes from users and files: every reader is bounded by the
// length of the string and never reads past it.
//
// The class has no data; commands derive from it to have the helpers at hand.
class GAPP_EXPORT Parse
{
public:
    // Whether an entry with this key exists.
    static bool hasKey(const QString &params, const QString &key);

    // The value of the entry `key`, which must lie in [min, max].
    static double getDouble(QString &params, const QString &key, double min, double max);
    static int getInt(QString &params, const QString &key, int min, int max);
    static unsigned int getUInt(QString &params, const QString &key, unsigned int min,
                                unsigned int max);
    // "true"/"false" (any case) or "1"/"0".
    static bool getBool(QString &params, const QString &key);
    // A quoted string is unquoted and unescaped; a bare word is taken as it is.
    static QString getString(QString &params, const QString &key);

    // One entry "key=value"; doubles are written with the fewest digits that
    // read back to the same value.
    static QString createDouble(const QString &key, double value);
    static QString createInt(const QString &key, int value);
    static QString createUInt(const QString &key, unsigned int value);
    static QString createBool(const QString &key, bool value);
    // Always quoted, with '"' and '\' escaped.
    static QString createString(const QString &key, const QString &value);

    // Splits "[a, b, [c, d], \"e, f\"]" into its top-level elements
    // ("a", "b", "[c, d]", "\"e, f\""), each trimmed of white space. Nested
    // brackets and quoted text are kept whole, so an element can be split
    // again. Without the outer brackets the whole text is taken as the element
    // list. "[]" and "[ ]" give no element; "[a,,b]" gives an empty middle one.
    static std::vector<QString> decomposeVector(const QString &text);
};

} // namespace Zal
