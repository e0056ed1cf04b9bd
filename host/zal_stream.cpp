#include "zal_stream.h"
#include "zal_exception.h"
#include "zal_translate.h"
#include <QDataStream>
#include <QFile>
#include <QSaveFile>
#include <QtEndian>

namespace Zal::IO {

namespace {

// "ZBLK": tells a stream file from anything else.
const quint32 MAGIC = 0x5A424C4B;
// Version of the frame layout itself (header and block frames), not of any
// file type; a reader refuses layouts it does not know.
const quint32 LAYOUT_VERSION = 1;
// A type name is a short identifier; a longer one means a damaged header.
// (Limits passed to readStringLimited include the 4 bytes of the length.)
const qint64 MAX_TYPE_NAME_BYTES = 1024;
const quint32 NULL_STRING = 0xffffffff;
// Far beyond any text the library stores, and within what one read can take.
const quint32 MAX_STRING_BYTES = 0x40000000;


void setUp(QDataStream &stream)
{
    // Fixed, so that files move between machines and Qt versions.
    stream.setByteOrder(QDataStream::BigEndian);
    stream.setVersion(QDataStream::Qt_6_0);
}

} // namespace

// --- Stream -----------------------------------------------------------------

unsigned int Stream::sizeOf(const QString &text)
{
    return 4u + 2u * unsigned(text.size());
}

Stream::Stream(const QString &fileName) : _fileName(fileName) {}

Stream::~Stream() = default;

// --- OutStream --------------------------------------------------------------

struct OutStream::Private
{
    QSaveFile file;
    QDataStream out;
    bool inBlock = false;
    quint64 declared = 0;
    quint64 written = 0;
    bool failed = false;
    bool closed = false;

    explicit Private(const QString &fileName) : file(fileName) {}
};

OutStream::OutStream(const QString &fileName, const QString &fileTypeName,
                     unsigned int fileVersion)
    : Stream(fileName), d(std::make_unique<Private>(fileName))
{
    _typeName = fileTypeName;
    _version = fileVersion;
    if (!d->file.open(QIODevice::WriteOnly))
        fail(translate("Zal_stream", "cannot write %1: %2").arg(fileName, d->file.errorString()));
    d->out.setDevice(&d->file);
    setUp(d->out);
    d->out << MAGIC << LAYOUT_VERSION << fileTypeName << quint32(fileVersion);
    check();
}

OutStream::~OutStream()
{
    if (d->closed)
        return;
    // An incomplete stream must not replace a good file.
    if (d->failed || d->inBlock || d->out.status() != QDataStream::Ok)
        d->file.cancelWriting();
    else
        d->file.commit();
}

void OutStream::fail(const QString &text)
{
    d->failed = true;
    throw StreamException(text);
}

void OutStream::check()
{
    if (d->out.status() != QDataStream::Ok)
        fail(translate("Zal_stream", "cannot write %1: %2").arg(_fileName, d->file.errorString()));
}

void OutStream::reserve(unsigned int bytes)
{
    if (!d->inBlock)
        fail(translate("Zal_stream", "%1: a value written outside a block").arg(_fileName));
    if (d->written + bytes > d->declared) {
        fail(translate("Zal_stream", "%1: writing past the end of the block (%2 bytes declared)")
                 .arg(_fileName)
                 .arg(d->declared));
    }
    d->written += bytes;
}

void OutStream::beginBlock(unsigned int payloadSize, unsigned int blockVersion)
{
    if (d->closed || d->inBlock)
        fail(translate("Zal_stream", "%1: a block is open already").arg(_fileName));
    d->out << quint32(payloadSize) << quint32(blockVersion);
    check();
    d->inBlock = true;
    d->declared = payloadSize;
    d->written = 0;
}

void OutStream::writeInt(int value)
{
    reserve(SIZE_INT);
    d->out << qint32(value);
    check();
}

void OutStream::writeUInt(unsigned int value)
{
    reserve(SIZE_UINT);
    d->out << quint32(value);
    check();
}

void OutStream::writeBool(bool value)
{
    reserve(SIZE_BOOL);
    d->out << value;
    check();
}

void OutStream::writeString(const QString &value)
{
    reserve(sizeOf(value));
    // QDataStream's own string form: byte length (all ones for null), UTF-16.
    d->out << value;
    check();
}

void OutStream::writeColor(const Color &value)
{
    reserve(SIZE_COLOR);
    d->out << value.red << value.green << value.blue << value.alpha;
    check();
}

void OutStream::endBlock()
{
    if (!d->inBlock)
        fail(translate("Zal_stream", "%1: no open block").arg(_fileName));
    if (d->written != d->declared) {
        fail(translate("Zal_stream", "%1: block payload of %2 bytes, %3 declared")
                 .arg(_fileName)
                 .arg(d->written)
                 .arg(d->declared));
    }
    d->inBlock = false;
}

void OutStream::close()
{
    if (d->closed)
        return;
    if (d->inBlock)
        fail(translate("Zal_stream", "%1: closed with a block open").arg(_fileName));
    check();
    d->closed = true;
    if (!d->file.commit()) {
        d->failed = true;
        throw StreamException(translate("Zal_stream", "cannot write %1: %2").arg(_fileName, d->file.errorString()));
    }
}

// --- InStream ---------------------------------------------------------------

struct InStream::Private
{
    QFile file;
    QDataStream in;
    qint64 size = 0;
    bool inBlock = false;
    unsigned int blockVersion = 0;
    unsigned int remaining = 0;

