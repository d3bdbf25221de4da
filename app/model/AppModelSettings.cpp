#include "AppModel.h"

#include "QSDesktop.h"

using namespace Qt::Literals::StringLiterals;

void AppModel::emptyCache()
{
    if (busy()) { // a form that was just fetched has to be there when it is opened
        setMessage(u"The forms cache is in use. Try again in a moment."_s);
        return;
    }
    if (!agrees(u"Empty the forms cache?"_s,
                u"Emptying the cache removes only downloaded official forms; they download again "
                "when opened. Your documents and filled PDFs are not touched. What you typed into "
                "an official Word document is removed with it, unless you saved it under another "
                "name."_s,
                u"Empty"_s)) {
        return;
    }
    const int removed = QSCache::clear();
    copiesChanged();
    QString said = removed == 1 ? u"1 official form was removed."_s
                                : u"%1 official forms were removed."_s.arg(removed);
    if (const int left = QSCache::copyCount(); left > 0) {
        said += u" %1 could not be removed."_s.arg(left);
    }
    setMessage(said);
}

void AppModel::showFolder(const QString &path)
{
    if (!m_desktop.openFile(path)) {
        setMessage(u"The file manager could not be opened. The folder is at %1"_s.arg(path));
    }
}
