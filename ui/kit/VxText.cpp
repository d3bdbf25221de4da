#include "VxText.h"

#include <QLabel>

#include <array>

namespace {
/// The style sheet's words for the roles.
constexpr std::array names = {"title", "heading", "body", "note"};
} // namespace

namespace VxText {
QLabel *make(const QString &text, Role role, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setProperty("role", QLatin1StringView(names.at(static_cast<std::size_t>(role))));
    return label;
}
} // namespace VxText
