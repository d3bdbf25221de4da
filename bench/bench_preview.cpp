// From a key pressed in a field to the repainted preview, in the template with the longest text,
// against the time between two frames on a screen.
#include "AppModel.h"
#include "MainWindow.h"
#include "Measure.h"
#include "PaintWatch.h"
#include "QSInfo.h"
#include "QSThemes.h"
#include "QtDesktop.h"
#include "Samples.h"
#include "VellThemeRoot.h"
#include "editor/FieldEditor.h"
#include "editor/PaperPreview.h"

#include <QLineEdit>
#include <QTest>

#include <cstdlib>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr double frame = 16; // milliseconds
constexpr int times = 10;
const QString typed = u" and Beatrice Q. Somerset-Hale"_s;

/// The one-line text field nearest to the middle of the template.
QLineEdit *middleLine(const MainWindow &window)
{
    const QList<FieldEditor *> editors = window.findChildren<FieldEditor *>();
    for (qsizetype i = editors.size() / 2; i < editors.size(); ++i) {
        if (editors.at(i)->field().kind == QSFieldKind::text) {
            return editors.at(i)->findChild<QLineEdit *>();
        }
    }
    qFatal("no line of text in the second half of the template");
}

/// Presses a key and returns how long it took until the preview was painted.
double press(PaintWatch &application, QLineEdit *line, Qt::Key key, const QString &text)
{
    bool painted = false;
    application.whenPainted(line->window()->findChild<PaperPreview *>()->viewport(),
                            [&painted] { painted = true; });
    const double taken = Measure::milliseconds([&] {
        QTest::sendKeyEvent(QTest::Click, line, key, text, Qt::NoModifier);
        while (!painted) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    });
    QCoreApplication::processEvents();
    return taken;
}

Measure::Series typeAndDelete(PaintWatch &application, QLineEdit *line)
{
    Measure::Series taken;
    for (int time = 0; time < times; ++time) {
        for (const QChar letter : typed) {
            taken.add(press(application, line, Qt::Key_unknown, letter));
        }
        for (qsizetype i = 0; i < typed.size(); ++i) {
            taken.add(press(application, line, Qt::Key_Backspace, {}));
        }
    }
    return taken;
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    PaintWatch application(argc, argv);
    VellThemes::registerThemes(QSThemes::extras());
    VellThemes::setDefaultID(QSThemes::graphiteID);
    new VellThemeRoot(application);
    QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
    {
        QtDesktop desktop;
        AppModel model(desktop);
        MainWindow window(model);
        desktop.setWindow(&window);
        window.resize(1400, 900);
        window.show();
        Samples samples;
        const QSTemplate &longest = samples.longestTemplate();
        model.edit(samples.document(longest));
        QCoreApplication::processEvents();

        QLineEdit *line = middleLine(window);
        line->setFocus();
        (void)press(application, line, Qt::Key_unknown, u"x"_s); // warms up
        const Measure::Series taken = typeAndDelete(application, line);
        const std::string path = "keystroke to repainted preview, " + longest.id.toStdString();
        Measure::print({.path = path + ", median",
                        .ours = taken.median(),
                        .peer = frame,
                        .unit = "ms",
                        .peerName = "limit"});
        Measure::print({.path = path + ", 95th percentile",
                        .ours = taken.percentile(95),
                        .peer = frame,
                        .unit = "ms",
                        .peerName = "limit"});
    }
    QSStore::setShared(nullptr);
    return 0;
}
