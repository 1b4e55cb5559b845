#include "textmatrix.h"

#include "core/base/messages.h"
#include "core/items/qsciimage.h"

#include <QList>
#include <cstring>

namespace {

template <typename Format> QByteArray writeRows(int width, int height, Format format)
{
    QByteArray out;
    out.reserve(qsizetype(width) * height * 12);
    char buffer[40];
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            if (x)
                out.append('\t');
            out.append(buffer, format(buffer, x, y));
        }
        out.append('\n');
    }
    return out;
}

} // namespace

QByteArray TextMatrix::write(const double* z, int width, int height)
{
    return writeRows(width, height, [z, height](char* buffer, int x, int y) {
        const QByteArray number = QByteArray::number(z[qsizetype(x) * height + y], 'g', 17);
        std::memcpy(buffer, number.constData(), size_t(number.size()));
        return int(number.size());
    });
}

QByteArray TextMatrix::writeMask(const uchar* mask, int width, int height)
{
    return writeRows(width, height, [mask, height](char* buffer, int x, int y) {
        buffer[0] = mask[qsizetype(x) * height + y] ? '1' : '0';
        return 1;
    });
}

bool TextMatrix::read(const QByteArray& text, QVector<double>* z, int* width, int* height, QString* message)
{
    QList<QVector<double>> rows;
    qint64 values = 0;
    int lineNumber = 0;
    for (const QByteArray& line : text.split('\n')) {
        ++lineNumber;
        if (line.trimmed().startsWith('#'))
            continue;
        // Spreadsheets write commas, semicolons or tabs between values; all of them separate, like blanks.
        QByteArray plain = line;
        for (char& c : plain) {
            if (c == ',' || c == ';')
                c = ' ';
        }
        const QList<QByteArray> fields = plain.simplified().split(' ');
        if (fields.size() == 1 && fields.first().isEmpty())
            continue;
        values += fields.size();
        if (values > QSciImage::MaxPoints) {
            *message = Messages::tr("the matrix holds more than %1 values, more than one item can hold")
                           .arg(QSciImage::MaxPoints);
            return false;
        }
        QVector<double> row;
        row.reserve(fields.size());
        for (const QByteArray& field : fields) {
            // QByteArray's conversion is always the C locale's: files never depend on the user's separator.
            bool ok = false;
            const double value = field.toDouble(&ok);
            if (!ok) {
                *message = Messages::tr("Not a number in line %1: %2")
                               .arg(lineNumber)
                               .arg(QString::fromLatin1(field.left(40)));
                return false;
            }
            row.append(value);
        }
        if (!rows.isEmpty() && row.size() != rows.first().size()) {
            *message = Messages::tr("Line %1 holds %2 values, the first row %3")
                           .arg(lineNumber)
                           .arg(row.size())
                           .arg(rows.first().size());
            return false;
        }
        rows.append(row);
    }
    if (rows.isEmpty()) {
        *message = Messages::tr("The text holds no values");
        return false;
    }
    const int h = rows.size();
    const int w = rows.first().size();
    z->resize(qsizetype(w) * h);
    for (int r = 0; r < h; ++r) {
        const int y = h - 1 - r;
        for (int x = 0; x < w; ++x)
            (*z)[qsizetype(x) * h + y] = rows.at(r).at(x);
    }
    *width = w;
    *height = h;
    return true;
}
