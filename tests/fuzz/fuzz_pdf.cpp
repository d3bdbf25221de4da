#include "QSError.h"
#include "QSPDF.h"

#include <QGuiApplication>

#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {
void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Gives the fields values, each by its number: texts, ticks and choices.
void fillSome(QSPDFDocument &document)
{
    constexpr int most = 40; // of a form with thousands, the next ones are no different
    for (const FormField &field :
         document.fields().first(std::min<qsizetype>(most, document.fields().size()))) {
        const QString text = u"Ñ(%1)\\\n"_s.arg(field.id);
        const FormValue value{.text = text, .on = field.id % 3 != 0, .chosen = {field.id % 4}};
        for (const int id : document.setValue(field.id, value)) {
            require(id >= 0 && id < document.fields().size());
        }
        require(field.maxLength == 0 ||
                document.value(field.id).text.toUcs4().size() <= field.maxLength);
    }
}

/// What is saved opens again with the same values.
void save(const QSPDFDocument &document)
{
    const auto again = QSPDFDocument::open(document.bytes());
    require(again->fields().size() == document.fields().size());
    for (const FormField &field : document.fields()) {
        require(!field.isSettable() || again->value(field.id) == document.value(field.id));
    }
}

void tryOut(const QByteArray &bytes)
{
    try {
        const auto document = QSPDFDocument::open(bytes);
        require(document->pageCount() > 0 && QSPDFDocument::isPDF(bytes));
        require(document->render(0, 0).image.isNull());
        const QImage page = document->render(0, 18, QRect(0, 0, 200, 200)).image;
        fillSome(*document);
        save(*document);
        (void)document->flattened();
    } catch (const QSError &error) {
        require(!error.description().isEmpty());
    }
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(*argc, *argv);
    tryOut(QSPDF::practiceForm());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    tryOut(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    return 0;
}
