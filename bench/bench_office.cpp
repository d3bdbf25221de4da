// Word and Rich Text of a ten-page document, against LibreOffice called by hand on the same text.
#include "LibreOffice.h"
#include "Measure.h"
#include "QSExport.h"

#include <QGuiApplication>

#include <future>

using namespace Qt::Literals::StringLiterals;

namespace {
void measure(QSExport::Format format, const QSRendered &rendered, const LibreOffice &byHand)
{
    constexpr int turns = 9;
    const QString extension = QSExport::info(format).extension.toString();
    // The program makes these files on a worker, never on the main thread.
    const auto exported = [&] {
        return Measure::milliseconds([&] {
            (void)std::async(std::launch::async, QSExport::data, rendered, format,
                             std::stop_token())
                .get();
        });
    };
    const auto [ours, peers] = Measure::inTurns(
        turns, exported, [&] { return Measure::milliseconds([&] { byHand.convert(extension); }); });
    Measure::print({.path = extension.toStdString() + " of a 10-page document",
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "ms",
                    .peerName = "soffice by hand",
                    .wanted = 1.2});
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QGuiApplication application(argc, argv);
    const QSRendered rendered = Samples().pages(10);
    const LibreOffice byHand(user, rendered);
    measure(QSExport::Format::docx, rendered, byHand);
    measure(QSExport::Format::rtf, rendered, byHand);
    return 0;
}
