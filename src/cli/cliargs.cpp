#include "cliargs.h"

bool CliArgs::takeFlag(const QString& name)
{
    const int index = m_args.indexOf(name);
    if (index < 0)
        return false;
    m_args.removeAt(index);
    m_args.removeAll(name); // a flag said twice says the same
    return true;
}

QString CliArgs::takeOption(const QString& name, bool* present)
{
    bool found = false;
    const QString value = takeFirst(name, &found);
    if (present)
        *present = found;
    if (found) {
        bool again = false;
        takeFirst(name, &again);
        if (again && m_error.isEmpty())
            m_error = QStringLiteral("%1 given more than once").arg(name);
    }
    return value;
}

QString CliArgs::takeFirst(const QString& name, bool* present)
{
    if (present)
        *present = false;
    for (int i = 0; i < m_args.size(); ++i) {
        const QString& arg = m_args.at(i);
        if (arg == name) {
            if (present)
                *present = true;
            if (i + 1 >= m_args.size()) {
                m_error = QStringLiteral("missing value for %1").arg(name);
                m_args.removeAt(i);
                return QString();
            }
            const QString value = m_args.at(i + 1);
            m_args.removeAt(i);
            m_args.removeAt(i);
            return value;
        }
        if (arg.startsWith(name + QLatin1Char('='))) {
            if (present)
                *present = true;
            const QString value = arg.mid(name.size() + 1);
            m_args.removeAt(i);
            return value;
        }
    }
    return QString();
}

QStringList CliArgs::takeAll(const QString& name)
{
    QStringList values;
    bool present = true;
    while (present) {
        const QString value = takeFirst(name, &present);
        if (present)
            values.append(value);
    }
    return values;
}

QString CliArgs::takeRequired(const QString& name)
{
    bool present = false;
    const QString value = takeOption(name, &present);
    if (!present && m_error.isEmpty())
        m_error = QStringLiteral("missing option %1").arg(name);
    return value;
}

QStringList CliArgs::positional() const
{
    QStringList result;
    for (const QString& arg : m_args) {
        if (!(arg.startsWith(QLatin1String("--")) && arg.size() > 2))
            result.append(arg);
    }
    return result;
}

QString CliArgs::usageError() const
{
    if (!m_error.isEmpty())
        return m_error;
    for (const QString& arg : m_args) {
        if (arg.startsWith(QLatin1String("--")) && arg.size() > 2)
            return QStringLiteral("unknown option %1").arg(arg);
    }
    return QString();
}
