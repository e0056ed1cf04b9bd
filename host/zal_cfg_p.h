#pragma once
// Text helpers shared by the configuration file, its array items and the
// profile file. Internal to the library: not exported, not installed.
#include <QString>
#include <QtGlobal>
#include <vector>

namespace Zal::CfgText {

// Hostile files must not exhaust memory: these bound what a reader accepts.
constexpr qint64 MAX_FILE_SIZE = 16 * 1024 * 1024;
// Layout blobs of the main window are a few kilobytes; a megabyte per line is
// generous for any legitimate value and still cheap to hold.
constexpr int MAX_LINE_LENGTH = 4 * 1024 * 1024;

struct Token
{
    QString text;
    bool quoted = false;
    // Offset in the line just past the token, so that a caller can hand the
    // rest of the line to someone else.
    int end = 0;
};

// Splits one line into bare words and quoted strings. Answers false for an
// unterminated quote, an unknown escape, a raw control character, or a quote
// or backslash inside a bare word.
bool split(const QString &line, std::vector<Token> &tokens);

// A quoted string that split() reads back to exactly `text`, every UTF-16
// unit included (unpaired surrogates and controls become \uXXXX).
QString quote(const QString &text);

// `text` as a bare word when it is one of [A-Za-z0-9_./-] only, else quoted.
QString word(const QString &text);

// A string value: the bare word null for a null string, else quoted.
QString stringValue(const QString &text);
// The inverse of stringValue(); false for any other bare word.
bool readStringValue(const Token &token, QString &text);

// A comment-safe copy: line breaks and other controls become blanks.
QString commentText(const QString &text);

// Whether the line is blank or a comment (first non-blank character '#').
bool isIgnorable(const QString &line);

// Reads a whole UTF-8 file of at most MAX_FILE_SIZE bytes. False when it is
// missing, unreadable, too large or not valid UTF-8.
bool readTextFile(const QString &fileName, QString &text);

} // namespace Zal::CfgText
