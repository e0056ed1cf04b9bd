#pragma once
#include "gapp_export.h"
#include <QString>
#include <QtGlobal>
#include <memory>

namespace Zal::IO {

// One colour of a stream: four bytes.
struct Color
{
    quint8 red = 0;
    quint8 green = 0;
    quint8 blue = 0;
    quint8 alpha = 255;

    friend bool operator==(const Color &a, const Color &b)
    {
        return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
    }
    friend bool operator!=(const Color &a, const Color &b) { return !(a == b); }
};

// Common part of the block streams: a binary file with a header (type name,
// file version) and a sequence of blocks, each with a version and a payload
// whose size the writer declares. Byte layout: docs/host-layer.md.
// Every failure throws StreamException. Not thread-safe; one stream, one thread.
class GAPP_EXPORT Stream
{
public:
    // Payload sizes of the values, as a writer declares them.
    static constexpr unsigned int SIZE_INT = 4;
    static constexpr unsigned int SIZE_UINT = 4;
    static constexpr unsigned int SIZE_BOOL = 1;
    static constexpr unsigned int SIZE_COLOR = 4;
    // The payload size of one string.
    static unsigned int sizeOf(const QString &text);

    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    virtual ~Stream();

    const QString &getFileName() const { return _fileName; }
    const QString &getTypeName() const { return _typeName; }
    unsigned int getVersion() const { return _version; }

protected:
    explicit Stream(const QString &fileName);

    QString _fileName;
    QString _typeName;
    unsigned int _version = 0;
};

// Writes a stream file. The file replaces an existing one only when the
// stream is complete: at close(), or when the object is destroyed with no
// block open and no failure thrown. Otherwise the old file stays as it was.
class GAPP_EXPORT OutStream : public Stream
{
public:
    OutStream(const QString &fileName, const QString &fileTypeName, unsigned int fileVersion);
    ~OutStream() override;

    void beginBlock(unsigned int payloadSize, unsigned int blockVersion);
    void writeInt(int value);
    void writeUInt(unsigned int value);
    void writeBool(bool value);
    void writeString(const QString &value);
    void writeColor(const Color &value);
    // Throws unless exactly the declared payload was written.
    void endBlock();
    // Completes the file now; throws when it cannot be written.
    void close();

private:
    struct Private;
    [[noreturn]] void fail(const QString &text);
    void reserve(unsigned int bytes);
    void check();

    std::unique_ptr<Private> d;
};

// Reads a stream file written by OutStream. The constructor reads the
// header; with an expected type name, a file of another type throws.
// Sizes in the file are checked before anything is allocated for them.
class GAPP_EXPORT InStream : public Stream
{
public:
    explicit InStream(const QString &fileName, const QString &expectedTypeName = QString());
    ~InStream() override;

    // Whether all blocks have been read (outside a block only).
    bool atEnd() const;
    void openBlock();
    unsigned int getBlockVersion() const;
    // Payload bytes of the open block not read yet.
    unsigned int getBlockRemaining() const;
    void readInt(int &value);
    void readUInt(unsigned int &value);
    void readBool(bool &value);
    void readString(QString &value);
    void readColor(Color &value);
    // Leaves the block, passing over what was not read.
    void closeBlock();

private:
    struct Private;
    [[noreturn]] void fail(const QString &text) const;
    void take(unsigned int bytes);
    // A string whose length field and text take at most `limit` bytes.
    QString readStringLimited(qint64 limit);

    std::unique_ptr<Private> d;
};

} // namespace Zal::IO
