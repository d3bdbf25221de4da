// A PDF of ten pages, against LibreOffice converting the same text to PDF.
#include "LibreOffice.h"
#include "Measure.h"
#include "QSExport.h"

#include <QGuiApplication>

using namespace Qt::Literals::StringLiterals;

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QGuiApplication application(argc, argv);
    const QSRendered rendered = Samples().pages(10);
    const LibreOffice byHand(user, rendered);

    constexpr int turns = 9;
    const auto [ours, peers] = Measure::inTurns(
        turns, [&] { return Measure::milliseconds([&] { (void)QSExport::pdf(rendered); }); },
        [&] { return Measure::milliseconds([&] { byHand.convert(u"pdf"_s); }); });
    Measure::print({.path = "PDF of a 10-page document",
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "ms",
                    .peerName = "LibreOffice",
                    .wanted = 0.1});
    return 0;
}
