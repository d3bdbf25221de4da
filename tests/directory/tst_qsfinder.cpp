#include "QSFinder.h"

#include <QTest>

#include <algorithm>
#include <functional>
#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace {
template <typename Record, typename Value>
auto each(const QList<Record> &records, Value Record::*member)
{
    QList<Value> values;
    std::ranges::transform(records, std::back_inserter(values), std::mem_fn(member));
    return values;
}

QStringList feeLabels(const QSFinderResult &result)
{
    return each(result.feePages, &QSFinderResult::FeePage::label);
}

QList<QSCategory> officesOf(const QSFinderResult &result)
{
    return each(result.offices, &QSFinderResult::Office::category);
}

QSTask taskOf(const QList<QSCategory> &categories, const QStringList &templates = {})
{
    return {u"any"_s, {}, {}, {}, categories, templates};
}
} // namespace

class TestQSFinder final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTaskHasItsPapersInEveryState_data()
    {
        QTest::addColumn<QStringList>("fees");
        QStringList rows;
        const auto add = [&rows](const QStringList &tasks, const QStringList &fees) {
            for (const QString &task : tasks) {
                QTest::newRow(qPrintable(task)) << fees;
                rows.append(task);
            }
        };
        add({u"llc"_s}, {u"%1 Secretary of State fees"_s, u"IRS: getting an EIN"_s});
        add({u"dba"_s}, {u"%1 Secretary of State fees"_s});
        add({u"ein"_s}, {u"IRS: getting an EIN"_s});
        add({u"small-claims"_s, u"eviction-answer"_s, u"eviction-notice"_s, u"divorce"_s,
             u"name-change"_s, u"protection"_s, u"fee-waiver"_s},
            {u"%1 court fees"_s});
        add({u"uscis"_s}, {u"USCIS filing fees"_s});
        add({u"sell-car"_s, u"lend"_s, u"rent-out"_s, u"settle"_s, u"poa"_s, u"affidavit"_s}, {});
        QCOMPARE(each(QSFinder::tasks, &QSTask::id), rows); // no task without its row
    }

    void everyTaskHasItsPapersInEveryState()
    {
        QFETCH(QStringList, fees);
        const QSTask *task = QSFinder::task(QString::fromUtf8(QTest::currentDataTag()));
        QVERIFY(task);
        const QList<QSJurisdiction> states = QSDirectory::shared().states();
        QCOMPARE(states.size(), 6);
        for (const QSJurisdiction &state : states) {
            const std::optional<QSFinderResult> found = QSFinder::result(*task, state.code);
            QVERIFY(found);
            QCOMPARE(found->state, state);
            QList<QSCategory> withForms = each(found->forms + found->federalForms, &QSEntry::cat);
            withForms.erase(std::unique(withForms.begin(), withForms.end()), withForms.end());
            QCOMPARE(withForms, task->categories);
            QCOMPARE(officesOf(*found), task->categories);
            QCOMPARE(each(found->templates, &QSTemplate::id), task->templates);
            QCOMPARE(feeLabels(*found), QStringList(fees).replaceInStrings(u"%1"_s, state.name));
            QCOMPARE(found->selfHelp, state.selfHelp);
            QCOMPARE(found->legalAid.first(state.legalAid.size()), state.legalAid);
            QStringList aid = each(found->legalAid, &QSLegalAid::url);
            QCOMPARE(aid.removeDuplicates(), 0);
            QVERIFY(state.poa);
            QVERIFY(found->poa == (task->id == "poa"_L1 ? state.poa : std::nullopt));
        }
    }

    void whatIsFederalFollowsTheState()
    {
        using enum QSCategory;
        const QSDirectory &dir = QSDirectory::shared();
        const auto found = QSFinder::result(taskOf({ein, divorce, uscisFeeWaiver, w9, llc}), u"CO");
        QCOMPARE(found->forms, dir.entriesFor(u"CO", divorce) + dir.entriesFor(u"CO", llc));
        QCOMPARE(found->federalForms, dir.entriesFor(u"US", ein) +
                                          dir.entriesFor(u"US", uscisFeeWaiver) +
                                          dir.entriesFor(u"US", w9));
        QCOMPARE(officesOf(*found), (QList{divorce, llc, ein, uscisFeeWaiver, w9}));
        QCOMPARE(found->offices.last().text, dir.federal()->office(w9).value());
        const QSJurisdiction *state = dir.jurisdiction(u"CO");
        QCOMPARE(each(found->feePages, &QSFinderResult::FeePage::url),
                 (QStringList{state->businessFees, state->courtFees,
                              u"https://www.uscis.gov/forms/filing-fees"_s,
                              u"https://www.irs.gov/businesses/small-businesses-self-employed/"
                              "get-an-employer-identification-number"_s}));
    }

    void whatIsMissingIsLeftOut()
    {
        using enum QSCategory;
        QSDirectory dir = QSDirectory::shared();
        QSJurisdiction &state =
            *std::ranges::find(dir.jurisdictions, u"TX"_s, &QSJurisdiction::code);
        QSJurisdiction &country =
            *std::ranges::find(dir.jurisdictions, u"US"_s, &QSJurisdiction::code);
        state.courtFees.clear();
        state.offices = {{u"evictionAnswer"_s, u"The county court."_s}, {u"divorce"_s, {}}};
        state.legalAid = {country.legalAid.at(1)};
        const QSTask task = taskOf({evictionNotice, divorce, dba, ein},
                                   {u"affidavit"_s, u"none"_s, u"demand-letter"_s});
        auto found = QSFinder::result(task, u"TX", dir);
        QCOMPARE(officesOf(*found), (QList{evictionNotice, ein}));
        QCOMPARE(found->offices.first().text, u"The county court."_s);
        QCOMPARE(feeLabels(*found),
                 (QStringList{u"Texas Secretary of State fees"_s, u"IRS: getting an EIN"_s}));
        QCOMPARE(each(found->templates, &QSTemplate::id),
                 (QStringList{u"affidavit"_s, u"demand-letter"_s}));
        QList<QSLegalAid> aid = country.legalAid;
        aid.move(1, 0);
        QCOMPARE(found->legalAid, aid);

        country.code = u"--"_s; // its entries stay
        found = QSFinder::result(task, u"TX", dir);
        QVERIFY(found->federalForms.isEmpty());
        QCOMPARE(officesOf(*found), QList{evictionNotice});
        QCOMPARE(found->legalAid, state.legalAid);
        QCOMPARE(feeLabels(*found).last(), u"IRS: getting an EIN"_s);
        QVERIFY(!QSFinder::result(task, u"US", dir));
        QVERIFY(!QSFinder::result(task, u"tx", dir));
    }
};

QTEST_GUILESS_MAIN(TestQSFinder)
#include "tst_qsfinder.moc"
