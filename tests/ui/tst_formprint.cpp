#include "../pdf/SmallPDF.h"
#include "QSPDF.h"
#include "TestFiles.h"
#include "formwindow/FormPrint.h"

#include <QApplication>
#include <QDir>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QThread>
#include <QTimer>

#include <chrono>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {
/// Three pages of different sizes, one of them lying, the second with a text field.
QByteArray threePages()
{
    QByteArray pdf = "%PDF-1.7\n1 0 obj <</Type/Catalog/Pages 2 0 R/AcroForm<</Fields[6 0 R]>>>> "
                     "endobj\n2 0 obj <</Type/Pages/Kids[3 0 R 4 0 R 5 0 R]/Count 3>> endobj\n";
    const QList<QByteArray> pages = {"/MediaBox[0 0 612 792]",
                                     "/MediaBox[0 0 792 612]/Annots[6 0 R]",
                                     "/MediaBox[0 0 900 1200]"};
    for (qsizetype i = 0; i < pages.size(); ++i) {
        pdf += QByteArray::number(3 + i) + " 0 obj <</Type/Page/Parent 2 0 R/Contents 7 0 R" +
               pages.at(i) + ">> endobj\n";
    }
    return pdf + "6 0 obj <</Type/Annot/Subtype/Widget/FT/Tx/T(a)/Rect[200 200 500 230]>> endobj\n"
                 "7 0 obj <</Length 20>> stream\n100 100 50 300 re f \nendstream endobj\n"
                 "trailer <</Root 1 0 R>>\n";
}

double ink(const QImage &image)
{
    qint64 dark = 0;
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            dark += qGray(grey.pixel(x, y)) < 128 ? 1 : 0;
        }
    }
    return static_cast<double>(dark);
}
} // namespace

