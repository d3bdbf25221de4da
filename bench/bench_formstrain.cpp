// Official forms under strain: pages drawn while files are made and values change, how long the
// main thread waits meanwhile, and files that are made to take too much.
#include "Measure.h"
#include "PageRenderer.h"
#include "QSError.h"
#include "RealForms.h"

#include <QGuiApplication>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr double screen = 96; // dots per inch at 100 %

std::shared_ptr<QSPDFDocument> opened(const QString &path)
{
    return QSPDFDocument::open(RealForms::read(path));
}

QString court(const QString &name)
{
    return RealForms::folder().filePath(u"courts/"_s + name + u".pdf"_s);
}

/// Wants the first page, always.
class Viewer final : public PageRenderer::Client
{
public:
    std::optional<PageRenderer::Job> nextJob() override { return PageRenderer::Job{0, screen, {}}; }
    bool wants(const PageRenderer::Job &) const override { return true; }
    void take(const PageRenderer::Job &, const QImage &) override { ++taken; }
    void lose(const PageRenderer::Job &, bool hopeless) override
    {
        ++(hopeless ? givenUp : madeWay);
    }

    int taken = 0;
    int madeWay = 0;
    int givenUp = 0;
};

/// One text field of the first page gets another value.
void type(QSPDFDocument &document)
{
    static int number = 0;
    for (const FormField &field : document.fields()) {
        if (field.kind == FormField::Kind::text && field.page == 0 && field.isSettable()) {
            document.setValue(field.id,
                              {.text = QString::number(++number % 10), .on = false, .chosen = {}});
            return;
        }
    }
}

void measureDrawing(const char *meanwhile, const std::function<void(QSPDFDocument &)> &act,
                    int times)
{
    const auto document = opened(RealForms::i912());
    (void)RealForms::fillAll(*document);
    Viewer viewer;
    PageRenderer renderer;
    std::atomic<int> done = 0;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (; done < times; ++done) {
            act(*document);
        }
    }));
    renderer.open(document, {&viewer});
    thread->start();
    while (!thread->isFinished() || viewer.taken == 0) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    renderer.open({}, {});
    std::printf(
        "| drawings of a page given up during %s | %d | %d drawn, %d made way | | none | %s "
        "|\n",
        meanwhile, viewer.givenUp, viewer.taken, viewer.madeWay,
        viewer.givenUp == 0 ? "yes" : "**no**");
}

/// The longest that the main thread waits for the document while a worker is busy with it.
void measureWaiting(const QString &form, const char *meanwhile,
                    const std::function<void(const QSPDFDocument &)> &act)
{
    const auto document = opened(form);
    (void)RealForms::fillAll(*document);
    const std::unique_ptr<QThread> thread(QThread::create([&] { act(*document); }));
    Measure::Series setting;
    Measure::Series reading;
    thread->start();
    while (!thread->isFinished()) {
        setting.add(Measure::milliseconds([&] { type(*document); }));
        reading.add(Measure::milliseconds([&] {
            (void)document->values();
            (void)document->value(0);
            (void)document->fault(0);
        }));
        QThread::usleep(2000);
    }
    const std::string name =
        QFileInfo(form).baseName().toStdString() + " during " + std::string(meanwhile);
    Measure::print({.path = "set a value of " + name + ", longest",
                    .ours = setting.largest(),
                    .peer = 20,
                    .unit = "ms",
                    .peerName = "limit"});
    Measure::print({.path = "read the values of " + name + ", longest",
                    .ours = reading.largest(),
                    .peer = 20,
                    .unit = "ms",
                    .peerName = "limit"});
}

/// A PDF of one page with these objects from number 4 on; those with "/Rect" are on the page.
QByteArray pdfOf(const QList<QByteArray> &objects, const QByteArray &rest = {})
{
    QByteArray widgets;
    QByteArray body;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        const QByteArray number = QByteArray::number(4 + i);
        widgets += objects.at(i).contains("/Rect") ? number + " 0 R " : QByteArray();
        body += number + " 0 obj <<" + objects.at(i) + ">> endobj\n";
    }
    return "%PDF-1.7\n1 0 obj <</Type/Catalog/Pages 2 0 R/AcroForm<</Fields[4 0 R]>>>> endobj\n"
           "2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> endobj\n"
           "3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Annots[" +
           widgets + "]>> endobj\n" + body + rest + "trailer <</Root 1 0 R>>\n";
}

