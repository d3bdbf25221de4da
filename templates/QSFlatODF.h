#pragma once

#include "QSRendered.h"

#include <QByteArray>

/// A rendered document as one flat OpenDocument text: the form in which LibreOffice takes it for
/// Word and Rich Text, with one named paragraph style for each kind of block.
namespace QSFlatODF {
[[nodiscard]] QByteArray write(const QSRendered &rendered);
}
