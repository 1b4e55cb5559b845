#pragma once

#include <QString>
#include <functional>

class QWidget;

/**
 * A tool's option panel kept as one string: token pairs of widget object name and value, for check
 * boxes and radio buttons ("1"/"0"), combo boxes (index), spin boxes and line edits. Only named widgets
 * take part; Qt's own inner widgets ("qt_...") are skipped.
 */
class ToolPanelState final {
public:
    static QString capture(const QWidget* panel);
    /** Sets every named widget found in @p state; unknown names and widgets missing from it are left alone. */
    static void restore(QWidget* panel, const QString& state);
    /** Calls @p changed whenever one of the named widgets changes its value. */
    static void watch(QWidget* panel, const std::function<void()>& changed);
};
