#pragma once

#include <QString>

#include <memory>

class QSettings;

/// The user's preferences: a key/value store of the user's own, outside the data folder, so that a
/// moved or restored data folder leaves them alone. Main thread only.
///
/// No defaults are written: an absent key reads as the default that its accessor names.
namespace QSPrefs {
inline const QString disclaimerKey = QStringLiteral("qs.disclaimerAccepted.v1");
inline const QString stateKey = QStringLiteral("qs.homeState");

/// Keeps the preferences in this file instead of the user's own; empty goes back to those.
void setFileOverride(const QString &path);

/// The store itself, for preferences that another layer owns (theme, zoom, window layout).
std::unique_ptr<QSettings> settings();

/// False until the user has accepted the first-launch disclaimer, and for a value that accepting
/// does not store.
bool disclaimerAccepted();
void setDisclaimerAccepted(bool accepted);

/// Code of the user's home jurisdiction, "CO" until one is chosen.
QString homeState();
void setHomeState(const QString &code);
} // namespace QSPrefs
