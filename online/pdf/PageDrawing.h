#pragma once

#include <QImage>

/// What came of drawing a page or a part of it.
struct PageDrawing
{
    enum class Outcome {
        drawn,
        madeWay, ///< for a change of a value, or cancelled; asked for again it can be drawn
        failed   ///< it can't be drawn
    };

    Outcome outcome = Outcome::failed;
    QImage image; ///< null unless it was drawn
};
