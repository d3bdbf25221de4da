#include "VxIcon.h"

#include "QSInfo.h"
#include "VellThemeRoot.h"

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
    Drawing{u"banknote.fill", u"cash"},
    Drawing{u"building.2.fill", u"buildings-fill"},
    Drawing{u"building.columns.fill", u"bank"},
    Drawing{u"calendar", u"calendar3"},
    Drawing{u"car.fill", u"car-front-fill"},
    Drawing{u"checkmark.seal.fill", u"patch-check-fill"},
    Drawing{u"checkmark.shield.fill", u"shield-fill-check"},
    Drawing{u"clock.badge.exclamationmark.fill", u"clock-fill"},
    Drawing{u"creditcard.fill", u"credit-card-fill"},
    Drawing{u"doc.fill", u"file-earmark-fill"},
    Drawing{u"doc.richtext.fill", u"file-earmark-richtext-fill"},
    Drawing{u"doc.text.fill", u"file-earmark-text-fill"},
    Drawing{u"dollarsign.circle.fill", u"cash-coin"},
    Drawing{u"envelope.badge.fill", u"envelope-exclamation-fill"},
    Drawing{u"exclamationmark.triangle.fill", u"exclamation-triangle-fill"},
    Drawing{u"externaldrive.fill", u"device-hdd-fill"},
    Drawing{u"folder.fill", u"folder-fill"},
    Drawing{u"globe", u"globe"},
    Drawing{u"globe.americas.fill", u"globe-americas"},
    Drawing{u"hand.raised.fill", u"hand-index-fill"},
    Drawing{u"house.fill", u"house-door-fill"},
    Drawing{u"info.circle.fill", u"info-circle-fill"},
    Drawing{u"key.fill", u"key-fill"},
    Drawing{u"magnifyingglass", u"search"},
    Drawing{u"minus.magnifyingglass", u"zoom-out"},
    Drawing{u"number.square.fill", u"123"},
    Drawing{u"person.2.slash.fill", u"person-x-fill"},
    Drawing{u"person.2.wave.2.fill", u"people-fill"},
    Drawing{u"person.crop.circle.fill", u"person-circle"},
    Drawing{u"person.text.rectangle.fill", u"person-vcard-fill"},
    Drawing{u"phone.fill", u"telephone-fill"},
    Drawing{u"plus.magnifyingglass", u"zoom-in"},
    Drawing{u"printer.fill", u"printer"},
    Drawing{u"questionmark.circle.fill", u"question-circle-fill"},
    Drawing{u"safari.fill", u"box-arrow-up-right"},
    Drawing{u"shield.lefthalf.filled", u"shield-shaded"},
    Drawing{u"sidebar.left", u"layout-sidebar"},
    Drawing{u"signature", u"pen-fill"},
    Drawing{u"signpost.right.fill", u"signpost-fill"},
    Drawing{u"sparkle.magnifyingglass", u"stars"},
    Drawing{u"square.and.arrow.up", u"box-arrow-up"},
    Drawing{u"trash.fill", u"trash"},
    Drawing{u"tray.and.arrow.down.fill", u"floppy-fill"},
    Drawing{u"xmark", u"x-lg"},
};

/// The drawing of a file in one colour; null when the file can't be read.
std::shared_ptr<QSvgRenderer> drawn(QStringView file, const QColor &colour)
{
    static QHash<std::pair<QStringView, QRgb>, std::shared_ptr<QSvgRenderer>> made;
    std::shared_ptr<QSvgRenderer> &renderer = made[{file, colour.rgba()}];
    const std::optional<QDir> resources = QSInfo::resourceFolder();
    if (!renderer && resources) {
        QFile svg(resources->filePath(u"icons/%1.svg"_s.arg(file)));
        if (svg.open(QIODevice::ReadOnly)) {
            renderer = std::make_shared<QSvgRenderer>(
                svg.readAll().replace("currentColor", colour.name().toLatin1()));
        }
    }
    return renderer;
}

/// Draws one SVG at whatever size it is asked for, in its colour or else in that of the theme's
/// text as it is by then; paler where disabled.
class TintedEngine final : public QIconEngine
{
public:
    TintedEngine(QStringView file, const QColor &colour) : m_file(file), m_colour(colour) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto renderer =
            drawn(m_file, m_colour.isValid() ? m_colour : VellThemeRoot::theme().text.color());
        if (!renderer) {
            return;
        }
        painter->save();
        if (mode == QIcon::Disabled) {
            painter->setOpacity(0.4);
        }
        // in a wider rectangle the drawing stands at its left and the rest is room before a text
        renderer->render(painter, QRectF(rect.topLeft(), QSizeF(rect.height(), rect.height())));
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
    QStringView m_file;
    QColor m_colour;
};
} // namespace

namespace VxIcon {
QIcon named(const QString &symbol, const QColor &colour)
{
    const auto drawing = std::ranges::find(drawings, symbol, &Drawing::symbol);
    return drawing == drawings.end() ? QIcon() : QIcon(new TintedEngine(drawing->file, colour));
}
} // namespace VxIcon