QByteArray place(int number)
{
    const int left = number % 60 * 10;
    const int low = number / 60 % 78 * 10;
    return "/Type/Annot/Subtype/Widget/F 4/Rect[" + QByteArray::number(left) + ' ' +
           QByteArray::number(low) + ' ' + QByteArray::number(left + 9) + ' ' +
           QByteArray::number(low + 9) + ']';
}

QByteArray longValue(int letters)
{
    const QByteArray packed = qCompress(QByteArray(letters, 'a')).sliced(4); // after the length
    return pdfOf({"/FT/Tx/T(a)/V 5 0 R" + place(0)},
                 "5 0 obj <</Filter/FlateDecode/Length " + QByteArray::number(packed.size()) +
                     ">> stream\n" + packed + "\nendstream endobj\n");
}

QByteArray ofOneName(int count)
{
    QList<QByteArray> objects{"/FT/Tx/T(a)/Kids["};
    for (int i = 0; i < count; ++i) {
        objects.first() += QByteArray::number(5 + i) + " 0 R ";
        objects.append("/Parent 4 0 R" + place(i));
    }
    objects.first() += ']';
    return pdfOf(objects);
}

QByteArray chain(int count)
{
    QList<QByteArray> objects;
    for (int i = 0; i < count; ++i) {
        const QByteArray parent = "/Parent " + QByteArray::number(3 + i) + " 0 R";
        const QByteArray kid = "/Kids[" + QByteArray::number(5 + i) + " 0 R]";
        objects.append((i > 0 ? parent : "/FT/Tx") + "/T(a)" + (i + 1 < count ? kid : "") +
                       place(i));
    }
    return pdfOf(objects);
}

void measureBomb(const char *what, const QByteArray &pdf)
{
    std::string end = "opened";
    const double took = Measure::milliseconds([&] {
        try {
            const auto document = QSPDFDocument::open(pdf);
            document->setValue(0, {.text = u"now"_s, .on = false, .chosen = {}});
            (void)document->bytes();
            (void)document->flatCopy();
        } catch (const QSError &error) {
            end = error.what();
        }
    });
    constexpr double limit = 5000;
    Measure::print({.path = "open, set, save and flatten " + std::string(what) + ": " + end,
                    .ours = took,
                    .peer = limit,
                    .unit = "ms",
                    .peerName = "limit"});
}

void drawFinely(const QSPDFDocument &document)
{
    constexpr double printer = 600; // dots per inch
    for (int top = 0; top < 6600; top += 1568) {
        (void)document.render(0, printer, QRect(0, top, 5100, 1568));
    }
}
} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    measureBomb("a value of 100 MB", longValue(100'000'000));
    measureBomb("20,000 boxes of one name", ofOneName(20'000));
    measureBomb("30,000 fields in one another", chain(30'000));
    measureBomb("a value of 100 KB", longValue(100'000));
    measureBomb("2,000 boxes of one name", ofOneName(2'000));
    measureBomb("60 fields in one another", chain(60));
    if (!QFile::exists(RealForms::i912())) {
        std::fprintf(stderr, "The real forms are not at hand in %s.\n",
                     qPrintable(RealForms::folder().path()));
        return 0;
    }
    measureDrawing(
        "60 savings", [](QSPDFDocument &document) { (void)document.bytes(); }, 60);
    measureDrawing(
        "500 changes of a value",
        [](QSPDFDocument &document) {
            type(document);
            QThread::usleep(5000);
        },
        500);
    for (const QString &form : {RealForms::i912(), court(u"us-n-400"_s)}) {
        measureWaiting(form, "saving",
                       [](const QSPDFDocument &document) { (void)document.bytes(); });
        measureWaiting(form, "flattening",
                       [](const QSPDFDocument &document) { (void)document.flatCopy(); });
        measureWaiting(form, "drawing at 600 dots per inch", drawFinely);
    }
    return 0;
}
