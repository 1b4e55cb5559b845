#include "columnstatistics.h"

#include "qscisimpletablemodel.h"

#include <cmath>

ColumnStatistics ColumnStatistics::of(const QSciSimpleTableModel& table, int column)
{
    ColumnStatistics s;
    // Welford's update: a column of large, close values keeps its spread.
    double m2 = 0;
    for (int r = 0; r < table.rows(); ++r) {
        bool ok = false;
        const double x = QSciSimpleTableModel::toNumber(table.cellText(r, column), &ok);
        if (!ok || std::isnan(x))
            continue;
        if (s.count == 0) {
            s.minimum = s.maximum = x;
        } else {
            s.minimum = qMin(s.minimum, x);
            s.maximum = qMax(s.maximum, x);
        }
        ++s.count;
        const double delta = x - s.mean;
        s.mean += delta / s.count;
        m2 += delta * (x - s.mean);
    }
    s.standardDeviation = s.count > 1 ? std::sqrt(m2 / (s.count - 1)) : 0;
    return s;
}
