#pragma once

#include <QString>

class QSciSimpleTableModel;

/** Count, mean, sample standard deviation, minimum and maximum of the numeric cells of one column. */
struct ColumnStatistics {
    int count = 0;
    double mean = 0;
    double standardDeviation = 0; ///< with n - 1; 0 for fewer than two values
    double minimum = 0;
    double maximum = 0;

    /** Empty and non-numeric cells are left out; infinities are numbers and make the results infinite. */
    static ColumnStatistics of(const QSciSimpleTableModel& table, int column);
};
