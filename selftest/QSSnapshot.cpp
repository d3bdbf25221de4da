#include "QSSnapshot.h"

#include "AppModel.h"
#include "DisclaimerSheet.h"
#include "MainWindow.h"
#include "NobodysDesktop.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSPrefs.h"
#include "QSSetup.h"
#include "QSTemplates.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {
const QMap<QString, QString> sampleProfile = {{u"fullName"_s, u"Rosa Mar\u00EDa Delgado"_s},
                                              {u"street"_s, u"1420 Juniper Street, Apt. 3"_s},
                                              {u"city"_s, u"Pueblo"_s},
                                              {u"state"_s, u"CO"_s},
                                              {u"zip"_s, u"81003"_s},
                                              {u"county"_s, u"Pueblo"_s},
                                              {u"phone"_s, u"719-555-0142"_s},
                                              {u"email"_s, u"rosa@mail.example"_s}};

const QSValues sampleSale = {
    {u"sale_date"_s, u"2026-11-14"_s},
    {u"buyer_name"_s, u"Nguy\u1EC5n Th\u1ECB H\u01B0\u01A1ng"_s},
    {u"buyer_address"_s, u"88 Orchard Road, Ca\u00F1on City, CO 81212"_s},
    {u"vehicle_year"_s, u"2014"_s},
    {u"vehicle_make"_s, u"Subaru"_s},
    {u"vehicle_model"_s, u"Outback"_s},
    {u"body_type"_s, u"Wagon"_s},
    {u"vehicle_color"_s, u"Green"_s},
    {u"vin"_s, u"4S4BRBCC0E3200000"_s},
    {u"odometer"_s, u"128450"_s},
    {u"odometer_status"_s, u"actual mileage"_s},
    {u"price"_s, u"6,250"_s},
    {u"payment_method"_s, u"Cashier's check"_s},
    {u"liens"_s, u"none"_s},
    {u"known_problems"_s, u"Small dent in the rear bumper.\nAir conditioning needs a recharge."_s}};

/// Writes pictures and files into one folder and keeps count of what failed.
class Album
{
public:
    explicit Album(const QDir &folder) : m_folder(folder) {}

    void add(QWidget &widget, const QString &name)
    {
        QApplication::processEvents();
        const QString path = m_folder.filePath(name + u".png"_s);
        tell(path, widget.grab().save(path));
    }

    void add(const QByteArray &bytes, const QString &name)
    {
        const QString path = m_folder.filePath(name);
        bool written = true;
        try {
            QSFile::write(path, bytes);
        } catch (const QSError &) {
            written = false;
        }
        tell(path, written);
    }

    void tell(const QString &path, bool written)
    {
        std::printf("%s%s\n", written ? "" : "could not write ", qPrintable(path));
        m_complete = m_complete && written;
    }

    [[nodiscard]] bool complete() const { return m_complete; }

private:
    QDir m_folder;
    bool m_complete = true;
};

QSDocument saveSample(QSStore &store)
{
    store.saveProfile(sampleProfile);
    const QSTemplate *sale = QSTemplates::templateById(u"bill-of-sale-vehicle");
    if (!sale) {
        throw QSError::invalid(u"The templates are missing from the app."_s);
    }
    QSDocument document;
    document.templateID = sale->id;
    document.title = u"Bill of sale, green Outback"_s;
    document.values = sale->profileValues(sampleProfile);
    document.values.insert(sampleSale);
    document.state = u"CO"_s;
    return store.save(document);
}

void photographScreens(Album &album, AppModel &model, const QSDocument &sample)
{
    MainWindow window(model);
    const int em = window.fontMetrics().height();
    window.resize(em * 72, em * 46); // whatever the size of the screen that there is not
    window.show();
    album.add(window, u"templates"_s);
    model.show(Screen::documents);
    album.add(window, u"documents"_s);
    model.show(Screen::profile);
    album.add(window, u"profile"_s);
    model.setSearch(u"small claims"_s);
    album.add(window, u"search"_s);
    model.edit(sample);
    album.add(window, u"editor"_s);
    model.closeEditor();
    DisclaimerSheet sheet(&window);
    sheet.show();
    album.add(sheet, u"disclaimer"_s);
}

void exportSample(Album &album, const QSDocument &sample)
{
    const std::optional<QSRendered> rendered = AppModel::render(sample);
    for (const QSExport::FormatInfo &info : QSExport::formats) {
        const QString name = u"sample."_s + info.extension.toString();
        try {
            album.add(QSExport::data(rendered.value(), info.format), name);
        } catch (const QSError &error) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(name), error.what());
            album.tell(name, false);
        }
    }
}

int photograph(const QString &path)
{
    const QTemporaryDir scratch;
    if (!scratch.isValid()) {
        std::fprintf(stderr, "%s\n", qPrintable(scratch.errorString()));
        return 1;
    }
    QSInfo::setDataFolderOverride(scratch.filePath(u"data"_s));
    QSPrefs::setFileOverride(scratch.filePath(u"preferences.ini"_s));
    QSPrefs::setDisclaimerAccepted(true);
    QDir().mkpath(path);
    Album album{QDir(path)};
    QSSetup::configure();
    try {
        if (const std::optional<QString> problem = QSSetup::openStore()) {
            throw QSError::invalid(*problem);
        }
        const QSDocument sample = saveSample(*QSStore::shared());
        NobodysDesktop desktop;
        AppModel model(desktop);
        photographScreens(album, model, sample);
        exportSample(album, sample);
    } catch (const QSError &error) {
        album.tell(QString::fromUtf8(error.what()), false);
    }
    QSStore::setShared(nullptr);
    return album.complete() ? 0 : 1;
}
} // namespace

namespace QSSnapshot {
std::optional<int> handle(const QStringList &arguments)
{
    const qsizetype at = arguments.indexOf(flag);
    if (at < 0) {
        return std::nullopt;
    }
    if (at + 1 >= arguments.size()) {
        std::fprintf(stderr, "%s needs the folder to write into.\n", qPrintable(flag));
        return 2;
    }
    return photograph(arguments.at(at + 1));
}
} // namespace QSSnapshot
