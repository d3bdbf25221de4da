#include "VxText.h"

#include <QLabel>
#include <QTextDocument>

#include <array>

using namespace Qt::Literals::StringLiterals;

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

QString asItStands(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

QString asTitle(const QString &text)
{
    return QString(text).replace(u"[*]"_s, u"[*][*]"_s);
}

QString asCaption(const QString &text)
{
    return QString(text).replace(u'&', u"&&"_s);
}
} // namespace VxText
