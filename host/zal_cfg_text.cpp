#include "zal_cfg_p.h"
#include <QFile>
#include <QStringDecoder>

namespace Zal::CfgText {

namespace {

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

bool isControl(char16_t u)
{
    return u < 0x20 || (u >= 0x7f && u <= 0x9f);
}

// Characters that the writer always escapes, so that the UTF-8 file carries
// nothing a decoder could alter or reject.
bool needsEscape(const QString &text, int i)
{
    const char16_t u = text.at(i).unicode();
    if (isControl(u) || u == 0xfeff || u == 0xfffe || u == 0xffff)
        return true;
    if (QChar::isHighSurrogate(u))
        return i + 1 >= text.size() || !text.at(i + 1).isLowSurrogate();
    if (QChar::isLowSurrogate(u))
        return i == 0 || !text.at(i - 1).isHighSurrogate();
    return false;
}

int hexValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

bool isWordChar(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9')
           || u == '_' || u == '.' || u == '/' || u == '-';
}

} // namespace

bool split(const QString &line, std::vector<Token> &tokens)
{
    tokens.clear();
    const int n = int(line.size());
    int i = 0;
    while (true) {
        while (i < n && isBlank(line.at(i)))
            ++i;
        if (i >= n)
            return true;
        Token token;
        if (line.at(i) == QLatin1Char('"')) {
            token.quoted = true;
            ++i;
            bool closed = false;
            while (i < n) {
                const QChar c = line.at(i);
                if (c == QLatin1Char('"')) {
                    closed = true;
                    ++i;
                    break;
                }
                if (isControl(c.unicode()))
                    return false;
                if (c != QLatin1Char('\\')) {
                    token.text.append(c);
                    ++i;
                    continue;
                }
                if (i + 1 >= n)
                    return false;
                const char16_t e = line.at(i + 1).unicode();
                i += 2;
                switch (e) {
                case '\\': token.text.append(QLatin1Char('\\')); break;
                case '"': token.text.append(QLatin1Char('"')); break;
                case 'n': token.text.append(QLatin1Char('\n')); break;
                case 'r': token.text.append(QLatin1Char('\r')); break;
                case 't': token.text.append(QLatin1Char('\t')); break;
                case 'u': {
                    if (i + 4 > n)
                        return false;
                    int value = 0;
                    for (int k = 0; k < 4; ++k) {
                        const int h = hexValue(line.at(i + k));
                        if (h < 0)
                            return false;
                        value = value * 16 + h;
                    }
                    token.text.append(QChar(char16_t(value)));
                    i += 4;
                    break;
                }
                default:
                    return false;
                }
            }
            if (!closed || (i < n && !isBlank(line.at(i))))
                return false;
        } else {
            const int start = i;
            while (i < n && !isBlank(line.at(i))) {
                const QChar c = line.at(i);
                if (c == QLatin1Char('"') || c == QLatin1Char('\\') || isControl(c.unicode()))
                    return false;
                ++i;
            }
            token.text = line.mid(start, i - start);
        }
        token.end = i;
        tokens.push_back(std::move(token));
    }
}

QString quote(const QString &text)
{
    QString out;
    out.reserve(text.size() + 2);
    out.append(QLatin1Char('"'));
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        switch (c.unicode()) {
        case '\\': out.append(QLatin1String("\\\\")); continue;
        case '"': out.append(QLatin1String("\\\"")); continue;
        case '\n': out.append(QLatin1String("\\n")); continue;
        case '\r': out.append(QLatin1String("\\r")); continue;
        case '\t': out.append(QLatin1String("\\t")); continue;
        default: break;
        }
        if (needsEscape(text, i))
            out.append(QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0')));
        else
            out.append(c);
    }
    out.append(QLatin1Char('"'));
    return out;
}

QString word(const QString &text)
{
    if (text.isEmpty() || text == QLatin1String("null"))
        return quote(text);
    for (const QChar c : text) {
        if (!isWordChar(c))
            return quote(text);
    }
    return text;
}

QString stringValue(const QString &text)
{
    return text.isNull() ? QStringLiteral("null") : quote(text);
}

bool readStringValue(const Token &token, QString &text)
{
    if (token.quoted) {
        // A quoted empty string stays empty, not null.
        text = token.text.isNull() ? QLatin1String("") : token.text;
        return true;
    }
    if (token.text == QLatin1String("null")) {
        text = QString();
        return true;
    }
    return false;
}

QString commentText(const QString &text)
{
    QString out = text;
    for (QChar &c : out) {
        if (isControl(c.unicode()))
            c = QLatin1Char(' ');
    }
    return out;
}

bool isIgnorable(const QString &line)
{
    for (const QChar c : line) {
        if (isBlank(c))
            continue;
        return c == QLatin1Char('#');
    }
    return true;
}

bool readTextFile(const QString &fileName, QString &text)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    if (file.size() > MAX_FILE_SIZE)
        return false;
    // Devices without a size (pipes, /dev files) are bounded by the read itself.
    const QByteArray data = file.read(MAX_FILE_SIZE + 1);
    if (data.size() > MAX_FILE_SIZE || file.error() != QFileDevice::NoError)
        return false;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString decoded = decoder.decode(data);
    if (decoder.hasError())
        return false;
    text = std::move(decoded);
    return true;
}

} // namespace Zal::CfgText
