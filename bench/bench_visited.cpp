// Started by bench_window: the program with every screen visited, a document
// in the editor, and the help. Prints the kilobytes it has in memory then.
#include "AppModel.h"
#include "MainWindow.h"
#include "QSSetup.h"
#include "QSTemplates.h"
#include "QtDesktop.h"
#include "Resident.h"
#include "VellHelp.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {
void wait()
{
    QEventLoop loop;
    QTimer::singleShot(std::chrono::milliseconds(500), &loop, &QEventLoop::quit);
    loop.exec();
}

void visitAll(AppModel &model)
{
    for (const Screens::Info &each : Screens::all) {
        model.show(each.screen);
        wait();
    }
    model.newDocument(QSTemplates::all().constFirst());
    wait();
    VellHelp::show();
    wait();
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QSSetup::configure();
    if (QSSetup::openStore()) {
        return 1;
    }
    {
        QtDesktop desktop;
        AppModel model(desktop);
        MainWindow window(model);
        desktop.setWindow(&window);
        window.show();
        wait();
        QSStore::shared()->fillSearchIndex();
        model.startDrafts();
        visitAll(model);
        std::printf("%ld\n", Resident::kilobytes());
    }
    QSStore::setShared(nullptr);
    return 0;
}
