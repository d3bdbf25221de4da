#include "VxScale.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QToolBar>
#include <QWidget>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Scales the lengths of one object. Sizes are whole pixels, so that the exact ones are kept on the
/// side, in a property of the object: rounding must not add up over many changes.
class Scaler final
{
public:
    Scaler(QObject *object, double ratio)
        : m_object(object), m_ratio(ratio), m_exact(object->property(key).toMap())
    {
    }
    ~Scaler() { m_object->setProperty(key, m_exact); }
    Q_DISABLE_COPY_MOVE(Scaler)

    /// The length that a name of it stands for, from now on.
    [[nodiscard]] double scaled(const QString &name, double now)
    {
        const double before = m_exact.value(name, now).toDouble();
        const bool ours = std::abs(before - now) <= 0.5; // otherwise somebody has set another
        const double exact = (ours ? before : now) * m_ratio;
        m_exact.insert(name, exact);
        return exact;
    }
    [[nodiscard]] int scaled(const QString &name, int now)
    {
        return qRound(scaled(name, static_cast<double>(now)));
    }
    [[nodiscard]] QSize scaled(const QString &name, QSize now)
    {
        return {scaled(name + u".width"_s, now.width()), scaled(name + u".height"_s, now.height())};
    }
    [[nodiscard]] QMargins scaled(const QString &name, const QMargins &now)
    {
        return {scaled(name + u".left"_s, now.left()), scaled(name + u".top"_s, now.top()),
                scaled(name + u".right"_s, now.right()), scaled(name + u".bottom"_s, now.bottom())};
    }

private:
    static constexpr const char *key = "vxExactLengths";

    QObject *m_object;
    double m_ratio;
    QVariantMap m_exact;
};

void scaleLayout(QLayout *layout, double ratio)
{
    Scaler scaler(layout, ratio);
    layout->setContentsMargins(scaler.scaled(u"margins"_s, layout->contentsMargins()));
    if (auto *grid = qobject_cast<QGridLayout *>(layout)) {
        grid->setHorizontalSpacing(scaler.scaled(u"across"_s, grid->horizontalSpacing()));
        grid->setVerticalSpacing(scaler.scaled(u"down"_s, grid->verticalSpacing()));
    } else if (auto *form = qobject_cast<QFormLayout *>(layout)) {
        form->setHorizontalSpacing(scaler.scaled(u"across"_s, form->horizontalSpacing()));
        form->setVerticalSpacing(scaler.scaled(u"down"_s, form->verticalSpacing()));
    } else if (layout->spacing() > 0) {
        layout->setSpacing(scaler.scaled(u"spacing"_s, layout->spacing()));
    }
}

void scaleIcons(QWidget *widget, Scaler &scaler)
{
    const auto scaleIconSize = [&scaler](auto *owner) {
        owner->setIconSize(scaler.scaled(u"icon"_s, owner->iconSize()));
    };
    if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
        scaleIconSize(button);
    } else if (auto *combo = qobject_cast<QComboBox *>(widget)) {
        scaleIconSize(combo);
    } else if (auto *bar = qobject_cast<QToolBar *>(widget)) {
        scaleIconSize(bar);
    } else if (auto *view = qobject_cast<QAbstractItemView *>(widget);
               view && view->iconSize().isValid()) {
        scaleIconSize(view);
    }
}

void scaleSizes(QWidget *widget, Scaler &scaler)
{
    const QSize smallest = widget->minimumSize();
    const QSize largest = widget->maximumSize();
    // the larger bound first where the lengths grow, and never one across the other
    widget->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    widget->setMinimumSize(scaler.scaled(u"min"_s, smallest));
    const QSize scaledLargest = scaler.scaled(u"max"_s, largest);
    widget->setMaximumSize(
        largest.width() < QWIDGETSIZE_MAX ? scaledLargest.width() : QWIDGETSIZE_MAX,
        largest.height() < QWIDGETSIZE_MAX ? scaledLargest.height() : QWIDGETSIZE_MAX);
}

void scaleWidget(QWidget *widget, double ratio)
{
    Scaler scaler(widget, ratio);
    // the smallest size of a window is what its layout says
    if (!widget->isWindow() && !widget->property(VxScale::ownSize).toBool()) {
        scaleSizes(widget, scaler);
    }
    scaleIcons(widget, scaler);
    if (auto *header = qobject_cast<QHeaderView *>(widget);
        header && header->orientation() == Qt::Vertical) {
        header->setDefaultSectionSize(scaler.scaled(u"row"_s, header->defaultSectionSize()));
    }
    if (!widget->contentsMargins().isNull() && !widget->inherits("QFrame")) {
        widget->setContentsMargins(scaler.scaled(u"margins"_s, widget->contentsMargins()));
    }
    if (QLayout *layout = widget->layout()) {
        // a layout without a spacing of its own has that of the one around it: the inner one first
        for (QLayout *inner : layout->findChildren<QLayout *>()) {
            scaleLayout(inner, ratio);
        }
        scaleLayout(layout, ratio);
    }
}
} // namespace

namespace VxScale {
void scale(QWidget *widget, double ratio)
{
    if (widget->property(ownScale).toBool()) {
        return;
    }
    scaleWidget(widget, ratio);
    for (QWidget *child : widget->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow()) { // each window is scaled on its own
            scale(child, ratio);
        }
    }
}
} // namespace VxScale
