#include "../pdf/SmallPDF.h"
#include "QSPDFDocument.h"
#include "formwindow/PageRenderer.h"

#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Wants one page, always.
class Viewer final : public PageRenderer::Client
{
public:
    explicit Viewer(double dotsPerInch) : m_dotsPerInch(dotsPerInch) {}

    std::optional<PageRenderer::Job> nextJob() override
    {
        return givenUp > 0 ? std::nullopt : std::optional(PageRenderer::Job{0, m_dotsPerInch, {}});
    }
    bool wants(const PageRenderer::Job &) const override { return true; }
    void take(const PageRenderer::Job &, const QImage &) override { ++taken; }
    void lose(const PageRenderer::Job &, bool hopeless) override { ++(hopeless ? givenUp : lost); }

    int taken = 0;
    int lost = 0;
    int givenUp = 0;

private:
    double m_dotsPerInch;
};

QByteArray slowPage()
{
    const QByteArray lines = QByteArray("0 0 m 200 200 l S ").repeated(100'000);
    return smallPDF({textField}, "/Contents 5 0 R")
        .replace("trailer", "5 0 obj <</Length " + QByteArray::number(lines.size()) +
                                ">> stream\n" + lines + "\nendstream endobj\ntrailer");
}
} // namespace

class TestPageRenderer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDrawingThatMakesWayIsNeverGivenUp()
    {
        const auto document = QSPDFDocument::open(slowPage());
        Viewer viewer(20);
        PageRenderer renderer;
        int number = 0;
        QTimer typing;
        connect(&typing, &QTimer::timeout, &typing, [&] {
            document->setValue(0, {.text = QString::number(++number), .on = false, .chosen = {}});
        });
        typing.start();
        renderer.open(document, {&viewer});
        constexpr int many = 20;
        QTRY_VERIFY(viewer.lost + viewer.givenUp >= many || viewer.givenUp > 0);
        QCOMPARE(viewer.givenUp, 0);
        typing.stop();
        QTRY_VERIFY(viewer.taken > 0);
        renderer.open({}, {});
    }

    void aPageThatCannotBeDrawnIsGivenUpAtOnce()
    {
        Viewer viewer(1e6); // more dots than any memory holds
        PageRenderer renderer;
        renderer.open(QSPDFDocument::open(smallPDF({textField})), {&viewer});
        QTRY_COMPARE(viewer.givenUp, 1);
        QCOMPARE(viewer.lost, 0);
        QCOMPARE(viewer.taken, 0);
    }
};

QTEST_MAIN(TestPageRenderer)
#include "tst_pagerenderer.moc"
