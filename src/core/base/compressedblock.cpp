#include "compressedblock.h"

#include "parallel.h"

#include <QIODevice>
#include <climits>
#include <cstring>
#include <libdeflate.h>
#include <memory>
#include <mutex>
#include <vector>
#include <zlib.h>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

constexpr qsizetype PieceSize = CompressedBlock::PieceSize;

void putBigEndian32(uchar* out, quint32 value)
{
    out[0] = uchar(value >> 24);
    out[1] = uchar(value >> 16);
    out[2] = uchar(value >> 8);
    out[3] = uchar(value);
}

quint32 getBigEndian32(const uchar* in)
{
    return (quint32(in[0]) << 24) | (quint32(in[1]) << 16) | (quint32(in[2]) << 8) | quint32(in[3]);
}

/** The two zlib header bytes deflateInit() would write for @p level with the default window. */
void zlibHeader(uchar* out, int level)
{
    const int flags = level < 2 ? 0 : (level < 6 ? 1 : (level == 6 ? 2 : 3));
    unsigned header = (0x78u << 8) | unsigned(flags << 6);
    header += 31 - header % 31;
    out[0] = uchar(header >> 8);
    out[1] = uchar(header);
}

int pieceCount(qsizetype size)
{
    return int(qMax<qsizetype>(1, (size + PieceSize - 1) / PieceSize));
}

/** Below this many bytes in all, waking the thread pool costs more than the work. */
constexpr qsizetype ParallelBytes = qsizetype(1) << 18;

template <typename Item, typename Function> void runAll(QVector<Item>& items, qsizetype bytes, Function function)
{
    if (items.size() == 1 || bytes < ParallelBytes) {
        for (Item& item : items)
            function(item);
    } else if (!items.isEmpty()) {
        Parallel::forEach(items.size(), [&items, &function](int i) { function(items[i]); });
    }
}

// ---- compression ---------------------------------------------------------------------------------

struct DeflateTask {
    int request = 0;
    int piece = 0;
    qsizetype offset = 0;
    qsizetype length = 0;
    bool last = false;
    QByteArray out;
    uLong adler = 1;
};

/**
 * Raw deflate of one piece. A piece that is not the last ends on a sync flush, so it stops on a byte boundary
 * with an empty stored block; the next piece, compressed with no history, may follow directly.
 */
void deflatePiece(DeflateTask& task, const char* input, int level)
{
    z_stream stream {};
    if (deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        qFatal("CompressedBlock: deflateInit2 failed");
    // libdeflate's checksum uses the vector units; zlib's is several times slower on a megabyte.
    task.adler = libdeflate_adler32(1, input, size_t(task.length));
    qsizetype capacity = qsizetype(deflateBound(&stream, uLong(task.length))) + 16;
    task.out.resize(int(capacity));
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input));
    stream.avail_in = uInt(task.length);
    const int flush = task.last ? Z_FINISH : Z_SYNC_FLUSH;
    qsizetype written = 0;
    for (;;) {
        stream.next_out = reinterpret_cast<Bytef*>(task.out.data() + written);
        stream.avail_out = uInt(capacity - written);
        const int result = deflate(&stream, flush);
        written = capacity - stream.avail_out;
        if (task.last ? result == Z_STREAM_END : (result == Z_OK && stream.avail_out > 0))
            break;
        if (result != Z_OK && result != Z_BUF_ERROR)
            qFatal("CompressedBlock: deflate failed");
        capacity += capacity / 2 + 64;
        task.out.resize(int(capacity));
    }
    deflateEnd(&stream);
    task.out.resize(int(written));
    task.out.squeeze();
}

/** Frees what libdeflate allocated. */
struct LibdeflateFree {
    void operator()(libdeflate_compressor* c) const { libdeflate_free_compressor(c); }
    void operator()(libdeflate_decompressor* d) const { libdeflate_free_decompressor(d); }
};

/** libdeflate's compressor for @p level (1 to 9) on the calling thread, kept since it sets up large tables. */
libdeflate_compressor* compressor(int level)
{
    thread_local std::unique_ptr<libdeflate_compressor, LibdeflateFree> compressors[10];
    std::unique_ptr<libdeflate_compressor, LibdeflateFree>& c = compressors[level];
    if (!c)
        c.reset(libdeflate_alloc_compressor(level));
    return c.get();
}

