#include "plotvalues.h"

#include <QStringList>
#include <QVarLengthArray>
#include <QVector>
#include <cstdio>

QString PlotValues::join(const QVector<double>& values)
{
    QByteArray text;
    text.reserve(values.size() * 12);
    char buffer[32];
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (i)
            text.append(';');
        // %.17g round-trips every double; snprintf is far quicker than QString::number on millions of points.
        const int n = std::snprintf(buffer, sizeof buffer, "%.17g", values[i]);
        text.append(buffer, n);
    }
    return QString::fromLatin1(text);
}

bool PlotValues::parse(const QString& text, QVector<double>* values)
{
    values->clear();
    if (text.isEmpty())
        return true;
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char(';'));
    values->reserve(parts.size());
    for (const QStringRef& part : parts) {
        bool ok = false;
        const double value = part.toDouble(&ok);
        if (!ok) {
            const QString word = part.trimmed().toString().toLower();
            if (word == QLatin1String("nan"))
                values->append(qQNaN());
            else if (word == QLatin1String("inf"))
                values->append(qInf());
            else if (word == QLatin1String("-inf"))
                values->append(-qInf());
            else
                return false;
            continue;
        }
        values->append(value);
    }
    return true;
}

QString PlotValues::joinNames(const QStringList& names)
{
    QStringList escaped;
    for (QString name : names)
        escaped.append(
            name.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char(';'), QLatin1String("\\;")));
    return escaped.join(QLatin1Char(';'));
}

QStringList PlotValues::splitNames(const QString& text)
{
    QStringList names;
    if (text.isEmpty())
        return names;
    QString current;
    for (int i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch == QLatin1Char('\\') && i + 1 < text.size()) {
            current += text[++i];
        } else if (ch == QLatin1Char(';')) {
            names.append(current);
            current.clear();
        } else {
            current += ch;
        }
    }
    names.append(current);
    return names;
}

QString PlotValues::joinRect(const QRect& rect)
{
    return QStringLiteral("%1;%2;%3;%4").arg(rect.left()).arg(rect.top()).arg(rect.width()).arg(rect.height());
}

bool PlotValues::parseRect(const QString& text, QRect* rect)
{
    const QStringList parts = text.split(QLatin1Char(';'));
    if (parts.size() < 4)
        return false;
    int numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        numbers[i] = parts[i].trimmed().toInt(&ok);
        if (!ok)
            return false;
    }
    *rect = QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
    return true;
}
