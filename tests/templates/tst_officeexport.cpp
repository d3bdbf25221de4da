#include "QSExport.h"
#include "QSFlatODF.h"
#include "QSInfo.h"
#include "SecondReader.h"

#include <QTest>
#include <QUrl>
#include <QXmlStreamReader>

using Kind = QSBlock::Kind;

namespace {
struct Case
{
    QSBlock block;
    const char *text; ///< as Word and Rich Text give it back, in UTF-8
};

/// Every kind of block, and the texts that get lost most easily.
const QList<Case> &cases()
{
    static const QList<Case> all = {
        {{Kind::title, {QStringLiteral("Bill of Sale")}}, "Bill of Sale"},
        {{Kind::heading, {QStringLiteral("1. Parties")}}, "1. Parties"},
        {{Kind::paragraph, {QString::fromUtf8("“José Núñez” & Nguyễn Thị Ánh <宋文靖> 𠮷野 😀")}},
         "“José Núñez” & Nguyễn Thị Ánh <宋文靖> 𠮷野 😀"},
        {{Kind::row, {QStringLiteral("Make"), QStringLiteral("Ford  F"), QStringLiteral("2012")}},
         "Make\tFord  F\t2012"},
        {{Kind::row, {QString(), QStringLiteral(" x ")}}, "\t x "},
        {{Kind::paragraph, {QStringLiteral("  two,   three ,\n one before\r\nand after \v.")}},
         "  two,   three ,\n one before\nand after \n."},
        {{Kind::paragraph, {QString()}}, ""},
        {{Kind::paragraph, {QStringLiteral(" ")}}, " "},
        {{Kind::paragraph, {QStringLiteral("bell\a half") + QChar(0xD83D) + QChar(0xFFFE)}},
         "bell\uFFFD half\uFFFD\uFFFD"},
        {{Kind::paragraph, {QString::fromUtf8("محمد العربية first")}}, "محمد العربية first"},
        {{Kind::signature, {QStringLiteral("________")}}, "________"},
        {{Kind::note, {QSInfo::templateNote}}, nullptr},
    };
    return all;
}

QSRendered sample()
{
    QSRendered rendered{QStringLiteral("Bill of Sale – “Doña\nMaría” & Co."), {}};
    for (const Case &each : cases()) {
        rendered.blocks.append(each.block);
    }
    return rendered;
}

QStringList expectedTexts()
{
    QStringList texts;
    for (const Case &each : cases()) {
        texts.append(each.text != nullptr ? QString::fromUtf8(each.text) : QSInfo::templateNote);
    }
    return texts;
}

QString part(const QByteArray &docx, const QString &name)
{
    return SecondReader::read(docx, QStringLiteral("unzip"),
                              {QStringLiteral("-p"), QStringLiteral("@"), name});
}

QString value(const QXmlStreamReader &xml, QStringView name = u"w:val")
{
    for (const QXmlStreamAttribute &attribute : xml.attributes()) {
        if (attribute.qualifiedName() == name) {
            return attribute.value().toString();
        }
    }
    return {};
}

struct Paragraph
{
    QString style;
    QString text;
    QString direction;
};

QList<Paragraph> paragraphs(const QString &document)
{
    QList<Paragraph> all;
    QXmlStreamReader xml(document);
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) {
            continue;
        }
        const QString name = xml.qualifiedName().toString();
        if (name == u"w:p") {
            all.append(Paragraph{});
        } else if (name == u"w:pStyle") {
            all.last().style = value(xml);
        } else if (name == u"w:bidi") {
            all.last().direction = value(xml);
        } else if (name == u"w:t") {
            all.last().text += xml.readElementText();
        } else if (name == u"w:tab" && value(xml).isEmpty()) {
            all.last().text += u'\t';
        } else if (name == u"w:br") {
            all.last().text += u'\n';
        }
    }
    return xml.hasError() ? QList<Paragraph>{{xml.errorString(), {}, {}}} : all;
}

/// What a style of Word says about itself, as "name=value" of what matters on paper.
QString styleFacts(const QString &styles, const QString &id)
{
    QStringList facts;
    QXmlStreamReader xml(styles);
    QString current;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) {
            continue;
        }
        const QString name = xml.name().toString();
        if (name == u"style") {
            current = value(xml, u"w:styleId");
        } else if (current == id && name == u"spacing") {
            for (const QStringView key : {u"w:before", u"w:after", u"w:line", u"w:lineRule"}) {
                if (!value(xml, key).isEmpty()) {
                    facts.append(key.mid(2).toString() + u'=' + value(xml, key));
                }
            }
        } else if (current == id && name == u"tab" && value(xml) != u"clear") {
            facts.append(value(xml) + u'=' + value(xml, u"w:pos"));
        } else if (current == id && name == u"rFonts") {
            facts.append(value(xml, u"w:ascii"));
        } else if (current == id &&
                   QStringList{QStringLiteral("b"), QStringLiteral("i"), QStringLiteral("sz"),
                               QStringLiteral("color"), QStringLiteral("jc")}
                       .contains(name)) {
            facts.append(value(xml).isEmpty() ? name : name + u'=' + value(xml));
        }
    }
    return facts.join(u' ').remove(QStringLiteral("b=false ")).remove(QStringLiteral("i=false "));
}
} // namespace

class TestOfficeExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void flatODFIsWellFormed();
    void wordKeepsEveryText();
    void wordStyles_data();
    void wordStyles();
    void wordPageAndTitle();
    void richTextKeepsEveryTextAndStyle();