/**
 * Walks the blocks of the raw deflate stream @p data with zlib, which reports block boundaries (libdeflate
 * does not): @p lastHeader gets the bit where the final block begins, @p endBit the bit behind it. False
 * unless the stream is whole and gives exactly @p expected bytes.
 */
bool finalBlockBits(const uchar* data, qsizetype size, qsizetype expected, qint64* lastHeader, qint64* endBit)
{
    thread_local std::vector<Bytef> sink(size_t(256) << 10);
    z_stream stream {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(data);
    stream.avail_in = uInt(size);
    *lastHeader = 0; // a raw stream's first header is not reported as a boundary
    *endBit = -1;
    qsizetype produced = 0;
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = sink.data();
        stream.avail_out = uInt(sink.size());
        result = inflate(&stream, Z_BLOCK);
        produced += qsizetype(sink.size()) - qsizetype(stream.avail_out);
        if (result == Z_OK && (stream.data_type & 128)) {
            const qint64 bit = qint64(stream.next_in - data) * 8 - (stream.data_type & 7);
            if (stream.data_type & 64)
                *endBit = bit; // behind the final block's end code
            else
                *lastHeader = bit;
        } else if (result == Z_OK && stream.avail_out > 0 && stream.avail_in == 0) {
            break; // no end in sight
        }
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END && *endBit > *lastHeader && stream.avail_in == 0 && produced == expected;
}

/**
 * Raw deflate of one piece with libdeflate, about twice as fast as zlib at the same level and size. libdeflate
 * always finishes its stream, so a piece that is not the last has its final block's flag cleared and gets the
 * empty stored block a sync flush would have written. False when that cannot be done; zlib then does the piece.
 */
bool deflatePieceQuickly(DeflateTask& task, const char* input, int level)
{
    libdeflate_compressor* c = compressor(level);
    if (!c)
        return false;
    const size_t capacity = libdeflate_deflate_compress_bound(c, size_t(task.length)) + 5;
    task.out.resize(int(capacity));
    uchar* out = reinterpret_cast<uchar*>(task.out.data());
    qsizetype written = qsizetype(libdeflate_deflate_compress(c, input, size_t(task.length), out, capacity - 5));
    if (written == 0)
        return false;
    if (!task.last) {
        qint64 header = 0, end = 0;
        if (!finalBlockBits(out, written, task.length, &header, &end))
            return false;
        out[header / 8] &= uchar(~(1u << (header % 8)));
        const int used = int(end % 8);
        written = qsizetype(end / 8);
        if (used > 0)
            out[written++] &= uchar((1u << used) - 1);
        // The stored block's three header bits (all zero) fit behind the end, or take one more byte.
        if (used == 0 || used > 5)
            out[written++] = 0;
        for (uchar byte : { 0x00, 0x00, 0xFF, 0xFF })
            out[written++] = byte;
    }
    task.adler = libdeflate_adler32(1, input, size_t(task.length));
    task.out.resize(int(written));
    task.out.squeeze();
    return true;
}

// ---- decompression -------------------------------------------------------------------------------

/** Inflated bytes go to the sink in chunks of this size, small enough to be read back from the cache. */
constexpr qsizetype SinkChunk = qsizetype(256) << 10;

struct InflateTask {
    enum Kind { Allocate = -2, Whole = -1 }; ///< or a piece number
    int job = 0;
    int piece = Whole;
    const uchar* in = nullptr;
    qsizetype inLength = 0;
    qsizetype inAvailable = 0; ///< from in to the end of the deflate data
    qsizetype outOffset = 0;
    qsizetype outLength = 0;
    bool last = false;
    bool ok = false;
    uLong adler = 1;
};

/** Positions just behind every "00 00 FF FF" in [begin, end) whose first FF lies in [from, to). */
QVector<qsizetype> flushPointsIn(const uchar* data, qsizetype begin, qsizetype end, qsizetype from, qsizetype to)
{
    QVector<qsizetype> points;
    auto check = [&](qsizetype at) {
        if (at + 2 < end && data[at + 1] == 0xFF && at >= begin + 2 && data[at - 1] == 0 && data[at - 2] == 0)
            points.append(at + 2);
    };
    qsizetype at = from;
#ifdef __SSE2__
    // Sixteen positions at a time look for FF FF; in compressed data that pair is rare, so the checks are few.
    const __m128i ones = _mm_set1_epi8(char(0xFF));
    for (; at + 17 <= to && at + 17 <= end; at += 16) {
        const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + at));
        const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + at + 1));
        unsigned mask
            = unsigned(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(here, ones), _mm_cmpeq_epi8(next, ones))));
        while (mask) {
            check(at + qCountTrailingZeroBits(mask));
            mask &= mask - 1;
        }
    }
