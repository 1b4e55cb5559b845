#include "postscriptwriter.h"

#include <QPainter>

namespace {

// PostScript lines should stay below 255 characters; 39 pixels of 6 hex digits make 234.
constexpr int pixelsPerLine = 39;

} // namespace

QByteArray PostScriptWriter::fromImage(const QImage& image, const QString& title)
{
    QImage opaque(image.size(), QImage::Format_RGB32);
    opaque.fill(Qt::white);
    {
        QPainter painter(&opaque);
        painter.drawImage(0, 0, image);
    }
    const int w = opaque.width(), h = opaque.height();
    QString safeTitle = title;
    safeTitle.replace(QLatin1Char('\n'), QLatin1Char(' '));

    QByteArray out;
    out.reserve(qsizetype(w) * h * 6 + h * 2 * (w / pixelsPerLine + 1) + 1024);
    out += "%!PS-Adobe-3.0 EPSF-3.0\n";
    out += "%%BoundingBox: 0 0 " + QByteArray::number(w) + ' ' + QByteArray::number(h) + '\n';
    out += "%%Creator: Velmora\n";
    out += "%%Title: " + safeTitle.toUtf8() + '\n';
    out += "%%Pages: 1\n%%LanguageLevel: 2\n%%EndComments\n%%Page: 1 1\n";
    out += "gsave\n" + QByteArray::number(w) + ' ' + QByteArray::number(h) + " scale\n";
    out += "/DeviceRGB setcolorspace\n";
    out += "<< /ImageType 1 /Width " + QByteArray::number(w) + " /Height " + QByteArray::number(h)
        + " /BitsPerComponent 8 /Decode [0 1 0 1 0 1]\n";
    // The image runs from the top row down, as QImage holds it.
    out += "   /ImageMatrix [" + QByteArray::number(w) + " 0 0 -" + QByteArray::number(h) + " 0 "
        + QByteArray::number(h) + "]\n";
    out += "   /DataSource currentfile /ASCIIHexDecode filter >>\nimage\n";
    static const char digits[] = "0123456789abcdef";
    for (int y = 0; y < h; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(opaque.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            const int channels[3] = { qRed(line[x]), qGreen(line[x]), qBlue(line[x]) };
            for (int c : channels) {
                out += digits[c >> 4];
                out += digits[c & 15];
            }
            if ((x + 1) % pixelsPerLine == 0 || x == w - 1)
                out += '\n';
        }
    }
    out += ">\ngrestore\nshowpage\n%%EOF\n";
    return out;
}
