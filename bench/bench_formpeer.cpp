// Started by bench_formmemory: Poppler alone with Form I-912, the same pages drawn and kept as the
// window has them: all as thumbnails, and the first two, which are in view, at 100 %. Prints the
// kilobytes it has in memory before and then.
#include "RealForms.h"
#include "Resident.h"

#include <QGuiApplication>
#include <QImage>

#include <poppler-qt6.h>

int main(int argc, char *argv[])
{
    constexpr double screen = 96;
    constexpr double thumbnail = 8;
    constexpr int inView = 2;
    const QGuiApplication application(argc, argv);
    const long before = Resident::kilobytes();
    const auto document = Poppler::Document::loadFromData(RealForms::read(RealForms::i912()));
    document->setRenderHint(Poppler::Document::Antialiasing);
    document->setRenderHint(Poppler::Document::TextAntialiasing);
    QList<QImage> drawn;
    for (int page = 0; page < document->numPages(); ++page) {
        drawn.append(document->page(page)->renderToImage(thumbnail, thumbnail));
        if (page < inView) {
            drawn.append(document->page(page)->renderToImage(screen, screen));
        }
    }
    std::printf("%ld %ld\n", before, Resident::kilobytes());
    return 0;
}