#endif
    for (; at < to; ++at) {
        if (data[at] == 0xFF)
            check(at);
    }
    return points;
}

/** Positions just behind every "00 00 FF FF" in [begin, end), scanned in parallel; empty beyond @p limit. */
QVector<qsizetype> findFlushPoints(const uchar* data, qsizetype begin, qsizetype end, int limit)
{
    constexpr qsizetype Segment = qsizetype(4) << 20;
    const int segments = int((end - begin + Segment - 1) / Segment);
    QVector<QVector<qsizetype>> found(segments);
    QVector<qsizetype>* out = found.data();
    auto scan = [=](int i) {
        const qsizetype from = begin + qsizetype(i) * Segment;
        out[i] = flushPointsIn(data, begin, end, from, qMin(end, from + Segment));
    };
    if (segments > 1)
        Parallel::forEach(segments, scan);
    else if (segments == 1)
        scan(0);
    QVector<qsizetype> points;
    for (const QVector<qsizetype>& part : qAsConst(found)) {
        points += part;
        if (points.size() > limit)
            return {};
    }
    return points;
}

/**
 * Inflates output bytes [offset, offset + length) into @p destination, or without one into a scratch buffer,
 * a chunk at a time: each chunk goes to the sink and into @p adler while it is still in the cache.
 * Returns the last result of inflate(); @p produced tells how many bytes came.
 */
int inflateRange(z_stream& stream, const CompressedBlock::Inflation& job, char* destination, qsizetype offset,
    qsizetype length, uLong* adler, qsizetype* produced)
{
    thread_local std::vector<char> scratch;
    // Without a sink the output goes in one call: each call ends by copying up to 32 KiB into zlib's window.
    const qsizetype step = job.sink ? SinkChunk : length;
    int result = Z_OK;
    qsizetype done = 0;
    while (done < length) {
        const qsizetype chunk = qMin(step, length - done);
        char* out = destination ? destination + offset + done : nullptr;
        if (!out) {
            scratch.resize(size_t(qMax(chunk, SinkChunk)));
            out = scratch.data();
        }
        stream.next_out = reinterpret_cast<Bytef*>(out);
        stream.avail_out = uInt(chunk);
        result = inflate(&stream, Z_NO_FLUSH);
        const qsizetype filled = chunk - qsizetype(stream.avail_out);
        if (filled > 0) {
            if (adler)
                *adler = libdeflate_adler32(*adler, out, size_t(filled));
            if (job.sink)
                job.sink(offset + done, out, filled);
            done += filled;
        }
        if (result != Z_OK)
            break; // the end, an error, or no progress for want of input
    }
    *produced = done;
    return result;
}

/** With every expected byte out, lets inflate() read the rest of its input, which must give nothing more. */
int drain(z_stream& stream)
{
    Bytef spare = 0;
    stream.next_out = &spare;
    stream.avail_out = 1;
    const int result = inflate(&stream, Z_NO_FLUSH);
    return stream.avail_out == 1 ? result : Z_DATA_ERROR;
}

/** libdeflate's decompressor of the calling thread: it holds no state between calls, only tables. */
libdeflate_decompressor* decompressor()
{
    thread_local std::unique_ptr<libdeflate_decompressor, LibdeflateFree> d(libdeflate_alloc_decompressor());
    return d.get();
}

/** Hands inflated bytes to the job's sink in cache-sized chunks. */
void feedSink(const CompressedBlock::Inflation& job, char* out, qsizetype offset, qsizetype length)
{
    for (qsizetype done = 0; job.sink && done < length; done += SinkChunk)
        job.sink(offset + done, out + done, qMin(SinkChunk, length - done));
}

/**
 * A piece in one call of libdeflate, which wants a stream that ends. A piece that ends on a sync flush is given
 * the rest of the stream as well: libdeflate runs on into the next piece and stops, out of room, before its first
 * byte, with this piece's bytes all written. The next piece is decoded by its own task, and the Adler-32 of all
 * pieces together checks that each ended where it should.
 */
