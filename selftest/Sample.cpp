#include "Sample.h"

#include "QSError.h"
#include "QSInfo.h"
#include "QSPDF.h"
#include "QSTemplates.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Null when it can't be read.
QByteArray fileOf(const QSFilledPDF &record)
{
    QFile file(QSInfo::filledFolder().filePath(record.fileName));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

namespace Sample {
const QMap<QString, QString> profile = {{u"fullName"_s, u"Jordan Q. Sample"_s},
                                        {u"street"_s, u"742 Orchard Avenue"_s},
                                        {u"city"_s, u"Grand Junction"_s},
                                        {u"state"_s, u"CO"_s},
                                        {u"zip"_s, u"81501"_s},
                                        {u"county"_s, u"Mesa"_s},
                                        {u"phone"_s, u"970-555-0117"_s},
                                        {u"email"_s, u"jordan@mail.example"_s}};

const QMap<QString, QString> practiceValues = {{u"full_name"_s, u"Jordan Q. Sample"_s},
                                               {u"street_address"_s, u"742 Orchard Avenue"_s},
                                               {u"city_state_zip"_s, u"Grand Junction, CO 81501"_s},
                                               {u"phone"_s, u"970-555-0117"_s},
                                               {u"signature_date"_s, u"March 1, 2027"_s},
                                               {u"agree"_s, u"on"_s}};

QSDocument sale()
{
    const QString id = u"bill-of-sale-vehicle"_s;
    const QSTemplate *form = QSTemplates::templateById(id);
    if (form == nullptr) {
        throw QSError::invalid(u"The template %1 is missing from the app."_s.arg(id));
    }
    QSDocument document;
    document.templateID = id;
    document.title = u"Sale of the green wagon"_s;
    document.values = form->profileValues(profile);
    document.values.insert(
        {{u"sale_date"_s, u"2027-03-01"_s},
         {u"buyer_name"_s, u"Casimir Buyer"_s},
         {u"buyer_address"_s, u"88 Ca\u00F1on Road, Pueblo, CO 81003"_s},
         {u"vehicle_year"_s, u"2014"_s},
         {u"vehicle_make"_s, u"Subaru"_s},
         {u"vehicle_model"_s, u"Outback"_s},
         {u"vehicle_color"_s, u"Green"_s},
         {u"vin"_s, u"4S4BRBCC0E3200000"_s},
         {u"odometer"_s, u"128450"_s},
         {u"price"_s, u"6250"_s},
         {u"known_problems"_s, u"Small dent in the rear bumper.\nThe radio is silent."_s}});
    document.state = u"CO"_s;
    return document;
}

QByteArray filledForm()
{
    const auto form = QSPDFDocument::open(QSPDF::practiceForm());
    QSPDF::fill(*form, practiceValues);
    return form->bytes();
}

void save(QSStore &store)
{
    store.saveProfile(profile);
    store.save(sale());
    store.saveFilledPDF(u"practice"_s, u"Practice form (filled)"_s, filledForm());
}

QString digest(QSStore &store)
{
    QByteArray bytes;
    QDataStream content(&bytes, QIODevice::WriteOnly);
    content << store.profile();
    const QList<QSDocument> documents = store.documents();
    for (const QSDocument &document : documents) {
        content << document.templateID << document.templateVersion << document.title
                << document.values << document.state << document.created << document.modified;
    }
    const QList<QSFilledPDF> records = store.filledPDFs();
    for (const QSFilledPDF &record : records) {
        content << record.entryID << record.title << record.fileName << record.created
                << record.modified << fileOf(record);
    }
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}
} // namespace Sample
