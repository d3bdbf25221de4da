#include "QSDate.h"
#include "QSInfo.h"
#include "QSStatus.h"
#include "TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString form = QStringLiteral("https://bpd.sos.ca.gov/llc-1.pdf"); // the state, not a court
const QString courtForm = QStringLiteral("https://COURTS.ca.gov/fw-001.pdf");

QDateTime onDay(const QString &date, QTime time = {12, 0})
{
    return {QDate::fromString(date, Qt::ISODate), time};
}

QSLinkCheck checked(const QDateTime &time, bool ok, int status)
{
    return {.url = form,
            .checked = time.toUTC(),
            .status = status,
            .ok = ok,
            .finalURL = {},
            .contentType = {},
            .note = {}};
}
} // namespace

/// One line for a link, from its listing, the last check and today's date.
class TestQSStatus final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir(m_resources.path()).mkdir(u"data"_s));
        writeFile(m_resources.filePath(u"data/directory.json"_s),
                  R"({"format": "", "version": 1, "checked": "2026-12-01", "note": "",
                      "jurisdictions": [], "entries": []})");
        QSInfo::setResourceFolderOverride(m_resources.path());
    }

    void oneLineSaysHowALinkStands_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<std::optional<QString>>("listed");
        QTest::addColumn<std::optional<QSLinkCheck>>("check");
        QTest::addColumn<QSStatus::S>("status");
        using Listed = std::optional<QString>;
        using Check = std::optional<QSLinkCheck>;
        const auto row = [](const QByteArray &name, const QString &url, const Listed &listed,
                            const Check &check, const QSStatus::S &status) {
            QTest::newRow(name.constData()) << url << listed << check << status;
        };
        // Today is April 1, 2027, shortly after midnight: 120 days after December 2, 2026.
        const QString seal = u"checkmark.seal.fill"_s;
        const QString clock = u"clock.badge.exclamationmark.fill"_s;
        const QSStatus::S problem = {
            2, u"Link problem at last check (March 30, 2027, answer 404). It may have moved."_s,
            u"exclamationmark.triangle.fill"_s};
        const QSStatus::S stale = {
            1,
            u"Last checked December 1, 2026 — more than 120 days ago. Check the links on the Forms Last Checked screen."_s,
            clock};
        row("listed 120 days ago", form, u"2026-12-02"_s, {},
            {0, u"Checked December 2, 2026"_s, seal});
        row("listed 121 days ago", form, u"2026-12-01"_s, {}, stale);
        row("without a date of its own, listed when the directory was", form, {}, {}, stale);
        row("a good check clears a stale listing", form, u"2026-12-01"_s,
            checked(onDay(u"2026-12-02"_s, {0, 30}), true, 200),
            {0, u"Link checked online December 2, 2026"_s, seal});
        row("the day of a check is the user's own", form, {},
            checked(onDay(u"2027-03-30"_s, {23, 0}), true, 200),
            {0, u"Link checked online March 30, 2027"_s, seal});
        row("an old check leaves the listing", form, u"2026-12-01"_s,
            checked(onDay(u"2026-11-30"_s), true, 200), stale);
        row("a failed check", form, u"2027-03-01"_s, checked(onDay(u"2027-03-30"_s), false, 404),
            problem);
        row("a failed check of long ago", form, u"2027-03-01"_s,
            checked(onDay(u"2026-03-30"_s), false, 0),
            {2, u"Link problem at last check (March 30, 2026, answer none). It may have moved."_s,
             problem.symbol});
        const QString shy =
            u" This official site blocks automated checks; it opens normally in a web browser."_s;
        for (const int answer : {403, 429}) {
            QSLinkCheck refusal = checked(onDay(u"2027-03-30"_s), false, answer);
            refusal.note = shy.trimmed().chopped(1).toLower(); // by which the checker explains it
            row(u"a browser's site answers %1"_s.arg(answer).toUtf8(), form, u"2026-12-02"_s,
                refusal, {0, u"Checked December 2, 2026."_s + shy, seal});
            row(u"a browser's site answers %1, listed long ago"_s.arg(answer).toUtf8(), form,
                u"2026-12-01"_s, refusal,
                {1, u"Last checked December 1, 2026 — more than 120 days ago."_s + shy, clock});
        }
        row("another site refuses", form, u"2027-03-01"_s,
            checked(onDay(u"2027-03-30"_s), false, 403),
            {2, u"Link problem at last check (March 30, 2027, answer 403). It may have moved."_s,
             problem.symbol});
        row("a court's link, whatever a check said", courtForm, u"2026-12-02"_s,
            checked(onDay(u"2027-03-30"_s), false, 404),
            {0,
             u"Checked by hand December 2, 2026 (California courts don't allow automated checks)"_s,
             u"hand.raised.fill"_s});
        row("a court's link, listed 121 days ago", courtForm, u"2026-12-01"_s, {},
            {1,
             u"Checked by hand December 1, 2026 — more than 120 days ago. California courts don't allow automated checks; opening the form checks it."_s,
             clock});
    }

    void oneLineSaysHowALinkStands()
    {
        QFETCH(const QString, url);
        QFETCH(const std::optional<QString>, listed);
        QFETCH(const std::optional<QSLinkCheck>, check);
        QFETCH(const QSStatus::S, status);
        QSEntry entry;
        entry.url = url;
        entry.checked = listed;
        const QDateTime now = onDay(u"2027-04-01"_s, {0, 45});
        const QSStatus::S said = QSStatus::link(entry, check, now);
        QCOMPARE(said.text, status.text);
        QCOMPARE(said.level, status.level);
        QCOMPARE(said.symbol, status.symbol);
        // the date alone is the sentence's own
        QVERIFY(
            said.text.contains(QSDate::longFormat(QSStatus::lastChecked(entry, check, now).date)));
    }

private:
    QTemporaryDir m_resources;
};

QTEST_GUILESS_MAIN(TestQSStatus)
#include "tst_qsstatus.moc"