bool inflatePieceWhole(InflateTask& task, const CompressedBlock::Inflation& job, char* out)
{
    size_t consumed = 0;
    const libdeflate_result result = libdeflate_deflate_decompress_ex(decompressor(), task.in,
        size_t(task.last ? task.inLength : task.inAvailable), out, size_t(task.outLength), &consumed, nullptr);
    const bool whole = task.last ? result == LIBDEFLATE_SUCCESS && consumed == size_t(task.inLength)
                                 : result == LIBDEFLATE_INSUFFICIENT_SPACE;
    if (!whole)
        return false;
    task.adler = libdeflate_adler32(1, out, size_t(task.outLength));
    feedSink(job, out, task.outOffset, task.outLength);
    return true;
}

/** One piece of a pieced stream, raw deflate, which must give exactly its share of the output. */
bool inflatePiece(InflateTask& task, const CompressedBlock::Inflation& job, char* destination)
{
    if (destination)
        return inflatePieceWhole(task, job, destination + task.outOffset);
    if (task.outLength <= 4 * PieceSize) {
        // Only the sink wants the bytes: a piece fits a scratch buffer of the thread.
        thread_local std::vector<char> scratch;
        scratch.resize(size_t(task.outLength));
        return inflatePieceWhole(task, job, scratch.data());
    }
    // A piece beyond what the writer makes streams to the sink a chunk at a time, through zlib.
    z_stream stream {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(task.in);
    stream.avail_in = uInt(task.inLength);
    qsizetype produced = 0;
    uLong adler = 1;
    int result = inflateRange(stream, job, destination, task.outOffset, task.outLength, &adler, &produced);
    if (produced == task.outLength && result == Z_OK)
        result = drain(stream); // the flush that ends the piece, or the end of the stream
    const bool ended = result == Z_STREAM_END;
    const bool ok = (result == Z_OK || result == Z_BUF_ERROR || ended) && ended == task.last && stream.avail_in == 0
        && produced == task.outLength;
    inflateEnd(&stream);
    task.adler = adler;
    return ok;
}

/** A whole zlib stream in one go; the inflater checks the Adler-32 itself. */
bool inflateStream(const CompressedBlock::Inflation& job, char* destination)
{
    // Only the sink wants the bytes: they are inflated into a buffer of their own, freed at once.
    std::unique_ptr<char[]> scratch;
    if (!destination && job.destinationSize <= (qsizetype(256) << 20)) {
        scratch.reset(new (std::nothrow) char[size_t(qMax<qsizetype>(job.destinationSize, 1))]);
        destination = scratch.get();
    }
    if (destination) {
        // The stated size is exact: libdeflate refuses a stream that gives fewer or more bytes.
        size_t consumed = 0;
        const libdeflate_result result = libdeflate_zlib_decompress_ex(decompressor(), job.data + 4,
            size_t(job.size - 4), destination, size_t(job.destinationSize), &consumed, nullptr);
        if (result != LIBDEFLATE_SUCCESS || consumed != size_t(job.size - 4))
            return false;
        feedSink(job, destination, 0, job.destinationSize);
        return true;
    }
    z_stream stream {};
    if (inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(job.data + 4));
    stream.avail_in = uInt(job.size - 4);
    qsizetype produced = 0;
    int result = inflateRange(stream, job, destination, 0, job.destinationSize, nullptr, &produced);
    if (produced == job.destinationSize && result == Z_OK)
        result = drain(stream);
    inflateEnd(&stream);
    return result == Z_STREAM_END && produced == job.destinationSize;
}

bool hasValidHeader(const uchar* stream)
{
    const unsigned cmf = stream[0];
    const unsigned flg = stream[1];
    return (cmf & 0x0F) == Z_DEFLATED && (cmf >> 4) <= 7 && ((cmf << 8) | flg) % 31 == 0 && !(flg & 0x20);
}

} // namespace

CompressedBlock CompressedBlock::compress(const char* data, qsizetype size, int level)
{
    Request request;
    request.data = data;
    request.size = size;
    request.level = level;
    return compressAll({ request }).first();
}

CompressedBlock CompressedBlock::compress(const QByteArray& data, int level)
{
    return compress(data.constData(), data.size(), level);
}

