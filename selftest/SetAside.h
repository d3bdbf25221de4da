#pragma once

#include <QString>

/// Keeps a run away from the user: a data folder and preferences of its own in a new temporary
/// folder, which goes with this object. One at a time, on the main thread.
class SetAside final
{
public:
    /// Throws QSError::invalid when the temporary folder can't be made.
    SetAside();
    ~SetAside();
    SetAside(const SetAside &) = delete;
    SetAside &operator=(const SetAside &) = delete;

private:
    QString m_folder;
};
