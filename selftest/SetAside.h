#pragma once

#include <QLockFile>
#include <QString>

/// Keeps a run away from the user: a data folder and preferences of its own in a new temporary
/// folder, which goes with this object. One at a time, on the main thread.
class SetAside final
{
public:
    /// Throws QSError::io when the temporary folder can't be made.
    SetAside();
    /// In a temporary folder of that name, which is the same for every run; one that a killed run
    /// left behind is cleared away, and a run that still goes on is waited for.
    explicit SetAside(const QString &name);
    ~SetAside();
    SetAside(const SetAside &) = delete;
    SetAside &operator=(const SetAside &) = delete;

private:
    QString m_folder;
    QLockFile m_lock; ///< on the folder's name
};
