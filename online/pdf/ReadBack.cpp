#include "ReadBack.h"

#include "FieldDrawing.h"
#include "InkCheck.h"
#include "PopplerForm.h"

#include <QHash>
#include <QMap>

#include <poppler-qt6.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The same text for the same letters, however they are coded and spaced.
QString comparable(const QString &text)
{
    QString result;
    const QString composed = text.normalized(QString::NormalizationForm_KC);
    std::ranges::copy_if(composed, std::back_inserter(result), [](QChar character) {
        return !character.isSpace() && character.category() != QChar::Other_Format;
    });
    return result;
}

/// True for scripts whose letters change places or join when they are set: another program reads
/// them in an order of its own.
bool isReordered(const QString &text)
{
    return std::ranges::any_of(text.toUcs4(), [](uint letter) {
        const QChar::Direction direction = QChar::direction(letter);
        return direction == QChar::DirR || direction == QChar::DirAL ||
               QChar::category(letter) == QChar::Mark_SpacingCombining ||
               QChar::category(letter) == QChar::Mark_NonSpacing;
    });
}

bool isRead(const QString &seen, const QString &typed)
{
    if (seen == typed) {
        return true;
    }
    if (!isReordered(typed)) {
        return false;
    }
    const auto letters = [](const QString &text) {
        QList<uint> sorted = text.toUcs4();
        sorted.removeIf([](uint letter) { return QChar::isMark(letter); });
        std::ranges::sort(sorted);
        return sorted;
    };
    return letters(seen) == letters(typed);
}

/// A list's lines that nobody chose are on its drawing too.
bool isOn(const QString &seen, const Widget &widget)
{
    const QStringList texts = FieldDrawing::texts(widget);
    const bool isList = widget.field.kind == FormField::Kind::listBox;
    return std::ranges::all_of(texts, [&](const QString &text) {
        return isList ? seen.contains(comparable(text)) : isRead(seen, comparable(text));
    });
}

QString textOf(const Poppler::Document &document, int number)
{
    QString text;
    if (const auto page = document.page(number)) {
        for (const auto &box : page->textList()) {
            text += box->text();
        }
    }
    return comparable(text);
}
} // namespace

QList<int> ReadBack::unread(const FieldDrawings &drawings, const QList<Widget> &widgets)
{
    QList<int> unread;
    QHash<int, QString> texts; // by page
    const auto document = PopplerForm::load(drawings.pdf());
    for (const Widget &widget : widgets) {
        const bool isDrawn = widget.drawing && widget.drawing->hasText();
        const int page = drawings.pageOf(widget.field.id);
        if (!isDrawn || !widget.drawing->rest().isEmpty()) {
            continue;
        }
        if (document && !texts.contains(page)) {
            texts.insert(page, textOf(*document, page));
        }
        if (!document || !isOn(texts.value(page), widget)) {
            unread.append(widget.field.id);
        }
    }
    return unread;
}

QList<int> ReadBack::unseen(const QByteArray &flattened, const QList<Widget> &widgets,
                            const PopplerForm &form)
{
    constexpr double dotsPerInch = 100;
    constexpr double dotsPerPoint = dotsPerInch / 72;
    QMap<int, QList<const Widget *>> pages;
    for (const Widget &widget : widgets) {
        if (widget.printed && widget.drawing && widget.drawing->hasText()) {
            pages[widget.field.page].append(&widget);
        }
    }
    QList<int> unseen;
    const auto document = PopplerForm::load(flattened);
    if (document) {
        document->setRenderHint(Poppler::Document::TextAntialiasing);
    }
    for (auto page = pages.cbegin(); page != pages.cend(); ++page) {
        const auto source = document ? document->page(page.key()) : nullptr;
        const QImage drawn = source ? source->renderToImage(dotsPerInch, dotsPerInch) : QImage();
        const QImage grey = drawn.convertToFormat(QImage::Format_Grayscale8);
        for (const Widget *widget : page.value()) {
            const QTransform toDots =
                form.toPage(widget->field.id) * QTransform::fromScale(dotsPerPoint, dotsPerPoint);
            if (!InkCheck::isSeen(grey, *widget->drawing, toDots)) {
                unseen.append(widget->field.id);
            }
        }
    }
    return unseen;
}
