#include "QSDirectory.h"
#include "QSDisclaimer.h"
#include "QSTemplates.h"
#include "ScratchUser.h"
#include "VellHelpViewer.h"
#include "VellHelpWindow.h"
#include "VxZoom.h"
#include "WindowHand.h"
#include "help/QSHelp.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTextBlock>

using namespace Qt::Literals::StringLiterals;

/// The help: what is found, what is shipped, and the window as a person without a mouse uses it.
class TestHelp final : public QObject, private WindowHand
{
    Q_OBJECT

private:
    [[nodiscard]] QWidget *window() const override { return m_window.get(); }

    static QString ids(const QList<VellHelpTopic> &topics)
    {
        QStringList found;
        for (const VellHelpTopic &topic : topics) {
            found.append(topic.id);
        }
        return found.join(u' ');
    }

    static QList<VellHelpTopic> few()
    {
        return {{u"one"_s, u"Caf\u00E9 prices"_s, u"Waivers of a court fee."_s, {u"cost"_s}},
                {u"two"_s, u"Fee waivers"_s, u"## Who\n\u2022 Anyone\nwith a CAFE"_s, {}}};
    }

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<VellHelpWindow> m_window;

private Q_SLOTS:
    void initTestCase() { setLook(); }

    void init() { m_user = std::make_unique<ScratchUser>(); }

    void cleanup()
    {
        m_window.reset();
        VxZoom::setValue(1);
        VellHelp::setTopics({});
        m_user.reset();
    }

    void searching_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("found");
        QTest::newRow("blanks find all") << u" \t "_s << u"one two look about"_s;
        QTest::newRow("the whole query in the title comes first")
            << u"fee waivers"_s << u"two one"_s;
        QTest::newRow("words in any order") << u"waivers fee"_s << u"one two"_s;
        QTest::newRow("parts of words, keywords") << u"COS"_s << u"one"_s;
        QTest::newRow("case and accents of both") << u"c\u00E0F\u00C9"_s << u"one two"_s;
        QTest::newRow("not some of the words") << u"fee yacht"_s << QString();
    }

    void searching()
    {
        QFETCH(QString, query);
        VellHelp::setTopics(few());
        QTEST(ids(VellHelp::search(query)), "found");
    }

    void theApplicationsOwnLookTopicCounts()
    {
        VellHelp::setTopics({{u"look"_s, u"Mine"_s, {}, {}}});
        QCOMPARE(ids(VellHelp::allTopics()), u"look about"_s);
        QCOMPARE(VellHelp::allTopics().constFirst().title, u"Mine"_s);
    }

    void aBodyBecomesBlocks()
    {
        using enum VellHelpBlock::Kind;
        const QList<VellHelpBlock> expected = {{heading, u"A"_s},
                                               {paragraph, u"##B"_s},
                                               {paragraph, {}},
                                               {bullet, u"C"_s},
                                               {paragraph, u"\u2022D"_s}};
        QCOMPARE(VellHelpViewer::blocks(u"## A\n##B\n\n\u2022 C\n\u2022D"_s), expected);
    }

    void theShippedTopicsAreAllThere()
    {
        const QList<VellHelpTopic> topics = QSHelp::topics();
        QCOMPARE(ids(topics),
                 u"start disclaimer finder forms opening filling printing browser templates "
                 "template-list editor poa profile documents export search last-checked states "
                 "federal fees legal-aid backup look privacy practice troubleshooting shortcuts "
                 "sources"_s);
        QVERIFY(topics.at(0).body.contains(QSInfo::shortDisclaimer));
        QVERIFY(topics.at(1).body.startsWith(QSDisclaimer::full));
        QVERIFY(QSDirectory::shared().states().size() == 6 && !QSTemplates::all().isEmpty());
        for (const QSTemplate &each : QSTemplates::all()) {
            QVERIFY(topics.at(9).body.contains(u"## "_s + each.title));
        }
        for (const QSJurisdiction &state : QSDirectory::shared().states()) {
            QVERIFY(topics.at(17).body.contains(u"Self-help center: "_s + state.selfHelp));
        }
        for (const VellHelpTopic &topic : topics) {
            QVERIFY2(topic.body.size() > 300, qPrintable(topic.id + u": "_s + topic.body));
        }
    }

    void aMissingFileIsSaid()
    {
        QSInfo::setResourceFolderOverride(m_user->path(u"nothing"_s));
        const QString body = QSHelp::topics().constFirst().body;
        QSInfo::setResourceFolderOverride(std::nullopt);
        QVERIFY2(body.startsWith(u"This page of the help could not be read ("_s), qPrintable(body));
    }

    void findingAndReadingByKeyboard()
    {
        VellHelp::setTopics(few());
        m_window = std::make_unique<VellHelpWindow>();
        m_window->showTopic(u"one"_s);
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        auto *search = named<QLineEdit>(u"Search the help"_s);
        auto *list = named<QListWidget>(u"Help topics"_s);
        press(Qt::Key_F, Qt::ControlModifier); // from the text
        QCOMPARE(focused(), search);
        QTest::keyClicks(search, u"cafe an"_s);
        press(Qt::Key_Return);
        QCOMPARE(focused(), list);
        press(Qt::Key_Return);
        auto *page = qobject_cast<QTextEdit *>(focused());
        QVERIFY(page);
        QCOMPARE(page->toPlainText(), u"Fee waivers\nWho\nAnyone\nwith a CAFE"_s);
        QCOMPARE(page->document()->findBlockByNumber(1).blockFormat().headingLevel(), 2);
        QVERIFY(page->document()->findBlockByNumber(2).textList());
        QStringList marked;
        for (const QTextEdit::ExtraSelection &each : page->extraSelections()) {
            marked.append(each.cursor.selectedText());
        }
        QCOMPARE(marked, (QStringList{u"CAFE"_s, u"An"_s}));
        search->setText(u"yacht"_s);
        QVERIFY(list->isHidden() &&
                texts().join(u' ').startsWith(u"No help topic has \"yacht\""_s));
        press(Qt::Key_Equal, Qt::ControlModifier);
        QCOMPARE(VxZoom::value(), 1.15);
        press(Qt::Key_Escape);
        QVERIFY(search->text().isEmpty());
        m_window->resize(780, 640);
        press(Qt::Key_Escape);
        QVERIFY(!m_window->isVisible());
        QCOMPARE(VellHelpWindow().size(), QSize(780, 640));
    }
};

QTEST_MAIN(TestHelp)
#include "tst_help.moc"
