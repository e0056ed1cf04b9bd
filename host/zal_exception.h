#pragma once
#include "gapp_export.h"
#include <QString>
#include <exception>
#include <string>

namespace Zal {

// Base of every exception of the host layer. The text is user-readable and
// is what callers show or log; what() gives the same text in UTF-8.
class GAPP_EXPORT Exception : public std::exception
{
public:
    explicit Exception(const QString &text);
    ~Exception() override;

    virtual QString getText() const;
    const char *what() const noexcept override;

protected:
    void setWhat(const QString &text);

private:
    QString _text;
    std::string _what;
};

// A programming error: a misuse of the library that the caller must fix.
// Carries the qualified function name, the source file's base name (without
// directory and extension) and a fixed English message. getText() is the
// message; what() gives "function (file): message".
class GAPP_EXPORT ProgError : public Exception
{
public:
    ProgError(const char *function, const char *file, const QString &message);
    ~ProgError() override;

    QString getText() const override;
    const QString &getFunction() const { return _function; }
    const QString &getFile() const { return _file; }
    const QString &getMessage() const { return _message; }

    // Reports the error without throwing: one line on standard error, flushed.
    void report() const;

private:
    QString _function;
    QString _file;
    QString _message;
};

// Builds a ProgError from the source file path of the caller (__FILE__):
// the directory and extension are dropped, so "gapp/command/gapp_ccontainer.cpp"
// becomes "gapp_ccontainer".
GAPP_EXPORT ProgError progError(const char *function, const char *sourcePath, const QString &message);

#define ZAL_PROG_ERROR(function, message) ::Zal::progError((function), __FILE__, (message))

namespace IO {
// Every failure of a block stream: file not found or not writable, a foreign
// or damaged file, reading past the end, a version the reader rejects.
class GAPP_EXPORT StreamException : public Exception
{
public:
    explicit StreamException(const QString &text);
    ~StreamException() override;
};
} // namespace IO

} // namespace Zal
