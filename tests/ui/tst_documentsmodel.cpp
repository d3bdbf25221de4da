#include "screens/DocumentsModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class TestDocumentsModel final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsShowNameTemplateAndLastChange()
    {
        DocumentsModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSDocumentHead known;
        known.title = u"May rent"_s;
        known.templateID = u"rent-receipt"_s;
        known.modified = QDateTime(QDate(2026, 5, 1), QTime(16, 5));
        QSDocumentHead unknown;
        unknown.title = u"Old"_s;
        unknown.templateID = u"of-another-version"_s;
        const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.setRecords({known, unknown});
        QCOMPARE(resets.count(), 1);
        QStringList lines;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < model.columnCount(); ++column) {
                cells.append(model.index(row, column).data().toString());
            }
            lines.append(cells.join(u" / "_s));
        }
        QCOMPARE(lines.first(), u"May rent / Rent Receipt / May 1, 2026 4:05 PM"_s);
        QVERIFY(lines.last().startsWith(u"Old / of-another-version / "_s));
        QVERIFY(!model.recordAt(2) && !model.recordAt(-1));
    }
};

QTEST_MAIN(TestDocumentsModel)
#include "tst_documentsmodel.moc"
