#include "QSError.h"
#include "QSFlatODF.h"
#include "QSTemplate.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {
void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Values cut from the file's own text for all placeholders but each third, which stays empty.
QSValues valuesFor(const QSTemplate &form, const QString &text)
{
    QSValues values;
    qsizetype at = 0;
    for (const QString &key : form.placeholderKeys()) {
        ++at;
        values.insert(key, at % 3 == 0 ? QString() : text.mid(at * 11 % text.size(), at * 5 % 40));
    }
    return values;
}

/// What is printed is what was typed: each placeholder's value stands whole in one cell.
void checkTyped(const QSTemplate &form, const QSValues &values, const QStringList &cells)
{
    for (const QString &key : form.placeholderKeys()) {
        const QSField *field = form.field(key);
        const QString shown =
            QSTemplate::display(field ? field->kind : QSFieldKind::text, values.value(key));
        require(std::ranges::any_of(
            cells, [&shown](const QString &cell) { return cell.contains(shown); }));
    }
}

void checkWellFormed(const QByteArray &bytes)
{
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        xml.readNext();
    }
    require(!xml.hasError());
}

void renderAndCheck(const QSTemplate &form, const QSValues &values)
{
    const QSRendered rendered = form.render(values);
    require(!rendered.title.isEmpty() && !rendered.blocks.isEmpty());
    require(rendered.blocks.last() == QSBlock{QSBlock::Kind::note, {form.footer()}});
    QStringList cells;
    for (const QSBlock &block : rendered.blocks) {
        require(block.kind >= QSBlock::Kind::title && block.kind <= QSBlock::Kind::note);
        require(block.kind == QSBlock::Kind::row || block.cells.size() == 1);
        require(!block.cells.contains(QString()));
        cells += block.cells;
    }
    checkTyped(form, values, cells);
    checkWellFormed(QSFlatODF::write(rendered));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    try {
        const QSTemplate form = QSTemplate::parse(text, u"fuzz.qstemplate"_s);
        renderAndCheck(form, {});
        renderAndCheck(form, valuesFor(form, text));
    } catch (const QSError &error) {
        require(error.description().startsWith(u"fuzz.qstemplate: "));
    }
    return 0;
}
