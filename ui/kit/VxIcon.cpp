#include "VxIcon.h"

#include "QSInfo.h"
#include "VellTheme.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
struct Drawing
{
    QStringView symbol;
    QStringView file;
};

constexpr std::array drawings = {
    Drawing{u"arrow.clockwise", u"arrow-clockwise"},
    Drawing{u"arrow.left.and.right", u"arrows"},
    Drawing{u"arrow.uturn.backward", u"arrow-counterclockwise"},
    Drawing{u"arrow.uturn.forward", u"arrow-clockwise"},
    Drawing{u"building.columns.fill", u"bank"},
    Drawing{u"calendar", u"calendar3"},
    Drawing{u"checkmark.circle.fill", u"check-circle-fill"},
    Drawing{u"checkmark.seal.fill", u"patch-check-fill"},
    Drawing{u"checkmark.shield.fill", u"shield-fill-check"},
    Drawing{u"clock.badge.exclamationmark.fill", u"clock-fill"},
    Drawing{u"doc.fill", u"file-earmark-fill"},
    Drawing{u"doc.richtext.fill", u"file-earmark-richtext-fill"},
    Drawing{u"doc.text.fill", u"file-earmark-text-fill"},
    Drawing{u"exclamationmark.triangle.fill", u"exclamation-triangle-fill"},
    Drawing{u"externaldrive.fill", u"device-hdd-fill"},
    Drawing{u"folder.fill", u"folder-fill"},
    Drawing{u"globe", u"globe"},
    Drawing{u"hand.raised.fill", u"hand-index-fill"},
    Drawing{u"info.circle.fill", u"info-circle-fill"},
    Drawing{u"magnifyingglass", u"search"},
    Drawing{u"minus.magnifyingglass", u"zoom-out"},
    Drawing{u"person.2.wave.2.fill", u"people-fill"},
    Drawing{u"person.crop.circle.fill", u"person-circle"},
    Drawing{u"plus.magnifyingglass", u"zoom-in"},
    Drawing{u"printer.fill", u"printer"},
    Drawing{u"safari.fill", u"box-arrow-up-right"},
    Drawing{u"sidebar.left", u"layout-sidebar"},
    Drawing{u"sparkle.magnifyingglass", u"stars"},
    Drawing{u"square.and.arrow.up", u"box-arrow-up"},
    Drawing{u"trash.fill", u"trash"},
    Drawing{u"tray.and.arrow.down.fill", u"floppy-fill"},
    Drawing{u"xmark", u"x-lg"},
};

/// Draws one SVG in one colour at whatever size it is asked for; paler where disabled.
class TintedEngine final : public QIconEngine
{
public:
    TintedEngine(const QByteArray &svg, const QColor &colour)
        : m_renderer(std::make_shared<QSvgRenderer>(
              QByteArray(svg).replace("currentColor", colour.name().toLatin1())))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        if (mode == QIcon::Disabled) {
            painter->setOpacity(0.4);
        }
        // in a wider rectangle the drawing stands at its left and the rest is room before a text
        m_renderer->render(painter, QRectF(rect.topLeft(), QSizeF(rect.height(), rect.height())));
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect({0, 0}, size), mode, state);
        return picture;
    }

    [[nodiscard]] QIconEngine *clone() const override { return new TintedEngine(*this); }

private:
    std::shared_ptr<QSvgRenderer> m_renderer;
};
} // namespace

namespace VxIcon {
QIcon named(const QString &symbol, const QColor &colour)
{
    const auto drawing = std::ranges::find(drawings, symbol, &Drawing::symbol);
    const std::optional<QDir> resources = QSInfo::resourceFolder();
    if (drawing == drawings.end() || !resources) {
        return {};
    }
    const QColor tint = colour.isValid() ? colour : VellThemes::current().text.color();
    static QHash<std::pair<QStringView, QRgb>, QIcon> made; // lists ask with every painted row
    QIcon &icon = made[{drawing->file, tint.rgba()}];
    QFile file(resources->filePath(u"icons/%1.svg"_s.arg(drawing->file)));
    if (icon.isNull() && file.open(QIODevice::ReadOnly)) {
        icon = QIcon(new TintedEngine(file.readAll(), tint));
    }
    return icon;
}
} // namespace VxIcon
