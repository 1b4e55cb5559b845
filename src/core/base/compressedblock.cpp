#include "compressedblock.h"

#include <QIODevice>
#include <QtConcurrent/QtConcurrentMap>
#include <climits>
#include <cstring>
#include <vector>
#include <zlib.h>

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
        QtConcurrent::blockingMap(items, function);
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
    task.adler = adler32_z(1, reinterpret_cast<const Bytef*>(input), size_t(task.length));
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

// ---- decompression -------------------------------------------------------------------------------

struct InflateTask {
    int job = 0;
    int piece = -1; ///< -1: the whole stream in one go
    const uchar* in = nullptr;
    qsizetype inLength = 0;
    qsizetype outOffset = 0;
    qsizetype outLength = 0;
    bool last = false;
    bool ok = false;
    uLong adler = 1;
};

/** Positions just behind every "00 00 FF FF" in [begin, end), at most @p limit + 1 of them. */
QVector<qsizetype> findFlushPoints(const uchar* data, qsizetype begin, qsizetype end, int limit)
{
    QVector<qsizetype> points;
    const uchar* p = data + begin;
    const uchar* stop = data + end;
    while (p < stop) {
        p = static_cast<const uchar*>(std::memchr(p, 0xFF, size_t(stop - p)));
        if (!p)
            break;
        if (p + 1 < stop && p[1] == 0xFF && p - data >= begin + 2 && p[-1] == 0 && p[-2] == 0) {
            const qsizetype at = (p + 2) - data;
            if (at < end) {
                points.append(at);
                if (points.size() > limit)
                    break;
            }
            p += 2;
        } else {
            ++p;
        }
    }
    return points;
}

/** One piece of a pieced stream, raw, into exactly its share of the destination. */
bool inflatePiece(InflateTask& task, char* destination)
{
    z_stream stream {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(task.in);
    stream.avail_in = uInt(task.inLength);
    Bytef* out = reinterpret_cast<Bytef*>(destination + task.outOffset);
    stream.next_out = out;
    stream.avail_out = uInt(task.outLength);
    int result = inflate(&stream, Z_SYNC_FLUSH);
    if (result >= 0 && result != Z_STREAM_END && stream.avail_out == 0 && stream.avail_in > 0) {
        // The output is full; what is left must be the flush (or the end of the stream) and give nothing more.
        Bytef spare = 0;
        stream.next_out = &spare;
        stream.avail_out = 1;
        result = inflate(&stream, Z_SYNC_FLUSH);
        if (stream.avail_out != 1)
            result = Z_DATA_ERROR;
    }
    const bool ended = result == Z_STREAM_END;
    const bool ok = (result == Z_OK || result == Z_BUF_ERROR || ended) && ended == task.last && stream.avail_in == 0
        && stream.next_out != nullptr && qsizetype(stream.total_out) == task.outLength;
    inflateEnd(&stream);
    if (ok)
        task.adler = adler32_z(1, out, size_t(task.outLength));
    return ok;
}

/** A whole zlib stream in one go, told to the sink piece by piece as it fills the destination. */
bool inflateStream(const CompressedBlock::Inflation& job)
{
    z_stream stream {};
    if (inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(job.data + 4));
    stream.avail_in = uInt(job.size - 4);
    Bytef spare = 0;
    qsizetype done = 0;
    int result = Z_OK;
    while (result == Z_OK) {
        const qsizetype chunk = qMin(PieceSize, job.destinationSize - done);
        if (chunk > 0) {
            stream.next_out = reinterpret_cast<Bytef*>(job.destination + done);
            stream.avail_out = uInt(chunk);
        } else {
            // All bytes are there; only the end of the stream may follow.
            stream.next_out = &spare;
            stream.avail_out = 1;
        }
        result = inflate(&stream, Z_NO_FLUSH);
        if (chunk <= 0) {
            if (stream.avail_out != 1)
                result = Z_DATA_ERROR;
            break;
        }
        const qsizetype filled = chunk - qsizetype(stream.avail_out);
        if (job.sink && filled > 0)
            job.sink(done, filled);
        done += filled;
        if (result == Z_BUF_ERROR && filled > 0)
            result = Z_OK;
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END && done == job.destinationSize;
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
        if (request.data) {
            deflatePiece(task, request.data + task.offset, request.level);
        } else {
            thread_local std::vector<char> scratch;
            scratch.resize(size_t(task.length));
            request.source(task.offset, task.length, scratch.data());
            deflatePiece(task, scratch.data(), request.level);
        }
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
    QVector<InflateTask> tasks;
    QVector<int> firstPiece(jobs.size(), -1);
    QVector<InflateTask> pieces;
    qsizetype total = 0;
    for (int j = 0; j < jobs.size(); ++j) {
        Inflation& job = jobs[j];
        job.ok = false;
        total += job.destinationSize;
        const uchar* data = reinterpret_cast<const uchar*>(job.data);
        const qint64 stated = statedSize(job.data, job.size);
        if (stated < 0 || stated != job.destinationSize || job.size > qsizetype(UINT_MAX))
            continue;
        if (stated == 0 && job.size == 4) {
            job.ok = true;
            continue;
        }
        if (job.size < 10 || !hasValidHeader(data + 4) || !isPlausible(stated, job.size))
            continue;
        InflateTask whole;
        whole.job = j;
        const int expected = pieceCount(stated);
        const QVector<qsizetype> points
            = expected > 1 ? findFlushPoints(data, 6, job.size - 4, expected - 1) : QVector<qsizetype>();
        if (points.size() != expected - 1 || expected == 1) {
            tasks.append(whole);
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
            task.outOffset = qsizetype(p) * PieceSize;
            task.outLength = qMin(PieceSize, job.destinationSize - task.outOffset);
            task.last = p == expected - 1;
            pieces.append(task);
        }
    }
    // Whole streams first: they are the longest tasks and overlap with the pieces of the others.
    tasks += pieces;
    auto run = [&jobs](InflateTask& task) {
        const Inflation& job = jobs.at(task.job);
        if (task.piece < 0) {
            task.ok = inflateStream(job);
            return;
        }
        task.ok = inflatePiece(task, job.destination);
        if (task.ok && job.sink)
            job.sink(task.outOffset, task.outLength);
    };
    runAll(tasks, total, run);

    QVector<InflateTask> retries;
    for (const InflateTask& task : qAsConst(tasks)) {
        if (task.piece < 0)
            jobs[task.job].ok = task.ok;
    }
    for (int j = 0; j < jobs.size(); ++j) {
        if (firstPiece.at(j) < 0)
            continue;
        const int begin = tasks.size() - pieces.size() + firstPiece.at(j);
        uLong adler = 1;
        bool ok = true;
        for (int t = begin; t < tasks.size() && tasks.at(t).job == j; ++t) {
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
