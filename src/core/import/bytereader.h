#pragma once

#include <QByteArray>
#include <QString>
#include <cstring>
#include <type_traits>

/**
 * Bounds-checked reads from a file held in memory. Every read names an absolute offset and fails (returns
 * false, leaving the output alone) instead of reading past the end; `fits()` checks a run of bytes before a
 * caller allocates anything for it. Little-endian unless the reader was made big-endian.
 */
class ByteReader final {
public:
    explicit ByteReader(const QByteArray& data, bool bigEndian = false)
        : m_data(reinterpret_cast<const unsigned char*>(data.constData()))
        , m_size(quint64(data.size()))
        , m_bigEndian(bigEndian)
    {
    }
    ByteReader(const char* data, quint64 size, bool bigEndian = false)
        : m_data(reinterpret_cast<const unsigned char*>(data))
        , m_size(size)
        , m_bigEndian(bigEndian)
    {
    }

    quint64 size() const { return m_size; }
    const char* data() const { return reinterpret_cast<const char*>(m_data); }
    bool bigEndian() const { return m_bigEndian; }

    /** True when @p count items of @p itemSize bytes starting at @p offset lie inside the data (no overflow). */
    bool fits(quint64 offset, quint64 count, quint64 itemSize = 1) const
    {
        if (offset > m_size)
            return false;
        if (itemSize != 0 && count > (m_size - offset) / itemSize)
            return false;
        return true;
    }

    template <typename T> bool read(quint64 offset, T* value) const
    {
        static_assert(std::is_arithmetic<T>::value, "numbers only");
        if (!fits(offset, sizeof(T)))
            return false;
        *value = at<T>(offset);
        return true;
    }

    /** Unchecked read for loops whose whole range was checked with fits(). */
    template <typename T> T at(quint64 offset) const
    {
        unsigned char bytes[sizeof(T)];
        std::memcpy(bytes, m_data + offset, sizeof(T));
        if (m_bigEndian) {
            for (size_t i = 0; i < sizeof(T) / 2; ++i)
                std::swap(bytes[i], bytes[sizeof(T) - 1 - i]);
        }
        T value;
        std::memcpy(&value, bytes, sizeof(T));
        return value;
    }

    /** @p length bytes at @p offset, or an empty array when they do not fit. */
    QByteArray bytes(quint64 offset, quint64 length) const
    {
        if (!fits(offset, length))
            return {};
        return QByteArray(data() + offset, int(length));
    }

    /** UTF-16LE text of @p chars characters at @p offset, cut at the first NUL; false when it does not fit. */
    bool utf16(quint64 offset, quint64 chars, QString* text) const
    {
        if (!fits(offset, chars, 2))
            return false;
        QString result;
        result.reserve(int(chars));
        for (quint64 i = 0; i < chars; ++i) {
            const quint16 c = quint16(m_data[offset + 2 * i] | (m_data[offset + 2 * i + 1] << 8));
            if (c == 0)
                break;
            result.append(QChar(c));
        }
        *text = result;
        return true;
    }

private:
    const unsigned char* m_data;
    quint64 m_size;
    bool m_bigEndian;
};
