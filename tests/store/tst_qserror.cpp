#include "QSError.h"

#include <QtTest>

using namespace Qt::Literals::StringLiterals;

class TestQSError : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysOneSentence_data();
    void saysOneSentence();
    void equalByCaseAndPayload();
};

void TestQSError::saysOneSentence_data()
{
    QTest::addColumn<std::shared_ptr<QSError>>("error");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const QSError &error, const QString &sentence) {
        QTest::newRow(name) << std::make_shared<QSError>(error) << sentence;
    };
    row("database", QSError::database(u"disk full"_s),
        u"The database reported a problem: disk full"_s);
    row("invalid", QSError::invalid(u"Give the document a name."_s),
        u"Give the document a name."_s);
    row("bad backup", QSError::badBackup(u"it is damaged."_s),
        u"This file can't be restored: it is damaged."_s);
    row("network", QSError::network(u"Größe unbekannt"_s), u"Größe unbekannt"_s);
    row("not found", QSError::notFound(), u"That record no longer exists."_s);
}

void TestQSError::saysOneSentence()
{
    QFETCH(const std::shared_ptr<QSError>, error);
    QFETCH(const QString, sentence);
    QCOMPARE(error->description(), sentence);
    const std::exception &plain = *error;
    QCOMPARE(QString::fromUtf8(plain.what()), sentence);
}

void TestQSError::equalByCaseAndPayload()
{
    QVERIFY(QSError::invalid(u"a"_s) == QSError::invalid(u"a"_s));
    QVERIFY(QSError::invalid(u"a"_s) != QSError::invalid(u"b"_s));
    QVERIFY(QSError::invalid(u"a"_s) != QSError::network(u"a"_s));
}

QTEST_APPLESS_MAIN(TestQSError)
#include "tst_qserror.moc"
