#pragma once

#include <QString>

/// The long disclaimer, shown in the disclaimer sheet and in Help.
namespace QSDisclaimer {
extern const QString full;
}
