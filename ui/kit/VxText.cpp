#include "VxText.h"

#include <QLabel>

#include <array>

namespace {
struct Look
{
    const char *name; ///< the style sheet's word for it
    qreal size;       ///< of the application's font
    QFont::Weight weight;
};

constexpr std::array looks = {Look{"title", 1.6, QFont::DemiBold},
                              Look{"heading", 1.15, QFont::DemiBold},
                              Look{"body", 1, QFont::Normal}, Look{"note", 1, QFont::Normal}};
} // namespace

namespace VxText {
QLabel *make(const QString &text, Role role, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    const Look &look = looks.at(static_cast<std::size_t>(role));
    label->setProperty("role", QLatin1StringView(look.name));
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * look.size);
    font.setWeight(look.weight);
    label->setFont(font);
    return label;
}
} // namespace VxText