QVector<CompressedBlock> CompressedBlock::compressAll(const QVector<Request>& requests)
{
    QVector<DeflateTask> tasks;
    qsizetype total = 0;
    for (int r = 0; r < requests.size(); ++r) {
        const Request& request = requests.at(r);
        Q_ASSERT(request.size >= 0 && request.size <= MaxPayload);
        total += request.size;
        if (request.size == 0)
            continue;
        const int pieces = pieceCount(request.size);
        for (int p = 0; p < pieces; ++p) {
            DeflateTask task;
            task.request = r;
            task.piece = p;
            task.offset = qsizetype(p) * PieceSize;
            task.length = qMin(PieceSize, request.size - task.offset);
            task.last = p == pieces - 1;
            tasks.append(task);
        }
    }
    runAll(tasks, total, [&requests](DeflateTask& task) {
        const Request& request = requests.at(task.request);
        const char* input = request.data ? request.data + task.offset : nullptr;
        if (!input) {
            thread_local std::vector<char> scratch;
            scratch.resize(size_t(task.length));
            request.source(task.offset, task.length, scratch.data());
            input = scratch.data();
        }
        const bool quickly
            = request.level >= 1 && request.level <= 9 && deflatePieceQuickly(task, input, request.level);
        if (!quickly)
            deflatePiece(task, input, request.level);
    });

    QVector<CompressedBlock> blocks(requests.size());
    int next = 0;
    for (int r = 0; r < requests.size(); ++r) {
        CompressedBlock& block = blocks[r];
        const Request& request = requests.at(r);
        block.m_uncompressedSize = request.size;
        if (request.size == 0) {
            // What qCompress gives for no data: the size prefix alone.
            block.m_parts.append(QByteArray(4, '\0'));
            block.m_size = 4;
            continue;
        }
        QByteArray head(6, Qt::Uninitialized);
        putBigEndian32(reinterpret_cast<uchar*>(head.data()), quint32(request.size));
        zlibHeader(reinterpret_cast<uchar*>(head.data() + 4), request.level);
        block.m_parts.append(head);
        uLong adler = 1;
        for (; next < tasks.size() && tasks.at(next).request == r; ++next) {
            DeflateTask& task = tasks[next];
            adler = adler32_combine(adler, task.adler, z_off_t(task.length));
            block.m_parts.append(std::move(task.out));
        }
        QByteArray tail(4, Qt::Uninitialized);
        putBigEndian32(reinterpret_cast<uchar*>(tail.data()), quint32(adler));
        block.m_parts.append(tail);
        for (const QByteArray& part : qAsConst(block.m_parts))
            block.m_size += part.size();
    }
    return blocks;
}

QByteArray CompressedBlock::toByteArray() const
{
    QByteArray out;
    out.reserve(int(m_size));
    for (const QByteArray& part : m_parts)
        out += part;
    return out;
}

bool CompressedBlock::writeTo(QIODevice& device) const
{
    for (const QByteArray& part : m_parts) {
        if (device.write(part) != part.size())
            return false;
    }
    return true;
}

QString CompressedBlock::zlibVersion()
{
    return QString::fromLatin1(::zlibVersion());
}

qint64 CompressedBlock::statedSize(const char* data, qsizetype size)
{
    if (size < 4)
        return -1;
    return qint64(getBigEndian32(reinterpret_cast<const uchar*>(data)));
}

bool CompressedBlock::isPlausible(qint64 stated, qsizetype compressedSize)
{
    // Stored data costs 5 bytes per 64 KiB block at worst, so small payloads need no special case here.
    return stated >= 0 && compressedSize >= 4 && stated <= (qint64(compressedSize) - 4) * MaxExpansion + 64;
}

