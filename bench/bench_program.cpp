// Started by bench_start: the program up to its first painted window, as main() starts it.
#include "FirstPaint.h"
#include "QSInfo.h"
#include "QuillstoneApp.h"

using namespace Qt::Literals::StringLiterals;

int main(int argc, char *argv[])
{
    PaintWatch application(argc, argv);
    QApplication::setApplicationVersion(QSInfo::version());
    QApplication::setDesktopFileName(u"quillstone"_s);
    FirstPaint::reportAndEnd(application);
    QuillstoneApp program;
    return program.start() ? QApplication::exec() : 1;
}
