#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

/// The one error type of the program. Thrown by value, caught by const reference; its description
/// is a sentence that can be shown to the user as it stands. Equal by case and payload.
class QSError final : public std::exception
{
public:
    enum class Case {
        database,  ///< SQLite reported a problem
        invalid,   ///< what was asked for can't be done with this input
        badBackup, ///< a backup file can't be restored
        network,   ///< an agency's site could not be reached or read
        io,        ///< this computer's disk or a file on it refused; the system's reason is told
        notFound   ///< the record is gone
    };

    [[nodiscard]] static QSError database(const QString &text);
    [[nodiscard]] static QSError invalid(const QString &text);
    [[nodiscard]] static QSError badBackup(const QString &text);
    [[nodiscard]] static QSError network(const QString &text);
    [[nodiscard]] static QSError io(const QString &text);
    [[nodiscard]] static QSError notFound();

    [[nodiscard]] Case errorCase() const { return m_case; }
    [[nodiscard]] QString payload() const { return m_payload; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    /// The description in UTF-8, for a catch of std::exception.
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const QSError &other) const
    {
        return m_case == other.m_case && m_payload == other.m_payload;
    }

private:
    QSError(Case errorCase, const QString &payload);

    Case m_case;
    QString m_payload;
    QByteArray m_what;
};