private:
    const QByteArray &docx();

    QTemporaryDir m_home;
    QByteArray m_docx; // of the sample, once a test asked for it
};

void TestOfficeExport::initTestCase()
{
    qputenv("XDG_CACHE_HOME", m_home.path().toUtf8());
}

const QByteArray &TestOfficeExport::docx()
{
    if (m_docx.isEmpty()) {
        m_docx = QSExport::docx(sample());
    }
    return m_docx;
}

void TestOfficeExport::flatODFIsWellFormed()
{
    QSRendered rendered = sample();
    for (char16_t c = 0; c < 0x20; ++c) {
        rendered.title += QChar(c);
        rendered.blocks.append({Kind::paragraph, {QString(QChar(c))}});
    }
    for (const char16_t c : {u'\x7f', u'\x85', u'\xfffe', u'\xffff'}) {
        rendered.blocks.append({Kind::paragraph, {QString(QChar(c))}});
    }
    rendered.blocks.append({Kind::paragraph, {QString(QChar(0xDC00)) + QChar(0xD800)}});
    QXmlStreamReader xml(QSFlatODF::write(rendered));
    qsizetype count = 0;
    while (!xml.atEnd()) {
        count += xml.readNext() == QXmlStreamReader::StartElement &&
                 (xml.qualifiedName() == u"text:p" || xml.qualifiedName() == u"text:h");
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(count, rendered.blocks.size());
}

void TestOfficeExport::wordKeepsEveryText()
{
    QS_NEEDS("soffice");
    QS_NEEDS("unzip");
    QStringList texts;
    QStringList styles;
    QStringList rightToLeft;
    for (const Paragraph &each : paragraphs(part(docx(), QStringLiteral("word/document.xml")))) {
        texts.append(each.text);
        styles.append(each.style);
        if (each.direction == u"1") {
            rightToLeft.append(each.text);
        }
    }
    QCOMPARE(texts, expectedTexts());
    QCOMPARE(styles.join(u' '),
             QStringLiteral("Title Heading1 TextBody Row Row TextBody TextBody TextBody TextBody "
                            "TextBody Signature Note"));
    QCOMPARE(rightToLeft, QStringList{QString::fromUtf8("محمد العربية first")});
}

void TestOfficeExport::wordStyles_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("facts");
    const auto row = [](const char *id, const char *facts) {
        QTest::newRow(id) << QString::fromLatin1(id) << QString::fromLatin1(facts);
    };
    // Lengths are twentieths of a point, sizes half points, a line is 240.
    row("Normal", "line=259 lineRule=auto Times New Roman color=000000 sz=24");
    row("Title", "before=0 after=120 jc=center b color=000000 sz=32");
    row("Heading1", "before=160 after=80 jc=left b color=000000 sz=25");
    row("TextBody", "before=0 after=160 jc=left color=000000 sz=24");
    row("Row", "left=3600 left=6800 before=0 after=60 jc=left color=000000 sz=24");
    row("Signature", "before=280 after=0 jc=left color=000000 sz=24");
    row("Note", "before=360 after=0 jc=left i color=404040 sz=18");
}

void TestOfficeExport::wordStyles()
{
    QS_NEEDS("soffice");
    QS_NEEDS("unzip");
    QFETCH(QString, id);
    QFETCH(QString, facts);
    QCOMPARE(styleFacts(part(docx(), QStringLiteral("word/styles.xml")), id), facts);
}

void TestOfficeExport::wordPageAndTitle()
{
    QS_NEEDS("soffice");
    QS_NEEDS("unzip");
    const QString document = part(docx(), QStringLiteral("word/document.xml"));
    for (const char *fact : {"w:w=\"12240\"", "w:h=\"15840\"", "w:left=\"1440\"",
                             "w:right=\"1440\"", "w:top=\"1440\"", "w:bottom=\"1440\""}) {
        QVERIFY2(document.contains(QString::fromLatin1(fact)), fact);
    }
    QVERIFY(part(docx(), QStringLiteral("docProps/core.xml"))
                .contains(
                    QStringLiteral("<dc:title>Bill of Sale – “Doña María” &amp; Co.</dc:title>")));
}

void TestOfficeExport::richTextKeepsEveryTextAndStyle()
{
    QS_NEEDS("soffice");
    const QString profile =
        QStringLiteral("-env:UserInstallation=") +
        QUrl::fromLocalFile(m_home.filePath(QStringLiteral("reader"))).toString();
    const QByteArray rtf = QSExport::rtf(sample());
    for (const char *fact :
         {"\\paperw12240", "\\paperh15840", "\\margl1440", "\\margr1440", "\\margt1440",
          "\\margb1440", "\\sl259\\slmult1\\qc\\sb0\\sa120", "\\sl259\\slmult1\\ql\\sb160\\sa80",
          "\\tx3600\\tx6800\\sb0\\sa60", "\\red64\\green64\\blue64", "\\fs25", "Times New Roman"}) {
        QVERIFY2(rtf.contains(fact), fact);
    }
    QString text = SecondReader::read(
        rtf, QStringLiteral("soffice"),
        {profile, QStringLiteral("--headless"), QStringLiteral("--cat"), QStringLiteral("@")});
    text.remove(QChar::ByteOrderMark);
    QCOMPARE(text.trimmed().split(u'\n'), expectedTexts().join(u'\n').trimmed().split(u'\n'));
}

QTEST_GUILESS_MAIN(TestOfficeExport)
#include "tst_officeexport.moc"
