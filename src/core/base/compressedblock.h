#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVector>
#include <functional>

class QIODevice;

/**
 * A payload compressed in the framing of qCompress: the uncompressed size as 4 bytes big-endian, then one
 * zlib stream.
 *
 * Payloads above PieceSize are deflated in pieces on the thread pool and joined into that one stream: every
 * piece but the last ends on a flush (an empty stored block, bytes 00 00 FF FF), the last one finishes the
 * stream, and the Adler-32 values are combined. qUncompress and any zlib reader read the result. Because each
 * piece is compressed on its own, a reader can find the flush points again and inflate the pieces in parallel;
 * streams without them (plain qCompress) are inflated in one go, in parallel with the other blocks.
 *
 * The compressed bytes are kept as a list of parts so that a writer can stream a large block to a file
 * without joining it into one more copy.
 */
class CompressedBlock final {
public:
    /** Uncompressed bytes per piece; a multiple of 8 so that pieces never split a double or a pixel. */
    static constexpr qsizetype PieceSize = qsizetype(1) << 20;
    /** deflate expands at most about 1032:1; a stated size beyond that cannot come from the data. */
    static constexpr qint64 MaxExpansion = 1032;
    /** The 4-byte prefix limits a block to this many uncompressed bytes. */
    static constexpr qint64 MaxPayload = 0xFFFFFFFFLL;

    /**
     * Fills @p out with @p length payload bytes starting at payload offset @p offset. Called on worker threads,
     * concurrently for different ranges.
     */
    using Source = std::function<void(qsizetype offset, qsizetype length, char* out)>;
    /**
     * Given, on a worker thread, inflated bytes [offset, offset + length) of a block at @p data (in the
     * destination, or in a scratch buffer when there is none); the sink may change them. They are not yet
     * verified: the block is good only when the whole inflation reports success. Calls for different ranges
     * may come concurrently; a range may come again when a pieced stream has to be read once more in one go.
     */
    using Sink = std::function<void(qsizetype offset, char* data, qsizetype length)>;

    /** One payload to compress: either @p data or, when it is null, @p source provides the bytes. */
    struct Request {
        const char* data = nullptr;
        qsizetype size = 0;
        int level = 6;
        Source source;
    };

    /**
     * One block to inflate. Its bytes go to @p destination, which must hold exactly the stated size; or, when
     * that is null, to the buffer @p allocate returns (called once, on a worker thread, so that a large
     * allocation overlaps with the other blocks' work); or, without either, only to the sink.
     */
    struct Inflation {
        const char* data = nullptr;
        qsizetype size = 0;
        char* destination = nullptr;
        qsizetype destinationSize = 0;
        Sink sink;
        std::function<char*()> allocate;
        bool ok = false; ///< set by uncompressAll()
    };

    CompressedBlock() = default;

    static CompressedBlock compress(const char* data, qsizetype size, int level);
    static CompressedBlock compress(const QByteArray& data, int level);
    /** Compresses every request, the pieces of all of them spread over the thread pool together. */
    static QVector<CompressedBlock> compressAll(const QVector<Request>& requests);

    /** Compressed size in bytes, the 4-byte prefix included. */
    qsizetype size() const { return m_size; }
    qsizetype uncompressedSize() const { return m_uncompressedSize; }
    bool isNull() const { return m_parts.isEmpty(); }
    /** The block's bytes in order; their concatenation is the block. */
    const QList<QByteArray>& parts() const { return m_parts; }
    QByteArray toByteArray() const;
    [[nodiscard]] bool writeTo(QIODevice& device) const;

    /** The version of the zlib library in use, for the program's info. */
    static QString zlibVersion();

    /** The uncompressed size the 4-byte prefix states, or -1 when @p size is below 4. */
    static qint64 statedSize(const char* data, qsizetype size);
    /** False when @p stated is more than any zlib stream of @p compressedSize bytes (prefix included) can give. */
    static bool isPlausible(qint64 stated, qsizetype compressedSize);

    /**
     * Inflates every job; the jobs run in parallel with each other and the pieces of pieced streams in parallel
     * too. A job succeeds when the stream is intact (Adler-32 included) and fills its destination exactly.
     */
    static void uncompressAll(QVector<Inflation>& jobs);
    /** One block into @p destination of exactly the stated size. */
    [[nodiscard]] static bool uncompress(
        const char* data, qsizetype size, char* destination, qsizetype destinationSize);
    /**
     * One block into @p out, refusing stated sizes above @p maxSize or beyond what the data can hold, so that a
     * forged prefix never makes it allocate.
     */
    [[nodiscard]] static bool uncompress(const QByteArray& block, QByteArray* out, qint64 maxSize, QString* message);

private:
    QList<QByteArray> m_parts;
    qsizetype m_size = 0;
    qsizetype m_uncompressedSize = 0;
};
