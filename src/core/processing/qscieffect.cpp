#include "qscieffect.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <algorithm>

bool QSciEffect::check(int, int, bool anySelected, QString* message) const
{
    if (selectionOnly() && !anySelected) {
        if (message)
            *message = nothingSelectedText();
        return false;
    }
    return true;
}

bool QSciEffect::check(const QSciImage& item, QString* message) const
{
    return check(item.width(), item.height(), item.maskSelectedCount() > 0, message);
}

QRect QSciEffect::region(const EffectInput& input) const
{
    const QRect all(0, 0, input.width, input.height);
    if (!selectionOnly())
        return all;
    if (!input.mask)
        return QRect();
    int left = input.width, right = -1, bottom = input.height, top = -1;
    for (int x = 0; x < input.width; ++x) {
        const uchar* column = input.mask + qsizetype(x) * input.height;
        const uchar* first = std::find_if(column, column + input.height, [](uchar m) { return m != 0; });
        if (first == column + input.height)
            continue;
        const uchar* last = column + input.height - 1;
        while (*last == 0)
            --last;
        left = std::min(left, x);
        right = x;
        bottom = std::min(bottom, int(first - column));
        top = std::max(top, int(last - column));
    }
    return right < 0 ? QRect() : QRect(QPoint(left, bottom), QPoint(right, top));
}

QString QSciEffect::nothingSelectedText()
{
    return QCoreApplication::translate(
        "QSciEffect", "Function cannot be applied to selection since there is nothing selected!");
}
