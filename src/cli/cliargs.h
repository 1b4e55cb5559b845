#pragma once

#include <QString>
#include <QStringList>

/**
 * The arguments of one command. Commands take their options by name; whatever is left over
 * that looks like an option is a usage error.
 */
class CliArgs final {
public:
    explicit CliArgs(const QStringList& args)
        : m_args(args)
    {
    }

    /** Removes "--name" and returns true when it was present. */
    bool takeFlag(const QString& name);
    /**
     * Removes "--name VALUE" (or "--name=VALUE"); @p present tells whether it was there. A second occurrence
     * is a usage error: which of two values was meant cannot be guessed.
     */
    QString takeOption(const QString& name, bool* present = nullptr);
    /** Every occurrence of a repeatable option, in order. */
    QStringList takeAll(const QString& name);
    /** An option that must be present; records a usage error otherwise. */
    QString takeRequired(const QString& name);

    /** Every argument not taken yet, options included. */
    QStringList remaining() const { return m_args; }
    /** What is left once every option was taken: the positional arguments. */
    QStringList positional() const;
    /** A problem with the options taken so far (a missing value, a repeated option); empty when none. */
    QString takenError() const { return m_error; }
    /** A usage problem found so far, or an option nobody took; empty when all is well. */
    QString usageError() const;

private:
    QString takeFirst(const QString& name, bool* present);

    QStringList m_args;
    QString m_error;
};
