#include "AppModel.h"

#include "QSDate.h"
#include "QSDesktop.h"
#include "QSDirectory.h"
#include "QSFile.h"
#include "QSInfo.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace {
QString cannotOpenSaved(const QSError &error)
{
    return u"This saved PDF could not be opened. "_s + error.description();
}

QString filledPath(const QSFilledPDF &record)
{
    return QSInfo::filledFolder().filePath(record.fileName);
}
} // namespace

std::optional<QList<QSFilledPDF>> AppModel::filledPDFs()
{
    std::optional<QList<QSFilledPDF>> found;
    withStore([&found](QSStore &open) { found = open.filledPDFs(); });
    return found;
}

void AppModel::loadFilledPDF(
    const QSFilledPDF &record,
    const std::function<void(const std::shared_ptr<QSPDFDocument> &)> &loaded)
{
    using Document = std::shared_ptr<QSPDFDocument>;
    runBusy<Document>(
        u"Opening \"%1\"\u2026"_s.arg(record.title), std::stop_source(std::nostopstate),
        [path = filledPath(record)](const AsyncTask::Progress &) {
            return QSPDFDocument::open(QSFile::read(path));
        },
        [this, loaded](const AsyncTask::Outcome<Document> &opened) {
            if (opened.error) {
                qWarning("%s", opened.error->what());
                setMessage(cannotOpenSaved(*opened.error));
                return;
            }
            whenNothingIsAsked([=] { loaded(*opened.result); });
        });
}

void AppModel::openSaved(const QSFilledPDF &record)
{
    if (m_openPDF && m_openPDF->form().saved && m_openPDF->form().saved->id == record.id) {
        Q_EMIT openPDFWanted();
        return;
    }
    loadFilledPDF(record, [this, record,
                           stop = startOpening()](const std::shared_ptr<QSPDFDocument> &document) {
        if (stop.stop_requested()) {
            return;
        }
        const QSEntry *entry = QSDirectory::shared().entry(record.entryID);
        openSession({.entry = entry ? std::optional(*entry) : std::nullopt,
                     .title = record.title,
                     .document = document,
                     .saved = record,
                     .status = u"Saved "_s + QSDate::stamp(record.modified)});
    });
}

void AppModel::deleteFilledPDF(const QSFilledPDF &record)
{
    if (!askToDelete(record.title) ||
        !withStore([&record](QSStore &open) { open.deleteFilledPDF(record); })) {
        return;
    }
    setMessage(u"\"%1\" was deleted."_s.arg(record.title));
    if (m_openPDF && m_openPDF->form().saved && m_openPDF->form().saved->id == record.id) {
        m_openPDF->forgetSaved();
        Q_EMIT formChanged();
    }
}

void AppModel::exportFilledPDF(const QSFilledPDF &record, FormExport how)
{
    loadFilledPDF(record, [=, this](const std::shared_ptr<QSPDFDocument> &document) {
        exportPDF(document, record.title, how);
    });
}

void AppModel::printFilledPDF(const QSFilledPDF &record)
{
    loadFilledPDF(record, [=, this](const std::shared_ptr<QSPDFDocument> &document) {
        printPDF(document, record.title);
    });
}

QString AppModel::handOut(const QSFilledPDF &record)
{
    if (!m_handedOut) {
        m_handedOut.emplace();
    }
    try {
        // Copies may share a title, but whoever took one has its path.
        const QString folder = m_handedOut->filePath(QString::number(record.id.value_or(0)));
        QDir().mkpath(folder);
        QString path = folder + u'/' + QSExport::safeFileName(record.title) + u".pdf"_s;
        QSFile::write(path, QSFile::read(filledPath(record)));
        return path;
    } catch (const QSError &error) {
        qWarning("%s", error.what());
        setMessage(cannotOpenSaved(error));
        return {};
    }
}
