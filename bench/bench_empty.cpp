// Started by bench_start: what any Qt program in this theme takes to show a window of this size.
#include "FirstPaint.h"
#include "QSThemes.h"
#include "VellThemeRoot.h"

#include <QMainWindow>

int main(int argc, char *argv[])
{
    PaintWatch application(argc, argv);
    FirstPaint::reportAndEnd(application);
    VellThemes::registerThemes(QSThemes::extras());
    VellThemes::setDefaultID(QSThemes::graphiteID);
    new VellThemeRoot(application);
    QMainWindow window;
    const int em = window.fontMetrics().height();
    window.resize(em * 70, em * 44);
    window.show();
    return QApplication::exec();
}
