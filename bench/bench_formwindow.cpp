// Started by bench_formmemory: the program with Form I-912 open at 100 %, as a filled copy is
// opened from My Documents. Prints the kilobytes it has in memory before and then.
#include "AppModel.h"
#include "FormView.h"
#include "MainWindow.h"
#include "QSInfo.h"
#include "QSSetup.h"
#include "QtDesktop.h"
#include "RealForms.h"
#include "Resident.h"

#include <QApplication>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

int main(int argc, char *argv[])
{
    constexpr std::chrono::seconds untilDrawn{3};
    long before = 0;
    const QApplication application(argc, argv);
    QSSetup::configure();
    QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
    const QSFilledPDF copy = QSStore::shared()->saveFilledPDF(u"us-i-912"_s, u"I-912"_s,
                                                              RealForms::read(RealForms::i912()));
    QtDesktop desktop;
    AppModel model(desktop);
    MainWindow window(model);
    window.show();
    QObject::connect(&model, &AppModel::openPDFChanged, &window, [&] {
        QTimer::singleShot(untilDrawn, &window, [] {
            for (QWidget *each : QApplication::topLevelWidgets()) {
                if (auto *pages = each->findChild<FormView *>()) {
                    pages->zoomToPaper();
                }
            }
        });
        QTimer::singleShot(untilDrawn * 2, &window, [before] {
            std::printf("%ld %ld\n", before, Resident::kilobytes());
            QApplication::quit();
        });
    });
    QTimer::singleShot(untilDrawn, &window, [&] {
        before = Resident::kilobytes();
        model.openSaved(copy);
    });
    const int status = QApplication::exec();
    QSStore::setShared(nullptr);
    return status;
}
