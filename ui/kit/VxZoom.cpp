#include "VxZoom.h"

#include "QSMutation.h"
#include "QSPrefs.h"
#include "VellThemeRoot.h"

#include <QSettings>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString key = u"vell.zoom"_s;
}

namespace VxZoom {
double clamp(double zoom)
{
    const double largest = QSMutation::on(u"zoom-without-limit") ? 100 : max;
    // the bounds' order matters: whatever is no number becomes the smallest
    return std::fmin(largest, std::fmax(min, std::round(zoom * 100) / 100));
}

double value()
{
    const double stored = QSPrefs::settings()->value(key).toDouble();
    return stored == 0 ? 1.0 : clamp(stored);
}

void setValue(double zoom)
{
    QSPrefs::settings()->setValue(key, clamp(zoom));
    VellThemeRoot::refresh();
}

void zoomIn()
{
    setValue(value() + step);
}

void zoomOut()
{
    setValue(value() - step);
}

QString levelTitle(int level)
{
    return u"%1%"_s.arg(level);
}
} // namespace VxZoom
