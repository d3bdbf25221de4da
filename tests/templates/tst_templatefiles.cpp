#include "QSInfo.h"
#include "QSProfile.h"
#include "QSTemplates.h"
#include "TestFiles.h"

#include <QTest>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

/// The shipped template files: what each of them has to keep to.
class TestTemplateFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void catalogue();
    void content_data() { rows(); }
    void content();
    void fieldsAndPlaceholders_data() { rows(); }
    void fieldsAndPlaceholders();
    void bodyLines_data() { rows(); }
    void bodyLines();
    void filledAndEmpty_data() { rows(); }
    void filledAndEmpty();

private:
    static void rows();
    static const QSTemplate &current();
};

void TestTemplateFiles::rows()
{
    QTest::addColumn<QString>("id");
    for (const QSTemplate &each : QSTemplates::all()) {
        QTest::newRow(qPrintable(each.id)) << each.id;
    }
}

const QSTemplate &TestTemplateFiles::current()
{
    return *QSTemplates::templateById(QString::fromUtf8(QTest::currentDataTag()));
}

void TestTemplateFiles::catalogue()
{
    QCOMPARE(QSTemplates::loadProblems(), QStringList());
    QStringList ids;
    for (const QSTemplate &each : QSTemplates::all()) {
        ids.append(each.id);
        QCOMPARE(each.fileName, each.id + u".qstemplate"_s);
    }
    QCOMPARE(ids, (QStringList{u"affidavit"_s, u"bill-of-sale-general"_s, u"bill-of-sale-vehicle"_s,
                               u"demand-letter"_s, u"general-release"_s, u"llc-operating-multi"_s,
                               u"llc-operating-single"_s, u"notice-to-vacate"_s,
                               u"power-of-attorney-general"_s, u"promissory-note"_s,
                               u"rent-receipt"_s, u"residential-lease"_s}));
    QCOMPARE(QSTemplates::templateById(u"Affidavit"), nullptr);
}

void TestTemplateFiles::content()
{
    const QSTemplate &form = current();
    QVERIFY(!form.summary.isEmpty());
    QVERIFY(!form.keywords.isEmpty());
    QVERIFY(!form.info.isEmpty());
    QVERIFY(QDate::fromString(form.date, Qt::ISODate).isValid());

    const QByteArray text =
        contents(QSInfo::resourceFolder()->filePath(u"templates/"_s + form.fileName));
    QVERIFY(!text.isEmpty());
    const QString words = QString::fromUtf8(text).simplified();
    for (const QString &advice : {u"you should"_s, u"we recommend"_s, u"you must"_s}) {
        QVERIFY2(!words.contains(advice, Qt::CaseInsensitive), qPrintable(advice));
    }
}

void TestTemplateFiles::fieldsAndPlaceholders()
{
    const QSTemplate &form = current();
    const QStringList used = form.placeholderKeys();
    for (const QString &key : used) {
        QVERIFY2(form.field(key), qPrintable(key));
    }
    QStringList keys;
    for (const QSField &field : form.fields) {
        QVERIFY2(used.contains(field.key), qPrintable(field.key));
        QVERIFY2(!keys.contains(field.key), qPrintable(field.key));
        QVERIFY2(!field.label.isEmpty(), qPrintable(field.key));
        const bool known = !field.profileKey || *field.profileKey == "address"_L1 ||
                           std::ranges::find(QSProfile::fields, QStringView(*field.profileKey),
                                             &QSProfile::Field::key) != QSProfile::fields.end();
        QVERIFY2(known, qPrintable(field.key));
        keys.append(field.key);
    }
}

void TestTemplateFiles::bodyLines()
{
    const QSTemplate &form = current();
    int titles = 0;
    bool signs = false;
    for (const QSBlock &block : form.render({}).blocks) {
        titles += block.kind == QSBlock::Kind::title ? 1 : 0;
        signs = signs || block.kind == QSBlock::Kind::signature;
        QVERIFY2(block.kind != QSBlock::Kind::row ||
                     (!block.cells.isEmpty() && block.cells.size() <= 3),
                 qPrintable(block.text()));
    }
    QCOMPARE(titles, 1);
    QVERIFY(signs);
}

void TestTemplateFiles::filledAndEmpty()
{
    const QSTemplate &form = current();
    QSValues values;
    for (const QSField &field : form.fields) {
        values.insert(field.key, u"<value of %1>"_s.arg(field.key));
    }
    const QSRendered filled = form.render(values);
    const QSRendered empty = form.render({});
    QVERIFY(!filled.plainText().contains(u"{{"));
    for (const QString &value : std::as_const(values)) {
        QVERIFY2(filled.plainText().contains(value), qPrintable(value));
    }
    // Nothing turns into a signature line because it is still empty.
    QCOMPARE(filled.blocks.size(), empty.blocks.size());
    for (qsizetype i = 0; i < filled.blocks.size(); ++i) {
        QVERIFY2(filled.blocks.at(i).kind == empty.blocks.at(i).kind,
                 qPrintable(empty.blocks.at(i).text()));
    }
}

QTEST_GUILESS_MAIN(TestTemplateFiles)
#include "tst_templatefiles.moc"