void CompressedBlock::uncompressAll(QVector<Inflation>& jobs)
{
    QVector<InflateTask> allocations, wholes, pieces;
    QVector<int> firstPiece(jobs.size(), -1);
    qsizetype total = 0;
    for (int j = 0; j < jobs.size(); ++j) {
        Inflation& job = jobs[j];
        job.ok = false;
        total += job.destinationSize;
        const uchar* data = reinterpret_cast<const uchar*>(job.data);
        const qint64 stated = statedSize(job.data, job.size);
        if (stated < 0 || stated != job.destinationSize || job.size > qsizetype(UINT_MAX)
            || (!job.destination && !job.allocate && !job.sink))
            continue;
        if (stated == 0 && job.size == 4) {
            job.ok = true;
            continue;
        }
        if (job.size < 10 || !hasValidHeader(data + 4) || !isPlausible(stated, job.size))
            continue;
        if (!job.destination && job.allocate) {
            InflateTask allocation;
            allocation.job = j;
            allocation.piece = InflateTask::Allocate;
            allocations.append(allocation);
        }
        InflateTask whole;
        whole.job = j;
        const int expected = pieceCount(stated);
        const QVector<qsizetype> points
            = expected > 1 ? findFlushPoints(data, 6, job.size - 4, expected - 1) : QVector<qsizetype>();
        if (expected == 1 || points.size() != expected - 1) {
            wholes.append(whole);
            continue;
        }
        firstPiece[j] = pieces.size();
        for (int p = 0; p < expected; ++p) {
            InflateTask task;
            task.job = j;
            task.piece = p;
            const qsizetype from = p == 0 ? 6 : points.at(p - 1);
            const qsizetype to = p == expected - 1 ? job.size - 4 : points.at(p);
            task.in = data + from;
            task.inLength = to - from;
            task.inAvailable = job.size - 4 - from;
            task.outOffset = qsizetype(p) * PieceSize;
            task.outLength = qMin(PieceSize, job.destinationSize - task.outOffset);
            task.last = p == expected - 1;
            pieces.append(task);
        }
    }

    // A job's own allocation runs as a task of its own, first, so that it overlaps with the other jobs' work;
    // whoever needs the destination before it is done waits for it.
    std::unique_ptr<std::once_flag[]> allocated(new std::once_flag[size_t(jobs.size())]);
    auto destinationOf = [&jobs, &allocated](int j) {
        Inflation& job = jobs[j];
        if (!job.destination && job.allocate)
            std::call_once(allocated[size_t(j)], [&job]() { job.destination = job.allocate(); });
        return job.destination;
    };
    auto run = [&jobs, &destinationOf](InflateTask& task) {
        char* destination = destinationOf(task.job);
        if (task.piece == InflateTask::Allocate)
            task.ok = true;
        else if (task.piece == InflateTask::Whole)
            task.ok = inflateStream(jobs.at(task.job), destination);
        else
            task.ok = inflatePiece(task, jobs.at(task.job), destination);
    };
    // Whole streams before pieces: they are the longest tasks and overlap with the pieces of the others.
    QVector<InflateTask> tasks = allocations + wholes + pieces;
    runAll(tasks, total, run);

    const int pieceStart = allocations.size() + wholes.size();
    for (int t = allocations.size(); t < pieceStart; ++t)
        jobs[tasks.at(t).job].ok = tasks.at(t).ok;
    QVector<InflateTask> retries;
    for (int j = 0; j < jobs.size(); ++j) {
        if (firstPiece.at(j) < 0)
            continue;
        uLong adler = 1;
        bool ok = true;
        for (int t = pieceStart + firstPiece.at(j); t < tasks.size() && tasks.at(t).job == j; ++t) {
            ok = ok && tasks.at(t).ok;
            adler = adler32_combine(adler, tasks.at(t).adler, z_off_t(tasks.at(t).outLength));
        }
        const uchar* trailer = reinterpret_cast<const uchar*>(jobs.at(j).data + jobs.at(j).size - 4);
        if (ok && adler == getBigEndian32(trailer)) {
            jobs[j].ok = true;
        } else {
            // The flush points were a coincidence of the data, or the stream is broken: zlib decides.
            InflateTask whole;
            whole.job = j;
            retries.append(whole);
        }
    }
    runAll(retries, total, run);
    for (const InflateTask& task : qAsConst(retries))
        jobs[task.job].ok = task.ok;
}

bool CompressedBlock::uncompress(const char* data, qsizetype size, char* destination, qsizetype destinationSize)
{
    QVector<Inflation> jobs(1);
    jobs[0].data = data;
    jobs[0].size = size;
    jobs[0].destination = destination;
    jobs[0].destinationSize = destinationSize;
    uncompressAll(jobs);
    return jobs.at(0).ok;
}

bool CompressedBlock::uncompress(const QByteArray& block, QByteArray* out, qint64 maxSize, QString* message)
{
    const qint64 stated = statedSize(block.constData(), block.size());
    QString problem;
    if (stated < 0)
        problem = QStringLiteral("compressed block shorter than its size prefix");
    else if (stated > maxSize || stated > qint64(INT_MAX) - 64)
        problem = QStringLiteral("compressed block states %1 bytes, more than allowed").arg(stated);
    else if (!isPlausible(stated, block.size()))
        problem = QStringLiteral("compressed block states %1 bytes, more than %2 compressed bytes can hold")
                      .arg(stated)
                      .arg(block.size());
    if (problem.isEmpty()) {
        out->resize(int(stated));
        if (uncompress(block.constData(), block.size(), out->data(), stated))
            return true;
        problem = QStringLiteral("compressed block is broken");
    }
    out->clear();
    if (message)
        *message = problem;
    return false;
}
