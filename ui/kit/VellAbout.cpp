#include "VellAbout.h"

#include "QSInfo.h"
#include "VxText.h"

#include <QDate>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
QStringList lines;
}

namespace VellAbout {
QStringList extraLines()
{
    return lines;
}

void setExtraLines(const QStringList &extra)
{
    lines = extra;
}

QString version()
{
    return u"Version "_s + QSInfo::version();
}

QString copyrightLine()
{
    return u"\u00A9 %1 Vell"_s.arg(QDate::currentDate().year());
}

void show(QWidget *parent)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(u"About "_s + QSInfo::appName);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(VxText::make(QSInfo::appName, VxText::Role::title));
    for (const QString &line : QStringList{version(), QSInfo::creditLine} + lines) {
        layout->addWidget(VxText::make(line, VxText::Role::body));
    }
    layout->addWidget(VxText::make(copyrightLine(), VxText::Role::note));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(buttons);
    dialog.exec();
}
} // namespace VellAbout
