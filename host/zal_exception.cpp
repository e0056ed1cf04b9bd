#include "zal_exception.h"
#include <QFileInfo>
#include <cstdio>

namespace Zal {

Exception::Exception(const QString &text) : _text(text), _what(text.toStdString()) {}

Exception::~Exception() = default;

QString Exception::getText() const
{
    return _text;
}

const char *Exception::what() const noexcept
{
    return _what.c_str();
}

void Exception::setWhat(const QString &text)
{
    _what = text.toStdString();
}

ProgError::ProgError(const char *function, const char *file, const QString &message)
    : Exception(message),
      _function(QString::fromLatin1(function ? function : "")),
      _file(QString::fromLatin1(file ? file : "")),
      _message(message)
{
    setWhat(QStringLiteral("%1 (%2): %3").arg(_function, _file, _message));
}

ProgError::~ProgError() = default;

QString ProgError::getText() const
{
    return _message;
}

void ProgError::report() const
{
    std::fprintf(stderr, "ProgError: %s\n", what());
    std::fflush(stderr);
}

ProgError progError(const char *function, const char *sourcePath, const QString &message)
{
    const QByteArray base = QFileInfo(QString::fromLocal8Bit(sourcePath ? sourcePath : ""))
                                .completeBaseName()
                                .toLatin1();
    return ProgError(function, base.constData(), message);
}

namespace IO {
StreamException::StreamException(const QString &text) : Exception(text) {}
StreamException::~StreamException() = default;
} // namespace IO

} // namespace Zal