/// A form on its way to paper.
class TestFormPrint final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_document = QSPDFDocument::open(threePages());
        m_document->setValue(0, {.text = u"Zephyrine"_s, .on = {}, .chosen = {}});
    }

    void aFileIsTheFlattenedForm_data()
    {
        QTest::addColumn<QString>("ranges");
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("pageWithText");
        QTest::newRow("all pages") << QString() << 3 << 1;
        QTest::newRow("from the second page on") << u"2-3"_s << 2 << 0;
    }

    void aFileIsTheFlattenedForm()
    {
        QFETCH(const QString, ranges);
        QFETCH(const int, pageWithText);
        const auto printer = fileFor(ranges);
        FormPrint::print(*m_document, *printer);
        const QByteArray pdf = contents(printer->outputFileName());
        const auto printed = QSPDFDocument::open(pdf);
        QTEST(printed->pageCount(), "pages");
        QVERIFY(printed->fields().isEmpty());
        QCOMPARE(Words(pdf).in(pageWithText, {0, 0, 900, 900}), u"Zephyrine"_s);
    }

    void everyValueOfARealFormIsInTheFile()
    {
        const QDir forms(QStringLiteral(QS_FORMS));
        if (!forms.exists()) {
            QSKIP("The folder with real forms is not beside the project.");
        }
        m_document = QSPDFDocument::open(contents(forms.filePath(u"w-9-xfa-comb.pdf"_s)));
        for (const FormField &field : m_document->fields()) {
            m_document->setValue(field.id,
                                 {.text = u"X%1"_s.arg(field.id), .on = {}, .chosen = {}});
        }
        const auto printer = fileFor({});
        FormPrint::print(*m_document, *printer);
        const Words words(contents(printer->outputFileName()));
        int texts = 0;
        for (const FormField &field : m_document->fields()) {
            if (field.kind == FormField::Kind::text) {
                ++texts;
                const QString text = m_document->value(field.id).text;
                QVERIFY2(words.in(field.page, field.rect.adjusted(-2, -2, 2, 2)).contains(text),
                         qPrintable(field.name));
            }
        }
        QCOMPARE(texts, 15);
    }

    void whatCannotBeWrittenIsSaid()
    {
        auto printer = fileFor(u"1,3"_s);
        QCOMPARE(sentence([&] { FormPrint::print(*m_document, *printer); }),
                 u"A PDF file takes one run of pages, for example 2-4."_s);
        QVERIFY(!QFile::exists(printer->outputFileName()));
        printer = fileFor({});
        printer->setOutputFileName(m_folder->filePath(u"no/such/folder.pdf"_s));
        QVERIFY(sentence([&] {
                    FormPrint::print(*m_document, *printer);
                }).startsWith(u"\"%1\" could not be written: "_s.arg(printer->outputFileName())));
        m_document->setValue(0, {.text = QString(200, u'W'), .on = {}, .chosen = {}});
        QVERIFY(sentence([&] {
                    FormPrint::draw(*m_document, *printer);
                }).startsWith(u"The form can't be flattened or printed as it is. "));
        m_document->setValue(0, {});
        printer = fileFor(u"7"_s);
        QCOMPARE(sentence([&] { FormPrint::draw(*m_document, *printer); }),
                 u"The form has none of the pages to print."_s);
    }

    void paperShowsWhatTheScreenShows_data()
    {
        QTest::addColumn<int>("resolution");
        QTest::newRow("as fine as the printer") << 300;
        QTest::newRow("finer than is drawn") << 1200;
    }

    void paperShowsWhatTheScreenShows()
    {
        QFETCH(const int, resolution);
        const auto printer = fileFor(u"1-2"_s);
        printer->setResolution(resolution);
        FormPrint::draw(*m_document, *printer);
        const auto paper = QSPDFDocument::open(contents(printer->outputFileName()));
        QCOMPARE(paper->pageCount(), 2);
        for (int page = 0; page < 2; ++page) { // on sheets of their own size: nothing moved
            QCOMPARE(paper->pageSize(page).toSize(), m_document->pageSize(page).toSize());
            const QImage wanted = m_document->render(page, 72).image;
            const QImage got = paper->render(page, 72).image;
            QCOMPARE(got.size(), wanted.size());
            for (const QRect &part : {wanted.rect(), QRect(200, 380, 300, 40)}) {
                QVERIFY(qAbs(ink(got.copy(part)) - ink(wanted.copy(part))) <
                        0.1 * ink(wanted.copy(part)) + 30);
            }
        }
    }

    void aLargePageShrinksToItsSheet()
    {
        const auto printer = fileFor(u"3"_s);
        FormPrint::draw(*m_document, *printer);
        const auto paper = QSPDFDocument::open(contents(printer->outputFileName()));
        QCOMPARE(paper->pageSize(0).toSize(), QSize(612, 792));
        // the dark area stands at the left below, at two thirds of its size
        const QImage sheet = paper->render(0, 72).image;
        QVERIFY(qAbs(ink(sheet) - 50 * 300 * 0.66 * 0.66) < 800);
    }

    void orderAndCopies()
    {
        const auto printer = fileFor(u"1-2"_s);
        printer->setPageOrder(QPrinter::LastPageFirst);
        printer->setCopyCount(2);
        int told = 0;
        FormPrint::draw(*m_document, *printer, [&told](int, int all) {
            ++told;
            return all > 0;
        });
        const auto paper = QSPDFDocument::open(contents(printer->outputFileName()));
        QCOMPARE(told, 4);
        QCOMPARE(paper->pageCount(), 4);
        QVERIFY(paper->pageSize(0).width() > paper->pageSize(0).height());
    }

    void theWindowsAnswerWhileAFormIsDrawn()
    {
        const auto printer = fileFor({});
        int beats = 0;
        QTimer heart;
        connect(&heart, &QTimer::timeout, this, [&beats] { ++beats; });
        heart.start(1ms);
        QVERIFY(FormPrint::inBackground(
            [&](const FormPrint::Progress &progress) {
                FormPrint::draw(*m_document, *printer, progress);
            },
            u"Test form"_s, nullptr));
        QVERIFY(beats > 3);
        QCOMPARE(QSPDFDocument::open(contents(printer->outputFileName()))->pageCount(), 3);
    }

    void theDialogStopsWhatIsDrawn()
    {
        QTimer hand;
        connect(&hand, &QTimer::timeout, this, [] {
            if (auto *dialog = qobject_cast<QProgressDialog *>(QApplication::activeModalWidget())) {
                dialog->findChild<QPushButton *>()->click();
            }
        });
        hand.start(10ms);
        int sheets = 0;
        QVERIFY(!FormPrint::inBackground(
            [&sheets](const FormPrint::Progress &progress) {
                while (progress(++sheets, 1'000'000)) {
                    QThread::yieldCurrentThread();
                }
            },
            u"Test form"_s, nullptr));
        QVERIFY(sheets < 1'000'000);
        // what fails there is said here
        QCOMPARE(sentence([] {
                     (void)FormPrint::inBackground(
                         [](const auto &) { throw QSError::invalid(u"No paper."_s); },
                         u"Test form"_s, nullptr);
                 }),
                 u"No paper."_s);
    }

private:
    [[nodiscard]] std::unique_ptr<QPrinter> fileFor(const QString &ranges) const
    {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(m_folder->filePath(u"form.pdf"_s));
        printer->setResolution(300);
        printer->setPageSize(QPageSize(QPageSize::Letter));
        printer->setPageRanges(QPageRanges::fromString(ranges));
        return printer;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::shared_ptr<QSPDFDocument> m_document;
};

QTEST_MAIN(TestFormPrint)
#include "tst_formprint.moc"