    explicit Private(const QString &fileName) : file(fileName) {}
    qint64 left() const { return size - file.pos(); }
};

InStream::InStream(const QString &fileName, const QString &expectedTypeName)
    : Stream(fileName), d(std::make_unique<Private>(fileName))
{
    if (!d->file.open(QIODevice::ReadOnly))
        fail(translate("Zal_stream", "cannot open %1: %2").arg(fileName, d->file.errorString()));
    if (d->file.isSequential())
        fail(translate("Zal_stream", "%1 is not a regular file").arg(fileName));
    d->size = d->file.size();
    d->in.setDevice(&d->file);
    setUp(d->in);

    quint32 magic = 0;
    quint32 layout = 0;
    if (d->left() >= 8)
        d->in >> magic >> layout;
    if (magic != MAGIC)
        fail(translate("Zal_stream", "%1 is not a stream file").arg(fileName));
    if (layout != LAYOUT_VERSION)
        fail(translate("Zal_stream", "%1 has the unknown stream layout %2").arg(fileName).arg(layout));
    _typeName = readStringLimited(MAX_TYPE_NAME_BYTES + 4);
    if (d->left() < 4)
        fail(translate("Zal_stream", "%1: reading past the end of the file").arg(fileName));
    quint32 version = 0;
    d->in >> version;
    _version = version;
    if (!expectedTypeName.isEmpty() && _typeName != expectedTypeName)
        fail(translate("Zal_stream", "%1 is of type '%2', not '%3'").arg(fileName, _typeName, expectedTypeName));
}

InStream::~InStream() = default;

void InStream::fail(const QString &text) const
{
    throw StreamException(text);
}

bool InStream::atEnd() const
{
    return !d->inBlock && d->left() <= 0;
}

void InStream::openBlock()
{
    if (d->inBlock)
        fail(translate("Zal_stream", "%1: a block is open already").arg(_fileName));
    if (d->left() < 8)
        fail(translate("Zal_stream", "%1: reading past the end of the file").arg(_fileName));
    quint32 payload = 0;
    quint32 version = 0;
    d->in >> payload >> version;
    if (d->in.status() != QDataStream::Ok)
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    if (qint64(payload) > d->left())
        fail(translate("Zal_stream", "%1: block of %2 bytes in a file with %3 left").arg(_fileName).arg(payload).arg(d->left()));
    d->inBlock = true;
    d->blockVersion = version;
    d->remaining = payload;
}

unsigned int InStream::getBlockVersion() const
{
    return d->blockVersion;
}

unsigned int InStream::getBlockRemaining() const
{
    return d->inBlock ? d->remaining : 0;
}

void InStream::take(unsigned int bytes)
{
    if (!d->inBlock)
        fail(translate("Zal_stream", "%1: a value read outside a block").arg(_fileName));
    if (bytes > d->remaining)
        fail(translate("Zal_stream", "%1: reading past the end of the block").arg(_fileName));
    d->remaining -= bytes;
}

void InStream::readInt(int &value)
{
    take(SIZE_INT);
    qint32 v = 0;
    d->in >> v;
    if (d->in.status() != QDataStream::Ok)
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    value = v;
}

void InStream::readUInt(unsigned int &value)
{
    take(SIZE_UINT);
    quint32 v = 0;
    d->in >> v;
    if (d->in.status() != QDataStream::Ok)
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    value = v;
}

void InStream::readBool(bool &value)
{
    take(SIZE_BOOL);
    quint8 v = 0;
    d->in >> v;
    if (d->in.status() != QDataStream::Ok)
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    if (v > 1)
        fail(translate("Zal_stream", "%1: invalid boolean value %2").arg(_fileName).arg(v));
    value = v != 0;
}

void InStream::readString(QString &value)
{
    if (!d->inBlock)
        fail(translate("Zal_stream", "%1: a value read outside a block").arg(_fileName));
    QString text = readStringLimited(d->remaining);
    d->remaining -= sizeOf(text);
    value = std::move(text);
}

QString InStream::readStringLimited(qint64 limit)
{
    if (d->left() < 4 || limit < 4)
        fail(translate("Zal_stream", "%1: reading past the end of the block").arg(_fileName));
    quint32 bytes = 0;
    d->in >> bytes;
    if (bytes == NULL_STRING)
        return QString();
    if (bytes % 2 != 0 || bytes > MAX_STRING_BYTES)
        fail(translate("Zal_stream", "%1: invalid string length %2").arg(_fileName).arg(bytes));
    // Checked before the allocation: a damaged length cannot ask for more
    // memory than the block (and so the file) holds.
    if (qint64(bytes) > limit - 4 || qint64(bytes) > d->left())
        fail(translate("Zal_stream", "%1: string of %2 bytes exceeds its block").arg(_fileName).arg(bytes));
    QByteArray raw(qsizetype(bytes), Qt::Uninitialized);
    if (d->in.readRawData(raw.data(), int(bytes)) != int(bytes))
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    QString text(qsizetype(bytes / 2), Qt::Uninitialized);
    qFromBigEndian<char16_t>(raw.constData(), bytes / 2, text.data());
    return text;
}

void InStream::readColor(Color &value)
{
    take(SIZE_COLOR);
    Color c;
    d->in >> c.red >> c.green >> c.blue >> c.alpha;
    if (d->in.status() != QDataStream::Ok)
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    value = c;
}

void InStream::closeBlock()
{
    if (!d->inBlock)
        fail(translate("Zal_stream", "%1: no open block").arg(_fileName));
    if (d->remaining > 0 && !d->file.seek(d->file.pos() + d->remaining))
        fail(translate("Zal_stream", "%1: read error").arg(_fileName));
    d->inBlock = false;
    d->remaining = 0;
}

} // namespace Zal::IO
