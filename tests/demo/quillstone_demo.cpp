// The program as users run it, except that a server on this machine plays every agency: Forms W-9
// and I-912 where they are at hand, the practice form for every other PDF, a page for the rest.
//
//     quillstone_demo [FOLDER]    keeps its data in the folder, "out/demonstration" by default

#include "AgencyServer.h"
#include "QSDirectory.h"
#include "QSInfo.h"
#include "QSPDF.h"
#include "QuillstoneApp.h"

#include <QApplication>
#include <QDir>
#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace {
struct RealForm
{
    QStringView entryID;
    QStringView file;
};
constexpr std::array realForms = {RealForm{u"us-w-9", u"w-9-xfa-comb.pdf"},
                                  RealForm{u"us-i-912", u"i-912-encrypted-xfa.pdf"}};

QByteArray formFor(const QSEntry &entry)
{
    for (const RealForm &form : realForms) {
        QFile file(QStringLiteral(QS_REAL_FORMS "/%1").arg(form.file));
        if (form.entryID == entry.id && file.open(QIODevice::ReadOnly)) {
            return file.readAll();
        }
    }
    return QSPDF::practiceForm();
}

void playAgencies(AgencyServer &agencies)
{
    for (const QSEntry &entry : QSDirectory::shared().entries) {
        if (entry.kind == QSKind::pdf) {
            agencies.answer(entry.url, {AgencyServer::Answer::pdf(formFor(entry), "\"first\"")});
        }
    }
    agencies.answerOthers(AgencyServer::Answer::html("<html><p>An agency's page.</p></html>"));
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QApplication::setApplicationVersion(QSInfo::version());
    const QString folder =
        QApplication::arguments().value(1, QDir::current().filePath(u"out/demonstration"_s));
    QSInfo::setDataFolderOverride(QDir(folder).absolutePath());
    AgencyServer agencies;
    playAgencies(agencies);
    QuillstoneApp program;
    return program.start() ? QApplication::exec() : 0;
}
